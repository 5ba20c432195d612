#pragma once

#include <cstdint>
#include <string_view>

#include "core/Bytes.h"
#include "core/Result.h"

/// What reading and writing TGA have in common: the header before the pixels, and what follows them.
namespace tessara::tga {

inline constexpr std::size_t kHeaderSize = 18;
inline constexpr std::uint8_t kRunLengthKind = 8;
inline constexpr std::uint8_t kFromRight = 0x10;
inline constexpr std::uint8_t kFromTop = 0x20;
inline constexpr std::uint8_t kInterleaved = 0xc0;

inline constexpr std::string_view kFooterSignature{"TRUEVISION-XFILE.\0", 18};
inline constexpr std::size_t kFooterSize = 26;
inline constexpr std::size_t kExtensionSize = 495;
inline constexpr std::size_t kAttributesOffset = 494;

/// Pixels that one packet holds at most; bit 7 of its first byte tells a repeated pixel.
inline constexpr std::size_t kPacketPixels = 128;
inline constexpr std::uint8_t kRepeat = 0x80;

enum class Kind : std::uint8_t { Mapped = 1, Color = 2, Grey = 3 };

/// The last byte of the extension area.
enum class Attributes : int {
    NotTold = -1,
    NoAlpha = 0,
    Undefined = 1,
    UndefinedButKept = 2,
    Straight = 3,
    Premultiplied = 4
};

/// What the alpha bits of the pixels are taken for; Unsure is settled by their values.
enum class AlphaUse { None, Unsure, Straight, Premultiplied };

struct Header {
    std::uint8_t identification = 0;
    std::uint8_t mapType = 0;
    Kind kind{};
    bool runLengths = false;
    std::uint16_t mapFirst = 0;
    std::uint16_t mapEntries = 0;
    std::uint8_t mapBits = 0;
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint8_t bits = 0;
    std::uint8_t descriptor = 0;

    int AlphaBits() const { return descriptor & 0x0f; }
    /// Whether pixels or map entries have bits that may be alpha.
    bool StoresAlpha() const {
        const int colorBits = kind == Kind::Mapped ? mapBits : bits;
        return colorBits == 32 || (colorBits == 16 && (kind == Kind::Grey || AlphaBits() > 0));
    }
    std::size_t PixelBytes() const { return (bits + 7u) / 8; }
    std::size_t MapBytes() const { return mapType == 0 ? 0 : mapEntries * ((mapBits + 7u) / 8); }
    std::size_t MapOffset() const { return kHeaderSize + identification; }
    std::size_t PixelsOffset() const { return MapOffset() + MapBytes(); }
    std::uint64_t PixelCount() const { return std::uint64_t{width} * height; }
};

bool IsColorDepth(int bits);
/// Refuses what no decoder could make sense of.
Result<Header> ReadHeader(Bytes file);
/// Pixels that the file can hold at most.
std::uint64_t PossiblePixels(const Header& header, Bytes file);
bool HasFooter(Bytes file);
/// By the extension area where there is one, else by the header.
AlphaUse AlphaUseOf(const Header& header, Bytes file);

}  // namespace tessara::tga
