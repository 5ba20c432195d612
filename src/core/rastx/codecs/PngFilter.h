#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "core/Bytes.h"

/// The row filters of PNG (ISO/IEC 15948, clause 9): each byte is stored as its difference from a prediction.
namespace tessara::png {

enum class Filter : std::uint8_t { None, Sub, Up, Average, Paeth };
inline constexpr std::size_t kFilterCount = 5;

/// A row of samples with zero bytes before it, which stand for the pixel left of the first.
class PaddedRow {
  public:
    explicit PaddedRow(std::size_t size) : bytes_(kPadding + size + kSlack) {}
    std::uint8_t* Data() { return bytes_.data() + kPadding; }
    const std::uint8_t* Data() const { return bytes_.data() + kPadding; }
    std::size_t Size() const { return bytes_.size() - kPadding - kSlack; }
    std::span<std::uint8_t> Span() { return {Data(), Size()}; }
    Bytes View() const { return {Data(), Size()}; }
    void Clear() { std::fill(bytes_.begin(), bytes_.end(), std::uint8_t{0}); }

  private:
    static constexpr std::size_t kPadding = 16;
    static constexpr std::size_t kSlack = 16;  ///< so that a pixel may be read in one piece of eight bytes
    std::vector<std::uint8_t> bytes_;
};

/// Restores a row from its stored form; false for an unknown filter. `bytesPerPixel` is 1 to 8.
bool Unfilter(std::uint8_t filter, Bytes stored, const PaddedRow& prior, std::size_t bytesPerPixel,
              PaddedRow& row);

/// Chooses the filter of a row whose differences have the smallest sum, and stores the row with it.
class RowFilter {
  public:
    explicit RowFilter(std::size_t rowSize);
    /// Writes the filter's number and the differences, together one byte more than the row.
    void Store(const PaddedRow& row, const PaddedRow& prior, std::size_t bytesPerPixel,
               std::span<std::uint8_t> stored);

  private:
    std::array<std::vector<std::uint8_t>, kFilterCount> differences_;
};

}  // namespace tessara::png
