#include "metafile/DeviceContext.h"

#include <algorithm>
#include <cmath>

namespace tessara::metafile {
namespace {

constexpr std::size_t kMostSavedStates = 1000;

/// Millimetres of a logical unit, for the modes that fix it.
double UnitOf(MapMode mode) {
    switch (mode) {
        case MapMode::LowMetric:
            return 0.1;
        case MapMode::HighMetric:
            return 0.01;
        case MapMode::LowEnglish:
            return 0.254;
        case MapMode::HighEnglish:
            return 0.0254;
        case MapMode::Twips:
            return 25.4 / 1440;
        default:
            return 0;
    }
}

QPainterPath WithClosedFigures(const QPainterPath& path) {
    QPainterPath closed;
    closed.setFillRule(path.fillRule());
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        if (element.isMoveTo()) {
            closed.closeSubpath();
            closed.moveTo(element);
        } else if (element.isLineTo()) {
            closed.lineTo(element);
        } else {
            closed.cubicTo(element, path.elementAt(i + 1), path.elementAt(i + 2));
            i += 2;
        }
    }
    closed.closeSubpath();
    return closed;
}

}  // namespace

QPointF Mapping::Scale(QPointF pixelsPerMillimetre) const {
    if (mode == MapMode::Text) return {1, 1};
    if (const double unit = UnitOf(mode); unit > 0)
        return {unit * pixelsPerMillimetre.x(), -unit * pixelsPerMillimetre.y()};
    QPointF scale(viewportExtent.x() / windowExtent.x(), viewportExtent.y() / windowExtent.y());
    if (mode == MapMode::Isotropic) {
        const double least = std::min(std::abs(scale.x()), std::abs(scale.y()));
        scale = {std::copysign(least, scale.x()), std::copysign(least, scale.y())};
    }
    return scale;
}

QTransform Mapping::Page(QPointF pixelsPerMillimetre) const {
    const QPointF scale = Scale(pixelsPerMillimetre);
    return {scale.x(),
            0,
            0,
            scale.y(),
            viewportOrigin.x() - windowOrigin.x() * scale.x(),
            viewportOrigin.y() - windowOrigin.y() * scale.y()};
}

void SetExtent(QPointF& extent, QPointF given) {
    if (given.x() != 0 && given.y() != 0) extent = given;
}

void ScaleExtent(QPointF& extent, QPointF numerator, QPointF denominator) {
    const QPointF scaled(extent.x() * numerator.x() / denominator.x(),
                         extent.y() * numerator.y() / denominator.y());
    const bool sane = IsUsable(scaled) && std::abs(scaled.x()) > 1e-6 && std::abs(scaled.y()) > 1e-6;
    if (sane) extent = scaled;
}

void Attributes::Select(const Object& object) {
    if (const auto* given = std::get_if<Pen>(&object)) pen = *given;
    if (const auto* given = std::get_if<Brush>(&object)) brush = *given;
    if (const auto* given = std::get_if<Font>(&object)) font = *given;
    if (const auto* given = std::get_if<Palette>(&object)) palette = *given;
}

DeviceContext::DeviceContext(Canvas& canvas, const QTransform& toPicture, QPointF pixelsPerMillimetre)
    : canvas_(canvas),
      toPicture_(toPicture),
      pixelsPerMillimetre_(pixelsPerMillimetre),
      state_(canvas.Unclipped()) {
    canvas_.SetClip(state_.clip);
}

void DeviceContext::Save() {
    if (saved_.size() < kMostSavedStates) saved_.push_back(state_);
}

void DeviceContext::Restore(int level) {
    const auto depth = static_cast<std::int64_t>(saved_.size());
    const std::int64_t index = level < 0 ? depth + level : std::int64_t{level} - 1;
    if (index < 0 || index >= depth) return;
    state_ = saved_[static_cast<std::size_t>(index)];
    saved_.erase(saved_.begin() + static_cast<std::ptrdiff_t>(index), saved_.end());
    canvas_.SetClip(state_.clip);
}

QTransform DeviceContext::ToReference() const {
    return state_.mapping.world * state_.mapping.Page(pixelsPerMillimetre_);
}

QTransform DeviceContext::ToPicture() const {
    const QTransform transform = ToReference() * toPicture_;
    if (!state_.mirrored) return transform;
    return transform * QTransform(-1, 0, 0, 1, canvas_.Area().width(), 0);
}

void DeviceContext::BeginPath() {
    path_ = {};
    pathOpen_ = true;
    figureOpen_ = false;
}

void DeviceContext::AbortPath() {
    path_ = {};
    pathOpen_ = false;
}

void DeviceContext::CloseFigure() {
    if (!pathOpen_) return;
    path_.closeSubpath();
    figureOpen_ = false;
}

void DeviceContext::CloseFigure(QPointF start) {
    if (pathOpen_) return CloseFigure();
    const QPointF end = state_.position;
    LineTo(start);
    state_.position = end;
}

void DeviceContext::AddToPath(const QPainterPath& figures) {
    constexpr int kMostElements = 4'000'000;
    if (path_.elementCount() + figures.elementCount() > kMostElements) return;
    path_.addPath(figures);
    figureOpen_ = false;
}

void DeviceContext::PaintPath(bool fill, bool stroke) {
    pathOpen_ = false;
    const QPainterPath path = std::exchange(path_, {});
    Paint(fill && stroke ? WithClosedFigures(path) : path, fill, stroke);
}

void DeviceContext::FlattenPath() {
    constexpr double kPerElement = 100;
    if (!canvas_.Budget().Spend(kPerElement * path_.elementCount())) return;
    QPainterPath flat;
    flat.setFillRule(path_.fillRule());
    for (const QPolygonF& polygon : path_.toSubpathPolygons()) flat.addPolygon(polygon);
    path_ = flat;
}

void DeviceContext::WidenPath() {
    const double margin = 2.0 * std::max(canvas_.Area().width(), canvas_.Area().height());
    const QRectF near = QRectF(canvas_.Area()).adjusted(-margin, -margin, margin, margin);
    // A line of a pixel has no area: such a path stays as it is.
    if (!state_.pen.IsVisible() || PenWidth() <= 1) return;
    if (!canvas_.Budget().Spend(50 * LengthWithin(path_, near))) return;
    path_ = QPainterPathStroker(PenForStroke()).createStroke(CutLines(PlacedForPen(path_), near));
}

void DeviceContext::SelectClipPath(ClipMode mode) {
    pathOpen_ = false;
    const QPainterPath path = std::exchange(path_, {});
    // Modes that cannot keep a shape make pixels of it, a run for every second edge that a row meets.
    const bool asPixels = mode != ClipMode::And && mode != ClipMode::Copy;
    const double perLength = asPixels ? 250 : 50;
    if (!canvas_.Budget().Spend(perLength * LengthWithin(path, canvas_.Area()))) return;
    state_.clip.Combine(WithFillRule(path), mode);
    canvas_.SetClip(state_.clip);
}

void DeviceContext::ClipToBox(const QRectF& box, ClipMode mode) {
    const QTransform toPicture = ToPicture();
    if (KeepsAxes(toPicture)) {
        state_.clip.Combine(SnapToPixels(toPicture.mapRect(box.normalized())), mode);
    } else {
        QPainterPath path;
        path.addPolygon(toPicture.map(QPolygonF(box)));
        state_.clip.Combine(path, mode);
    }
    canvas_.SetClip(state_.clip);
}

void DeviceContext::ClipToRegion(const Region& region, ClipMode mode, const QTransform& toPicture) {
    state_.clip.Combine(RegionInPicture(region, toPicture), mode);
    canvas_.SetClip(state_.clip);
}

void DeviceContext::OffsetClip(QPointF by) {
    const QTransform toPicture = ToPicture();
    state_.clip.Translate(toPicture.map(by) - toPicture.map(QPointF(0, 0)));
    canvas_.SetClip(state_.clip);
}

void DeviceContext::MakeClipLimit() {
    if (!canvas_.Budget().Spend(state_.clip.Cost())) return;
    state_.clip.MakeLimit();
    canvas_.SetClip(state_.clip);
}

void DeviceContext::ResetClip() {
    state_.clip.Reset();
    canvas_.SetClip(state_.clip);
}

}  // namespace tessara::metafile
