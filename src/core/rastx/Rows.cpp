#include "core/rastx/Rows.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>

#include "core/Multiversion.h"

namespace tessara {
namespace {

// The loops work on plain pointers: the vectoriser then sees the strides.
TESSARA_MULTIVERSION void ExpandThree(const std::uint8_t* in, std::size_t count, std::uint8_t* out, int first,
                                      int third) {
    if (first == 0 && third == 2) {
        for (std::size_t i = 0; i < count; ++i) {
            out[4 * i] = in[3 * i];
            out[4 * i + 1] = in[3 * i + 1];
            out[4 * i + 2] = in[3 * i + 2];
            out[4 * i + 3] = 255;
        }
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            out[4 * i] = in[3 * i + 2];
            out[4 * i + 1] = in[3 * i + 1];
            out[4 * i + 2] = in[3 * i];
            out[4 * i + 3] = 255;
        }
    }
}

TESSARA_MULTIVERSION void PackBgr(const std::uint8_t* in, std::size_t count, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        out[3 * i] = in[4 * i];
        out[3 * i + 1] = in[4 * i + 1];
        out[3 * i + 2] = in[4 * i + 2];
    }
}

TESSARA_MULTIVERSION void PackRgb(const std::uint8_t* in, std::size_t count, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        out[3 * i] = in[4 * i + 2];
        out[3 * i + 1] = in[4 * i + 1];
        out[3 * i + 2] = in[4 * i];
    }
}

TESSARA_MULTIVERSION void SwapRedBlue(const std::uint8_t* in, std::size_t count, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t value;
        std::memcpy(&value, in + 4 * i, 4);
        value = (value & 0xff00ff00u) | ((value >> 16) & 0xffu) | ((value & 0xffu) << 16);
        std::memcpy(out + 4 * i, &value, 4);
    }
}

TESSARA_MULTIVERSION std::uint8_t AndOfAlpha(const std::uint8_t* in, std::size_t count) {
    std::uint32_t all = 0xffffffffu;
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t value;
        std::memcpy(&value, in + 4 * i, 4);
        all &= value;
    }
    return static_cast<std::uint8_t>(all >> 24);
}

TESSARA_MULTIVERSION void LumaOf(const std::uint8_t* in, std::size_t count, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i)
        out[i] = static_cast<std::uint8_t>(
            (19595u * in[4 * i + 2] + 38470u * in[4 * i + 1] + 7471u * in[4 * i] + 32768u) >> 16);
}

TESSARA_MULTIVERSION void Compose(const std::uint8_t* in, std::size_t count, const std::uint8_t* background,
                                  std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t alpha = in[4 * i + 3];
        for (std::size_t c = 0; c < 3; ++c) {
            const std::uint32_t sum = in[4 * i + c] * alpha + background[c] * (255 - alpha) + 128;
            out[4 * i + c] = static_cast<std::uint8_t>((sum + (sum >> 8)) >> 8);
        }
        out[4 * i + 3] = 255;
    }
}

TESSARA_MULTIVERSION void InterleavePlanes(const std::uint8_t* red, const std::uint8_t* green,
                                           const std::uint8_t* blue, const std::uint8_t* alpha,
                                           std::size_t count, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t value = blue[i] | std::uint32_t{green[i]} << 8 | std::uint32_t{red[i]} << 16 |
                                    (alpha ? std::uint32_t{alpha[i]} : 255u) << 24;
        std::memcpy(out + 4 * i, &value, 4);
    }
}

/// Samples that share a byte, eight or fewer at a time: the inner loop has a fixed length then.
template <unsigned bits>
void UnpackSmallSamples(const std::uint8_t* in, std::size_t count, std::uint8_t* out) {
    constexpr unsigned kPerByte = 8 / bits;
    constexpr unsigned kMask = (1u << bits) - 1;
    const auto unpack = [](unsigned byte, std::size_t samples, std::uint8_t* to) {
        for (std::size_t k = 0; k < samples; ++k)
            to[k] = static_cast<std::uint8_t>((byte >> (8 - bits - bits * k)) & kMask);
    };
    const std::size_t whole = count / kPerByte;
    for (std::size_t i = 0; i < whole; ++i) unpack(in[i], kPerByte, out + i * kPerByte);
    if (count % kPerByte > 0) unpack(in[whole], count % kPerByte, out + whole * kPerByte);
}

const std::uint8_t* BytesOf(std::span<const Pixel> pixels) {
    return reinterpret_cast<const std::uint8_t*>(pixels.data());
}
std::uint8_t* BytesOf(std::span<Pixel> pixels) {
    return reinterpret_cast<std::uint8_t*>(pixels.data());
}

}  // namespace

void UnpackBits(Bytes packed, int bitsPerSample, std::span<std::uint8_t> samples) {
    assert(packed.size() * 8 >= samples.size() * static_cast<std::size_t>(bitsPerSample));
    if (bitsPerSample == 8) {
        std::copy_n(packed.begin(), samples.size(), samples.begin());
        return;
    }
    switch (bitsPerSample) {
        case 1:
            return UnpackSmallSamples<1>(packed.data(), samples.size(), samples.data());
        case 2:
            return UnpackSmallSamples<2>(packed.data(), samples.size(), samples.data());
        default:
            return UnpackSmallSamples<4>(packed.data(), samples.size(), samples.data());
    }
}

void PaletteToPixels(Bytes indexes, std::span<const Pixel> palette, std::span<Pixel> pixels) {
    std::array<Pixel, 256> full;
    full.fill(kBlack);
    std::copy_n(palette.begin(), std::min<std::size_t>(palette.size(), full.size()), full.begin());
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = full[indexes[i]];
}

void GreyToPixels(Bytes grey, std::span<Pixel> pixels) {
    assert(grey.size() >= pixels.size());
    InterleavePlanes(grey.data(), grey.data(), grey.data(), nullptr, pixels.size(), BytesOf(pixels));
}

void GreyAlphaToPixels(Bytes greyAlpha, std::span<Pixel> pixels) {
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = Grey(greyAlpha[2 * i]);
        pixels[i].a = greyAlpha[2 * i + 1];
    }
}

void BgrToPixels(Bytes bgr, std::span<Pixel> pixels) {
    assert(bgr.size() >= 3 * pixels.size());
    ExpandThree(bgr.data(), pixels.size(), BytesOf(pixels), 0, 2);
}

void RgbToPixels(Bytes rgb, std::span<Pixel> pixels) {
    assert(rgb.size() >= 3 * pixels.size());
    ExpandThree(rgb.data(), pixels.size(), BytesOf(pixels), 2, 0);
}

void RgbaToPixels(Bytes rgba, std::span<Pixel> pixels) {
    assert(rgba.size() >= 4 * pixels.size());
    SwapRedBlue(rgba.data(), pixels.size(), BytesOf(pixels));
}

void PlanesToPixels(Bytes red, Bytes green, Bytes blue, Bytes alpha, std::span<Pixel> pixels) {
    const std::size_t count = pixels.size();
    assert(red.size() >= count && green.size() >= count && blue.size() >= count);
    assert(alpha.empty() || alpha.size() >= count);
    InterleavePlanes(red.data(), green.data(), blue.data(), alpha.empty() ? nullptr : alpha.data(), count,
                     BytesOf(pixels));
}

void PixelsToBgr(std::span<const Pixel> pixels, std::span<std::uint8_t> bgr) {
    assert(bgr.size() >= 3 * pixels.size());
    PackBgr(BytesOf(pixels), pixels.size(), bgr.data());
}

void PixelsToRgb(std::span<const Pixel> pixels, std::span<std::uint8_t> rgb) {
    assert(rgb.size() >= 3 * pixels.size());
    PackRgb(BytesOf(pixels), pixels.size(), rgb.data());
}

void PixelsToRgba(std::span<const Pixel> pixels, std::span<std::uint8_t> rgba) {
    assert(rgba.size() >= 4 * pixels.size());
    SwapRedBlue(BytesOf(pixels), pixels.size(), rgba.data());
}

void PixelsToLuma(std::span<const Pixel> pixels, std::span<std::uint8_t> luma) {
    assert(luma.size() >= pixels.size());
    LumaOf(BytesOf(pixels), pixels.size(), luma.data());
}

bool AllOpaque(std::span<const Pixel> pixels) {
    constexpr std::size_t kStep = 4096;  // a transparent corner is found without reading the whole picture
    for (std::size_t start = 0; start < pixels.size(); start += kStep)
        if (AndOfAlpha(BytesOf(pixels.subspan(start)), std::min(kStep, pixels.size() - start)) != 255)
            return false;
    return true;
}

void FlattenRow(std::span<const Pixel> pixels, Pixel background, std::span<Pixel> flat) {
    const std::uint8_t colors[] = {background.b, background.g, background.r};
    Compose(BytesOf(pixels), pixels.size(), colors, BytesOf(flat));
}

void Unpremultiply(std::span<Pixel> pixels) {
    for (Pixel& pixel : pixels) {
        if (pixel.a == 0 || pixel.a == 255) continue;
        const auto straight = [alpha = std::uint32_t{pixel.a}](std::uint32_t value) {
            return static_cast<std::uint8_t>(std::min(255u, (value * 255 + alpha / 2) / alpha));
        };
        pixel = {straight(pixel.b), straight(pixel.g), straight(pixel.r), pixel.a};
    }
}

}  // namespace tessara
