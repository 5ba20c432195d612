#pragma once

#include <array>
#include <cstdint>

#include "core/Bytes.h"
#include "core/Result.h"
#include "core/rastx/Picture.h"

namespace tessara::pcx {

inline constexpr std::size_t kHeaderSize = 128;

/// What stands before the lines of a PCX file.
struct Header {
    std::uint8_t version = 0;
    bool runLengths = false;
    unsigned bits = 0;
    unsigned planes = 0;
    std::size_t width = 0;
    std::size_t height = 0;
    Resolution resolution;
    bool cgaScreen = false;  ///< made on a screen of 320 x 200
    std::array<std::uint8_t, 48> palette{};
    std::size_t planeBytes = 0;  ///< of one line

    bool StoresAlpha() const { return planes == 4 && bits == 8; }
    std::size_t LineBytes() const { return planeBytes * planes; }
    /// What a line of a plane needs; the file's own figure may be larger, and in odd files smaller.
    std::size_t NeededPlaneBytes() const { return (width * bits + 7) / 8; }
};

/// The pair of bits per pixel and planes as one number: 10 for each bit and 1 for each plane.
constexpr unsigned Combination(unsigned bits, unsigned planes) {
    return 10 * bits + planes;
}

/// Refuses combinations that no known program writes.
Result<Header> ReadHeader(Bytes file);

}  // namespace tessara::pcx
