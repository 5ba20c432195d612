#include "core/rastx/effects/Mosaic.h"

#include <vector>

namespace tessara::effects {
namespace {

TESSARA_MULTIVERSION void AddRow(const std::uint8_t* row, std::size_t length,
                                 std::uint32_t* __restrict sums) {
    for (std::size_t i = 0; i < length; ++i) sums[i] += row[i];
}

/// The same where colours count by their alpha.
void AddWeightedRow(const std::uint8_t* row, std::size_t length, std::uint32_t* sums) {
    for (std::size_t i = 0; i < length; i += 4) {
        for (std::size_t c = 0; c < 3; ++c) sums[i + c] += std::uint32_t{row[i + c]} * row[i + 3];
        sums[i + 3] += row[i + 3];
    }
}

/// The mean colour of `width` columns whose sums are given; `opaque` is the weight of an opaque column, 0
/// where the sums of alpha are the weights.
Pixel MeanOf(const std::uint32_t* sums, int width, std::uint64_t opaque) {
    std::uint64_t total[4] = {};
    for (int x = 0; x < width; ++x)
        for (int c = 0; c < 4; ++c) total[c] += sums[4 * x + c];
    const std::uint64_t weight = opaque != 0 ? opaque * static_cast<std::uint64_t>(width) : total[3];
    const auto mean = [weight](std::uint64_t sum) {
        return static_cast<std::uint8_t>(weight == 0 ? 0 : (sum + weight / 2) / weight);
    };
    return {mean(total[0]), mean(total[1]), mean(total[2]), 255};
}

TESSARA_MULTIVERSION void PaintRow(const std::uint8_t* __restrict colors, std::size_t length,
                                   std::uint8_t* __restrict row) {
    for (std::size_t i = 0; i < length; i += 4)
        StorePixel(row + i, (LoadPixel(colors + i) & kColorBits) | (LoadPixel(row + i) & kAlphaBits));
}

/// Paints cells side by side, few enough for their sums to stay in the nearest cache.
class CellPainter {
  public:
    CellPainter(const Canvas& canvas, int cellWidth, bool alpha)
        : canvas_(canvas), cellWidth_(cellWidth), alpha_(alpha) {}

    void Paint(int left, int right, int top, int bottom) {
        const auto first = static_cast<std::size_t>(left);
        const auto count = static_cast<std::size_t>(right - left);
        sums_.assign(4 * count, 0);
        means_.resize(count);
        for (int y = top; y < bottom; ++y)
            (alpha_ ? AddWeightedRow : AddRow)(BytesOf(canvas_.Source(y).subspan(first, count)), 4 * count,
                                               sums_.data());
        const auto opaque = static_cast<std::uint64_t>(alpha_ ? 0 : bottom - top);
        for (int x = 0; x < right - left; x += cellWidth_) {
            const int width = std::min(cellWidth_, right - left - x);
            std::fill_n(means_.begin() + x, width,
                        MeanOf(&sums_[4 * static_cast<std::size_t>(x)], width, opaque));
        }
        for (int y = top; y < bottom; ++y) {
            const std::span<Pixel> row = canvas_.Target(y).subspan(first, count);
            if (!canvas_.InPlace()) CopyPixels(canvas_.Source(y).subspan(first, count), row.data());
            PaintRow(BytesOf(std::span<const Pixel>(means_)), 4 * count, BytesOf(row));
        }
    }

  private:
    const Canvas& canvas_;
    int cellWidth_;
    bool alpha_;
    std::vector<std::uint32_t> sums_;
    std::vector<Pixel> means_;
};

}  // namespace

Picture Mosaic(Picture picture, int cellWidth, int cellHeight, const EffectRun& run) {
    const int width = picture.Width();
    const int height = picture.Height();
    cellWidth = std::clamp(cellWidth, 1, width);
    cellHeight = std::clamp(cellHeight, 1, std::min(height, 1 << 15));
    constexpr int kAtOnce = 512;
    const int atOnce = std::max(1, kAtOnce / cellWidth) * cellWidth;
    const bool alpha = picture.HasAlpha();
    Canvas canvas(std::move(picture));
    const int cellRows = (height + cellHeight - 1) / cellHeight;
    ParallelRows(cellRows, run.threads, RowsPerThread(width) / cellHeight + 1, [&](int begin, int end) {
        CellPainter painter(canvas, cellWidth, alpha);
        for (int top = begin * cellHeight; top < std::min(end * cellHeight, height); top += cellHeight)
            for (int left = 0; left < width; left += atOnce)
                painter.Paint(left, std::min(left + atOnce, width), top, std::min(top + cellHeight, height));
    });
    return std::move(canvas).Take();
}

}  // namespace tessara::effects
