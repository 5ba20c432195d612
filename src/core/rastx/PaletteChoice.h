#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "core/rastx/Picture.h"

namespace tessara {

inline constexpr std::size_t kMaximumColors = 256;

/// Finds the nearest of up to 256 colours.
class NearestColor {
  public:
    explicit NearestColor(std::span<const Pixel> colors);
    /// The index of the colour with the smallest squared distance; of equal ones the first.
    std::uint8_t Find(Pixel color) const;

  private:
    alignas(64) std::array<std::int32_t, kMaximumColors> b_, g_, r_;
};

/// A colour and how often it occurs.
struct WeightedColor {
    std::array<float, 3> channels;  ///< blue, green, red, 0 to 255
    float weight;
};

/// Up to `size` colours for a picture whose colours are `colors` (which are reordered): boxes of them are cut
/// in two where that lowers the variance most (X. Wu, "Color quantization by dynamic programming and
/// principal analysis", 1992, in its greedy form), the means move to where the colours nearest to them are
/// (k-means), and the outer ones spread. `fixed` are in the palette in any case, first and unchanged.
std::vector<Pixel> ChoosePalette(std::span<WeightedColor> colors, std::span<const Pixel> fixed,
                                 std::size_t size);

}  // namespace tessara
