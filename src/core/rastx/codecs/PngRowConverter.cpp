#include "core/rastx/codecs/PngRowConverter.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/PngStream.h"

namespace tessara::png {
namespace {

/// Samples of 16 bits to 8; alpha knows no gamma.
void NarrowSamples(Bytes row, std::span<std::uint8_t> samples, std::span<const std::uint8_t> gamma,
                   std::size_t channels, bool alpha) {
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto value = static_cast<std::uint32_t>(row[2 * i] << 8 | row[2 * i + 1]);
        const bool colored = !gamma.empty() && !(alpha && i % channels == channels - 1);
        samples[i] = colored ? gamma[value] : Narrow16(value);
    }
}

}  // namespace

RowConverter::RowConverter(const Description& description)
    : description_(description), header_(description.header) {
    const bool grey = header_.colorType == kGrey || header_.colorType == kGreyAlpha;
    if (!description.isSrgb && !description.compressedProfile.empty())
        profile_ = ColorProfile::Open(InflateProfile(description.compressedProfile),
                                      grey ? SampleColors::Grey : SampleColors::Rgb);
    else if (!description.isSrgb)
        MakeGamma();
    samples_.resize(static_cast<std::size_t>(header_.width * ChannelsOf(header_.colorType)));
    if (Indexed()) MakePalette();
}

/// A table for samples of another gamma than that of sRGB, which is 1/2.2 in this respect.
void RowConverter::MakeGamma() {
    constexpr double kSlack = 0.05;  // what is hardly visible is not worth the rounding
    if (description_.gamma <= 0) return;
    const double exponent = 1 / (description_.gamma * 2.2);
    if (std::abs(exponent - 1) < kSlack) return;
    gamma_.resize(header_.depth == 16 ? 65536 : 256);
    const double last = static_cast<double>(gamma_.size() - 1);
    for (std::size_t i = 0; i < gamma_.size(); ++i)
        gamma_[i] =
            static_cast<std::uint8_t>(std::lround(255 * std::pow(static_cast<double>(i) / last, exponent)));
}

void RowConverter::MakePalette() {
    ByteReader transparency(description_.transparency);
    if (header_.colorType == kPalette) {
        palette_ = description_.palette;
        for (Pixel& color : palette_)
            if (!transparency.AtEnd()) color.a = transparency.U8();
    } else {
        const unsigned last = (1u << header_.depth) - 1;
        for (unsigned level = 0; level <= last; ++level) palette_.push_back(Grey(ScaleTo8Bits(level, last)));
        const std::uint16_t key = transparency.U16Be();
        if (!transparency.Overrun() && key <= last) palette_[key].a = 0;
    }
    Correct(palette_);
}

void RowConverter::Correct(std::span<Pixel> pixels) const {
    if (profile_) profile_->ConvertPixels(pixels);
    if (gamma_.size() != 256) return;
    for (Pixel& pixel : pixels) pixel = {gamma_[pixel.b], gamma_[pixel.g], gamma_[pixel.r], pixel.a};
}

void RowConverter::Convert(Bytes row, std::span<Pixel> pixels) {
    const std::span samples =
        std::span(samples_).first(pixels.size() * static_cast<std::size_t>(ChannelsOf(header_.colorType)));
    if (Indexed()) {
        UnpackBits(row, header_.depth, samples);
        PaletteToPixels(samples, palette_, pixels);
        return;
    }
    if (header_.depth == 16) {
        NarrowSamples(row, samples, gamma_.size() > 256 ? gamma_ : std::vector<std::uint8_t>(),
                      static_cast<std::size_t>(ChannelsOf(header_.colorType)),
                      header_.colorType & kGreyAlpha);
        ConvertColors(samples, pixels);
    } else {
        ConvertColors(row, pixels);
    }
    if (!description_.transparency.empty()) ApplyKey(row, pixels);
    Correct(pixels);
}

void RowConverter::ConvertColors(Bytes samples, std::span<Pixel> pixels) {
    switch (header_.colorType) {
        case kGrey:
            return GreyToPixels(samples, pixels);
        case kGreyAlpha:
            return GreyAlphaToPixels(samples, pixels);
        case kRgb:
            return RgbToPixels(samples, pixels);
        default:
            return RgbaToPixels(samples, pixels);
    }
}

/// The one colour that is transparent, compared in the file's own depth.
void RowConverter::ApplyKey(Bytes row, std::span<Pixel> pixels) const {
    if ((header_.colorType & kGreyAlpha) != 0) return;
    const std::size_t sampleSize = header_.depth == 16 ? 2 : 1;
    const std::size_t size = header_.BytesPerPixel();
    std::array<std::uint8_t, 6> key{};
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t from = sampleSize == 2 ? i : 2 * i + 1;
        if (from >= description_.transparency.size()) return;
        key[i] = description_.transparency[from];
    }
    for (std::size_t x = 0; x < pixels.size(); ++x)
        if (std::equal(key.begin(), key.begin() + static_cast<std::ptrdiff_t>(size),
                       row.begin() + static_cast<std::ptrdiff_t>(x * size)))
            pixels[x].a = 0;
}

}  // namespace tessara::png
