#pragma once

#include <optional>
#include <span>
#include <vector>

#include "core/rastx/ColorProfile.h"
#include "core/rastx/codecs/PngChunks.h"

namespace tessara::png {

/// Turns rows of samples, of any depth and colour type, into pixels of sRGB.
class RowConverter {
  public:
    /// Keeps a reference to the description.
    explicit RowConverter(const Description& description);
    void Convert(Bytes row, std::span<Pixel> pixels);
    bool HasAlpha() const {
        return (header_.colorType & kGreyAlpha) != 0 || !description_.transparency.empty();
    }

  private:
    void MakeGamma();
    void MakePalette();
    void ConvertColors(Bytes samples, std::span<Pixel> pixels);
    void ApplyKey(Bytes row, std::span<Pixel> pixels) const;
    void Correct(std::span<Pixel> pixels) const;
    /// By palette, or by the levels of grey where there is none.
    bool Indexed() const { return header_.depth <= 8 && (header_.colorType & ~kPalette) == 0 && Single(); }
    bool Single() const { return ChannelsOf(header_.colorType) == 1; }

    const Description& description_;
    const Header& header_;
    std::optional<ColorProfile> profile_;
    std::vector<std::uint8_t> gamma_;  ///< empty, or what each of 256 or 65536 levels becomes
    std::vector<Pixel> palette_;
    std::vector<std::uint8_t> samples_;
};

}  // namespace tessara::png
