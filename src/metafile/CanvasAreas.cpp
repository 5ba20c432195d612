// Areas whose pixels are found one by one: triangles of mixed colours and floods.

#include <algorithm>
#include <cmath>
#include <vector>

#include "metafile/Canvas.h"
#include "metafile/CanvasParts.h"

namespace tessara::metafile {
namespace {

// In units of the work budget.
constexpr double kPerRun = 50;
constexpr double kPerFloodedPixel = 20;

constexpr std::uint32_t kColorBits = 0xFFFFFF;
constexpr std::uint32_t kOpaqueBlack = 0xFF000000;

/// A view of a part of an image.
QImage Part(QImage& image, const QRect& pixels) {
    uchar* first = image.scanLine(pixels.y()) + qsizetype{4} * pixels.x();
    return {first, pixels.width(), pixels.height(), image.bytesPerLine(), image.format()};
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
    if (brush.style() == Qt::NoBrush) return;
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
