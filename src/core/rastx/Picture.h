#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "core/Bytes.h"
#include "core/LargeBuffer.h"
#include "core/Result.h"

namespace tessara {

/// One pixel as it lies in memory: 8 bits each of blue, green, red and alpha (255 opaque, not premultiplied).
struct Pixel {
    std::uint8_t b = 0, g = 0, r = 0, a = 255;
    bool operator==(const Pixel&) const = default;
};
static_assert(sizeof(Pixel) == 4);

inline constexpr Pixel kWhite{255, 255, 255, 255};
inline constexpr Pixel kBlack{0, 0, 0, 255};
inline constexpr Pixel kTransparent{0, 0, 0, 0};
constexpr Pixel Grey(std::uint8_t value) {
    return {value, value, value, 255};
}

/// A colour number: red + 256 green + 65536 blue. Only the low 24 bits count; negative values mean "none".
using ColorNumber = std::int32_t;
constexpr ColorNumber RGB(int red, int green, int blue) {
    return red + 256 * green + 65536 * blue;
}
constexpr Pixel PixelFromColor(ColorNumber color) {
    const auto bits = static_cast<std::uint32_t>(color);
    return {static_cast<std::uint8_t>(bits >> 16), static_cast<std::uint8_t>(bits >> 8),
            static_cast<std::uint8_t>(bits), 255};
}
constexpr ColorNumber ColorFromPixel(Pixel pixel) {
    return RGB(pixel.r, pixel.g, pixel.b);
}

/// What a picture may be at most. A decoder asks before it takes memory.
struct Limits {
    int side = 65535;                                     ///< pixels
    std::uint64_t decodedBytes = std::uint64_t{2} << 30;  ///< of the finished picture, 4 per pixel

    /// Whether a picture of this size may be made: both sides at least 1, none too long, not too much memory.
    Result<void> Check(std::int64_t width, std::int64_t height) const;
};

/// Dots per inch as the file tells them; 0 where it does not.
struct Resolution {
    double x = 0, y = 0;
    bool Known() const { return x > 0 && y > 0; }
};

/// What a file says beside its pixels, as far as other formats can hold it.
struct Metadata {
    Resolution resolution;
    /// An EXIF block, from its TIFF header ("II" or "MM") on; null where there is none.
    std::shared_ptr<const ByteVector> exif;
};

/// Whether the alpha bytes of a picture mean anything; without alpha all of them are 255.
enum class Alpha : bool { None, Straight };

/// A picture in memory: rows from top to bottom without gaps, pixels from left to right.
/// Copies share the pixels until one of them is written to. A default-made picture is empty.
class Picture {
  public:
    Picture() = default;

    /// A picture of the given size; every pixel is transparent black (also where there is no alpha: the maker
    /// writes each pixel, or fills the rest with FillRows).
    static Result<Picture> Create(std::int64_t width, std::int64_t height, Alpha alpha,
                                  const Limits& limits = {});
    static Result<Picture> Create(std::int64_t width, std::int64_t height, Pixel fill, Alpha alpha,
                                  const Limits& limits = {});

    int Width() const { return width_; }
    int Height() const { return height_; }
    bool Empty() const { return width_ == 0; }
    bool HasAlpha() const { return alpha_ == Alpha::Straight; }
    std::size_t PixelCount() const {
        return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    }

    std::span<const Pixel> Pixels() const { return {data(), PixelCount()}; }
    std::span<const Pixel> Row(int y) const {
        return Pixels().subspan(Offset(y), static_cast<std::size_t>(width_));
    }
    Pixel At(int x, int y) const { return Row(y)[static_cast<std::size_t>(x)]; }

    /// Whether a copy of this picture holds the same pixels, so that writing to them copies them first.
    bool Shared() const { return buffer_.use_count() > 1; }
    /// The pixels for writing; makes them this copy's own first. Take the span once, outside of loops.
    std::span<Pixel> MutablePixels();
    std::span<Pixel> MutableRow(int y) {
        return MutablePixels().subspan(Offset(y), static_cast<std::size_t>(width_));
    }
    /// Sets the rows `begin` to `end` (exclusive): what a decoder does with rows that a damaged file lacks.
    void FillRows(int begin, int end, Pixel fill);

    /// Declares whether alpha counts. Going to None does not touch the pixels: see Opaque and
    /// FlattenedOnWhite.
    void SetAlpha(Alpha alpha) { alpha_ = alpha; }
    /// Drops alpha where no pixel uses it, in one pass; pictures without alpha pass at once.
    void DropUnusedAlpha();
    /// The picture composed on a background, without alpha. One without alpha is returned as it is.
    Picture FlattenedOn(Pixel background) const;
    Picture FlattenedOnWhite() const { return FlattenedOn(kWhite); }

    /// The part from (x, y); must lie inside.
    Result<Picture> Cropped(int x, int y, int width, int height) const;

    const Metadata& Meta() const { return metadata_; }
    void SetMeta(Metadata metadata) { metadata_ = std::move(metadata); }
    void SetResolution(Resolution resolution) { metadata_.resolution = resolution; }

  private:
    const Pixel* data() const;
    std::size_t Offset(int y) const { return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_); }

    std::shared_ptr<LargeBuffer> buffer_;
    int width_ = 0;
    int height_ = 0;
    Alpha alpha_ = Alpha::None;
    Metadata metadata_;
};

}  // namespace tessara
