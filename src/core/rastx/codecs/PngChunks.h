#pragma once

#include <string_view>
#include <vector>

#include "core/ByteReader.h"
#include "core/Result.h"
#include "core/rastx/Picture.h"
#include "core/rastx/codecs/PngFormat.h"

/// The chunks of a PNG file, and what they say before the pixels.
namespace tessara::png {

struct Header {
    std::int64_t width = 0, height = 0;
    int depth = 0;
    std::uint8_t colorType = 0;
    bool interlaced = false;

    int BitsPerPixel() const { return depth * ChannelsOf(colorType); }
    std::size_t BytesPerPixel() const { return static_cast<std::size_t>(std::max(1, BitsPerPixel() / 8)); }
    std::size_t RowSize(std::int64_t pixels) const {
        return static_cast<std::size_t>((pixels * BitsPerPixel() + 7) / 8);
    }
};

struct Chunk {
    std::string_view type;
    Bytes data;
    bool intact = false;  ///< its CRC is right
};

/// Everything that is said before the pixels.
struct Description {
    Header header;
    std::vector<Pixel> palette;
    Bytes transparency;
    double gamma = 0;  ///< of the samples; 0 where nothing is said
    bool isSrgb = false;
    Bytes compressedProfile;
    Metadata metadata;
};

/// The next chunk, as far as the file holds it. At the end its type is empty.
Chunk ReadChunk(ByteReader& reader);
/// Refuses sizes beyond the limits, and those that a file of `fileSize` bytes cannot hold.
Result<Header> ReadHeader(const Chunk& chunk, std::size_t fileSize, const Limits& limits);
/// Takes over what a chunk says of colours, resolution and camera data. Other chunks, and damaged ones save
/// for the palette, are passed over.
void ReadAncillary(const Chunk& chunk, Description& description);

}  // namespace tessara::png
