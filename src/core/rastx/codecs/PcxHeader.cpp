#include "core/rastx/codecs/PcxHeader.h"

#include <algorithm>
#include <cmath>

#include "core/ByteReader.h"

// PCX, after the ZSoft PCX File Format Technical Reference Manual. All numbers are little-endian.
//
//   0  u8       0x0a                                     65  u8   planes
//   1  u8       version, at most 5                       66  u16  bytes per line of a plane
//   2  u8       1 with run lengths, 0 without            68  u16  kind of palette, not to be relied on
//   3  u8       bits per pixel and plane                128  lines from top to bottom, plane after plane
//   4  u16 x4   left, top, right, bottom, inclusive          in each; 769 bytes before the end: 0x0c and
//  12  u16 x2   dots per inch, or the screen's size          the palette of 256 colours
//  16  u8 x48   palette of 16 colours, red green blue

namespace tessara::pcx {
namespace {

bool IsKnownCombination(unsigned bits, unsigned planes) {
    constexpr unsigned kKnown[] = {11, 12, 13, 14, 21, 41, 81, 83, 84, 241, 321};
    return planes < 10 && std::ranges::find(kKnown, Combination(bits, planes)) != std::end(kKnown);
}

/// Dots per inch stand where older programs put the size of the screen, so only figures of nearly square
/// pixels are believed.
Resolution PlausibleResolution(double x, double y) {
    constexpr double kMost = 10000;
    const bool square = std::abs(x - y) <= 0.1 * std::max(x, y);
    return x >= 1 && y >= 1 && x <= kMost && y <= kMost && square ? Resolution{x, y} : Resolution{};
}

}  // namespace

Result<Header> ReadHeader(Bytes file) {
    ByteReader reader(file);
    Header header;
    const std::uint8_t magic = reader.U8();
    header.version = reader.U8();
    const std::uint8_t encoding = reader.U8();
    header.bits = reader.U8();
    const int left = reader.U16Le();
    const int top = reader.U16Le();
    const int right = reader.U16Le();
    const int bottom = reader.U16Le();
    const std::uint16_t xDensity = reader.U16Le();
    const std::uint16_t yDensity = reader.U16Le();
    const Bytes palette = reader.Take(header.palette.size());
    reader.Skip(1);
    header.planes = reader.U8();
    header.planeBytes = reader.U16Le();
    reader.Seek(kHeaderSize);
    if (reader.Overrun()) return Damaged("the header is cut short");
    if (magic != 0x0a || header.version > 5 || encoding > 1) return Unsupported("no PCX picture");
    if (!IsKnownCombination(header.bits, header.planes)) return Unsupported("an unknown kind of pixels");
    if (right < left || bottom < top) return Damaged("the picture has no size");
    header.runLengths = encoding == 1;
    header.width = static_cast<std::size_t>(right - left + 1);
    header.height = static_cast<std::size_t>(bottom - top + 1);
    header.cgaScreen = (xDensity == 320 && yDensity == 200) || (header.width == 320 && header.height == 200);
    header.resolution = PlausibleResolution(xDensity, yDensity);
    std::ranges::copy(palette, header.palette.begin());
    // Lines that lack a little occur; a few bytes for thousands of pixels only cost memory.
    if (header.planeBytes < (header.NeededPlaneBytes() + 1) / 2) return Damaged("the lines are too short");
    return header;
}

}  // namespace tessara::pcx
