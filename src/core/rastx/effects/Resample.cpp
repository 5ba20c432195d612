#include "core/rastx/effects/Resample.h"

#include <algorithm>
#include <vector>

#include "core/Multiversion.h"
#include "core/Parallel.h"
#include "core/WithinMemory.h"
#include "core/rastx/effects/ResampleAxis.h"

// Both axes are filtered one after the other: for each row of the result the source rows are summed up into
// one line of floats, then that line is filtered along the row. All memory is one such line per thread.

namespace tessara {
namespace {

using namespace resample;

// A Lanczos kernel overshoots beside an edge, which shows as a ghost of the edge in the flat area. So its
// sums are brought back into the range of the four samples around the position.
constexpr int kBoundFirst = 1;
constexpr int kBoundCount = 4;

template <typename Value>
TESSARA_ALWAYS_INLINE Value Smaller(Value a, Value b) {
    return a < b ? a : b;
}
template <typename Value>
TESSARA_ALWAYS_INLINE Value Larger(Value a, Value b) {
    return a > b ? a : b;
}

/// Adds `taps` rows to the sums, each byte times its row's weight. The number of rows is fixed so that the
/// inner loop unrolls and the outer one vectorises.
template <int taps>
TESSARA_ALWAYS_INLINE void AddRows(const Pixel* const* rows, const float* weights, std::size_t length,
                                   float* __restrict sums) {
    const std::uint8_t* row[taps];
    float weight[taps];
    for (int k = 0; k < taps; ++k) row[k] = reinterpret_cast<const std::uint8_t*>(rows[k]);
    std::copy_n(weights, taps, weight);
    for (std::size_t i = 0; i < length; ++i) {
        float sum = sums[i];
        for (int k = 0; k < taps; ++k) sum += weight[k] * static_cast<float>(row[k][i]);
        sums[i] = sum;
    }
}

TESSARA_ALWAYS_INLINE void BoundByRows(const Pixel* const* rows, std::size_t length, float* __restrict sums) {
    const std::uint8_t* row[kBoundCount];
    for (int k = 0; k < kBoundCount; ++k)
        row[k] = reinterpret_cast<const std::uint8_t*>(rows[kBoundFirst + k]);
    for (std::size_t i = 0; i < length; ++i) {
        std::uint8_t low = row[0][i];
        std::uint8_t high = low;
        for (int k = 1; k < kBoundCount; ++k) {
            low = Smaller(low, row[k][i]);
            high = Larger(high, row[k][i]);
        }
        sums[i] = Smaller(Larger(sums[i], static_cast<float>(low)), static_cast<float>(high));
    }
}

/// line[i] = the weighted sum of byte i of the rows.
TESSARA_MULTIVERSION void FilterColumns(const Pixel* const* rows, const float* weights, int count,
                                        bool lanczos, std::size_t length, float* line) {
    std::fill_n(line, length, 0.0f);
    int k = 0;
    for (; k + 4 <= count; k += 4) AddRows<4>(rows + k, weights + k, length, line);
    for (; k + 2 <= count; k += 2) AddRows<2>(rows + k, weights + k, length, line);
    if (k < count) AddRows<1>(rows + k, weights + k, length, line);
    if (lanczos) BoundByRows(rows, length, line);
}

/// The four channels of a pixel in one register.
typedef float Channels __attribute__((vector_size(16)));

/// A pixel's colours times its alpha, in the range 0 to 255, and the alpha.
TESSARA_ALWAYS_INLINE Channels Premultiplied(Pixel pixel) {
    const float share = static_cast<float>(pixel.a) * (1.0f / 255);
    const Channels channels = {static_cast<float>(pixel.b), static_cast<float>(pixel.g),
                               static_cast<float>(pixel.r), 255.0f};
    return channels * share;
}

TESSARA_ALWAYS_INLINE Channels WeightedSum(const Channels* samples, const float* weights, int count) {
    Channels sum = {};
    for (int k = 0; k < count; ++k) sum += samples[k] * weights[k];
    return sum;
}

TESSARA_ALWAYS_INLINE Channels BoundBySamples(Channels sum, const Channels* samples) {
    Channels low = samples[kBoundFirst];
    Channels high = low;
    for (int k = kBoundFirst + 1; k < kBoundFirst + kBoundCount; ++k) {
        low = Smaller(low, samples[k]);
        high = Larger(high, samples[k]);
    }
    return Smaller(Larger(sum, low), high);
}

/// The same as FilterColumns with straight alpha: colours count by their alpha.
TESSARA_MULTIVERSION void FilterPremultipliedColumns(const Pixel* const* rows, const float* weights,
                                                     int count, bool lanczos, std::size_t width,
                                                     Channels* line) {
    if (lanczos) {
        for (std::size_t x = 0; x < width; ++x) {
            Channels samples[6];
            for (int k = 0; k < 6; ++k) samples[k] = Premultiplied(rows[k][x]);
            line[x] = BoundBySamples(WeightedSum(samples, weights, 6), samples);
        }
    } else {
        for (std::size_t x = 0; x < width; ++x) {
            Channels sum = {};
            for (int k = 0; k < count; ++k) sum += Premultiplied(rows[k][x]) * weights[k];
            line[x] = sum;
        }
    }
}

/// out[x] = the weighted sum of the pixels of the line in window x.
TESSARA_MULTIVERSION void FilterLine(const Channels* line, const Window* windows, const float* weights,
                                     int stride, bool lanczos, std::size_t length, Channels* out) {
    if (lanczos) {
        for (std::size_t x = 0; x < length; ++x, weights += 6) {
            const Channels* samples = line + windows[x].first;
            out[x] = BoundBySamples(WeightedSum(samples, weights, 6), samples);
        }
    } else {
        for (std::size_t x = 0; x < length; ++x, weights += stride)
            out[x] = WeightedSum(line + windows[x].first, weights, windows[x].count);
    }
}

TESSARA_MULTIVERSION void RoundLine(const float* line, std::size_t length, std::uint8_t* out) {
    for (std::size_t i = 0; i < length; ++i)
        out[i] = static_cast<std::uint8_t>(static_cast<int>(line[i] + 0.5f));
}

TESSARA_MULTIVERSION void RoundPremultipliedLine(const float* line, std::size_t length, std::uint8_t* out) {
    for (std::size_t i = 0; i < length; i += 4) {
        const int alpha = static_cast<int>(line[i + 3] + 0.5f);
        const float scale = alpha > 0 ? 255 / line[i + 3] : 0.0f;
        for (std::size_t c = 0; c < 3; ++c)
            out[i + c] =
                static_cast<std::uint8_t>(static_cast<int>(std::min(line[i + c] * scale + 0.5f, 255.0f)));
        out[i + 3] = static_cast<std::uint8_t>(alpha);
    }
}

/// Makes the rows of the result, one after the other, in memory of its own.
class RowMaker {
  public:
    RowMaker(const Picture& source, const Axis& columns, const Axis& rows)
        : source_(source),
          columns_(columns),
          rows_(rows),
          sourceRows_(static_cast<std::size_t>(rows.stride)),
          line_(static_cast<std::size_t>(columns.sourceCount + 2 * kMargin)),
          filtered_(columns.windows.size()) {}

    void Make(int y, std::span<Pixel> out) {
        FilterColumnsOf(y);
        FilterLine(line_.data() + kMargin, columns_.windows.data(), columns_.weights.data(), columns_.stride,
                   columns_.lanczos, filtered_.size(), filtered_.data());
        auto* bytes = reinterpret_cast<std::uint8_t*>(out.data());
        const auto* sums = reinterpret_cast<const float*>(filtered_.data());
        if (source_.HasAlpha())
            RoundPremultipliedLine(sums, 4 * out.size(), bytes);
        else
            RoundLine(sums, 4 * out.size(), bytes);
    }

  private:
    void FilterColumnsOf(int y) {
        const Window& window = rows_.windows[static_cast<std::size_t>(y)];
        for (int k = 0; k < window.count; ++k) {
            const int row = std::clamp(window.first + k, 0, rows_.sourceCount - 1);
            sourceRows_[static_cast<std::size_t>(k)] =
                source_.Row(rows_.sourceFirst + row).data() + columns_.sourceFirst;
        }
        const auto width = static_cast<std::size_t>(columns_.sourceCount);
        Channels* line = line_.data() + kMargin;
        if (source_.HasAlpha())
            FilterPremultipliedColumns(sourceRows_.data(), rows_.WeightsOf(y), window.count, rows_.lanczos,
                                       width, line);
        else
            FilterColumns(sourceRows_.data(), rows_.WeightsOf(y), window.count, rows_.lanczos, 4 * width,
                          reinterpret_cast<float*>(line));
        std::fill_n(line_.begin(), kMargin, line_[kMargin]);
        std::fill_n(line_.end() - kMargin, kMargin, line_[width + kMargin - 1]);
    }

    const Picture& source_;
    const Axis& columns_;
    const Axis& rows_;
    std::vector<const Pixel*> sourceRows_;
    std::vector<Channels> line_;
    std::vector<Channels> filtered_;
};

/// Fills the target, whose rows and columns the axes are.
void MakeRows(const Picture& source, const Axis& columns, const Axis& rows, int threads, Picture& target) {
    const std::span<Pixel> pixels = target.MutablePixels();
    const auto side = static_cast<std::size_t>(target.Width());
    constexpr std::size_t kPixelsPerThread = std::size_t{1} << 17;
    const std::size_t sourcePixels =
        static_cast<std::size_t>(columns.sourceCount) * static_cast<std::size_t>(rows.sourceCount);
    const std::size_t pixelsPerRow =
        std::max(sourcePixels, target.PixelCount()) / static_cast<std::size_t>(target.Height()) + 1;
    const int rowsPerThread = static_cast<int>(kPixelsPerThread / pixelsPerRow);
    ParallelRows(target.Height(), threads, rowsPerThread, [&](int begin, int end) {
        RowMaker maker(source, columns, rows);
        for (int y = begin; y < end; ++y)
            maker.Make(y, pixels.subspan(static_cast<std::size_t>(y) * side, side));
    });
}

}  // namespace

Result<Picture> Resample(const Picture& picture, int width, int height, ResampleQuality quality, int threads,
                         const Limits& limits) {
    if (picture.Empty()) return BadArgument("there is no picture to resample");
    width = std::max(1, width);
    height = std::max(1, height);
    if (width == picture.Width() && height == picture.Height()) return picture;
    TRY(limits.Check(width, height));
    return ResamplePart(picture, width, height, {0, 0, width, height}, quality, threads);
}

Result<Picture> ResamplePart(const Picture& picture, int width, int height, const PicturePart& part,
                             ResampleQuality quality, int threads) {
    if (part.x < 0 || part.y < 0 || part.width > width - part.x || part.height > height - part.y)
        return BadArgument("the part lies outside of the picture");
    TRY_ASSIGN(Picture target,
               Picture::Create(part.width, part.height, picture.HasAlpha() ? Alpha::Straight : Alpha::None));
    target.SetMeta(picture.Meta());
    return WithinMemory([&]() -> Result<Picture> {
        Axis columns = ChooseAxis(picture.Width(), width, quality);
        Axis rows = ChooseAxis(picture.Height(), height, quality);
        CutOut(columns, part.x, part.width);
        CutOut(rows, part.y, part.height);
        MakeRows(picture, columns, rows, threads, target);
        return std::move(target);
    });
}

}  // namespace tessara
