#include "core/rastx/codecs/PcdDifferences.h"

#include <algorithm>
#include <bit>

namespace tessara::pcd {
namespace {

constexpr std::uint32_t kMark = 0xfffffe;  // 24 bits
constexpr std::uint32_t kMarkOnes = kMark >> 1;

}  // namespace

Result<DifferenceTable> DifferenceTable::Read(ByteReader& reader) {
    DifferenceTable table;
    table.codes_ = reader.U8() + 1u;
    for (unsigned i = 0; i < table.codes_; ++i) {
        const unsigned length = reader.U8() + 1u;
        const unsigned code = reader.U16Be();
        const std::int8_t difference = reader.I8();
        if (length > kLongestCode) return Damaged("a code of the table is too long");
        const unsigned span = 1u << (kLongestCode - length);
        if (code % span != 0) continue;
        std::fill_n(table.entries_.begin() + code, span,
                    Entry{static_cast<std::uint8_t>(length), difference});
    }
    if (reader.Overrun()) return Damaged("the table is cut short");
    return table;
}

void DifferenceReader::SetPlane(PlaneNumber number, Plane& plane, const DifferenceTable& table) {
    targets_[number] = {&plane, &table};
}

bool DifferenceReader::Read() {
    const std::size_t height = targets_[kLuma].plane->height;
    unsigned whole = 0, broken = 0;
    while (FindMark()) {
        const std::uint32_t head = bits_.Peek(16);
        bits_.Skip(16);
        const std::size_t row = head >> 1 & 0x1fff;
        if (row == height) break;
        const Target& target = targets_[head >> 14];
        if (row > height || !target.plane) continue;
        const bool luma = head >> 14 == kLuma;
        (ReadRow(*target.table, target.plane->Row(luma ? row : row / 2)) ? whole : broken) += 1;
    }
    return whole > broken;
}

bool DifferenceReader::FindMark() {
    while (!bits_.Overrun()) {
        const std::uint32_t next = bits_.Peek(24);
        if (next == kMark) {
            bits_.Skip(24);
            return true;
        }
        // A mark can only begin within the ones at the end of these bits.
        const auto ones = static_cast<unsigned>(std::countr_one(next));
        bits_.Skip(std::max(1u, 24 - ones));
    }
    return false;
}

bool DifferenceReader::ReadRow(const DifferenceTable& table, std::span<std::uint8_t> row) {
    for (std::uint8_t& sample : row) {
        const std::uint32_t next = bits_.Peek(23);
        const DifferenceTable::Entry entry = table.Find(next >> (23 - kLongestCode));
        if (entry.length == 0 || next == kMarkOnes || bits_.Overrun()) return false;
        bits_.Skip(entry.length);
        sample = static_cast<std::uint8_t>(std::clamp(sample + entry.difference, 0, 255));
    }
    return true;
}

}  // namespace tessara::pcd
