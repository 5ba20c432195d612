#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "core/rastx/ErrorDiffusion.h"
#include "core/rastx/PaletteChoice.h"
#include "core/rastx/Picture.h"

namespace tessara {

/// Turns a picture into indexes of a palette of up to 256 colours.
///
/// A picture that has few enough colours is kept exactly; otherwise the palette is chosen for it and errors
/// are diffused. Pixels with alpha below 128 become transparent, and so do those of the colour `transparent`
/// where one is named; all others are composed on white.
class Quantizer {
  public:
    /// The channels of a pixel or its error side by side, for arithmetic on all of them at once.
    using Channels [[gnu::vector_size(8)]] = std::int16_t;

    explicit Quantizer(const Picture& picture, std::optional<ColorNumber> transparent = std::nullopt);

    /// All colours, the transparent entry included (it comes last).
    std::span<const Pixel> Palette() const { return palette_; }
    std::optional<std::uint8_t> TransparentIndex() const { return transparentIndex_; }
    /// The indexes of the next row, from top to bottom; one call per row of the picture.
    void NextRow(std::span<std::uint8_t> indexes);

  private:
    /// Opaque colours and their indexes, found by the whole colour.
    class ExactColors {
      public:
        static constexpr int kNotFound = -1;
        /// False where there is no place for one more colour.
        bool Add(Pixel color, std::size_t maximum);
        int Find(Pixel color) const;
        std::span<const Pixel> Colors() const { return colors_; }

      private:
        static constexpr int kSlotBits = 10;
        static constexpr std::size_t kSlots = std::size_t{1} << kSlotBits;
        std::size_t SlotOf(Pixel color) const;
        std::array<std::int16_t, kSlots> slots_{};  // index + 1, 0 where empty
        std::vector<Pixel> colors_;
    };

    std::span<const Pixel> PreparedRow(int y);
    bool CollectExactColors();
    void ChooseColors();
    void MapRow(std::span<const Pixel> row, std::span<std::uint8_t> indexes) const;
    void DiffuseRow(std::span<const Pixel> row, std::span<std::uint8_t> indexes);
    std::uint8_t NearestIndex(Channels color);

    Picture picture_;
    std::optional<Pixel> transparentColor_;
    bool mayBeTransparent_;
    std::vector<Pixel> prepared_;
    int nextRow_ = 0;

    std::vector<Pixel> palette_;
    std::optional<std::uint8_t> transparentIndex_;
    bool exact_ = false;
    ExactColors exactColors_;  ///< all colours, or those of flat areas, which are never dithered

    std::array<Channels, kMaximumColors> paletteChannels_{};
    std::optional<NearestColor> nearest_;
    std::vector<std::uint16_t> nearestOfCell_;  ///< index + 1, 0 where not known yet
    ErrorDiffusion<Channels> diffusion_;
};

}  // namespace tessara
