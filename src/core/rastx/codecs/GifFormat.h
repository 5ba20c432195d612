#pragma once

#include <cstdint>

/// What reading and writing GIF have in common: the marks and flags of its blocks, and the limits of its
/// codes.
namespace tessara::gif {

inline constexpr std::uint8_t kExtension = 0x21;
inline constexpr std::uint8_t kImage = 0x2C;
inline constexpr std::uint8_t kTrailer = 0x3B;
inline constexpr std::uint8_t kGraphicControl = 0xF9;
inline constexpr std::uint8_t kHasPalette = 0x80;
inline constexpr std::uint8_t kInterlaced = 0x40;
inline constexpr std::uint8_t kTransparency = 0x01;

inline constexpr int kLargestCodeSize = 12;
inline constexpr unsigned kCodes = 1u << kLargestCodeSize;

}  // namespace tessara::gif
