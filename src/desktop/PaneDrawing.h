#pragma once

#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QPen>

namespace tessara {

/// A part of an image with alpha on a quiet board of two tones, which tells what is transparent. The board
/// begins at the point `corner` of the image; `cell` is the side of its squares in pixels.
QImage OnBoard(const QImage& image, const QRect& part, const QPoint& corner, int cell,
               const QPalette& palette);

/// A line along the inner side of a rectangle's edges.
void DrawFrame(QPainter& painter, const QRect& rectangle, QPen pen);
/// The rubber band: a dashed line of black and white, so that it shows on every picture.
void DrawBand(QPainter& painter, const QRect& rectangle, int lineWidth);
/// A cross around a point, likewise.
void DrawMark(QPainter& painter, const QPoint& point, int lineWidth);

}  // namespace tessara
