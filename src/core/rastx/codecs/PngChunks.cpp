#include "core/rastx/codecs/PngChunks.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>

#include "core/rastx/Exif.h"
#include "core/rastx/Rows.h"

namespace tessara::png {

Chunk ReadChunk(ByteReader& reader) {
    const std::uint32_t length = reader.U32Be();
    const Bytes start = reader.Rest();
    const Bytes type = reader.Take(4);
    if (type.empty()) return {};
    Chunk chunk{{reinterpret_cast<const char*>(type.data()), type.size()}, reader.TakeUpTo(length)};
    const std::uint32_t crc = reader.U32Be();
    // Pixels are not held to their checksum: what inflates is shown.
    if (chunk.type != "IDAT")
        chunk.intact =
            chunk.data.size() == length && libdeflate_crc32(0, start.data(), chunk.data.size() + 4) == crc;
    return chunk;
}

Result<Header> ReadHeader(const Chunk& chunk, std::size_t fileSize, const Limits& limits) {
    ByteReader reader(chunk.data);
    Header header{reader.U32Be(), reader.U32Be(), reader.U8(), reader.U8(), false};
    const std::uint8_t compression = reader.U8();
    const std::uint8_t filters = reader.U8();
    const std::uint8_t interlace = reader.U8();
    if (chunk.type != "IHDR" || !chunk.intact || reader.Overrun()) return Damaged("the header is damaged");
    const int depth = header.depth;
    const bool small = depth == 1 || depth == 2 || depth == 4;
    bool known = false;
    switch (header.colorType) {
        case kGrey:
            known = small || depth == 8 || depth == 16;
            break;
        case kPalette:
            known = small || depth == 8;
            break;
        case kRgb:
        case kGreyAlpha:
        case kRgbAlpha:
            known = depth == 8 || depth == 16;
            break;
    }
    if (!known || compression != 0 || filters != 0 || interlace > 1)
        return Unsupported("an unknown form of PNG");
    header.interlaced = interlace == 1;
    TRY(limits.Check(header.width, header.height));
    // Deflate shrinks to a thousandth at best; of a file that is cut short a sixteenth should be there.
    constexpr std::uint64_t kMostGrowth = 1032 * 16;
    const std::uint64_t inflated = header.RowSize(header.width) * static_cast<std::uint64_t>(header.height);
    if (inflated / kMostGrowth > fileSize) return Damaged("the file is too short for its picture");
    return header;
}

namespace {

void ReadPalette(Bytes data, Description& description) {
    description.palette.resize(std::min<std::size_t>(data.size() / 3, 256));
    RgbToPixels(data, description.palette);
}

void ReadResolution(Bytes data, Description& description) {
    ByteReader reader(data);
    const double x = reader.U32Be();
    const double y = reader.U32Be();
    constexpr int kMetre = 1;
    if (reader.U8() == kMetre) description.metadata.resolution = {x / kInchesPerMetre, y / kInchesPerMetre};
}

void ReadExifChunk(Bytes data, Description& description) {
    // The picture is shown as it is stored, so its EXIF block must not turn it elsewhere.
    if (ByteVector block = UprightExif(data); !block.empty())
        description.metadata.exif = std::make_shared<const ByteVector>(std::move(block));
}

/// The name of a profile ends with a zero, one byte for the method follows.
Bytes ProfileIn(Bytes data) {
    const auto end = std::find(data.begin(), data.end(), std::uint8_t{0});
    return Slice(data, static_cast<std::uint64_t>(end - data.begin()) + 2);
}

}  // namespace

void ReadAncillary(const Chunk& chunk, Description& description) {
    if (chunk.type == "PLTE") ReadPalette(chunk.data, description);
    if (!chunk.intact) return;
    if (chunk.type == "tRNS") description.transparency = chunk.data;
    if (chunk.type == "gAMA") description.gamma = ByteReader(chunk.data).U32Be() / 100'000.0;
    if (chunk.type == "sRGB") description.isSrgb = true;
    if (chunk.type == "iCCP") description.compressedProfile = ProfileIn(chunk.data);
    if (chunk.type == "pHYs") ReadResolution(chunk.data, description);
    if (chunk.type == "eXIf") ReadExifChunk(chunk.data, description);
}

}  // namespace tessara::png
