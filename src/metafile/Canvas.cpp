#include "metafile/Canvas.h"

#include <QPainterPathStroker>
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "metafile/Geometry.h"

namespace tessara::metafile {
namespace {

// What drawing costs, in units of the work budget.
constexpr double kCall = 500;
constexpr double kPerLength = 10;
constexpr double kPerFilledPixel = 0.5;
constexpr double kPerTexturePixel = 3;
constexpr double kPerLayerPixel = 8;
constexpr double kPerSmoothPixel = 12;
constexpr double kPerRun = 50;
constexpr double kPerFloodedPixel = 20;

constexpr std::uint32_t kColorBits = 0xFFFFFF;
constexpr std::uint32_t kOpaqueBlack = 0xFF000000;
/// Beyond it a painter's own arithmetic is not to be trusted.
constexpr QRectF kPainterRange(-32000, -32000, 64000, 64000);
constexpr QPainter::RenderHints kSoftEdges = QPainter::Antialiasing;

double AreaOf(const QRect& box) {
    return static_cast<double>(box.width()) * box.height();
}

std::span<std::uint32_t> RowOf(QImage& image, int y) {
    return {reinterpret_cast<std::uint32_t*>(image.scanLine(y)), static_cast<std::size_t>(image.width())};
}
std::span<const std::uint32_t> RowOf(const QImage& image, int y) {
    return {reinterpret_cast<const std::uint32_t*>(image.constScanLine(y)),
            static_cast<std::size_t>(image.width())};
}

/// A view of a part of an image.
QImage Part(QImage& image, const QRect& pixels) {
    uchar* first = image.scanLine(pixels.y()) + qsizetype{4} * pixels.x();
    return {first, pixels.width(), pixels.height(), image.bytesPerLine(), image.format()};
}

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

/// Marks the pixels that `floods` accepts and that are reached from `start`, a run of a row at a time.
template <typename Floods>
void Flood(const QImage& image, QPoint start, QImage& flooded, WorkBudget& budget, const Floods& floods) {
    struct Row {
        std::span<const std::uint32_t> pixels;
        std::span<std::uint32_t> marks;
    };
    const auto rowAt = [&](int y) { return Row{RowOf(image, y), RowOf(flooded, y)}; };
    const auto open = [&](const Row& row, std::size_t x) {
        return row.marks[x] == 0 && floods(row.pixels[x]);
    };
    std::vector<QPoint> seeds{start};
    while (!seeds.empty()) {
        const QPoint seed = seeds.back();
        seeds.pop_back();
        const Row row = rowAt(seed.y());
        auto left = static_cast<std::size_t>(seed.x());
        if (!open(row, left)) continue;
        std::size_t right = left + 1;
        while (left > 0 && open(row, left - 1)) --left;
        while (right < row.pixels.size() && open(row, right)) ++right;
        std::ranges::fill(row.marks.subspan(left, right - left), kOpaqueBlack);
        if (!budget.Spend(kPerRun + kPerFloodedPixel * static_cast<double>(right - left))) return;
        for (const int y : {seed.y() - 1, seed.y() + 1}) {
            if (y < 0 || y >= image.height()) continue;
            const Row next = rowAt(y);
            bool before = false;
            for (std::size_t x = left; x < right; ++x) {
                const bool now = open(next, x);
                if (now && !before) seeds.emplace_back(static_cast<int>(x), y);
                before = now;
            }
        }
    }
}

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
    if (measuring_ || !budget_.Spend(clip.Cost())) return;
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
        work *= 1 + 20 * static_cast<double>(pen.dashPattern().size()) / std::max(0.1, period);
    }
    if (!budget_.Spend(work)) return;
    QPainterPathStroker stroker(pen);
    stroker.setCurveThreshold(0.1);
    const QPainterPath outline = stroker.createStroke(CutLines(path, near));
    Fill(outline, pen.brush(), operation);
}

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

void Canvas::FillTriangle(const std::array<QPointF, 3>& corners, const std::array<QColor, 3>& colors) {
    const QPolygonF polygon(QList<QPointF>(corners.begin(), corners.end()));
    const QRect pixels = Touch(polygon.boundingRect());
    if (pixels.isEmpty() || !budget_.Spend(kCall + 4 * kPerLayerPixel * AreaOf(pixels))) return;
    const QPointF a = corners[1] - corners[0];
    const QPointF b = corners[2] - corners[0];
    const double area = a.x() * b.y() - a.y() * b.x();
    if (area == 0) return;
    QImage layer(pixels.size(), QImage::Format_ARGB32);
    if (layer.isNull()) return;
    layer.fill(Qt::transparent);
    for (int y = 0; y < pixels.height(); ++y) {
        const auto row = RowOf(layer, y);
        for (int x = 0; x < pixels.width(); ++x) {
            const QPointF p = QPointF(pixels.x() + x + 0.5, pixels.y() + y + 0.5) - corners[0];
            const double u = (p.x() * b.y() - p.y() * b.x()) / area;
            const double v = (a.x() * p.y() - a.y() * p.x()) / area;
            if (u < 0 || v < 0 || u + v > 1) continue;
            const auto mix = [&](int (QColor::*channel)() const) {
                return static_cast<int>(std::lround((colors[0].*channel)() * (1 - u - v) +
                                                    (colors[1].*channel)() * u + (colors[2].*channel)() * v));
            };
            row[static_cast<std::size_t>(x)] =
                qRgb(mix(&QColor::red), mix(&QColor::green), mix(&QColor::blue));
        }
    }
    painter_->drawImage(pixels.topLeft(), layer);
}

void Canvas::FloodFill(QPoint start, const QBrush& brush, std::optional<QRgb> border) {
    const QRect pixels = Touch(QRectF(start, QSizeF(1, 1)));
    if (pixels.isEmpty() || !clipBounds_.contains(start)) return;
    if (!budget_.Spend(kPerLayerPixel * AreaOf(clipBounds_))) return;
    QImage flooded(clipBounds_.size(), QImage::Format_ARGB32_Premultiplied);
    if (flooded.isNull()) return;
    flooded.fill(Qt::transparent);
    const std::uint32_t wanted = (border ? *border : image_.pixel(start)) & kColorBits;
    Flood(Part(image_, clipBounds_), start - clipBounds_.topLeft(), flooded, budget_,
          [&](std::uint32_t pixel) { return ((pixel & kColorBits) == wanted) != border.has_value(); });
    QPainter painter(&flooded);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.translate(-clipBounds_.topLeft());
    painter.fillRect(clipBounds_, brush);
    painter.end();
    painter_->drawImage(clipBounds_.topLeft(), flooded);
}

}  // namespace tessara::metafile
