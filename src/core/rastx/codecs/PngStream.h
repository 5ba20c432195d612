#pragma once

#include <isa-l/igzip_lib.h>

#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "core/ByteReader.h"

/// The compressed parts of a PNG file. Streams are inflated piece by piece; no more than some rows are held.
namespace tessara::png {

/// Inflates a zlib stream that comes in pieces.
class Inflater {
  public:
    explicit Inflater(std::function<Bytes()> nextPiece);

    /// Fills `out`; gives less only at the end of the stream or of what can be inflated of it.
    std::size_t Read(std::span<std::uint8_t> out);

  private:
    std::size_t Step(std::span<std::uint8_t> out);
    void Feed();

    std::function<Bytes()> nextPiece_;
    std::unique_ptr<inflate_state> state_;
    bool ended_ = false;
};

/// A colour profile as its chunk holds it; cut where it is larger than any that makes sense.
ByteVector InflateProfile(Bytes compressed);

/// The pixel data of a file: filtered rows one behind the other.
class RowSource {
  public:
    RowSource(ByteReader chunks, Bytes firstPiece, std::size_t longestRow);

    /// The next `size` bytes, empty where the data end before.
    Bytes Take(std::size_t size);

  private:
    // Of each piece the inflater sets the last 32 KB aside for what refers to them.
    static constexpr std::size_t kBufferSize = std::size_t{256} << 10;

    Inflater inflater_;
    std::vector<std::uint8_t> buffer_;
    std::size_t begin_ = 0, end_ = 0;
};

}  // namespace tessara::png
