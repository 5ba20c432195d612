#include "core/rastx/effects/Edges.h"

#include <cmath>

#include "core/rastx/effects/Convolution.h"
#include "core/rastx/effects/Windows.h"

namespace tessara::effects {
namespace {

constexpr std::size_t kBlock =
    256;  // bytes: what is computed per channel before the channels are put together

TESSARA_ALWAYS_INLINE int Absolute(int value) {
    return value < 0 ? -value : value;
}

/// Half the sum of both Sobel gradients of the byte at `i`; a step of 128 levels gives 255.
TESSARA_ALWAYS_INLINE std::uint8_t Steepness(const Neighbours& rows, std::size_t i) {
    const std::uint8_t* above = rows.above + i;
    const std::uint8_t* here = rows.here + i;
    const std::uint8_t* below = rows.below + i;
    const auto x =
        static_cast<std::int16_t>(above[4] + 2 * here[4] + below[4] - above[-4] - 2 * here[-4] - below[-4]);
    const auto y =
        static_cast<std::int16_t>(below[-4] + 2 * below[0] + below[4] - above[-4] - 2 * above[0] - above[4]);
    const auto both = static_cast<std::int16_t>((Absolute(x) + Absolute(y)) >> 1);
    return static_cast<std::uint8_t>(both > 255 ? 255 : both);
}

/// Slope of the byte at `i` towards the lower right; a step of 128 levels gives 512.
TESSARA_ALWAYS_INLINE std::int16_t Slope(const Neighbours& rows, std::size_t i) {
    const std::uint8_t* above = rows.above + i;
    const std::uint8_t* here = rows.here + i;
    const std::uint8_t* below = rows.below + i;
    return static_cast<std::int16_t>(2 * below[4] + here[4] + below[0] - 2 * above[-4] - here[-4] - above[0]);
}

/// Splits the row into blocks: `compute(i, k)` for each byte i of the row, k of the block; then
/// `join(start, count)` for the block's pixels.
template <typename Compute, typename Join>
TESSARA_ALWAYS_INLINE void ForBlocks(std::size_t length, Compute compute, Join join) {
    for (std::size_t start = 0; start < length; start += kBlock) {
        const std::size_t count = length - start < kBlock ? length - start : kBlock;
        for (std::size_t k = 0; k < count; ++k) compute(start + k, k);
        join(start, count);
    }
}

TESSARA_ALWAYS_INLINE std::uint32_t Largest(std::uint32_t pixel) {
    const std::uint32_t blue = pixel & 255;
    const std::uint32_t green = (pixel >> 8) & 255;
    const std::uint32_t red = (pixel >> 16) & 255;
    const std::uint32_t high = blue > green ? blue : green;
    return high > red ? high : red;
}

TESSARA_MULTIVERSION void FindEdgesRow(const Neighbours& rows, std::size_t length,
                                       std::uint8_t* __restrict out) {
    std::uint8_t steepness[kBlock];
    ForBlocks(
        length, [&](std::size_t i, std::size_t k) { steepness[k] = Steepness(rows, i); },
        [&](std::size_t start, std::size_t count) {
            for (std::size_t k = 0; k < count; k += 4)
                StorePixel(out + start + k, (255 - Largest(LoadPixel(steepness + k))) * 0x010101u);
        });
}

TESSARA_MULTIVERSION void EnhanceEdgeRow(const Neighbours& rows, std::size_t length,
                                         std::uint8_t* __restrict out) {
    for (std::size_t i = 0; i < length; ++i) {
        const std::uint8_t* above = rows.above + i;
        const std::uint8_t* here = rows.here + i;
        const std::uint8_t* below = rows.below + i;
        const int around =
            above[-4] + above[0] + above[4] + here[-4] + here[4] + below[-4] + below[0] + below[4];
        const auto sum = static_cast<std::int16_t>(12 * here[0] - around + 2);
        out[i] = static_cast<std::uint8_t>(ToByte(static_cast<std::int16_t>(sum >> 2)));
    }
}

/// How much a colour glows: bright ones more than dark ones, and pure ones more than those near to grey.
TESSARA_ALWAYS_INLINE int Vividness(std::uint32_t pixel) {
    const auto blue = static_cast<int>(pixel & 255);
    const auto green = static_cast<int>((pixel >> 8) & 255);
    const auto red = static_cast<int>((pixel >> 16) & 255);
    const int lower = blue < green ? blue : green;
    const int higher = blue < green ? green : blue;
    return 3 * (higher > red ? higher : red) - 2 * (lower < red ? lower : red);
}

/// Of a pixel and those beside, above and below it.
TESSARA_ALWAYS_INLINE std::uint32_t MostVivid(const Neighbours& rows, std::size_t i) {
    std::uint32_t found = LoadPixel(rows.here + i);
    int most = Vividness(found);
    const auto consider = [&](std::uint32_t pixel) {
        const int vividness = Vividness(pixel);
        found = vividness > most ? pixel : found;
        most = vividness > most ? vividness : most;
    };
    // Written out, for a loop would keep that over the pixels from being vectorised.
    consider(LoadPixel(rows.here + i + 4));
    consider(LoadPixel(rows.here + i - 4));
    consider(LoadPixel(rows.above + i));
    consider(LoadPixel(rows.below + i));
    return found;
}

/// The most vivid colour of the window at full strength, as bright as the edge is steep.
TESSARA_MULTIVERSION void NeonRow(const Neighbours& rows, std::size_t length, std::uint8_t* __restrict out) {
    std::uint8_t steepness[kBlock];
    ForBlocks(
        length, [&](std::size_t i, std::size_t k) { steepness[k] = Steepness(rows, i); },
        [&](std::size_t start, std::size_t count) {
            for (std::size_t k = 0; k < count; k += 4) {
                const std::uint32_t color = MostVivid(rows, start + k);
                const auto high = static_cast<float>(Largest(color) + 1);
                const auto steep = static_cast<float>(Largest(LoadPixel(steepness + k)));
                const float edge = steep * steep * (1.0f / 255);  // weak edges stay dark
                const auto channel = [&](std::uint32_t value) {
                    const float share = static_cast<float>(value) / high;
                    return static_cast<std::uint32_t>(ToByte(edge * share * share));
                };
                StorePixel(out + start + k, channel(color & 255) | (channel((color >> 8) & 255) << 8) |
                                                (channel((color >> 16) & 255) << 16));
            }
        });
}

/// Light that spills over the surroundings of the edges.
TESSARA_MULTIVERSION void AddGlowRow(const std::uint8_t* glow, std::size_t length,
                                     std::uint8_t* __restrict row) {
    for (std::size_t i = 0; i < length; ++i) {
        const int sum = row[i] + glow[i];
        row[i] = static_cast<std::uint8_t>(sum > 255 ? 255 : sum);
    }
}

/// Half of a slope as steep as `faint`, nearly all of a steep one: the dialog repeats the passes of a relief,
/// and grain would grow with the edges until nothing else is left.
TESSARA_ALWAYS_INLINE float WithoutGrain(float slope, float faint) {
    const float size = slope < 0 ? -slope : slope;
    return slope * size / (size + faint);
}

TESSARA_MULTIVERSION void EmbossRow(const Neighbours& rows, std::size_t length,
                                    std::uint8_t* __restrict out) {
    std::int16_t slopes[kBlock];
    ForBlocks(
        length, [&](std::size_t i, std::size_t k) { slopes[k] = Slope(rows, i); },
        [&](std::size_t start, std::size_t count) {
            for (std::size_t k = 0; k < count; k += 4) {
                const int luma = 29 * slopes[k] + 150 * slopes[k + 1] + 77 * slopes[k + 2];
                const float relief = WithoutGrain(static_cast<float>(luma) / 256, 24) / 2;
                StorePixel(out + start + k, static_cast<std::uint32_t>(ToByte(128 + relief)) * 0x010101u);
            }
        });
}

/// Half as steep as the grey relief: each pass adds to the one before.
TESSARA_MULTIVERSION void EmbossColorRow(const Neighbours& rows, std::size_t length,
                                         std::uint8_t* __restrict out) {
    for (std::size_t i = 0; i < length; ++i) {
        const float relief = WithoutGrain(Slope(rows, i), 96) / 4;
        out[i] = static_cast<std::uint8_t>(ToByte(static_cast<float>(rows.here[i]) + relief));
    }
}

}  // namespace

Picture FindEdges(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, FindEdgesRow);
}
Picture EnhanceEdge(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, EnhanceEdgeRow);
}
Picture Emboss(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, EmbossRow);
}
Picture EmbossColor(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, EmbossColorRow);
}

Result<Picture> NeonTrace(const Picture& picture, const EffectRun& run) {
    const int radius = std::max(1, std::min(picture.Width(), picture.Height()) / 150);
    Picture edges = ChangeByNeighbours(picture, run, NeonRow);
    TRY_ASSIGN(const Picture glow, BoxBlur(edges, radius, run));
    return ChangeRows(std::move(edges), run, [&](std::span<Pixel> row, int y) {
        const auto* light = BytesOf(glow.Row(y));
        AddGlowRow(light, 4 * row.size(), BytesOf(row));
        KeepAlpha(light, row);
    });
}

}  // namespace tessara::effects
