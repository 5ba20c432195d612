#include "core/rastx/effects/Convolution.h"

#include <cmath>

#include "core/rastx/effects/Windows.h"

namespace tessara::effects {
namespace {

/// rule(above, here, below) for each byte; the three point to it and to those above and below, so that [-4]
/// and [4] are the same channel of the neighbours.
template <typename Rule>
TESSARA_ALWAYS_INLINE void ForWindows(const Neighbours& rows, std::size_t length,
                                      std::uint8_t* __restrict out, Rule rule) {
    for (std::size_t i = 0; i < length; ++i)
        out[i] = static_cast<std::uint8_t>(rule(rows.above + i, rows.here + i, rows.below + i));
}

/// Sixteen times the window weighted 1 2 1, 2 4 2, 1 2 1.
TESSARA_ALWAYS_INLINE int SoftSum(const std::uint8_t* above, const std::uint8_t* here,
                                  const std::uint8_t* below) {
    const int corners = above[-4] + above[4] + below[-4] + below[4];
    const int sides = above[0] + below[0] + here[-4] + here[4];
    return corners + 2 * sides + 4 * here[0];
}

TESSARA_MULTIVERSION void BlurRow(const Neighbours& rows, std::size_t length, std::uint8_t* out) {
    ForWindows(rows, length, out, [](const auto* above, const auto* here, const auto* below) {
        const auto sum = static_cast<std::uint16_t>(above[-4] + above[0] + above[4] + here[-4] + here[0] +
                                                    here[4] + below[-4] + below[0] + below[4] + 4);
        return (static_cast<std::uint32_t>(sum) * 7282u) >> 16;  // a ninth
    });
}

TESSARA_MULTIVERSION void SoftenRow(const Neighbours& rows, std::size_t length, std::uint8_t* out) {
    ForWindows(rows, length, out, [](const auto* above, const auto* here, const auto* below) {
        return static_cast<std::uint16_t>(SoftSum(above, here, below) + 16 * here[0] + 16) >> 5;
    });
}

TESSARA_MULTIVERSION void SharpenRow(const Neighbours& rows, std::size_t length, std::uint8_t* out) {
    ForWindows(rows, length, out, [](const auto* above, const auto* here, const auto* below) {
        const auto sum = static_cast<std::int16_t>(32 * here[0] - SoftSum(above, here, below) + 8);
        return ToByte(static_cast<std::int16_t>(sum >> 4));
    });
}

/// The soft window counts as far as the edge is hard and slanted: on an upright or level edge one of the two
/// gradients is nothing.
TESSARA_MULTIVERSION void AntiAliasRow(const Neighbours& rows, std::size_t length, std::uint8_t* out) {
    constexpr float kHard = 160;  // gradient in levels (a step of one pixel has four times its height)
    constexpr float kSoft = 60;
    ForWindows(rows, length, out, [](const auto* above, const auto* here, const auto* below) {
        const int right = above[4] + 2 * here[4] + below[4];
        const int left = above[-4] + 2 * here[-4] + below[-4];
        const int up = above[-4] + 2 * above[0] + above[4];
        const int down = below[-4] + 2 * below[0] + below[4];
        const auto x = static_cast<float>(right - left);
        const auto y = static_cast<float>(down - up);
        const float square = x * x + y * y;
        const float product = x * y;
        const float slant = 2 * (product < 0 ? -product : product) / (square + 1);
        float hardness = (square - kSoft * kSoft) * (1 / (kHard * kHard - kSoft * kSoft));
        hardness = hardness < 0 ? 0.0f : hardness;
        hardness = hardness > 1 ? 1.0f : hardness;
        const auto middle = static_cast<float>(here[0]);
        const float soft = static_cast<float>(SoftSum(above, here, below)) * (1.0f / 16);
        return static_cast<int>(middle + (soft - middle) * slant * hardness + 0.5f);
    });
}

/// sums[i] += added[i] - dropped[i]
TESSARA_MULTIVERSION void MoveColumnSums(const std::uint8_t* added, const std::uint8_t* dropped,
                                         std::size_t length, std::uint32_t* __restrict sums) {
    for (std::size_t i = 0; i < length; ++i)
        sums[i] += static_cast<std::uint32_t>(added[i]) - static_cast<std::uint32_t>(dropped[i]);
}

/// The same where colours count by their alpha.
TESSARA_MULTIVERSION void MoveWeightedColumnSums(const std::uint8_t* added, const std::uint8_t* dropped,
                                                 std::size_t length, std::uint32_t* __restrict sums) {
    for (std::size_t i = 0; i < length; i += 4) {
        const std::uint32_t more = added[i + 3];
        const std::uint32_t less = dropped[i + 3];
        for (std::size_t c = 0; c < 3; ++c) sums[i + c] += added[i + c] * more - dropped[i + c] * less;
        sums[i + 3] += more - less;
    }
}

TESSARA_MULTIVERSION void RaiseDetail(const std::uint8_t* source, std::size_t length,
                                      std::uint8_t* __restrict mean) {
    for (std::size_t i = 0; i < length; ++i)
        mean[i] = static_cast<std::uint8_t>(ToByte(128 + 2 * (source[i] - mean[i])));
}

/// Means of 2 * radius + 1 column sums around each pixel; `columns` reaches radius + 1 pixels beyond either
/// end.
TESSARA_MULTIVERSION void WriteMeans(const std::uint32_t* columns, int radius, int width, std::uint8_t* out) {
    typedef std::uint32_t Sums __attribute__((vector_size(16)));
    typedef float Means __attribute__((vector_size(16)));
    typedef std::int32_t Rounded __attribute__((vector_size(16)));
    typedef std::uint8_t Channels __attribute__((vector_size(4)));
    const auto column = [columns](int x) {
        Sums sums;
        std::memcpy(&sums, columns + 4 * static_cast<std::ptrdiff_t>(x), sizeof sums);
        return sums;
    };
    const float side = static_cast<float>(2 * radius + 1);
    const float factor = 1 / (side * side);
    Sums sum = {};
    for (int x = -radius - 1; x < radius; ++x) sum += column(x);
    for (int x = 0; x < width; ++x) {
        sum += column(x + radius) - column(x - radius - 1);
        const Means mean = __builtin_convertvector(reinterpret_cast<Rounded&>(sum), Means) * factor + 0.5f;
        const Channels channels = __builtin_convertvector(__builtin_convertvector(mean, Rounded), Channels);
        std::memcpy(out + 4 * static_cast<std::ptrdiff_t>(x), &channels, sizeof channels);
    }
}

/// The same of weighted sums.
void WriteWeightedMeans(const std::uint32_t* columns, int radius, int width, std::uint8_t* out) {
    std::uint64_t sums[4] = {};
    const auto move = [&](int added, int dropped) {
        for (int c = 0; c < 4; ++c)
            sums[c] += columns[4 * added + c] - std::uint64_t{columns[4 * dropped + c]};
    };
    for (int x = -radius - 1; x < radius; ++x)
        for (int c = 0; c < 4; ++c) sums[c] += columns[4 * x + c];
    for (int x = 0; x < width; ++x) {
        move(x + radius, x - radius - 1);
        const std::uint64_t weight = std::max<std::uint64_t>(sums[3], 1);
        for (int c = 0; c < 3; ++c)
            out[4 * x + c] = static_cast<std::uint8_t>((sums[c] + weight / 2) / weight);
    }
}

/// Calls `finish(y, row)` for each row of means.
template <typename Finish>
Result<Picture> BoxFilter(const Picture& picture, int radius, const EffectRun& run, const Finish& finish) {
    TRY_ASSIGN(Picture target, CreateLike(picture, picture.Width(), picture.Height()));
    const std::span<Pixel> pixels = target.MutablePixels();
    const int height = picture.Height();
    const auto width = static_cast<std::size_t>(picture.Width());
    const auto bytes = [&](int y) { return BytesOf(picture.Row(std::clamp(y, 0, height - 1))); };
    const auto moveSums = picture.HasAlpha() ? MoveWeightedColumnSums : MoveColumnSums;
    const auto writeMeans = picture.HasAlpha() ? WriteWeightedMeans : WriteMeans;
    // A band begins with the sums of a whole window, so it should be several windows high.
    const int bandRows = std::max(RowsPerThread(picture.Width()), 4 * radius);
    ParallelRows(height, run.threads, bandRows, [&](int begin, int end) {
        const std::vector<std::uint8_t> nothing(4 * width);
        const std::size_t margin = 4 * (static_cast<std::size_t>(radius) + 1);
        std::vector<std::uint32_t> padded(4 * width + 2 * margin);
        const std::span<std::uint32_t> sums = std::span(padded).subspan(margin, 4 * width);
        for (int y = begin - radius - 1; y < begin + radius; ++y)
            moveSums(bytes(y), nothing.data(), sums.size(), sums.data());
        for (int y = begin; y < end; ++y) {
            moveSums(bytes(y + radius), bytes(y - radius - 1), sums.size(), sums.data());
            const auto row = pixels.subspan(static_cast<std::size_t>(y) * width, width);
            for (std::size_t i = 0; i < margin; ++i) {
                padded[i] = sums[i % 4];
                padded[margin + sums.size() + i] = sums[sums.size() - 4 + i % 4];
            }
            writeMeans(sums.data(), radius, picture.Width(), BytesOf(row));
            finish(y, row);
            KeepAlpha(bytes(y), row);
        }
    });
    return target;
}

}  // namespace

Picture Blur(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, BlurRow);
}
Picture Soften(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, SoftenRow);
}
Picture Sharpen(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, SharpenRow);
}
Picture AntiAlias(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, AntiAliasRow);
}

Result<Picture> BoxBlur(const Picture& picture, int radius, const EffectRun& run) {
    // The sums of a window fit into 32 bits up to here.
    return BoxFilter(picture, std::clamp(radius, 0, 1000), run, [](int, std::span<Pixel>) {});
}

Result<Picture> HighPass(const Picture& picture, const EffectRun& run) {
    const int radius = std::clamp(std::min(picture.Width(), picture.Height()) / 40, 2, 1000);
    return BoxFilter(picture, radius, run, [&](int y, std::span<Pixel> row) {
        RaiseDetail(BytesOf(picture.Row(y)), 4 * row.size(), BytesOf(row));
    });
}

}  // namespace tessara::effects
