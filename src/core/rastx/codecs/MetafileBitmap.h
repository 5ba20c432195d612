#pragma once

#include "core/ByteSink.h"
#include "core/rastx/Picture.h"

/// The one bitmap of the metafiles that the writers make: 24 bits per pixel, rows from the bottom up.
namespace tessara {

inline constexpr std::uint32_t kBitmapHeaderBytes = 40;

/// The bytes of a row of `width` pixels, filled up to a multiple of four.
constexpr std::uint64_t BitmapRowBytes(int width) {
    return (std::uint64_t{3} * static_cast<std::uint64_t>(width) + 3) / 4 * 4;
}
constexpr std::uint64_t BitmapBytes(int width, int height) {
    return BitmapRowBytes(width) * static_cast<std::uint64_t>(height);
}

/// The resolution that a metafile of `picture` states: 96 dots per inch where the picture tells none.
Resolution ResolutionOrDefault(const Picture& picture);

/// Writes the info header and the rows, composed on white.
Result<void> WriteBitmap(const Picture& picture, ByteSink& sink);

}  // namespace tessara
