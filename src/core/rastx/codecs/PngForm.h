#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <span>
#include <vector>

#include "core/rastx/Picture.h"
#include "core/rastx/codecs/PngFormat.h"

/// The leanest form of PNG that holds a picture exactly.
namespace tessara::png {

/// The different colours of a picture, as long as they are few.
class ColorTable {
  public:
    /// False once there are more than a palette holds.
    bool Add(std::span<const Pixel> row);
    /// Puts translucent colours first, so that only they are given alpha, and similar ones side by side.
    void Sort();

    const std::vector<Pixel>& Colors() const { return colors_; }
    std::uint8_t IndexOf(Pixel pixel) { return Find(pixel).index; }

  private:
    struct Slot {
        std::uint32_t color = 0;
        bool used = false;
        std::uint8_t index = 0;
    };

    Slot& Find(Pixel pixel) {
        const auto color = std::bit_cast<std::uint32_t>(pixel);
        std::size_t at = (color * 2654435761u) >> 21;
        while (slots_[at].used && slots_[at].color != color) at = (at + 1) % slots_.size();
        return slots_[at];
    }

    std::array<Slot, 2048> slots_{};
    std::vector<Pixel> colors_;
    Pixel last_;
};

/// How the samples are stored.
struct Form {
    std::uint8_t colorType = kRgb;
    int depth = 8;

    int BitsPerPixel() const { return depth * ChannelsOf(colorType); }
    std::size_t BytesPerPixel() const { return static_cast<std::size_t>(std::max(1, BitsPerPixel() / 8)); }
    std::size_t RowSize(int width) const {
        return (static_cast<std::size_t>(width) * static_cast<std::size_t>(BitsPerPixel()) + 7) / 8;
    }
};

/// Goes over the picture until it is clear that nothing leaner than its full colours will do: the first rows
/// of a photograph. The table holds the colours where the form has a palette.
Form ChooseForm(const Picture& picture, ColorTable& table);

}  // namespace tessara::png
