#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "core/ByteReader.h"
#include "core/Result.h"
#include "core/rastx/codecs/PcdBitReader.h"
#include "core/rastx/codecs/PcdPlanes.h"

/// The larger sizes of a Photo CD picture: Huffman codes of what they differ from a smaller one enlarged.
namespace tessara::pcd {

inline constexpr unsigned kLongestCode = 16;

/// The code and difference for each value of the next 16 bits; length 0 where no code begins so.
class DifferenceTable {
  public:
    struct Entry {
        std::uint8_t length = 0;
        std::int8_t difference = 0;
    };

    static Result<DifferenceTable> Read(ByteReader& reader);
    Entry Find(std::uint32_t next16) const { return entries_[next16]; }
    unsigned Codes() const { return codes_; }

  private:
    DifferenceTable() : entries_(std::size_t{1} << kLongestCode) {}

    std::vector<Entry> entries_;
    unsigned codes_ = 0;
};

/// The plane that a row of differences belongs to, as its head counts; 1 does not occur.
enum PlaneNumber : unsigned { kLuma = 0, kBlueChroma = 2, kRedChroma = 3, kPlaneNumbers = 4 };

/// Adds rows of differences to predicted planes. A row stands behind 23 ones and a zero, at any bit, and 16
/// bits of its own: plane, row of luma, an unused one. The row behind the last ends the stream.
class DifferenceReader {
  public:
    explicit DifferenceReader(Bytes stream) : bits_(stream) {}

    void SetPlane(PlaneNumber number, Plane& plane, const DifferenceTable& table);

    /// Whether the stream was one: most of its rows could be read to their end. A file cut short keeps what
    /// it has, the rest stays as predicted.
    bool Read();
    /// Bytes begun so far.
    std::size_t Position() const { return bits_.Position(); }

  private:
    struct Target {
        Plane* plane = nullptr;
        const DifferenceTable* table = nullptr;
    };

    /// Passes over the next mark.
    bool FindMark();

    /// False if the row broke off; what it had counts.
    bool ReadRow(const DifferenceTable& table, std::span<std::uint8_t> row);

    BitReader bits_;
    std::array<Target, kPlaneNumbers> targets_;
};

}  // namespace tessara::pcd
