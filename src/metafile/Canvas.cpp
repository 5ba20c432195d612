#include "metafile/Canvas.h"

#include <QPainterPathStroker>
#include <algorithm>

#include "metafile/CanvasParts.h"
#include "metafile/Geometry.h"

namespace tessara::metafile {
namespace {

// In units of the work budget.
constexpr double kPerLength = 10;
constexpr double kPerFilledPixel = 0.5;
constexpr double kPerTexturePixel = 3;

constexpr QPainter::RenderHints kSoftEdges = QPainter::Antialiasing;

}  // namespace

Canvas::Canvas(Picture& picture)
    : image_(reinterpret_cast<uchar*>(picture.MutablePixels().data()), picture.Width(), picture.Height(),
             qsizetype{4} * picture.Width(), QImage::Format_RGB32),
      painter_(std::make_unique<QPainter>(&image_)),
      area_(image_.rect()),
      clip_(area_),
      clipBounds_(area_) {
    painter_->setRenderHints(kSoftEdges);
}

Canvas::Canvas()
    : area_(-(1 << 26), -(1 << 26), 1 << 27, 1 << 27), clip_(area_), clipBounds_(area_), measuring_(true) {}

void Canvas::SetClip(const Clip& clip) {
    clip_ = clip;
    clipBounds_ = clip.Bounds();
    if (!budget_.Spend(clip.Cost()) || measuring_) return;
    clip_.ApplyTo(*painter_);
}

QRectF Canvas::Surroundings(double margin) const {
    return QRectF(area_).adjusted(-margin, -margin, margin, margin);
}

QRect Canvas::Touch(const QRectF& bounds) {
    const QRectF limited = bounds & Surroundings(0);
    const QRect pixels = limited.toAlignedRect() & clipBounds_;
    if (pixels.isEmpty()) return {};
    touched_ |= limited & QRectF(clipBounds_);
    return measuring_ ? QRect() : pixels;
}

QImage Canvas::Layer(const QRect& pixels, const Draw& draw) const {
    QImage layer(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    if (layer.isNull()) return layer;
    layer.fill(Qt::transparent);
    QPainter painter(&layer);
    painter.translate(-pixels.topLeft());
    draw(painter);
    return layer;
}

void Canvas::Combine(const QRect& pixels, const QImage& pattern, const QImage& source, const QImage& coverage,
                     RasterOperation operation) {
    for (int y = 0; y < pixels.height(); ++y) {
        const auto row =
            RowOf(image_, pixels.y() + y)
                .subspan(static_cast<std::size_t>(pixels.x()), static_cast<std::size_t>(pixels.width()));
        operation.CombineRow(RowOf(pattern, y), RowOf(source, y), RowOf(coverage, y), row);
    }
}

void Canvas::Fill(const QPainterPath& path, const QBrush& brush, RasterOperation operation) {
    if (path.isEmpty() || brush.style() == Qt::NoBrush || operation.Nothing()) return;
    const QRect pixels = Touch(path.controlPointRect().adjusted(0, 0, 1e-6, 1e-6));
    if (pixels.isEmpty()) return;
    const double perPixel = brush.style() == Qt::SolidPattern ? kPerFilledPixel : kPerTexturePixel;
    const double length = LengthWithin(path, QRectF(area_));
    if (!budget_.Spend(kCall + kPerLength * length + perPixel * AreaOf(pixels))) return;
    FillWithin(pixels, CutArea(path, Surroundings(64)), brush, operation);
}

void Canvas::FillWithin(const QRect& pixels, const QPainterPath& path, const QBrush& brush,
                        RasterOperation operation) {
    if (operation == RasterOperation::CopyPattern()) {
        painter_->fillPath(path, brush);
        return;
    }
    if (!budget_.Spend(kPerLayerPixel * AreaOf(pixels))) return;
    const QImage layer = Layer(pixels, [&](QPainter& painter) {
        clip_.ApplyTo(painter);
        painter.fillPath(path, brush);
    });
    if (!layer.isNull()) Combine(pixels, layer, layer, layer, operation);
}

void Canvas::Stroke(const QPainterPath& path, const QPen& pen, RasterOperation operation) {
    if (path.isEmpty() || pen.style() == Qt::NoPen || operation.Nothing()) return;
    const double margin = pen.widthF() * std::max(1.0, pen.miterLimit()) + 2;
    const QRectF bounds =
        path.controlPointRect().adjusted(-pen.widthF(), -pen.widthF(), pen.widthF(), pen.widthF());
    if (Touch(bounds).isEmpty()) return;
    const QRectF near = Surroundings(std::min(margin, 2.0 * std::max(area_.width(), area_.height()) + 2));
    double work = kCall + 2 * kPerLength * LengthWithin(path, near);
    if (pen.style() == Qt::CustomDashLine) {
        double period = 0;
        for (const double dash : pen.dashPattern()) period += dash * pen.widthF();
        work *= 1 + 50 * static_cast<double>(pen.dashPattern().size()) / std::max(0.1, period);
    }
    if (!budget_.Spend(work)) return;
    QPainterPathStroker stroker(pen);
    stroker.setCurveThreshold(0.1);
    const QPainterPath outline = stroker.createStroke(CutLines(path, near));
    Fill(outline, pen.brush(), operation);
}

}  // namespace tessara::metafile
