#include "core/rastx/effects/Mosaic.h"

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

}  // namespace

Picture Mosaic(Picture picture, int cellWidth, int cellHeight, const EffectRun& run) {
    const int width = picture.Width();
    const int height = picture.Height();
    cellWidth = std::clamp(cellWidth, 1, width);
    cellHeight = std::clamp(cellHeight, 1, std::min(height, 1 << 15));
    const bool alpha = picture.HasAlpha();
    Canvas canvas(std::move(picture));
    const int cellRows = (height + cellHeight - 1) / cellHeight;
    ParallelRows(cellRows, run.threads, RowsPerThread(width) / cellHeight + 1, [&](int begin, int end) {
        std::vector<std::uint32_t> sums(4 * static_cast<std::size_t>(width));
        std::vector<Pixel> means(static_cast<std::size_t>(width));
        for (int cellRow = begin; cellRow < end; ++cellRow) {
            const int top = cellRow * cellHeight;
            const int bottom = std::min(top + cellHeight, height);
            std::ranges::fill(sums, 0u);
            for (int y = top; y < bottom; ++y)
                (alpha ? AddWeightedRow : AddRow)(
                    reinterpret_cast<const std::uint8_t*>(canvas.Source(y).data()), sums.size(), sums.data());
            for (int left = 0; left < width; left += cellWidth) {
                const int count = std::min(cellWidth, width - left);
                const auto rows = static_cast<std::uint64_t>(bottom - top);
                std::fill_n(means.begin() + left, count,
                            MeanOf(&sums[4 * static_cast<std::size_t>(left)], count, alpha ? 0 : rows));
            }
            for (int y = top; y < bottom; ++y) {
                std::ranges::transform(means, canvas.Source(y), canvas.Target(y).begin(),
                                       [](Pixel mean, Pixel pixel) {
                                           mean.a = pixel.a;
                                           return mean;
                                       });
            }
        }
    });
    return std::move(canvas).Take();
}

}  // namespace tessara::effects
