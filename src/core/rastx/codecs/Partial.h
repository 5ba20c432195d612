#pragma once

#include "core/Result.h"
#include "core/rastx/Picture.h"

/// What the decoders of plain rasters do with a file that holds less than its header claims.
namespace tessara {

/// Whether data for at most `possible` pixels is worth the memory of `claimed` ones. A small picture always
/// is: its first rows may be all that a download left. A large one must be there in good part, so that a tiny
/// file cannot cost gigabytes.
inline Result<void> CheckDataFor(std::uint64_t claimed, std::uint64_t possible) {
    constexpr std::uint64_t kSmall = std::uint64_t{4} << 20;
    constexpr std::uint64_t kPart = 16;
    if (possible == 0) return Damaged("the file holds no pixels");
    if (claimed > kSmall && claimed / kPart > possible) return Damaged("nearly all pixels are missing");
    return {};
}

/// The colour of pixels that a damaged file lacks.
inline Pixel MissingPixel(const Picture& picture) {
    return picture.HasAlpha() ? kTransparent : kWhite;
}

/// Finds out, row by row, whether alpha values mean anything: many writers leave them all empty, or all full.
class AlphaCensus {
  public:
    void Add(std::span<const Pixel> row) {
        std::uint8_t all = 255;
        std::uint8_t any = 0;
        for (const Pixel pixel : row) {
            all &= pixel.a;
            any |= pixel.a;
        }
        allFull_ &= all == 255;
        allEmpty_ &= any == 0;
    }
    bool AllEmpty() const { return allEmpty_; }
    bool AllFull() const { return allFull_; }

  private:
    bool allFull_ = true;
    bool allEmpty_ = true;
};

}  // namespace tessara
