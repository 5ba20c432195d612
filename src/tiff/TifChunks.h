#pragma once

#include <isa-l/igzip_lib.h>

#include <cstdint>
#include <memory>

#include "core/Bytes.h"
#include "core/LargeBuffer.h"
#include "tiff/TifFile.h"

namespace tessara {

/// The lines of one strip or tile, unpacked. A damaged one has fewer than the directory promises, maybe none.
struct TifChunk {
    Bytes bytes;
    std::uint32_t lines = 0;
    bool swapped = false;  ///< samples of several bytes are still in the file's byte order

    Bytes Line(std::uint32_t line, std::size_t bytesPerLine) const {
        return bytes.subspan(line * bytesPerLine, bytesPerLine);
    }
};

/// Unpacks strips and tiles: uncompressed ones are handed out as they lie in the file, LZW and Deflate are
/// unpacked here in about half of libtiff's time, the rest by libtiff.
class TifChunkReader {
  public:
    /// A chunk of the file must fit into memory.
    explicit TifChunkReader(const TifFile& file);

    /// The first `lines` lines of a chunk. They stay valid until the next call.
    TifChunk Read(std::uint32_t index, std::uint32_t lines);

  private:
    Bytes Stored(std::uint32_t index) const;
    bool UnpacksHere(Bytes stored) const;
    TifChunk Unpack(Bytes stored, std::uint32_t lines);
    std::size_t Inflate(Bytes stored, std::span<std::uint8_t> target);
    TifChunk ReadWithLibtiff(std::uint32_t index, Bytes stored, std::uint32_t lines);
    bool DecodeWithLibtiff(std::uint32_t index, Bytes stored, std::uint32_t lines);
    std::span<std::uint8_t> Unpacked(std::uint32_t lines);

    const TifFile& file_;
    const TifLayout& layout_;
    std::size_t bytesPerLine_;
    LargeBuffer buffer_;
    ByteVector reversible_;
    std::unique_ptr<inflate_state> inflate_;
};

}  // namespace tessara
