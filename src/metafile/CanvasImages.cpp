// Images on the canvas.

#include <algorithm>
#include <cmath>

#include "metafile/Canvas.h"
#include "metafile/CanvasParts.h"
#include "metafile/Geometry.h"

namespace tessara::metafile {
namespace {

// In units of the work budget.
constexpr double kPerSmoothPixel = 12;

/// Beyond it a painter's own arithmetic is not to be trusted.
constexpr QRectF kPainterRange(-32000, -32000, 64000, 64000);

/// An image turned and mirrored so that it only has to be scaled to reach its place. Edges lie between
/// pixels, so that neighbours meet without a seam.
struct UprightImage {
    QImage image;
    QRect target;

    /// From the pixels of the image to those of the picture.
    QTransform ToDevice() const {
        return {static_cast<double>(target.width()) / image.width(),
                0,
                0,
                static_cast<double>(target.height()) / image.height(),
                static_cast<double>(target.x()),
                static_cast<double>(target.y())};
    }
};

UprightImage Upright(const QImage& image, const QTransform& toDevice) {
    const QRect target = SnapToPixels(toDevice.mapRect(QRectF(image.rect())));
    const bool turned = std::abs(toDevice.m11()) < std::abs(toDevice.m12());
    const QImage straight = turned ? image.transformed(QTransform(0, 1, 1, 0, 0, 0)) : image;
    const bool mirroredX = (turned ? toDevice.m21() : toDevice.m11()) < 0;
    const bool mirroredY = (turned ? toDevice.m12() : toDevice.m22()) < 0;
    return {mirroredX || mirroredY ? straight.mirrored(mirroredX, mirroredY) : straight, target};
}

/// Shrinks an image to the size that it is drawn at, by averaging: interpolation alone would leave out rows.
QImage Shrunk(const QImage& image, QTransform& toDevice) {
    const double acrossX = std::hypot(toDevice.m11(), toDevice.m12());
    const double acrossY = std::hypot(toDevice.m21(), toDevice.m22());
    const auto side = [](int length, double scale) {
        return std::max(1, static_cast<int>(std::lround(length * std::min(1.0, scale))));
    };
    const QSize size(side(image.width(), acrossX), side(image.height(), acrossY));
    if (size == image.size()) return image;
    toDevice = QTransform::fromScale(static_cast<double>(image.width()) / size.width(),
                                     static_cast<double>(image.height()) / size.height()) *
               toDevice;
    return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

/// The pixels under those that `pixels` covers, each taken from the image's nearest; transparent outside of
/// it.
QImage Sampled(const QImage& image, const QTransform& toDevice, const QRect& pixels) {
    QImage sampled(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    if (sampled.isNull()) return sampled;
    const QTransform toImage = toDevice.inverted();
    const bool premultiply = image.hasAlphaChannel();
    for (int y = 0; y < pixels.height(); ++y) {
        const auto row = RowOf(sampled, y);
        const QPointF start = toImage.map(QPointF(pixels.x() + 0.5, pixels.y() + y + 0.5));
        for (std::size_t x = 0; x < row.size(); ++x) {
            const double u = std::floor(start.x() + toImage.m11() * static_cast<double>(x));
            const double v = std::floor(start.y() + toImage.m12() * static_cast<double>(x));
            const bool inside = u >= 0 && v >= 0 && u < image.width() && v < image.height();
            row[x] = inside ? RowOf(image, static_cast<int>(v))[static_cast<std::size_t>(u)] : 0;
            if (premultiply) row[x] = qPremultiply(row[x]);
        }
    }
    return sampled;
}

}  // namespace

void Canvas::DrawImage(const QImage& image, const QTransform& toDevice, double opacity) {
    const bool upright = KeepsAxes(toDevice);
    const QRectF target = toDevice.mapRect(QRectF(image.rect()));
    const QRect pixels = Touch(upright ? QRectF(SnapToPixels(target)) : target);
    if (pixels.isEmpty() || !budget_.Spend(kCall + kPerSmoothPixel * AreaOf(pixels) + AreaOf(image.rect())))
        return;
    painter_->save();
    painter_->setOpacity(opacity);
    if (!kPainterRange.contains(target)) {
        painter_->drawImage(pixels.topLeft(), Sampled(image, toDevice, pixels));
    } else if (upright) {
        DrawUpright(image, toDevice, pixels);
    } else {
        QTransform transform = toDevice;
        const QImage shrunk = Shrunk(image, transform);
        painter_->setTransform(transform);
        painter_->setRenderHint(QPainter::SmoothPixmapTransform);
        painter_->drawImage(0, 0, shrunk);
    }
    painter_->restore();
}

void Canvas::DrawUpright(const QImage& image, const QTransform& toDevice, const QRect& pixels) {
    constexpr double kMostlyHidden = 16;  // then the hidden pixels are not worth their scaling
    const UprightImage upright = Upright(image, toDevice);
    if (AreaOf(upright.target) > kMostlyHidden * AreaOf(pixels) + AreaOf(image.rect())) {
        painter_->drawImage(pixels.topLeft(), Sampled(upright.image, upright.ToDevice(), pixels));
        return;
    }
    const bool same = upright.target.size() == upright.image.size();
    painter_->drawImage(
        upright.target.topLeft(),
        same ? upright.image
             : upright.image.scaled(upright.target.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

void Canvas::CombineImage(const QImage& image, const QTransform& toDevice, const QBrush& pattern,
                          RasterOperation operation) {
    if (operation.Nothing()) return;
    const bool snaps = KeepsAxes(toDevice);
    const UprightImage upright = snaps ? Upright(image, toDevice) : UprightImage{image, {}};
    const QTransform transform = snaps ? upright.ToDevice() : toDevice;
    const QRect pixels = Touch(transform.mapRect(QRectF(upright.image.rect())));
    if (pixels.isEmpty() || !budget_.Spend(kCall + 2 * kPerLayerPixel * AreaOf(pixels))) return;
    const QImage sampled = Sampled(upright.image, transform, pixels);
    const QImage source = Layer(pixels, [&](QPainter& painter) {
        clip_.ApplyTo(painter);
        painter.drawImage(pixels.topLeft(), sampled);
    });
    const QImage brush = operation.NeedsPattern()
                             ? Layer(pixels, [&](QPainter& painter) { painter.fillRect(pixels, pattern); })
                             : source;
    if (!source.isNull() && !brush.isNull()) Combine(pixels, brush, source, source, operation);
}

}  // namespace tessara::metafile
