// Lines and shapes.

#include <algorithm>
#include <array>
#include <cmath>

#include "metafile/DeviceContext.h"

namespace tessara::metafile {
namespace {

QPainterPath PathOf(const QTransform& transform, std::span<const QPointF> points) {
    QPainterPath path;
    if (points.empty()) return path;
    path.moveTo(transform.map(points[0]));
    for (const QPointF point : points.subspan(1)) path.lineTo(transform.map(point));
    return path;
}

void AddBeziers(QPainterPath& path, const QTransform& transform, std::span<const QPointF> points) {
    for (std::size_t i = 0; i + 2 < points.size(); i += 3)
        path.cubicTo(transform.map(points[i]), transform.map(points[i + 1]), transform.map(points[i + 2]));
}

}  // namespace

void DeviceContext::MoveTo(QPointF point) {
    state_.position = point;
    figureOpen_ = false;
}

void DeviceContext::DrawFromPosition(const QPainterPath& figures, QPointF end) {
    state_.position = end;
    if (!pathOpen_) return StrokeShape(figures);
    if (figureOpen_) {
        path_.connectPath(figures);
    } else {
        AddToPath(figures);
    }
    figureOpen_ = true;
}

void DeviceContext::LineTo(QPointF point) {
    PolylineTo(std::array{point});
}

void DeviceContext::PolylineTo(std::span<const QPointF> points) {
    if (points.empty()) return;
    const QTransform toPicture = ToPicture();
    QPainterPath path(toPicture.map(state_.position));
    for (const QPointF point : points) path.lineTo(toPicture.map(point));
    DrawFromPosition(path, points.back());
}

void DeviceContext::PolyBezierTo(std::span<const QPointF> points) {
    if (points.size() < 3) return;
    const QTransform toPicture = ToPicture();
    QPainterPath path(toPicture.map(state_.position));
    AddBeziers(path, toPicture, points);
    DrawFromPosition(path, points[points.size() / 3 * 3 - 1]);
}

void DeviceContext::Polyline(std::span<const QPointF> points) {
    const QPainterPath path = PathOf(ToPicture(), points);
    pathOpen_ ? AddToPath(path) : StrokeShape(path);
}

void DeviceContext::PolyBezier(std::span<const QPointF> points) {
    if (points.size() < 4) return;
    const QTransform toPicture = ToPicture();
    QPainterPath path(toPicture.map(points[0]));
    AddBeziers(path, toPicture, points.subspan(1));
    pathOpen_ ? AddToPath(path) : StrokeShape(path);
}

void DeviceContext::Polygon(std::span<const QPointF> points) {
    QPainterPath path = PathOf(ToPicture(), points);
    path.closeSubpath();
    pathOpen_ ? AddToPath(path) : Paint(path, true, true);
}

void DeviceContext::Lines(const QPainterPath& figures) {
    const QPainterPath path = ToPicture().map(figures);
    pathOpen_ ? AddToPath(path) : StrokeShape(path);
}

void DeviceContext::Shape(const QPainterPath& figures) {
    const QPainterPath path = ToPicture().map(figures);
    pathOpen_ ? AddToPath(path) : Paint(path, true, true);
}

template <typename Make>
void DeviceContext::DrawInBox(const QRectF& box, Edges edges, bool fill, const Make& make) {
    const QTransform toPicture = ToPicture();
    const bool upright = KeepsAxes(toPicture);
    const QRectF mapped = toPicture.mapRect(box.normalized());
    if (pathOpen_ || !upright) {
        const QPainterPath path =
            upright ? make(mapped, toPicture) : toPicture.map(make(box.normalized(), QTransform()));
        return pathOpen_ ? AddToPath(path) : Paint(path, fill, true);
    }
    const QPainterPath path = make(InsetForPen(mapped, edges), toPicture);
    if (fill) FillShape(path);
    if (state_.pen.IsVisible()) StrokeLine(path);
}

void DeviceContext::Rectangle(const QRectF& box) {
    const bool outlined = state_.pen.IsVisible();
    DrawInBox(box, Edges::Straight, true, [&](QRectF shape, const QTransform& transform) {
        constexpr double kSlim = 0.75;
        // Bands of a gradient are rectangles side by side: their edges must not show.
        if (!outlined && !transform.isIdentity() && shape.width() >= kSlim && shape.height() >= kSlim)
            shape = SnapToPixels(shape);
        QPainterPath path;
        path.addRect(shape);
        return path;
    });
}

void DeviceContext::RoundRect(const QRectF& box, double cornerWidth, double cornerHeight) {
    DrawInBox(box, Edges::Straight, true, [&](const QRectF& shape, const QTransform& transform) {
        const double width =
            std::abs(transform.m11() * cornerWidth) + std::abs(transform.m21() * cornerHeight);
        const double height =
            std::abs(transform.m12() * cornerWidth) + std::abs(transform.m22() * cornerHeight);
        return RoundRectPath(shape, width, height);
    });
}

void DeviceContext::Ellipse(const QRectF& box) {
    DrawInBox(box, Edges::Round, true,
              [](const QRectF& shape, const QTransform&) { return EllipsePath(shape); });
}

void DeviceContext::Arc(const QRectF& box, QPointF start, QPointF end, ArcKind kind) {
    const bool mirrored = !KeepsAxes(ToPicture()) && ToPicture().determinant() < 0;
    DrawInBox(box, Edges::Round, kind != ArcKind::Open,
              [&](const QRectF& shape, const QTransform& transform) {
                  return ArcPath(shape, transform.map(start), transform.map(end),
                                 state_.clockwise != mirrored, kind);
              });
}

void DeviceContext::ArcTo(const QRectF& box, QPointF start, QPointF end) {
    const QTransform toPicture = ToPicture();
    const bool mirrored = toPicture.determinant() < 0;
    const QPainterPath arc =
        ArcPath(box.normalized(), start, end, state_.clockwise != mirrored, ArcKind::Open);
    QPainterPath path(state_.position);
    path.connectPath(arc);
    DrawFromPosition(toPicture.map(path), arc.currentPosition());
}

void DeviceContext::AngleArc(QPointF center, double radius, double startAngle, double sweep) {
    if (!std::isfinite(startAngle) || !std::isfinite(sweep)) return;
    const QRectF box(center.x() - radius, center.y() - radius, 2 * radius, 2 * radius);
    QPainterPath path(state_.position);
    path.arcTo(box, std::fmod(startAngle, 360.0), std::clamp(sweep, -360.0, 360.0));
    DrawFromPosition(ToPicture().map(path), path.currentPosition());
}

}  // namespace tessara::metafile
