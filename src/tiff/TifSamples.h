#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "core/Bytes.h"
#include "core/rastx/Picture.h"

namespace tessara {

enum class TifSampleKind { Index, Unsigned, Signed, Float };

struct TifSampleType {
    int bits = 8;
    TifSampleKind kind = TifSampleKind::Unsigned;
    bool swapped = false;
    double low = 0, high = 1;  ///< the range of floating point samples
};

/// Whether UnpackTifSamples knows samples of this kind and size.
bool CanUnpackTifSamples(TifSampleType type);

/// Samples to 16 bits each: the whole range of unsigned and of signed samples, and 0 to 1 of floating point
/// ones, becomes 0 to 65535. An index keeps its value. Rounding these once more to 8 bits gives what rounding
/// directly would.
void UnpackTifSamples(Bytes packed, TifSampleType type, std::span<std::uint16_t> samples);

/// The conversion of 8-bit YCbCr with the coefficients and the reference black and white of a file
/// (TIFF 6.0, section 21).
class TifYCbCr {
  public:
    /// Luma weights of red, green and blue; pairs of black and white for Y, Cb and Cr.
    TifYCbCr(std::span<const float, 3> luma, std::span<const float, 6> blackWhite);

    Pixel Convert(std::uint8_t y, std::uint8_t cb, std::uint8_t cr) const;
    /// One row out of a line of blocks of `blockWidth` by `blockHeight` luma samples and one Cb and Cr each.
    void ConvertRow(Bytes line, std::uint32_t blockWidth, std::uint32_t blockHeight, std::uint32_t row,
                    std::span<Pixel> pixels) const;

  private:
    using Table = std::array<float, 256>;
    Table luma_, redOfCr_, greenOfCr_, greenOfCb_, blueOfCb_;
};

}  // namespace tessara
