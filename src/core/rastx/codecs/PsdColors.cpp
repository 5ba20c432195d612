#include "core/rastx/codecs/PsdColors.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "core/rastx/Rows.h"

namespace tessara {
namespace {

/// A document's mode, or what stands for it: inks without a name are taken by their number.
PsdMode EffectiveMode(const PsdHeader& header) {
    if (header.mode == PsdMode::Duotone) return PsdMode::Grey;  // the inks are not rendered
    if (header.mode != PsdMode::Multichannel) return header.mode;
    if (header.channels >= 4) return PsdMode::Cmyk;
    return header.channels == 3 ? PsdMode::Rgb : PsdMode::Grey;
}

SampleColors SampleColorsOf(PsdMode mode) {
    switch (mode) {
        case PsdMode::Bitmap:
        case PsdMode::Grey:
            return SampleColors::Grey;
        case PsdMode::Cmyk:
            return SampleColors::Cmyk;
        case PsdMode::Lab:
            return SampleColors::Lab;
        default:
            return SampleColors::Rgb;
    }
}

float FloatAt(Bytes samples, std::size_t i) {
    const std::uint32_t bits = std::uint32_t{samples[4 * i]} << 24 | std::uint32_t{samples[4 * i + 1]} << 16 |
                               std::uint32_t{samples[4 * i + 2]} << 8 | std::uint32_t{samples[4 * i + 3]};
    return std::bit_cast<float>(bits);
}

template <std::size_t kBytes>
int SampleAt(Bytes samples, std::size_t i) {
    if constexpr (kBytes == 1) return samples[i];
    return samples[2 * i] << 8 | samples[2 * i + 1];
}

/// Linear light to the bytes of sRGB (IEC 61966-2-1), rounded exactly: the values at which the byte changes
/// are known, and a table leads close to them.
class SrgbCurve {
  public:
    SrgbCurve() {
        for (std::size_t i = 0; i < steps_.size(); ++i) {
            const double value = (static_cast<double>(i) + 0.5) / 255;
            steps_[i] =
                static_cast<float>(value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
        }
        std::uint8_t byte = 0;
        for (std::size_t i = 0; i < starts_.size(); ++i) {
            while (byte < 255 && static_cast<float>(i) / kStarts >= steps_[byte]) ++byte;
            starts_[i] = byte;
        }
    }
    std::uint8_t At(float light) const {
        if (!(light > 0)) return 0;  // also for what is not a number
        if (light >= 1) return 255;
        std::uint8_t byte = starts_[static_cast<std::size_t>(light * kStarts)];
        while (byte < 255 && light >= steps_[byte]) ++byte;
        return byte;
    }

  private:
    static constexpr int kStarts = 4096;
    std::array<float, 255> steps_;  // the least light of the next byte
    std::array<std::uint8_t, kStarts + 1> starts_;
};

const SrgbCurve& Curve() {
    static const SrgbCurve curve;
    return curve;
}

/// Takes the white back out of c = a * colour + (1 - a) * white.
template <std::size_t kBytes>
void RemoveWhite(Bytes samples, Bytes alpha, bool neutral, std::span<std::uint8_t> out) {
    constexpr std::int64_t kMost = kBytes == 1 ? 255 : 65535;
    const std::int64_t white = neutral ? (kMost + 1) / 2 : kMost;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::int64_t a = SampleAt<kBytes>(alpha, i);
        std::int64_t value = SampleAt<kBytes>(samples, i);
        if (a > 0) {
            const std::int64_t distance = (white - value) * kMost;
            value = std::clamp<std::int64_t>(white - (distance + (distance < 0 ? -a : a) / 2) / a, 0, kMost);
        }
        out[i] = kBytes == 1 ? static_cast<std::uint8_t>(value) : Narrow16(static_cast<std::uint32_t>(value));
    }
}

void RemoveWhiteFromLight(Bytes samples, Bytes alpha, std::span<std::uint8_t> out) {
    for (std::size_t i = 0; i < out.size(); ++i) {
        const float a = FloatAt(alpha, i);
        const float value = FloatAt(samples, i);
        out[i] = Curve().At(a > 0 ? 1 - (1 - value) / a : value);
    }
}

template <std::size_t kBytes>
std::int64_t CountTooDark(Bytes samples, Bytes alpha, std::size_t count) {
    constexpr int kMost = kBytes == 1 ? 255 : 65535;
    constexpr int kRounding = kMost / 255;
    std::int64_t dark = 0;
    for (std::size_t i = 0; i < count; ++i)
        dark += SampleAt<kBytes>(samples, i) + SampleAt<kBytes>(alpha, i) + kRounding < kMost;
    return dark;
}

std::int64_t CountTooDarkInLight(Bytes samples, Bytes alpha, std::size_t count) {
    constexpr float kRounding = 0.004f;
    std::int64_t dark = 0;
    for (std::size_t i = 0; i < count; ++i) dark += FloatAt(samples, i) + FloatAt(alpha, i) + kRounding < 1;
    return dark;
}

void Narrow16Bits(Bytes samples, std::span<std::uint8_t> out) {
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = Narrow16(static_cast<std::uint32_t>(SampleAt<2>(samples, i)));
}

/// Where a damaged file lacks a plane: no ink, no tint; a missing colour follows the one before it, which
/// leaves a grey picture instead of a garish one.
Bytes StandIn(PsdMode mode, std::size_t plane, std::size_t count, std::span<const Bytes> narrow,
              ByteVector& scratch) {
    if (mode == PsdMode::Rgb && plane > 0) return narrow[plane - 1];
    const bool tint = mode == PsdMode::Lab && plane > 0;
    scratch.assign(count, tint ? 128 : 255);
    return scratch;
}

}  // namespace

PsdColors::PsdColors(const PsdHeader& header, Bytes palette, int transparentIndex, Bytes icc)
    : mode_(EffectiveMode(header)), depth_(header.depth), planes_(ColorChannels(mode_)) {
    palette_.fill(kBlack);
    // FIXME: a profile of 32-bit documents has linear curves; its primaries are taken as those of sRGB.
    if (depth_ != 32) profile_ = ColorProfile::Open(icc, SampleColorsOf(mode_));
    if (mode_ != PsdMode::Indexed || palette.size() < 3 * palette_.size()) return;
    PlanesToPixels(palette.first(256), palette.subspan(256, 256), palette.subspan(512, 256), {}, palette_);
    if (profile_) profile_->ConvertPixels(palette_);
    if (transparentIndex >= 0 && transparentIndex < 256) {
        palette_[static_cast<std::size_t>(transparentIndex)].a = 0;
        transparentIndex_ = true;
    }
}

bool PsdColors::MayHaveAlpha() const {
    return mode_ == PsdMode::Grey || mode_ == PsdMode::Rgb || mode_ == PsdMode::Cmyk || mode_ == PsdMode::Lab;
}

Bytes PsdColors::NarrowAlpha(Bytes samples, std::size_t count, ByteVector& narrow) const {
    if (depth_ == 8) return samples.first(count);
    narrow.resize(count);
    if (depth_ == 16) {
        Narrow16Bits(samples, narrow);
    } else if (depth_ == 32) {
        for (std::size_t i = 0; i < count; ++i) {
            const float value = FloatAt(samples, i);
            narrow[i] = value > 0 ? static_cast<std::uint8_t>(std::min(value, 1.0f) * 255 + 0.5f) : 0;
        }
    }
    return narrow;
}

Bytes PsdColors::Narrow(Bytes samples, std::size_t count, ByteVector& narrow) const {
    if (depth_ == 8 || depth_ == 16) return NarrowAlpha(samples, count, narrow);
    narrow.resize(count);
    if (depth_ == 32) {
        for (std::size_t i = 0; i < count; ++i) narrow[i] = Curve().At(FloatAt(samples, i));
    } else {
        UnpackBits(samples, 1, narrow);
        for (std::uint8_t& value : narrow) value = value ? 0 : 255;
    }
    return narrow;
}

std::int64_t PsdColors::CountTooDarkOnWhite(std::span<const Bytes> color, Bytes alpha,
                                            std::size_t count) const {
    if (alpha.empty()) return 0;
    if (mode_ == PsdMode::Lab) color = color.first(1);  // tints are neither dark nor bright
    std::int64_t dark = 0;
    for (const Bytes samples : color) {
        if (samples.empty()) continue;
        if (depth_ == 8) dark += CountTooDark<1>(samples, alpha, count);
        if (depth_ == 16) dark += CountTooDark<2>(samples, alpha, count);
        if (depth_ == 32) dark += CountTooDarkInLight(samples, alpha, count);
    }
    return dark;
}

Bytes PsdColors::WithoutWhite(Bytes samples, Bytes alpha, int plane, std::size_t count,
                              ByteVector& narrow) const {
    narrow.resize(count);
    const bool neutral = mode_ == PsdMode::Lab && plane > 0;  // white has no tint
    if (depth_ == 8) RemoveWhite<1>(samples, alpha, neutral, narrow);
    if (depth_ == 16) RemoveWhite<2>(samples, alpha, neutral, narrow);
    if (depth_ == 32) RemoveWhiteFromLight(samples, alpha, narrow);
    return narrow;
}

void PsdColors::ToPixels(std::span<const Bytes> color, Bytes alpha, Matte matte, std::span<Pixel> pixels,
                         Scratch& scratch) const {
    const std::size_t count = pixels.size();
    const bool white = matte == Matte::White && !alpha.empty();
    std::array<Bytes, 4> narrow;
    for (std::size_t i = 0; i < color.size(); ++i) {
        ByteVector& row = scratch.narrow[i];
        if (color[i].empty())
            narrow[i] = StandIn(mode_, i, count, narrow, row);
        else if (white)
            narrow[i] = WithoutWhite(color[i], alpha, static_cast<int>(i), count, row);
        else
            narrow[i] = Narrow(color[i], count, row);
    }
    const Bytes opacity = alpha.empty() ? alpha : NarrowAlpha(alpha, count, scratch.narrow[4]);

    switch (mode_) {
        case PsdMode::Indexed:
            return PaletteToPixels(narrow[0], palette_, pixels);
        case PsdMode::Rgb:
            return PlanesToPixels(narrow[0], narrow[1], narrow[2], opacity, pixels);
        case PsdMode::Cmyk:
            scratch.mixed.resize(4 * count);
            for (std::size_t i = 0; i < count; ++i)
                for (std::size_t ink = 0; ink < 4; ++ink)
                    scratch.mixed[4 * i + ink] = static_cast<std::uint8_t>(255 - narrow[ink][i]);
            if (profile_)
                profile_->ConvertCmyk(scratch.mixed, pixels);
            else
                CmykToPixels(scratch.mixed, pixels);
            break;
        case PsdMode::Lab:
            LabToPixels(color, narrow, pixels, scratch.mixed, matte);
            break;
        default:
            GreyToPixels(narrow[0], pixels);
            break;
    }
    if (opacity.empty()) return;
    for (std::size_t i = 0; i < count; ++i) pixels[i].a = opacity[i];
}

void PsdColors::LabToPixels(std::span<const Bytes> color, std::span<const Bytes> narrow,
                            std::span<Pixel> pixels, ByteVector& mixed, Matte matte) const {
    if (profile_) {
        mixed.resize(3 * pixels.size());
        for (std::size_t i = 0; i < pixels.size(); ++i)
            for (std::size_t c = 0; c < 3; ++c) mixed[3 * i + c] = narrow[c][i];
        return profile_->ConvertLab(mixed, pixels);
    }
    // The eight bits that are left after narrowing would show as steps in soft gradients.
    const bool fine = depth_ == 16 && matte == Matte::None && std::ranges::none_of(color, &Bytes::empty);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] =
            fine ? LabToPixel(SampleAt<2>(color[0], i) / 655.35, SampleAt<2>(color[1], i) / 256.0 - 128,
                              SampleAt<2>(color[2], i) / 256.0 - 128)
                 : LabToPixel(narrow[0][i] / 2.55, narrow[1][i] - 128.0, narrow[2][i] - 128.0);
}

void PsdColors::ToSrgb(std::span<Pixel> pixels) const {
    const bool stays = mode_ == PsdMode::Grey || mode_ == PsdMode::Rgb || mode_ == PsdMode::Bitmap;
    if (profile_ && stays) profile_->ConvertPixels(pixels);
}

}  // namespace tessara
