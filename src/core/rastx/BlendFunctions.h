#pragma once

#include <algorithm>
#include <cmath>

#include "core/rastx/Compositor.h"

/// The mixing rules themselves, on values of 0 to 1: `s` is the layer's colour, `d` the colour below it. The
/// separable ones follow PDF 1.7, section 11.3.5, as far as it names them.
namespace tessara::blend {

/// A colour with alpha, 0 to 1.
struct Tone {
    float b = 0, g = 0, r = 0, a = 0;
};

inline float Multiply(float s, float d) {
    return s * d;
}
inline float Screen(float s, float d) {
    return s + d - s * d;
}
inline float HardLight(float s, float d) {
    return s < 0.5f ? 2 * s * d : 1 - 2 * (1 - s) * (1 - d);
}
inline float SoftLight(float s, float d) {
    return s <= 0.5f ? 2 * s * d + d * d * (1 - 2 * s) : 2 * d * (1 - s) + std::sqrt(d) * (2 * s - 1);
}
inline float ColorDodge(float s, float d) {
    if (d <= 0) return 0;
    return d >= 1 - s ? 1 : d / (1 - s);
}
inline float ColorBurn(float s, float d) {
    if (d >= 1) return 1;
    return 1 - d >= s ? 0 : 1 - (1 - d) / s;
}
inline float VividLight(float s, float d) {
    return s <= 0.5f ? ColorBurn(2 * s, d) : ColorDodge(2 * s - 1, d);
}
inline float PinLight(float s, float d) {
    return s <= 0.5f ? std::min(d, 2 * s) : std::max(d, 2 * s - 1);
}
inline float HardMix(float s, float d) {
    // 100 and 155 make 255 in bytes, but not always 1 in floating point.
    return s + d > 1 - 1.0f / 512 ? 1 : 0;
}
inline float Divide(float s, float d) {
    return d >= s ? 1 : d / s;
}

inline float Luminance(Tone c) {
    return std::min(0.30f * c.r + 0.59f * c.g + 0.11f * c.b, 1.0f);
}
inline float Least(Tone c) {
    return std::min({c.r, c.g, c.b});
}
inline float Most(Tone c) {
    return std::max({c.r, c.g, c.b});
}
inline float SaturationOf(Tone c) {
    return Most(c) - Least(c);
}

/// Moves the colour to a luminance; what leaves the gamut is drawn back towards grey.
inline Tone WithLuminance(Tone c, float luminance) {
    const float shift = luminance - Luminance(c);
    c = {c.b + shift, c.g + shift, c.r + shift, c.a};
    const float least = Least(c);
    const float most = Most(c);
    float scale = 1;
    if (least < 0) scale = luminance / (luminance - least);
    if (most > 1) scale = std::min(scale, (1 - luminance) / (most - luminance));
    const auto drawn = [=](float value) { return luminance + (value - luminance) * scale; };
    return {drawn(c.b), drawn(c.g), drawn(c.r), c.a};
}

/// Spreads the components so that they reach from 0 to `saturation`.
inline Tone WithSaturation(Tone c, float saturation) {
    const float least = Least(c);
    const float range = Most(c) - least;
    constexpr float kGrey = 1e-5f;  // a rounding error must not grow into a colour
    if (range <= kGrey) return {0, 0, 0, c.a};
    const float scale = saturation / range;
    return {(c.b - least) * scale, (c.g - least) * scale, (c.r - least) * scale, c.a};
}

struct Hsl {
    float hue, saturation, lightness;  ///< the hue from 0 to 6
};

inline Hsl ToHsl(Tone c) {
    const float most = Most(c);
    const float range = most - Least(c);
    const float lightness = most - range / 2;
    if (range <= 0) return {0, 0, lightness};
    float hue = c.r >= most   ? (c.g - c.b) / range
                : c.g >= most ? 2 + (c.b - c.r) / range
                              : 4 + (c.r - c.g) / range;
    if (hue < 0) hue += 6;
    // Near black and white the two differ by rounding errors alone.
    return {hue, range / std::max(1 - std::abs(2 * lightness - 1), range), lightness};
}

inline Tone FromHsl(Hsl hsl) {
    const float reach = hsl.saturation * std::min(hsl.lightness, 1 - hsl.lightness);
    const auto component = [=](float shift) {
        const float k = std::fmod(shift + 2 * hsl.hue, 12.0f);
        return hsl.lightness - reach * std::clamp(std::min(k - 3, 9 - k), -1.0f, 1.0f);
    };
    return {component(4), component(8), component(0), 0};
}

}  // namespace tessara::blend
