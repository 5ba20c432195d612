#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/rastx/effects/EffectTable.h"

namespace tessara::bench {

/// Gradients, some edges and noise: what a photograph makes a processor do.
inline Picture PhotoLike(int width, int height) {
    Picture picture = Picture::Create(width, height, Alpha::None).Value();
    for (int y = 0; y < height; ++y) {
        const auto row = picture.MutableRow(y);
        for (int x = 0; x < width; ++x) {
            const std::uint32_t random = effects::RandomOf(static_cast<std::uint32_t>(y * width + x));
            const float u = static_cast<float>(x) / 370;
            const float v = static_cast<float>(y) / 290;
            const auto channel = [&](float wave, int shift) {
                const float edge = 40.0f * static_cast<float>((x / 410 + y / 530) % 2);
                const float noise = static_cast<float>((random >> shift) & 15);
                return static_cast<std::uint8_t>(std::clamp(100 + 80 * wave + edge + noise, 0.0f, 255.0f));
            };
            row[static_cast<std::size_t>(x)] = {channel(std::sin(u + v), 0), channel(std::sin(u), 8),
                                                channel(std::cos(u - v), 16), 255};
        }
    }
    return picture;
}

}  // namespace tessara::bench
