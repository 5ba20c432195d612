// Lines, shapes and regions.

#include <QLinearGradient>
#include <QPainterPathStroker>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "metafile/DeviceContext.h"

namespace tessara::metafile {
namespace {

/// A pen of up to this many pixels is drawn through the centres of pixels: its upright lines stay sharp.
constexpr double kHairline = 1.5;

bool IsVisible(const Pen& pen) {
    return (pen.style & Pen::kStyleMask) != Pen::kNone && pen.ink.kind != Brush::Kind::None;
}

bool IsDashed(unsigned style) {
    return (style >= Pen::kDash && style <= Pen::kDashDotDot) || style == Pen::kUserDashes ||
           style == Pen::kAlternate;
}

/// Dashes and gaps, in pixels of thin lines and in widths of thick ones.
QList<qreal> DashesOf(const Pen& pen, double width, bool thick) {
    const double dash = thick ? 3 : 18;
    const double dot = thick ? 1 : 3;
    const double gap = thick ? 1 : 6;
    switch (pen.style & Pen::kStyleMask) {
        case Pen::kDash:
            return {dash, gap};
        case Pen::kDot:
            return {dot, thick ? 1.0 : 3.0};
        case Pen::kDashDot:
            return {thick ? dash : 9, gap, dot, gap};
        case Pen::kDashDotDot:
            return {thick ? dash : 9, dot, dot, dot, dot, dot};
        case Pen::kAlternate:
            return {1, 1};
        default:
            break;
    }
    QList<qreal> dashes;
    const double unit = thick && pen.width > 0 ? pen.width : width;
    for (const double length : pen.dashes) dashes << std::clamp(length / unit, 0.01, 1e6);
    if (dashes.size() % 2 == 1) dashes += dashes;
    return dashes;
}

double ThroughCentre(double value) {
    constexpr double kRounding = 1e-6;
    return std::floor(value + kRounding) + 0.5;
}

/// Moves the points of straight lines so that upright ones run through the centres of pixels.
QPolygonF ThroughCentres(const QPolygonF& line) {
    const auto upright = [](double a, double b) { return std::abs(a - b) < 1e-3; };
    const bool closed = line.isClosed();
    const qsizetype last = line.size() - 1;
    QPolygonF moved;
    for (qsizetype i = 0; i <= last; ++i) {
        const QPointF point = line[i];
        const QPointF before = line[i > 0 ? i - 1 : closed ? last - 1 : 0];
        const QPointF after = line[i < last ? i + 1 : closed ? 1 : last];
        const bool vertical = upright(point.x(), before.x()) || upright(point.x(), after.x());
        const bool horizontal = upright(point.y(), before.y()) || upright(point.y(), after.y());
        moved << QPointF(vertical ? ThroughCentre(point.x()) : point.x() + 0.5,
                         horizontal ? ThroughCentre(point.y()) : point.y() + 0.5);
    }
    return moved;
}

bool HasCurves(const QPainterPath& path) {
    for (int i = 0; i < path.elementCount(); ++i)
        if (path.elementAt(i).type == QPainterPath::CurveToElement) return true;
    return false;
}

QPainterPath HairlinePath(const QPainterPath& path) {
    if (HasCurves(path)) return path.translated(0.5, 0.5);
    QPainterPath moved;
    for (const QPolygonF& line : path.toSubpathPolygons()) {
        if (line.size() < 2) continue;
        const QPolygonF centred = ThroughCentres(line);
        moved.addPolygon(centred);
        if (line.isClosed()) moved.closeSubpath();
    }
    return moved;
}

/// Lines that begin half a pixel earlier: the first dash then begins at the edge of its pixel.
QPainterPath FromPixelEdge(const QPainterPath& path) {
    QPainterPath moved;
    for (QPolygonF line : path.toSubpathPolygons()) {
        if (line.size() < 2) continue;
        const QPointF first = line[1] - line[0];
        const double length = std::hypot(first.x(), first.y());
        if (length > 0) line[0] -= first * (0.5 / length);
        moved.addPolygon(line);
    }
    return moved;
}

using Rows = std::array<std::uint8_t, 8>;
constexpr Rows kHatches[] = {
    {0, 0, 0, 0xFF, 0, 0, 0, 0},                       // horizontal
    {0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10},  // vertical
    {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01},  // falling
    {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80},  // rising
    {0x10, 0x10, 0x10, 0xFF, 0x10, 0x10, 0x10, 0x10},  // cross
    {0x81, 0x42, 0x24, 0x18, 0x18, 0x24, 0x42, 0x81},  // diagonal cross
};

QImage HatchTile(unsigned hatch, QRgb line, QRgb gap) {
    const Rows& rows = kHatches[std::min<std::size_t>(hatch, std::size(kHatches) - 1)];
    QImage tile(8, 8, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            tile.setPixel(x, y, (rows[static_cast<std::size_t>(y)] & (0x80 >> x)) != 0 ? line : gap);
    return tile;
}

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

QImage Recolored(const QImage& blackAndWhite, QRgb black, QRgb white) {
    QImage image = blackAndWhite.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) row[x] = qGray(row[x]) < 128 ? black : white;
    }
    return image;
}

QBrush DeviceContext::BrushFor(const Brush& brush) const {
    QBrush result;
    switch (brush.kind) {
        case Brush::Kind::None:
            return Qt::NoBrush;
        case Brush::Kind::Solid:
            return QColor(brush.color);
        case Brush::Kind::Hatch:
            result = QBrush(HatchTile(brush.hatch, brush.color,
                                      state_.opaqueBackground ? state_.backgroundColor : qRgba(0, 0, 0, 0)));
            break;
        case Brush::Kind::Pattern:
            if (brush.tile.isNull()) return Qt::NoBrush;
            result = QBrush(brush.monochrome ? Recolored(brush.tile, state_.textColor, state_.backgroundColor)
                                             : brush.tile);
            break;
    }
    const QPointF origin = toPicture_.map(state_.brushOrigin) - toPicture_.map(QPointF(0, 0));
    result.setTransform(QTransform::fromTranslate(std::round(origin.x()), std::round(origin.y())));
    return result;
}

double DeviceContext::PenWidth() const {
    const QTransform toPicture = ToPicture();
    const double scale = std::hypot(toPicture.m11(), toPicture.m12());
    const double longest = 2.0 * std::max(canvas_.Area().width(), canvas_.Area().height());
    return std::clamp(state_.pen.width * scale, 1.0, longest);
}

QPen DeviceContext::PenForStroke() const {
    const Pen& pen = state_.pen;
    const double width = PenWidth();
    const bool thin = width <= kHairline;
    const bool dashed = IsDashed(pen.style & Pen::kStyleMask) && (thin || pen.extended);
    constexpr Qt::PenCapStyle kCaps[] = {Qt::RoundCap, Qt::SquareCap, Qt::FlatCap};
    constexpr Qt::PenJoinStyle kJoins[] = {Qt::RoundJoin, Qt::BevelJoin, Qt::MiterJoin};
    QPen result(BrushFor(pen.ink), width);
    result.setCapStyle(thin ? dashed ? Qt::FlatCap : Qt::SquareCap : kCaps[static_cast<int>(pen.cap)]);
    result.setJoinStyle(thin ? Qt::MiterJoin : kJoins[static_cast<int>(pen.join)]);
    result.setMiterLimit(thin ? 1 : std::clamp(state_.miterLimit / 2, 0.5, 50.0));
    if (dashed) {
        if (const QList<qreal> dashes = DashesOf(pen, width, !thin); !dashes.isEmpty())
            result.setDashPattern(dashes);
    }
    return result;
}

void DeviceContext::StrokeShape(const QPainterPath& shape) {
    if (!IsVisible(state_.pen)) return;
    const double width = PenWidth();
    if (width <= kHairline) {
        const QPainterPath line = HairlinePath(shape);
        StrokeLine(IsDashed(state_.pen.style & Pen::kStyleMask) ? FromPixelEdge(line) : line);
    } else {
        const bool odd = std::lround(width) % 2 == 1;
        StrokeLine(odd ? shape.translated(0.5, 0.5) : shape);
    }
}

void DeviceContext::StrokeLine(const QPainterPath& line) {
    const QPen pen = PenForStroke();
    const bool paintGaps =
        pen.style() == Qt::CustomDashLine && state_.opaqueBackground && !state_.pen.extended;
    if (paintGaps)
        canvas_.Stroke(line, QPen(QColor(state_.backgroundColor), pen.widthF()), DrawingOperation());
    canvas_.Stroke(line, pen, DrawingOperation());
}

void DeviceContext::FillShape(QPainterPath shape) {
    shape.setFillRule(state_.fillRule);
    canvas_.Fill(shape, BrushFor(state_.brush), DrawingOperation());
}

void DeviceContext::Paint(const QPainterPath& shape, bool fill, bool stroke) {
    if (fill) FillShape(shape);
    if (stroke) StrokeShape(shape);
}

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

QRectF DeviceContext::InsetForPen(const QRectF& box, Edges edges) const {
    if (!IsVisible(state_.pen)) return box;
    const double width = PenWidth();
    // The right and bottom edges lie outside: the line runs through the last pixels before them.
    if (width <= kHairline && edges == Edges::Straight)
        return QRectF(SnapToPixels(box)).adjusted(0.5, 0.5, -0.5, -0.5);
    const bool inside = (state_.pen.style & Pen::kStyleMask) == Pen::kInsideFrame;
    const double x = std::min(inside ? width : 1.0, box.width()) / 2;
    const double y = std::min(inside ? width : 1.0, box.height()) / 2;
    return box.adjusted(x, y, -x, -y);
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
    if (IsVisible(state_.pen)) StrokeLine(path);
}

void DeviceContext::Rectangle(const QRectF& box) {
    const bool outlined = IsVisible(state_.pen);
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

void DeviceContext::SetPixel(QPointF point, QRgb color) {
    // The middle of the reference device's pixel tells which of the picture's is meant.
    const QPointF half = toPicture_.map(QPointF(0.5, 0.5)) - toPicture_.map(QPointF(0, 0));
    const QPointF pixel = ToPicture().map(point) + half;
    QPainterPath path;
    path.addRect(std::floor(pixel.x()), std::floor(pixel.y()), 1, 1);
    canvas_.Fill(path, QColor(color), RasterOperation::CopyPattern());
}

void DeviceContext::FloodFill(QPointF point, QRgb color, bool toBorder) {
    const QPointF start = ToPicture().map(point);
    if (!QRectF(canvas_.Area()).contains(start)) return;
    canvas_.FloodFill(
        QPoint(static_cast<int>(std::floor(start.x())), static_cast<int>(std::floor(start.y()))),
        BrushFor(state_.brush), toBorder ? std::optional(color) : std::nullopt);
}

void DeviceContext::FillTriangle(const std::array<QPointF, 3>& corners, const std::array<QColor, 3>& colors) {
    const QTransform toPicture = ToPicture();
    canvas_.FillTriangle({toPicture.map(corners[0]), toPicture.map(corners[1]), toPicture.map(corners[2])},
                         colors);
}

void DeviceContext::GradientBox(QPointF from, QPointF to, QColor first, QColor last, bool vertical) {
    const QTransform toPicture = ToPicture();
    QLinearGradient gradient(toPicture.map(from),
                             toPicture.map(vertical ? QPointF(from.x(), to.y()) : QPointF(to.x(), from.y())));
    gradient.setColorAt(0, first);
    gradient.setColorAt(1, last);
    canvas_.Fill(BoxInPicture(QRectF(from, to)), gradient, RasterOperation::CopyPattern());
}

QPainterPath DeviceContext::BoxInPicture(const QRectF& box) const {
    const QTransform toPicture = ToPicture();
    QPainterPath path;
    if (KeepsAxes(toPicture)) {
        path.addRect(SnapToPixels(toPicture.mapRect(box.normalized())));
    } else {
        path.addPolygon(toPicture.map(QPolygonF(box.normalized())));
    }
    return path;
}

void DeviceContext::FillPixels(const QRegion& region, const Brush& brush, RasterOperation operation) {
    QPainterPath path;
    path.addRegion(region);
    path.setFillRule(Qt::WindingFill);
    canvas_.Fill(path, BrushFor(brush), operation);
}

void DeviceContext::FillRegion(const Region& region, const Brush& brush) {
    FillPixels(RegionInPicture(region, ToPicture()), brush, DrawingOperation());
}

void DeviceContext::InvertRegion(const Region& region) {
    FillPixels(RegionInPicture(region, ToPicture()), Brush(), RasterOperation::Invert());
}

void DeviceContext::FrameRegion(const Region& region, const Brush& brush, double width, double height) {
    const QTransform toPicture = ToPicture();
    const auto pixels = [](double length) {
        return static_cast<int>(std::clamp(std::round(std::abs(length)), 1.0, 1e6));
    };
    const int x = pixels(width * toPicture.m11());
    const int y = pixels(height * toPicture.m22());
    const QRegion whole = RegionInPicture(region, toPicture);
    const QRegion inner = whole & whole.translated(x, 0) & whole.translated(-x, 0) & whole.translated(0, y) &
                          whole.translated(0, -y);
    FillPixels(whole - inner, brush, DrawingOperation());
}

}  // namespace tessara::metafile
