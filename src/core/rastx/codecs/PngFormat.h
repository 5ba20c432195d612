#pragma once

#include <cstdint>
#include <string_view>

/// What reading and writing PNG (ISO/IEC 15948) have in common.
///   signature, then chunks: u32 length, four letters, the data, u32 CRC-32 of letters and data
///   IHDR: u32 width, u32 height, u8 bits per sample, u8 colour type, u8 0, u8 0, u8 interlaced
namespace tessara::png {

inline constexpr std::string_view kSignature = "\x89PNG\r\n\x1a\n";

enum ColorType : std::uint8_t { kGrey = 0, kRgb = 2, kPalette = 3, kGreyAlpha = 4, kRgbAlpha = 6 };

constexpr int ChannelsOf(std::uint8_t colorType) {
    return colorType == kRgb ? 3 : colorType == kGreyAlpha ? 2 : colorType == kRgbAlpha ? 4 : 1;
}

constexpr double kInchesPerMetre = 1 / 0.0254;

}  // namespace tessara::png
