#include "core/rastx/BlendStrip.h"

#include <cmath>
#include <cstdint>

#include "core/Multiversion.h"

namespace tessara::blend {
namespace {

TESSARA_MULTIVERSION void BlendNormal(const Tone* source, std::size_t count, Tone* canvas) {
    for (std::size_t i = 0; i < count; ++i) {
        const float alpha = source[i].a;
        const float rest = 1 - alpha;
        canvas[i] = {canvas[i].b * rest + source[i].b * alpha, canvas[i].g * rest + source[i].g * alpha,
                     canvas[i].r * rest + source[i].r * alpha, canvas[i].a * rest + alpha};
    }
}

/// Blends with a rule for whole colours.
template <typename Rule>
void BlendColors(std::span<const Tone> source, std::span<Tone> canvas, Reach reach, const Rule& rule) {
    for (std::size_t i = 0; i < source.size(); ++i) {
        const Tone s = source[i];
        if (s.a <= 0) continue;
        const Tone below = canvas[i];
        const Tone mixed = rule(s, Straight(below));
        const float kept = 1 - s.a;
        const float inside = s.a * below.a;
        const float outside = reach == Reach::Everywhere ? s.a * (1 - below.a) : 0;
        canvas[i] = {below.b * kept + inside * mixed.b + outside * s.b,
                     below.g * kept + inside * mixed.g + outside * s.g,
                     below.r * kept + inside * mixed.r + outside * s.r,
                     reach == Reach::Everywhere ? below.a + s.a * (1 - below.a) : below.a};
    }
}

/// Blends with a rule for one channel that is the same for all.
template <typename Rule>
void BlendChannels(std::span<const Tone> source, std::span<Tone> canvas, Reach reach, const Rule& rule) {
    BlendColors(source, canvas, reach, [&](Tone s, Tone d) {
        return Tone{rule(s.b, d.b), rule(s.g, d.g), rule(s.r, d.r), 0};
    });
}

/// Noise that depends on the place alone, so that a picture comes out the same each time.
float NoiseAt(int x, int y) {
    auto hash = static_cast<std::uint32_t>(x) * 0x9e3779b1u ^ static_cast<std::uint32_t>(y) * 0x85ebca77u;
    hash = (hash ^ (hash >> 15)) * 0x2c1b3c6du;
    hash = (hash ^ (hash >> 12)) * 0x297a2d39u;
    return static_cast<float>((hash ^ (hash >> 15)) >> 8) / static_cast<float>(1 << 24);
}

void Dissolve(const Strip& source, int y) {
    for (int x = source.left; x < source.right; ++x)
        source.tones[x].a = source.tones[x].a > NoiseAt(x, y) ? 1.0f : 0.0f;
}

}  // namespace

void Blend(BlendMode mode, const Strip& source, const Strip& canvas, int y, Reach reach) {
    const std::span<const Tone> from = source.All();
    const std::span<Tone> onto = {canvas.tones + source.left, from.size()};
    const auto channels = [&](const auto& rule) { BlendChannels(from, onto, reach, rule); };
    const auto colors = [&](const auto& rule) { BlendColors(from, onto, reach, rule); };
    switch (mode) {
        case BlendMode::Dissolve:
            Dissolve(source, y);
            [[fallthrough]];
        case BlendMode::Normal:
            if (reach == Reach::Everywhere) return BlendNormal(from.data(), from.size(), onto.data());
            return colors([](Tone s, Tone) { return s; });
        case BlendMode::Darken:
            return channels([](float s, float d) { return std::min(s, d); });
        case BlendMode::Multiply:
            return channels(Multiply);
        case BlendMode::ColorBurn:
            return channels(ColorBurn);
        case BlendMode::LinearBurn:
            return channels([](float s, float d) { return std::max(s + d - 1, 0.0f); });
        case BlendMode::DarkerColor:
            return colors([](Tone s, Tone d) { return Luminance(s) < Luminance(d) ? s : d; });
        case BlendMode::Lighten:
            return channels([](float s, float d) { return std::max(s, d); });
        case BlendMode::Screen:
            return channels(Screen);
        case BlendMode::ColorDodge:
            return channels(ColorDodge);
        case BlendMode::LinearDodge:
            return channels([](float s, float d) { return std::min(s + d, 1.0f); });
        case BlendMode::LighterColor:
            return colors([](Tone s, Tone d) { return Luminance(s) > Luminance(d) ? s : d; });
        case BlendMode::Overlay:
            return channels([](float s, float d) { return HardLight(d, s); });
        case BlendMode::SoftLight:
            return channels(SoftLight);
        case BlendMode::HardLight:
            return channels(HardLight);
        case BlendMode::VividLight:
            return channels(VividLight);
        case BlendMode::LinearLight:
            return channels([](float s, float d) { return std::clamp(d + 2 * s - 1, 0.0f, 1.0f); });
        case BlendMode::PinLight:
            return channels(PinLight);
        case BlendMode::HardMix:
            return channels(HardMix);
        case BlendMode::Difference:
            return channels([](float s, float d) { return std::abs(s - d); });
        case BlendMode::Exclusion:
            return channels([](float s, float d) { return s + d - 2 * s * d; });
        case BlendMode::Subtract:
            return channels([](float s, float d) { return std::max(d - s, 0.0f); });
        case BlendMode::Divide:
            return channels(Divide);
        case BlendMode::Hue:
            return colors([](Tone s, Tone d) {
                return WithLuminance(WithSaturation(s, SaturationOf(d)), Luminance(d));
            });
        case BlendMode::Saturation:
            return colors([](Tone s, Tone d) {
                return WithLuminance(WithSaturation(d, SaturationOf(s)), Luminance(d));
            });
        case BlendMode::Color:
            return colors([](Tone s, Tone d) { return WithLuminance(s, Luminance(d)); });
        case BlendMode::Luminosity:
            return colors([](Tone s, Tone d) { return WithLuminance(d, Luminance(s)); });
        case BlendMode::HslHue:
            return colors([](Tone s, Tone d) {
                const Hsl below = ToHsl(d);
                return FromHsl({ToHsl(s).hue, below.saturation, below.lightness});
            });
        case BlendMode::HslSaturation:
            return colors([](Tone s, Tone d) {
                const Hsl below = ToHsl(d);
                return FromHsl({below.hue, ToHsl(s).saturation, below.lightness});
            });
        case BlendMode::HslColor:
            return colors([](Tone s, Tone d) {
                const Hsl above = ToHsl(s);
                return FromHsl({above.hue, above.saturation, ToHsl(d).lightness});
            });
        case BlendMode::HslLightness:
            return colors([](Tone s, Tone d) {
                const Hsl below = ToHsl(d);
                return FromHsl({below.hue, below.saturation, ToHsl(s).lightness});
            });
    }
}

}  // namespace tessara::blend
