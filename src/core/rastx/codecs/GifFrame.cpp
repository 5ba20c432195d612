#include "core/rastx/codecs/GifFrame.h"

#include "core/rastx/Rows.h"
#include "core/rastx/codecs/GifFormat.h"

// Graphics Interchange Format, version 89a (CompuServe, 1990). All numbers are little-endian.
//
//   "GIF89a"
//   screen    u16 width, height; u8 flags, background, aspect; 3 * 2^n bytes of palette where flags say so
//   blocks    0x21 label, sub-blocks                       extension; label 0xF9 tells the transparent index
//             0x2C u16 left, top, width, height; u8 flags;  picture
//                  palette; u8 minimum code size; sub-blocks of LZW codes
//             0x3B                                          end
//   sub-blocks are a length byte and as many bytes each, the last one of length 0

namespace tessara::gif {
namespace {

GifPalette ReadPalette(ByteReader& reader, std::uint8_t flags) {
    if (!(flags & kHasPalette)) return {};
    const std::size_t entries = std::size_t{2} << (flags & 7);
    const Bytes colors = reader.TakeUpTo(3 * entries);
    GifPalette palette(colors.size() / 3);
    RgbToPixels(colors, palette);
    return palette;
}

/// Joins the data of sub-blocks up to the closing one, or as far as the file goes.
ByteVector ReadSubBlocks(ByteReader& reader) {
    ByteVector data;
    while (const std::uint8_t length = reader.U8()) {
        const Bytes block = reader.TakeUpTo(length);
        data.insert(data.end(), block.begin(), block.end());
    }
    return data;
}

/// The transparent index where the extension is a graphic control that names one, else what held before.
int ReadExtension(ByteReader& reader, int transparentIndex) {
    const std::uint8_t label = reader.U8();
    const ByteVector data = ReadSubBlocks(reader);
    if (label != kGraphicControl || data.size() < 4) return transparentIndex;
    return data[0] & kTransparency ? data[3] : -1;
}

Frame ReadFrame(ByteReader& reader, const Screen& screen, int transparentIndex) {
    Frame frame;
    frame.left = reader.U16Le();
    frame.top = reader.U16Le();
    frame.width = reader.U16Le();
    frame.height = reader.U16Le();
    const std::uint8_t flags = reader.U8();
    frame.interlaced = flags & kInterlaced;
    frame.palette = ReadPalette(reader, flags);
    if (frame.palette.empty()) frame.palette = screen.palette;
    frame.transparentIndex = transparentIndex;
    frame.minimumCodeSize = reader.U8();
    frame.codes = ReadSubBlocks(reader);
    return frame;
}

}  // namespace

Screen ReadScreen(ByteReader& reader) {
    Screen screen;
    reader.Skip(6);
    screen.width = reader.U16Le();
    screen.height = reader.U16Le();
    const std::uint8_t flags = reader.U8();
    reader.Skip(2);
    screen.palette = ReadPalette(reader, flags);
    return screen;
}

Result<Frame> FindFirstFrame(ByteReader& reader, const Screen& screen) {
    int transparentIndex = -1;
    while (!reader.AtEnd()) {
        const std::uint8_t introducer = reader.U8();
        if (introducer == kTrailer) break;
        if (introducer == kExtension) transparentIndex = ReadExtension(reader, transparentIndex);
        if (introducer != kImage) continue;
        Frame frame = ReadFrame(reader, screen, transparentIndex);
        if (frame.width > 0 && frame.height > 0) return frame;
        transparentIndex = -1;
    }
    return Damaged("the file holds no picture");
}

}  // namespace tessara::gif
