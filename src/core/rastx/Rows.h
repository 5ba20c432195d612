#pragma once

#include <cstdint>
#include <span>

#include "core/Bytes.h"
#include "core/rastx/Picture.h"

/// Conversions of one row between the layouts of files and pixels. The number of pixels is that of the pixel
/// span; the sample side must hold as many. Source and target may be the same where both are pixels.
namespace tessara {

/// Rounds `value` of the range 0 to `maximum` to the range 0 to 255.
constexpr std::uint8_t ScaleTo8Bits(std::uint32_t value, std::uint32_t maximum) {
    return value >= maximum ? 255
                            : static_cast<std::uint8_t>((std::uint64_t{value} * 255 + maximum / 2) / maximum);
}
/// 16 bits to 8, rounded: 65535 is 255.
constexpr std::uint8_t Narrow16(std::uint32_t value) {
    return static_cast<std::uint8_t>((value * 255 + 32895) >> 16);
}
/// a * b / 255, rounded, for values of 0 to 255.
constexpr std::uint8_t MultiplyBytes(std::uint32_t a, std::uint32_t b) {
    const std::uint32_t product = a * b + 128;
    return static_cast<std::uint8_t>((product + (product >> 8)) >> 8);
}

/// Samples of 1, 2, 4 or 8 bits, the leftmost in the most significant bits, to a byte each.
void UnpackBits(Bytes packed, int bitsPerSample, std::span<std::uint8_t> samples);
/// Indexes to colours; an index behind the palette's end is opaque black.
void PaletteToPixels(Bytes indexes, std::span<const Pixel> palette, std::span<Pixel> pixels);

void GreyToPixels(Bytes grey, std::span<Pixel> pixels);
void GreyAlphaToPixels(Bytes greyAlpha, std::span<Pixel> pixels);
void BgrToPixels(Bytes bgr, std::span<Pixel> pixels);
void RgbToPixels(Bytes rgb, std::span<Pixel> pixels);
void RgbaToPixels(Bytes rgba, std::span<Pixel> pixels);
/// Planes of equal length to pixels; an empty alpha plane makes opaque ones.
void PlanesToPixels(Bytes red, Bytes green, Bytes blue, Bytes alpha, std::span<Pixel> pixels);

void PixelsToBgr(std::span<const Pixel> pixels, std::span<std::uint8_t> bgr);
void PixelsToRgb(std::span<const Pixel> pixels, std::span<std::uint8_t> rgb);
void PixelsToRgba(std::span<const Pixel> pixels, std::span<std::uint8_t> rgba);
/// Luma by the weights of ITU-R BT.601 (0.299, 0.587, 0.114), rounded.
void PixelsToLuma(std::span<const Pixel> pixels, std::span<std::uint8_t> luma);
constexpr std::uint8_t Luma(Pixel pixel) {
    return static_cast<std::uint8_t>((19595u * pixel.r + 38470u * pixel.g + 7471u * pixel.b + 32768u) >> 16);
}

bool AllOpaque(std::span<const Pixel> pixels);
/// Composes each pixel on the background; the result is opaque.
void FlattenRow(std::span<const Pixel> pixels, Pixel background, std::span<Pixel> flat);
/// Premultiplied colours back to straight ones.
void Unpremultiply(std::span<Pixel> pixels);

}  // namespace tessara
