#pragma once

#include <cstdint>
#include <span>

namespace tessara::metafile {

/// A rule that makes each bit of a pixel from those of the pattern (the brush or pen), the source (a bitmap)
/// and the destination: bit 4 * pattern + 2 * source + destination of the index is the result.
class RasterOperation {
  public:
    explicit constexpr RasterOperation(std::uint8_t index) : index_(index) {}

    /// One of the 16 rules for pens and brushes, numbered from 1; other numbers copy.
    static constexpr RasterOperation OfPen(unsigned number) {
        if (number < 1 || number > 16) number = 13;
        unsigned index = 0;
        for (unsigned bit = 0; bit < 8; ++bit) {
            const unsigned pattern = bit >> 2;
            const unsigned destination = bit & 1;
            index |= (((number - 1) >> (2 * pattern + destination)) & 1) << bit;
        }
        return RasterOperation(static_cast<std::uint8_t>(index));
    }
    /// The rule of a bitmap record's 32-bit code.
    static constexpr RasterOperation OfBitmap(std::uint32_t code) {
        return RasterOperation(static_cast<std::uint8_t>(code >> 16));
    }
    static constexpr RasterOperation CopyPattern() { return RasterOperation(0xF0); }
    static constexpr RasterOperation CopySource() { return RasterOperation(0xCC); }
    static constexpr RasterOperation Invert() { return RasterOperation(0x55); }

    constexpr bool NeedsSource() const { return (index_ & 0x33) != ((index_ >> 2) & 0x33); }
    constexpr bool NeedsPattern() const { return (index_ & 0x0F) != (index_ >> 4); }
    constexpr bool Nothing() const { return index_ == 0xAA; }
    constexpr bool operator==(const RasterOperation&) const = default;

    /// Combines a row of pixels; only those count whose `coverage` is at least half opaque. The results are
    /// opaque.
    void CombineRow(std::span<const std::uint32_t> pattern, std::span<const std::uint32_t> source,
                    std::span<const std::uint32_t> coverage, std::span<std::uint32_t> destination) const;

  private:
    std::uint8_t index_;
};

}  // namespace tessara::metafile
