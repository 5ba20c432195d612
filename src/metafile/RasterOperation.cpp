#include "metafile/RasterOperation.h"

#include "core/Multiversion.h"

namespace tessara::metafile {
namespace {

constexpr std::uint32_t kOpaque = 0xFF000000;

/// Puts `value` where the coverage is, and leaves the destination elsewhere.
inline std::uint32_t Choose(std::uint32_t coverage, std::uint32_t value, std::uint32_t destination) {
    return (coverage & 0x80000000u) != 0 ? value | kOpaque : destination;
}

template <typename Rule>
inline void ForEach(std::size_t count, const std::uint32_t* coverage, std::uint32_t* destination,
                    const Rule& rule) {
    for (std::size_t i = 0; i < count; ++i)
        destination[i] = Choose(coverage[i], rule(i, destination[i]), destination[i]);
}

/// Any rule as the sum of its eight products.
TESSARA_MULTIVERSION void CombineByTable(std::uint8_t index, std::size_t count, const std::uint32_t* pattern,
                                         const std::uint32_t* source, const std::uint32_t* coverage,
                                         std::uint32_t* destination) {
    std::uint32_t term[8];
    for (unsigned bit = 0; bit < 8; ++bit) term[bit] = ((index >> bit) & 1) != 0 ? ~std::uint32_t{0} : 0;
    ForEach(count, coverage, destination, [&](std::size_t i, std::uint32_t d) {
        const std::uint32_t p = pattern[i];
        const std::uint32_t s = source[i];
        const std::uint32_t withoutPattern =
            (~s & ((~d & term[0]) | (d & term[1]))) | (s & ((~d & term[2]) | (d & term[3])));
        const std::uint32_t withPattern =
            (~s & ((~d & term[4]) | (d & term[5]))) | (s & ((~d & term[6]) | (d & term[7])));
        return (~p & withoutPattern) | (p & withPattern);
    });
}

TESSARA_MULTIVERSION void CombineAnd(std::size_t count, const std::uint32_t* source,
                                     const std::uint32_t* coverage, std::uint32_t* destination) {
    ForEach(count, coverage, destination, [&](std::size_t i, std::uint32_t d) { return source[i] & d; });
}
TESSARA_MULTIVERSION void CombineOr(std::size_t count, const std::uint32_t* source,
                                    const std::uint32_t* coverage, std::uint32_t* destination) {
    ForEach(count, coverage, destination, [&](std::size_t i, std::uint32_t d) { return source[i] | d; });
}
TESSARA_MULTIVERSION void CombineXor(std::size_t count, const std::uint32_t* source,
                                     const std::uint32_t* coverage, std::uint32_t* destination) {
    ForEach(count, coverage, destination, [&](std::size_t i, std::uint32_t d) { return source[i] ^ d; });
}

}  // namespace

void RasterOperation::CombineRow(std::span<const std::uint32_t> pattern,
                                 std::span<const std::uint32_t> source,
                                 std::span<const std::uint32_t> coverage,
                                 std::span<std::uint32_t> destination) const {
    const std::size_t count = destination.size();
    switch (index_) {
        case 0x88:
            return CombineAnd(count, source.data(), coverage.data(), destination.data());
        case 0xEE:
            return CombineOr(count, source.data(), coverage.data(), destination.data());
        case 0x66:
            return CombineXor(count, source.data(), coverage.data(), destination.data());
        default:
            CombineByTable(index_, count, pattern.data(), source.data(), coverage.data(), destination.data());
    }
}

}  // namespace tessara::metafile
