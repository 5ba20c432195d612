#pragma once

#include <array>
#include <optional>
#include <span>

#include "core/LargeBuffer.h"
#include "core/rastx/Compositor.h"
#include "core/rastx/codecs/PspBlocks.h"

namespace tessara {

enum class PspCompression : std::uint16_t { None = 0, RunLength = 1, Zip = 2, Jpeg = 3 };

/// How the samples of a bitmap are to be read.
struct PspLayout {
    int depth = 24;  ///< 1, 4, 8 indexes (8 also grey), 16 grey, 24 and 48 red, green, blue
    bool grey = false;
    PspCompression compression = PspCompression::None;
    std::span<const Pixel> palette = {};  ///< its alpha counts

    bool Indexed() const { return depth <= 8 && !grey; }
    int Components() const { return depth == 24 || depth == 48 ? 3 : 1; }
    int BitsPerSample() const { return depth / Components(); }
};

/// Depths that exist, and whether a palette is there if one is needed.
Result<void> CheckPspLayout(const PspLayout& layout);

/// One plane, unpacked.
class PspPlane {
  public:
    /// Unpacks what there is. `bits`: of a sample; planes of 16 bits may turn out to have 8.
    static Result<PspPlane> Unpack(Bytes packed, PspCompression compression, std::int64_t width,
                                   std::int64_t height, int bits, const Limits& limits);

    /// How many rows, from the top, are there.
    std::int64_t RowsPresent() const;
    /// The columns from `left` on as bytes, indexes unscaled; empty where the row is missing.
    Bytes Row(std::int64_t y, std::int64_t left, std::size_t count, ByteVector& scratch) const;

  private:
    void ChooseStride(std::int64_t width, std::int64_t height, int bits);

    Bytes samples_;  // in the file, or in unpacked_
    LargeBuffer unpacked_;
    std::int64_t height_ = 0;
    std::uint64_t stride_ = 0;
    int bits_ = 8;
};

/// The planes of a layer or composite.
class PspBitmap {
  public:
    static Result<PspBitmap> Open(std::span<const PspChannel> channels, PspChannel::Use color,
                                  PspChannel::Use alpha, const PspLayout& layout, std::int64_t width,
                                  std::int64_t height, const Limits& limits);

    bool HasAlpha() const { return alpha_.has_value(); }
    /// Rows that have all their colours, and those that have at least the first.
    std::int64_t CompleteRows() const;
    std::int64_t UsableRows() const { return color_[0] ? color_[0]->RowsPresent() : 0; }
    /// Writes the part of the bitmap that lies in `part` (in its own coordinates). Missing rows become
    /// transparent if there is alpha, white if not.
    void ToPixels(const Box& part, std::span<Pixel> pixels) const;

  private:
    PspLayout layout_;
    std::array<std::optional<PspPlane>, 3> color_;
    std::optional<PspPlane> alpha_;
};

}  // namespace tessara
