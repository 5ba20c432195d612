#include "core/rastx/effects/Noise.h"

#include <cmath>

namespace tessara::effects {
namespace {

/// One random number serves a pixel: ten bits of it for each channel, or the same ten for all.
TESSARA_MULTIVERSION void AddNoiseToRow(std::uint8_t* row, std::size_t width, std::uint32_t start,
                                        int amplitude, int bitsPerChannel) {
    for (std::size_t x = 0; x < width; ++x) {
        const std::uint32_t pixel = LoadPixel(row + 4 * x);
        const std::uint32_t random = RandomOf(start + static_cast<std::uint32_t>(x));
        const auto channel = [&](int index) {
            const int noise = static_cast<int>((random >> (bitsPerChannel * index)) & 1023) * 2 - 1023;
            const int value = static_cast<int>((pixel >> (8 * index)) & 255);
            return static_cast<std::uint32_t>(ToByte(value + ((noise * amplitude + 512) >> 10)))
                   << (8 * index);
        };
        StorePixel(row + 4 * x, (pixel & kAlphaBits) | channel(0) | channel(1) | channel(2));
    }
}

}  // namespace

Picture AddNoise(Picture picture, int percent, bool monochromatic, const EffectRun& run) {
    const int amplitude = static_cast<int>(std::lround(std::clamp(percent, 0, 100) * 2.55));
    return ChangeRows(std::move(picture), run, [&](std::span<Pixel> row, int y) {
        AddNoiseToRow(BytesOf(row), row.size(), RandomStart(run.seed, static_cast<std::uint32_t>(y)),
                      amplitude, monochromatic ? 0 : 10);
    });
}

}  // namespace tessara::effects
