// Pixels, gradients and regions.

#include <QLinearGradient>
#include <algorithm>
#include <array>
#include <cmath>

#include "metafile/DeviceContext.h"

namespace tessara::metafile {
namespace {

/// In units of the work budget: to unite the boxes of a region and to draw them.
constexpr double kPerRegionBox = 1000;

}  // namespace

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

QRegion DeviceContext::RegionInPicture(const Region& region, const QTransform& toPicture) const {
    std::vector<QRect> boxes;
    boxes.reserve(region.boxes.size());
    for (const QRect& box : region.boxes) boxes.push_back(SnapToPixels(toPicture.mapRect(QRectF(box))));
    if (!canvas_.Budget().Spend(200.0 * static_cast<double>(boxes.size()))) return {};
    QRegion pixels = RegionOf(boxes, canvas_.Area());
    // Boxes that cross fall into far more than they are.
    if (!canvas_.Budget().Spend(kPerRegionBox * pixels.rectCount())) return {};
    return pixels;
}

void DeviceContext::FillPixels(const QRegion& region, const Brush& brush, RasterOperation operation) {
    // As a clip: a path of as many boxes takes a rasteriser hundreds of times as long.
    Clip within = state_.clip;
    within.Combine(region, ClipMode::And);
    canvas_.SetClip(within);
    QPainterPath path;
    path.addRect(region.boundingRect());
    canvas_.Fill(path, BrushFor(brush), operation);
    canvas_.SetClip(state_.clip);
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
    if (!canvas_.Budget().Spend(4 * kPerRegionBox * whole.rectCount())) return;
    const QRegion inner = whole & whole.translated(x, 0) & whole.translated(-x, 0) & whole.translated(0, y) &
                          whole.translated(0, -y);
    FillPixels(whole - inner, brush, DrawingOperation());
}

}  // namespace tessara::metafile
