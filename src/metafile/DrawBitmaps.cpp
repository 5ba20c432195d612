// Bitmaps and pattern fills.

#include <cmath>

#include "metafile/DeviceContext.h"

namespace tessara::metafile {
namespace {

/// Takes the pixels of an image to a rectangle; a negative size mirrors.
QTransform ToTarget(const QImage& image, const QRectF& target) {
    return {target.width() / image.width(), 0, 0, target.height() / image.height(), target.x(), target.y()};
}

}  // namespace

BitmapCall PartOf(const QImage& image, QRectF source, const QRectF& target, RasterOperation operation) {
    BitmapCall call;
    call.target = target;
    call.operation = operation;
    if (source.width() < 0) {
        source = QRectF(source.x() + source.width(), source.y(), -source.width(), source.height());
        call.target =
            QRectF(target.x() + target.width(), call.target.y(), -target.width(), call.target.height());
    }
    if (source.height() < 0) {
        source = QRectF(source.x(), source.y() + source.height(), source.width(), -source.height());
        call.target =
            QRectF(call.target.x(), target.y() + target.height(), call.target.width(), -target.height());
    }
    const QRectF whole(std::round(source.x()), std::round(source.y()), std::round(source.width()),
                       std::round(source.height()));
    const QRect held = (whole & QRectF(image.rect())).toRect();
    if (held.isEmpty()) return call;
    call.image = held == image.rect() ? image : image.copy(held);
    const double x = call.target.width() / whole.width();
    const double y = call.target.height() / whole.height();
    call.target = QRectF(call.target.x() + (held.x() - whole.x()) * x,
                         call.target.y() + (held.y() - whole.y()) * y, held.width() * x, held.height() * y);
    return call;
}

void DeviceContext::FillPattern(const QRectF& box, RasterOperation operation) {
    constexpr RasterOperation kBlack(0x00), kWhite(0xFF);
    QBrush brush(Qt::black);
    if (operation.NeedsPattern()) brush = BrushFor(state_.brush);
    if (operation == kWhite) brush = QBrush(Qt::white);
    if (operation == kBlack || operation == kWhite) operation = RasterOperation::CopyPattern();
    canvas_.Fill(BoxInPicture(box), brush, operation);
}

void DeviceContext::DrawBitmap(const BitmapCall& call) {
    if (call.image.isNull() || call.target.width() == 0 || call.target.height() == 0) return;
    const QTransform toPicture =
        ToTarget(call.image, call.target) * (call.targetInPixels ? toPicture_ : ToPicture());
    if (!IsUsable(toPicture) || !toPicture.isInvertible()) return;
    if (call.operation == RasterOperation::CopySource()) {
        canvas_.DrawImage(call.image, toPicture);
    } else {
        const QBrush pattern = call.operation.NeedsPattern() ? BrushFor(state_.brush) : QBrush();
        canvas_.CombineImage(call.image, toPicture, pattern, call.operation);
    }
}

void DeviceContext::DrawTransparent(const QImage& image, const QRectF& target, double opacity) {
    if (image.isNull() || target.width() == 0 || target.height() == 0) return;
    const QTransform toPicture = ToTarget(image, target) * ToPicture();
    if (IsUsable(toPicture) && toPicture.isInvertible()) canvas_.DrawImage(image, toPicture, opacity);
}

void DeviceContext::DrawParallelogram(const QImage& image, const std::array<QPointF, 3>& corners) {
    if (image.isNull()) return;
    const QPointF across = (corners[1] - corners[0]) / image.width();
    const QPointF down = (corners[2] - corners[0]) / image.height();
    const QTransform toPicture =
        QTransform(across.x(), across.y(), down.x(), down.y(), corners[0].x(), corners[0].y()) * ToPicture();
    if (IsUsable(toPicture) && toPicture.isInvertible()) canvas_.DrawImage(image, toPicture);
}

}  // namespace tessara::metafile
