#include "metafile/Geometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

namespace tessara::metafile {
namespace {

constexpr double kLargest = 1e9;

/// One side of a box: a point is inside where `sign` * (coordinate - `edge`) is not negative.
struct Side {
    bool vertical;
    double edge;
    double sign;

    double Distance(QPointF point) const { return sign * ((vertical ? point.x() : point.y()) - edge); }
};

std::array<Side, 4> SidesOf(const QRectF& box) {
    return {Side{true, box.left(), 1}, Side{true, box.right(), -1}, Side{false, box.top(), 1},
            Side{false, box.bottom(), -1}};
}

/// Cuts a polygon at one side (Sutherland and Hodgman). What lies outside collapses onto the side, so that
/// the winding of the inside stays.
QPolygonF CutAtSide(const QPolygonF& polygon, const Side& side) {
    QPolygonF cut;
    for (qsizetype i = 0; i < polygon.size(); ++i) {
        const QPointF from = polygon[i == 0 ? polygon.size() - 1 : i - 1];
        const QPointF to = polygon[i];
        const double before = side.Distance(from);
        const double after = side.Distance(to);
        if ((before < 0) != (after < 0)) cut << from + (to - from) * (before / (before - after));
        if (after >= 0) cut << to;
    }
    return cut;
}

struct Segment {
    QPointF from, to;
};

/// The part of a segment in a box (Liang and Barsky).
std::optional<Segment> CutSegment(const Segment& segment, const std::array<Side, 4>& sides) {
    double enter = 0;
    double leave = 1;
    for (const Side& side : sides) {
        const double before = side.Distance(segment.from);
        const double after = side.Distance(segment.to);
        if (before < 0 && after < 0) return std::nullopt;
        if (before < 0) enter = std::max(enter, before / (before - after));
        if (after < 0) leave = std::min(leave, before / (before - after));
    }
    if (enter > leave) return std::nullopt;
    const QPointF direction = segment.to - segment.from;
    return Segment{enter > 0 ? segment.from + direction * enter : segment.from,
                   leave < 1 ? segment.from + direction * leave : segment.to};
}

/// Where coordinates are so large that a cut is only roughly right, this makes it right.
QPointF Within(QPointF point, const QRectF& box) {
    return {std::clamp(point.x(), box.left(), box.right()), std::clamp(point.y(), box.top(), box.bottom())};
}

double AngleOf(const QRectF& box, QPointF point) {
    const QPointF center = box.center();
    const double x = box.width() > 0 ? (point.x() - center.x()) / box.width() : 0;
    const double y = box.height() > 0 ? (point.y() - center.y()) / box.height() : 0;
    return std::atan2(-y, x) * 180 / std::numbers::pi;
}

}  // namespace

QPainterPath EllipsePath(const QRectF& box) {
    QPainterPath path;
    path.addEllipse(box);
    return path;
}

QPainterPath RoundRectPath(const QRectF& box, double cornerWidth, double cornerHeight) {
    QPainterPath path;
    path.addRoundedRect(box, std::min(std::abs(cornerWidth), box.width()) / 2,
                        std::min(std::abs(cornerHeight), box.height()) / 2);
    return path;
}

QPainterPath ArcPath(const QRectF& box, QPointF start, QPointF end, bool clockwise, ArcKind kind) {
    const double from = AngleOf(box, start);
    double sweep = AngleOf(box, end) - from;
    if (clockwise && sweep >= 0) sweep -= 360;
    if (!clockwise && sweep <= 0) sweep += 360;
    QPainterPath path;
    if (kind == ArcKind::Pie) {
        path.moveTo(box.center());
    } else {
        path.arcMoveTo(box, from);
    }
    path.arcTo(box, from, sweep);
    if (kind != ArcKind::Open) path.closeSubpath();
    return path;
}

bool IsUsable(QPointF point) {
    return std::abs(point.x()) <= kLargest && std::abs(point.y()) <= kLargest;
}

bool IsUsable(const QTransform& transform) {
    const double values[] = {transform.m11(), transform.m12(), transform.m21(),
                             transform.m22(), transform.dx(),  transform.dy()};
    return std::ranges::all_of(values, [](double value) { return std::abs(value) <= kLargest; });
}

bool KeepsAxes(const QTransform& transform) {
    constexpr double kNothing = 1e-7;
    const auto small = [](double a, double b) { return std::abs(a) < kNothing && std::abs(b) < kNothing; };
    return small(transform.m12(), transform.m21()) || small(transform.m11(), transform.m22());
}

QRect SnapToPixels(const QRectF& box) {
    const auto edge = [](double value) {
        return static_cast<int>(std::lround(std::clamp(value, -1e8, 1e8)));
    };
    const int left = edge(box.left());
    const int top = edge(box.top());
    return {left, top, std::max(1, edge(box.right()) - left), std::max(1, edge(box.bottom()) - top)};
}

QPainterPath CutArea(const QPainterPath& path, const QRectF& box) {
    if (box.contains(path.controlPointRect())) return path;
    QPainterPath cut;
    cut.setFillRule(path.fillRule());
    for (QPolygonF polygon : path.toSubpathPolygons()) {
        for (const Side& side : SidesOf(box)) polygon = CutAtSide(polygon, side);
        if (polygon.size() < 3) continue;
        for (QPointF& point : polygon) point = Within(point, box);
        cut.addPolygon(polygon);
        cut.closeSubpath();
    }
    return cut;
}

QPainterPath CutLines(const QPainterPath& path, const QRectF& box) {
    if (box.contains(path.controlPointRect())) return path;
    QPainterPath cut;
    const auto sides = SidesOf(box);
    for (const QPolygonF& polygon : path.toSubpathPolygons()) {
        for (qsizetype i = 1; i < polygon.size(); ++i) {
            const auto part = CutSegment({polygon[i - 1], polygon[i]}, sides);
            if (!part) continue;
            const QPointF from = Within(part->from, box);
            if (cut.isEmpty() || cut.currentPosition() != from) cut.moveTo(from);
            cut.lineTo(Within(part->to, box));
        }
    }
    return cut;
}

double LengthWithin(const QPainterPath& path, const QRectF& box) {
    const auto sides = SidesOf(box);
    double length = 0;
    QPointF previous;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        length += 1;
        if (element.type != QPainterPath::MoveToElement) {
            if (const auto part = CutSegment({previous, element}, sides))
                length += (part->to - part->from).manhattanLength();
        }
        previous = element;
    }
    return length;
}

}  // namespace tessara::metafile
