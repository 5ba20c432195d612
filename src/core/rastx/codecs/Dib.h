#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "core/rastx/Codec.h"

namespace tessara {

/// How a device independent bitmap lies in the file that carries it.
struct DibOptions {
    /// Icons: the header's height counts the picture and the mask under it; the mask becomes alpha, unless
    /// the fourth byte of 32-bit pixels already says more.
    bool iconWithMask = false;
    /// The fourth byte of 32-bit pixels is premultiplied alpha (metafiles' alpha blending); otherwise it is
    /// padding unless the header has an alpha mask.
    bool premultipliedAlpha = false;
    /// The colour table holds 16-bit indexes into this palette instead of colours; empty: it holds colours.
    std::span<const Pixel> palette = {};
    /// The fourth byte of 32-bit pixels is alpha if any of them is not 0 (icons without a mask).
    bool alphaWhereUsed = false;
    /// Where the pixels begin, from the start of the info header, if a file header tells; the colour table
    /// ends there at the latest. An offset that cannot be is passed over.
    std::uint64_t pixelOffset = 0;
};

/// Decodes an info header of any size with its masks and colour table, and the pixels: in `bits`, or where
/// that is not given at `pixelOffset` or right behind the table.
Result<Picture> DecodeDib(Bytes dib, std::optional<Bytes> bits, const DibOptions& dibOptions,
                          const DecodeOptions& options);

/// Whether bytes without any signature begin with an info header of a common size whose every field makes
/// sense.
bool LooksLikeDib(Bytes bytes);

/// What an info header claims; for choosing among several bitmaps before decoding one.
struct DibShape {
    std::int64_t width = 0;
    std::int64_t height = 0;  ///< of icons: with the mask
    int bitsPerPixel = 0;
    std::uint64_t rowsStart = 0;
    std::uint64_t stride = 0;
};
std::optional<DibShape> DibShapeOf(Bytes dib);

}  // namespace tessara
