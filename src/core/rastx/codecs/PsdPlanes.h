#pragma once

#include <span>
#include <vector>

#include "core/Bytes.h"
#include "core/LargeBuffer.h"
#include "core/Result.h"

namespace tessara {

/// Planes of samples as a document stores them: plane after plane, each from top to bottom, behind a code for
/// their compression. Rows are decoded one at a time, in any order and from several threads.
class PsdPlanes {
  public:
    struct Shape {
        std::int64_t width = 0, height = 0;
        int depth = 0;
        int stored = 1;      ///< planes in the file
        int wanted = 1;      ///< of them, from the first, what will be asked for
        bool large = false;  ///< PSB: row lengths of 32 bits

        std::uint64_t RowBytes() const {
            return (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(depth) + 7) / 8;
        }
    };

    /// Fails where the data cannot hold even the first plane's beginning. `mostMemory` limits what is
    /// inflated.
    static Result<PsdPlanes> Open(Bytes stored, const Shape& shape, std::uint64_t mostMemory);

    /// How many rows of a plane, from the top, the file holds.
    std::int64_t RowsPresent(int plane) const;
    /// One row as samples of the document's depth; empty where the file does not hold it. The bytes lie in
    /// the file or in `scratch`, which has RowBytes.
    Bytes Row(int plane, std::int64_t row, std::span<std::uint8_t> scratch) const;
    std::uint64_t RowBytes() const { return shape_.RowBytes(); }

  private:
    enum class Compression : std::uint16_t { Raw = 0, PackBits = 1, Zip = 2, ZipPredicted = 3 };

    Result<void> ReadRowLengths(Bytes stored);
    Result<void> InflateAll(Bytes stored, std::uint64_t mostMemory);
    std::uint64_t Index(int plane, std::int64_t row) const {
        return static_cast<std::uint64_t>(plane) * static_cast<std::uint64_t>(shape_.height) +
               static_cast<std::uint64_t>(row);
    }

    Shape shape_;
    Compression compression_ = Compression::Raw;
    Bytes data_;  // the rows: in the file, or inflated
    LargeBuffer inflated_;
    std::vector<std::uint64_t> rowEnds_;  // PackBits: where each row ends in data_
};

}  // namespace tessara
