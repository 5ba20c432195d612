#include "metafile/Clip.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "metafile/Geometry.h"

namespace tessara::metafile {
namespace {

constexpr qsizetype kMostPaths = 8;
constexpr int kMostBoxes = 50000;
constexpr int kTallestPicture = 65535;
constexpr std::size_t kMostRegionBoxes = 2048;

QRect BoundsWithin(const QPainterPath& path, const QRect& area) {
    return (path.boundingRect() & QRectF(area)).toAlignedRect();
}

QRegion PixelsOf(const QPainterPath& path, const QRect& area) {
    // While a drawing is measured there are no pixels, but an area too large to walk through its rows.
    if (area.height() > kTallestPicture) return BoundsWithin(path, area);
    const QPainterPath cut = CutArea(path, QRectF(area).adjusted(-1, -1, 1, 1));
    return QRegion(cut.toFillPolygon().toPolygon(), path.fillRule()) & area;
}

QRegion UnionOf(std::span<const QRect> boxes, const QRect& area) {
    if (boxes.size() == 1) return QRegion(boxes[0] & area);
    const std::size_t half = boxes.size() / 2;
    return UnionOf(boxes.first(half), area) + UnionOf(boxes.subspan(half), area);
}

}  // namespace

void Clip::Reset() {
    region_ = area_;
    paths_.clear();
}

void Clip::MakeLimit() {
    limit_ &= Flattened();
    if (limit_.rectCount() > kMostBoxes) limit_ = limit_.boundingRect();
    Reset();
}

void Clip::Combine(const QRegion& region, ClipMode mode) {
    switch (mode) {
        case ClipMode::And:
            region_ &= region;
            break;
        case ClipMode::Difference:
            region_ -= region;
            break;
        case ClipMode::Or:
            region_ = Flattened() + region;
            break;
        case ClipMode::Xor:
            region_ = Flattened() ^ region;
            break;
        case ClipMode::Copy:
            region_ = region & area_;
            break;
    }
    if (mode != ClipMode::And && mode != ClipMode::Difference) paths_.clear();
    LimitComplexity();
}

void Clip::Combine(const QPainterPath& path, ClipMode mode) {
    if (mode == ClipMode::Copy) Reset();
    if (mode != ClipMode::And && mode != ClipMode::Copy) return Combine(PixelsOf(path, area_), mode);
    region_ &= BoundsWithin(path, area_);
    if (paths_.size() >= kMostPaths) {
        region_ = Flattened();
        paths_.clear();
    }
    paths_ << CutArea(path, QRectF(area_).adjusted(-1, -1, 1, 1));
    LimitComplexity();
}

void Clip::Translate(QPointF by) {
    if (paths_.isEmpty() && region_ == QRegion(area_)) return;  // there is nothing to move
    const auto whole = [](double value) {
        return static_cast<int>(std::lround(std::clamp(value, -1e6, 1e6)));
    };
    region_.translate(whole(by.x()), whole(by.y()));
    region_ &= area_;
    for (QPainterPath& path : paths_) path.translate(by);
}

double Clip::Cost() const {
    double cost = 100.0 + 20.0 * (region_.rectCount() + limit_.rectCount());
    const QRect bounds = Bounds();
    for (const QPainterPath& path : paths_)
        cost += 20 * LengthWithin(path, bounds) + bounds.height() * 50.0 + 10.0 * region_.rectCount();
    return cost;
}

void Clip::ApplyTo(QPainter& painter) const {
    painter.setClipRegion(region_ & limit_);
    for (const QPainterPath& path : paths_) painter.setClipPath(path, Qt::IntersectClip);
}

QRegion Clip::Flattened() const {
    QRegion region = region_;
    for (const QPainterPath& path : paths_) region &= PixelsOf(path, area_);
    return region;
}

void Clip::LimitComplexity() {
    if (region_.rectCount() > kMostBoxes) region_ = region_.boundingRect();
}

QRegion RegionOf(const std::vector<QRect>& boxes, const QRect& area) {
    if (boxes.empty()) return {};
    if (boxes.size() <= kMostRegionBoxes) return UnionOf(boxes, area);
    QRect hull;
    for (const QRect& box : boxes) hull |= box & area;
    return hull;
}

}  // namespace tessara::metafile
