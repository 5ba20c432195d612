#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/Bytes.h"
#include "core/Result.h"
#include "core/rastx/Picture.h"

/// Documents of layers to one flat picture.
namespace tessara {

/// A rectangle on the canvas, the right and bottom edges exclusive. Wide enough that no difference of two
/// 32-bit numbers of a file overflows.
struct Box {
    std::int64_t left = 0, top = 0, right = 0, bottom = 0;

    std::int64_t Width() const { return right - left; }
    std::int64_t Height() const { return bottom - top; }
    bool Empty() const { return right <= left || bottom <= top; }
    std::uint64_t Area() const {
        return Empty() ? 0 : static_cast<std::uint64_t>(Width()) * static_cast<std::uint64_t>(Height());
    }
    Box Intersected(const Box& other) const {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }
    /// The smallest box around both; an empty one adds nothing.
    Box Joined(const Box& other) const {
        if (Empty()) return other;
        if (other.Empty()) return *this;
        return {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                std::max(bottom, other.bottom)};
    }
    bool operator==(const Box&) const = default;
};

/// How the colour of a layer is mixed with what lies below it.
enum class BlendMode : std::uint8_t {
    Normal,
    Dissolve,
    Darken,
    Multiply,
    ColorBurn,
    LinearBurn,
    DarkerColor,
    Lighten,
    Screen,
    ColorDodge,
    LinearDodge,
    LighterColor,
    Overlay,
    SoftLight,
    HardLight,
    VividLight,
    LinearLight,
    PinLight,
    HardMix,
    Difference,
    Exclusion,
    Subtract,
    Divide,
    // By luminance with the weights .30, .59, .11 (PDF 1.7, section 11.3.5.3).
    Hue,
    Saturation,
    Color,
    Luminosity,
    // By exchange of components of the HSL model.
    HslHue,
    HslSaturation,
    HslColor,
    HslLightness,
};

/// What a layer's alpha is multiplied with. The box lies inside the canvas.
struct LayerMask {
    Box box;
    ByteVector values;  ///< of the box, row by row
    std::uint8_t outside = 0;
};

struct Layer {
    enum class Kind : std::uint8_t {
        Raster,
        Group,             ///< composed on a canvas of its own, then laid over what is below
        PassThroughGroup,  ///< its members see what is below the group
        Mask,              ///< cuts away from everything below it in the same list
    };

    Kind kind = Kind::Raster;
    BlendMode mode = BlendMode::Normal;
    std::uint8_t opacity = 255;
    bool clipped = false;  ///< shows only where the nearest lower layer that is not clipped shows
    int left = 0, top = 0;
    Picture picture;  ///< of a raster layer; lies inside the canvas. A hidden layer has none.
    std::optional<LayerMask> mask;
    std::vector<Layer> children;  ///< of a group, the lowest first

    /// Where the layer can show; found by ComposeLayers.
    Box box = {};
};

/// How deep groups may lie inside one another.
inline constexpr int kMostNestedGroups = 32;

/// Adds up what a document's layers take, so that a small file cannot ask for any amount: together they may
/// take as much memory as a picture, and unpack a few times as many pixels.
class LayerBudget {
  public:
    explicit LayerBudget(const Limits& limits)
        : shownLeft_(limits.decodedBytes / sizeof(Pixel)), storedLeft_(kMostStored * shownLeft_) {}
    /// No layer is that much larger than its canvas: a size that a damaged file made up costs the layer, not
    /// the picture.
    static bool Plausible(const Box& stored, const Box& canvas) {
        constexpr std::uint64_t kAlways = 64 << 20;
        return stored.Area() <= 4 * canvas.Area() + kAlways;
    }
    /// `stored`: what has to be unpacked; `shown`: the part of it that is kept.
    Result<void> Take(const Box& stored, const Box& shown);

  private:
    static constexpr std::uint64_t kMostStored = 4;
    std::uint64_t shownLeft_;
    std::uint64_t storedLeft_;
};

/// Lays the layers over one another, the first at the bottom, on a transparent canvas. Layers and masks reach
/// no further than the canvas.
Result<Picture> ComposeLayers(std::vector<Layer> layers, int width, int height, const Limits& limits);

}  // namespace tessara
