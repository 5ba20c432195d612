#pragma once

#include <QList>
#include <QPainter>
#include <QPainterPath>
#include <QRegion>

#include "metafile/WorkBudget.h"

namespace tessara::metafile {

enum class ClipMode { And = 1, Or = 2, Xor = 3, Difference = 4, Copy = 5 };

/// Where drawing shows: a region of whole pixels, cut by shapes with soft edges.
class Clip {
  public:
    explicit Clip(const QRect& area) : area_(area), limit_(area), region_(area) {}

    /// Takes away everything but the limit.
    void Reset();
    /// What may be drawn on now is a limit from here on, and nothing else cuts it.
    void MakeLimit();
    /// Combines with a rectangle whose edges lie between pixels.
    void Combine(const QRect& box, ClipMode mode) { Combine(QRegion(box & area_), mode); }
    void Combine(const QRegion& region, ClipMode mode);
    void Combine(const QPainterPath& path, ClipMode mode);
    void Translate(QPointF by);

    QRect Bounds() const { return (region_ & limit_).boundingRect(); }
    /// What setting this clip costs.
    double Cost() const;
    void ApplyTo(QPainter& painter) const;

  private:
    /// The clip as pixels alone: soft edges cannot be united or taken away.
    QRegion Flattened() const;
    void LimitComplexity();

    QRect area_;
    QRegion limit_;  ///< holds whatever becomes of the region
    QRegion region_;
    QList<QPainterPath> paths_;
};

/// A region of boxes. Too many of them would take a region's time and memory; then it is their hull.
QRegion RegionOf(const std::vector<QRect>& boxes, const QRect& area);

}  // namespace tessara::metafile
