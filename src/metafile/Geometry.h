#pragma once

#include <QPainterPath>
#include <QPolygonF>
#include <QRectF>
#include <QTransform>

/// Shapes, and the cutting of shapes to the neighbourhood of the picture: coordinates of a file can be
/// anything, and a rasteriser takes its time, or overflows, with lines of a million pixels.
namespace tessara::metafile {

enum class ArcKind { Open, Chord, Pie };

QPainterPath EllipsePath(const QRectF& box);
QPainterPath RoundRectPath(const QRectF& box, double cornerWidth, double cornerHeight);
/// The arc of the ellipse in `box` from the ray through `start` to that through `end`.
QPainterPath ArcPath(const QRectF& box, QPointF start, QPointF end, bool clockwise, ArcKind kind);

/// Both coordinates are numbers, and none so large that sums of them lose their meaning.
bool IsUsable(QPointF point);
bool IsUsable(const QTransform& transform);

/// Whether every edge is horizontal or vertical after the transform.
bool KeepsAxes(const QTransform& transform);

/// Rounds the edges to whole pixels; a rectangle never vanishes.
QRect SnapToPixels(const QRectF& box);

/// The part of an area that lies in `box`, give or take its edges there.
QPainterPath CutArea(const QPainterPath& path, const QRectF& box);
/// The parts of lines that lie in `box`.
QPainterPath CutLines(const QPainterPath& path, const QRectF& box);

/// The length of all segments as far as they lie in `box`, plus one for each.
double LengthWithin(const QPainterPath& path, const QRectF& box);

}  // namespace tessara::metafile
