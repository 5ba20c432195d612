#include "tiff/TifColors.h"

#include <algorithm>

#include "core/rastx/Rows.h"

namespace tessara {
namespace {

std::optional<SampleColors> ProfileColors(int photometric) {
    switch (photometric) {
        case PHOTOMETRIC_MINISBLACK:
        case PHOTOMETRIC_MINISWHITE:
            return SampleColors::Grey;
        case PHOTOMETRIC_RGB:
        case PHOTOMETRIC_PALETTE:
        case PHOTOMETRIC_YCBCR:
            return SampleColors::Rgb;
        case PHOTOMETRIC_SEPARATED:
            return SampleColors::Cmyk;
        default:
            return std::nullopt;  // Lab is what it is
    }
}

bool IsLab(int photometric) {
    return photometric == PHOTOMETRIC_CIELAB || photometric == PHOTOMETRIC_ICCLAB;
}

bool KnownPhotometric(int photometric) {
    return photometric == PHOTOMETRIC_MASK || IsLab(photometric) || ProfileColors(photometric);
}

/// Floating point Lab is unpacked as the range -128 to 128 for all three.
constexpr double kLabRange = 128;

/// Lab by the rules of TIFF 6.0, section 23, and of its supplement for ICC profiles.
Pixel LabFromSamples(const TifLayout& layout, std::uint16_t lightness, std::uint16_t a, std::uint16_t b) {
    const bool icc = layout.photometric == PHOTOMETRIC_ICCLAB;
    const bool wide = layout.bits > 8;
    if (layout.format == SAMPLEFORMAT_IEEEFP) {
        const auto value = [](std::uint16_t sample) { return sample * (2 * kLabRange / 65535) - kLabRange; };
        return LabToPixel(value(lightness), value(a), value(b));
    }
    const auto axis = [=](std::uint16_t sample) -> double {
        if (icc) return sample / (wide ? 256.0 : 257.0) - 128;
        return wide ? static_cast<std::int16_t>(sample) / 256.0 : static_cast<std::int8_t>(sample >> 8);
    };
    // 16 bits of ICC Lab reach 100 at 0xff00, and all that was widened from 8 bits at 0xffff.
    return LabToPixel(lightness * 100 / (icc && wide ? 65280.0 : 65535.0), axis(a), axis(b));
}

}  // namespace

TifColors::TifColors(const TifFile& file) : layout_(file.Layout()), route_(ChooseRoute()) {
    if (route_ == Route::Unknown) return;
    darkIsHigh_ = layout_.photometric == PHOTOMETRIC_MINISWHITE;
    ListPlanes();
    OpenProfile(file.IccProfile());
    MakePalette(file.Handle());
    MakeYCbCr(file.Handle());
}

std::optional<TifColors> TifColors::For(const TifFile& file) {
    TifColors colors(file);
    if (colors.route_ == Route::Unknown) return std::nullopt;
    if (colors.layout_.photometric == PHOTOMETRIC_PALETTE && colors.palette_.empty()) return std::nullopt;
    return colors;
}

TifSampleType TifColors::SampleType(bool swapped) const {
    const bool lab = IsLab(layout_.photometric);
    TifSampleType type{layout_.bits, TifSampleKind::Unsigned, swapped};
    if (layout_.photometric == PHOTOMETRIC_PALETTE) {
        type.kind = TifSampleKind::Index;
    } else if (layout_.format == SAMPLEFORMAT_IEEEFP) {
        type.kind = TifSampleKind::Float;
        if (lab) type.low = -kLabRange, type.high = kLabRange;
    } else if (layout_.format == SAMPLEFORMAT_INT && !lab) {
        type.kind = TifSampleKind::Signed;
    }
    return type;
}

TifColors::Route TifColors::ChooseRoute() const {
    const TifLayout& layout = layout_;
    const TifSampleType type = SampleType(false);
    if (!KnownPhotometric(layout.photometric) || !CanUnpackTifSamples(type)) return Route::Unknown;
    if (layout.samples < layout.Colors()) return Route::Unknown;
    if (layout.blockWidth * layout.blockHeight > 1 && !layout.Blocks()) return Route::Unknown;
    if (layout.Blocks() && layout.bits == 8) return Route::Blocks;
    if (layout.Blocks() && layout.blockWidth * layout.blockHeight > 1) return Route::Unknown;

    const bool whole = layout.format == SAMPLEFORMAT_UINT || layout.format == SAMPLEFORMAT_VOID;
    if (!whole) return Route::Wide;
    if (layout.samples == 1 && layout.bits <= 8 && !IsLab(layout.photometric)) return Route::Indexed;
    if (layout.bits != 8 || layout.planar) return Route::Wide;
    if (layout.photometric == PHOTOMETRIC_RGB && layout.samples == 3) return Route::Rgb;
    if (layout.photometric == PHOTOMETRIC_RGB && layout.samples == 4 && HasAlpha()) return Route::Rgba;
    if (layout.photometric == PHOTOMETRIC_SEPARATED && layout.samples == 4) return Route::Cmyk;
    return Route::Wide;
}

void TifColors::ListPlanes() {
    if (!layout_.planar) {
        planes_ = {0};
        return;
    }
    for (int sample = 0; sample < layout_.Colors(); ++sample)
        planes_.push_back(static_cast<unsigned>(sample));
    if (HasAlpha()) planes_.push_back(static_cast<unsigned>(layout_.alphaSample));
}

void TifColors::OpenProfile(Bytes icc) {
    if (icc.empty()) return;
    if (const auto kind = ProfileColors(layout_.photometric)) profile_ = ColorProfile::Open(icc, *kind);
}

void TifColors::MakePalette(TIFF* handle) {
    const std::size_t count = std::size_t{1} << std::min(layout_.bits, 16);
    if (layout_.photometric == PHOTOMETRIC_PALETTE) {
        std::uint16_t* red = nullptr;
        std::uint16_t* green = nullptr;
        std::uint16_t* blue = nullptr;
        if (!TIFFGetField(handle, TIFFTAG_COLORMAP, &red, &green, &blue) || !red || !green || !blue) return;
        const auto all = [&](auto holds) {
            return std::all_of(red, red + count, holds) && std::all_of(green, green + count, holds) &&
                   std::all_of(blue, blue + count, holds);
        };
        // The range is 0 to 65535. Quite a few writers believed in 0 to 255, others leave the lower half of
        // each number empty: 0xff00 is meant to be white, too.
        const bool lowOnly = all([](std::uint16_t value) { return value <= 0xff; });
        const bool highOnly = all([](std::uint16_t value) { return (value & 0xff) == 0; });
        const auto narrow = [=](std::uint16_t value) {
            return static_cast<std::uint8_t>(lowOnly ? value : highOnly ? value >> 8 : Narrow16(value));
        };
        for (std::size_t i = 0; i < count; ++i)
            palette_.push_back({narrow(blue[i]), narrow(green[i]), narrow(red[i]), 255});
    } else if (route_ == Route::Indexed) {
        const auto maximum = static_cast<std::uint32_t>(count - 1);
        for (std::uint32_t i = 0; i < count; ++i)
            palette_.push_back(Grey(ScaleTo8Bits(darkIsHigh_ ? maximum - i : i, maximum)));
        plainGreys_ = layout_.bits == 8 && !darkIsHigh_ && !profile_;
    }
    if (profile_ && !palette_.empty()) profile_->ConvertPixels(palette_);
}

void TifColors::MakeYCbCr(TIFF* handle) {
    if (layout_.photometric != PHOTOMETRIC_YCBCR) return;
    std::array<float, 3> luma = {0.299f, 0.587f, 0.114f};
    std::array<float, 6> range = {0, 255, 128, 255, 128, 255};
    const float* found = nullptr;
    if (TIFFGetFieldDefaulted(handle, TIFFTAG_YCBCRCOEFFICIENTS, &found) && found)
        std::copy_n(found, luma.size(), luma.begin());
    if (TIFFGetFieldDefaulted(handle, TIFFTAG_REFERENCEBLACKWHITE, &found) && found)
        std::copy_n(found, range.size(), range.begin());
    yCbCr_.emplace(luma, range);
}

void TifColors::Convert(std::span<const Bytes> lines, std::uint32_t rowInLine, bool swapped,
                        std::span<Pixel> pixels) {
    const Bytes line = lines.front();
    switch (route_) {
        case Route::Unknown:
            return;
        case Route::Indexed:
            return ConvertIndexed(line, pixels);
        case Route::Rgb:
            RgbToPixels(line, pixels);
            break;
        case Route::Rgba:
            RgbaToPixels(line, pixels);
            if (layout_.premultiplied) Unpremultiply(pixels);
            break;
        case Route::Cmyk:
            if (profile_) return profile_->ConvertCmyk(line.first(4 * pixels.size()), pixels);
            return CmykToPixels(line.first(4 * pixels.size()), pixels);
        case Route::Blocks:
            yCbCr_->ConvertRow(line, layout_.blockWidth, layout_.blockHeight, rowInLine, pixels);
            break;
        case Route::Wide:
            return ConvertWide(lines, swapped, pixels);
    }
    if (profile_) profile_->ConvertPixels(pixels);
}

void TifColors::ConvertIndexed(Bytes line, std::span<Pixel> pixels) {
    if (plainGreys_) return GreyToPixels(line, pixels);
    if (layout_.bits == 8) return PaletteToPixels(line, palette_, pixels);
    bytes_.resize(pixels.size());
    if (layout_.bits == 1 || layout_.bits == 2 || layout_.bits == 4) {
        UnpackBits(line, layout_.bits, bytes_);
    } else {
        interleaved_.resize(pixels.size());
        UnpackTifSamples(line, {layout_.bits, TifSampleKind::Index}, interleaved_);
        std::copy(interleaved_.begin(), interleaved_.end(), bytes_.begin());
    }
    PaletteToPixels(bytes_, palette_, pixels);
}

void TifColors::ConvertWide(std::span<const Bytes> lines, bool swapped, std::span<Pixel> pixels) {
    UnpackChannels(lines, swapped, pixels.size());
    if (layout_.premultiplied) DivideByAlpha();
    WideToPixels(pixels);
    if (profile_ && palette_.empty() && layout_.photometric != PHOTOMETRIC_SEPARATED)
        profile_->ConvertPixels(pixels);
    if (!HasAlpha()) return;
    const auto& alpha = channels_[static_cast<std::size_t>(layout_.Colors())];
    // Next to an index, alpha has been unpacked like one.
    const std::uint32_t opaque =
        layout_.photometric == PHOTOMETRIC_PALETTE ? (1u << layout_.bits) - 1 : 65535u;
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i].a = ScaleTo8Bits(alpha[i], opaque);
}

void TifColors::UnpackChannels(std::span<const Bytes> lines, bool swapped, std::size_t width) {
    const auto colors = static_cast<std::size_t>(layout_.Colors());
    const std::size_t count = colors + (HasAlpha() ? 1 : 0);
    for (std::size_t c = 0; c < count; ++c) channels_[c].resize(width);
    const TifSampleType type = SampleType(swapped);
    if (layout_.planar) {
        for (std::size_t c = 0; c < count; ++c) UnpackTifSamples(lines[c], type, channels_[c]);
        return;
    }
    const auto samples = static_cast<std::size_t>(layout_.samples);
    interleaved_.resize(width * samples);
    UnpackTifSamples(lines.front(), type, interleaved_);
    for (std::size_t c = 0; c < count; ++c) {
        const std::size_t offset = c < colors ? c : static_cast<std::size_t>(layout_.alphaSample);
        for (std::size_t i = 0; i < width; ++i) channels_[c][i] = interleaved_[i * samples + offset];
    }
}

/// Before the samples are rounded to 8 bits: dark and nearly transparent ones would keep hardly any colour.
void TifColors::DivideByAlpha() {
    if (layout_.photometric == PHOTOMETRIC_PALETTE) return;
    const auto colors = static_cast<std::size_t>(layout_.Colors());
    const auto& alpha = channels_[colors];
    for (std::size_t c = 0; c < colors; ++c)
        for (std::size_t i = 0; i < alpha.size(); ++i) {
            if (alpha[i] == 0) continue;
            const std::uint32_t straight = (channels_[c][i] * 65535u + alpha[i] / 2u) / alpha[i];
            channels_[c][i] = static_cast<std::uint16_t>(std::min(straight, 65535u));
        }
}

void TifColors::WideToPixels(std::span<Pixel> pixels) {
    const auto byte = [this](std::size_t channel, std::size_t i) { return Narrow16(channels_[channel][i]); };
    switch (layout_.photometric) {
        case PHOTOMETRIC_PALETTE:
            for (std::size_t i = 0; i < pixels.size(); ++i)
                pixels[i] = palette_[std::min<std::size_t>(channels_[0][i], palette_.size() - 1)];
            return;
        case PHOTOMETRIC_RGB:
            for (std::size_t i = 0; i < pixels.size(); ++i)
                pixels[i] = {byte(2, i), byte(1, i), byte(0, i), 255};
            return;
        case PHOTOMETRIC_YCBCR:
            for (std::size_t i = 0; i < pixels.size(); ++i)
                pixels[i] = yCbCr_->Convert(byte(0, i), byte(1, i), byte(2, i));
            return;
        case PHOTOMETRIC_SEPARATED:
            return WideInksToPixels(pixels);
        case PHOTOMETRIC_CIELAB:
        case PHOTOMETRIC_ICCLAB:
            return WideLabToPixels(pixels);
        default:
            for (std::size_t i = 0; i < pixels.size(); ++i) {
                const std::uint8_t level = byte(0, i);
                pixels[i] = Grey(darkIsHigh_ ? static_cast<std::uint8_t>(255 - level) : level);
            }
    }
}

void TifColors::WideInksToPixels(std::span<Pixel> pixels) {
    bytes_.resize(4 * pixels.size());
    for (std::size_t i = 0; i < bytes_.size(); ++i) bytes_[i] = Narrow16(channels_[i % 4][i / 4]);
    if (profile_) return profile_->ConvertCmyk(bytes_, pixels);
    CmykToPixels(bytes_, pixels);
}

void TifColors::WideLabToPixels(std::span<Pixel> pixels) const {
    const bool colored = layout_.Colors() == 3;
    const bool centred = layout_.photometric == PHOTOMETRIC_ICCLAB || layout_.format == SAMPLEFORMAT_IEEEFP;
    const std::uint16_t neutral = centred ? 0x8000 : 0;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = LabFromSamples(layout_, channels_[0][i], colored ? channels_[1][i] : neutral,
                                   colored ? channels_[2][i] : neutral);
}

}  // namespace tessara
