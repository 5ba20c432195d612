#pragma once

#include <cstdint>
#include <vector>

#include "core/Result.h"
#include "core/rastx/codecs/Dib.h"

/// What stands before the pixels of a device independent bitmap.
namespace tessara::dib {

inline constexpr std::uint32_t kCoreSize = 12;
inline constexpr std::uint32_t kV5Size = 124;

enum Compression : std::uint32_t {
    kPlain = 0,
    kRle8 = 1,
    kRle4 = 2,
    kBitFields = 3,
    kJpegOrRle24 = 4,
    kPng = 5,
    kAlphaBitFields = 6,
};

enum class Layout { Rows, Rle4, Rle8, Rle24, Embedded };

struct Masks {
    std::uint32_t red = 0, green = 0, blue = 0, alpha = 0;
};

struct DibHeader {
    std::uint32_t size = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool topDown = false;
    std::uint32_t planes = 0;
    unsigned bitsPerPixel = 0;
    std::uint32_t compression = kPlain;
    std::uint32_t colorsUsed = 0;
    Resolution resolution;
    Masks masks;
    std::uint64_t tableStart = 0;
    Layout layout = Layout::Rows;

    bool Core() const { return size == kCoreSize; }
    bool Indexed() const { return layout != Layout::Embedded && bitsPerPixel <= 8; }
    std::uint64_t UnpaddedRow() const { return (static_cast<std::uint64_t>(width) * bitsPerPixel + 7) / 8; }
    std::uint64_t Stride() const { return (UnpaddedRow() + 3) / 4 * 4; }
    std::uint64_t MaskStride() const { return (static_cast<std::uint64_t>(width) + 31) / 32 * 4; }
};

/// Reads an info header of any size and its masks; the layout is left to FindLayout.
Result<DibHeader> ParseHeader(Bytes dib);
/// What the pair of compression and bits per pixel stands for; OS/2 and Windows share number 4.
Result<Layout> FindLayout(const DibHeader& header);

struct ColorTable {
    std::vector<Pixel> colors;
    std::uint64_t end = 0;  ///< from the start of the info header
};

/// Reads the colours of indexed pixels. Deeper pixels may come with a table as a hint, which is only skipped.
ColorTable ReadColorTable(Bytes dib, const DibHeader& header, const DibOptions& dibOptions);

/// A header that claims much and brings next to nothing is not worth the memory it asks for. Small pictures
/// get the benefit of the doubt.
Result<void> CheckAgainstData(std::uint64_t pixels, std::uint64_t needed, std::uint64_t present);

}  // namespace tessara::dib
