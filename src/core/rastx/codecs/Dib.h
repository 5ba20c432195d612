#pragma once

#include <optional>
#include <span>

#include "core/rastx/Codec.h"

namespace tessara {

/// How a device independent bitmap lies in the file that carries it.
struct DibOptions {
    /// Icons: the header's height counts the picture and the mask under it; the mask becomes alpha.
    bool iconWithMask = false;
    /// The fourth byte of 32-bit pixels is premultiplied alpha (metafiles' alpha blending); otherwise it is
    /// padding unless the header has an alpha mask.
    bool premultipliedAlpha = false;
    /// The colour table holds 16-bit indexes into this palette instead of colours; empty: it holds colours.
    std::span<const Pixel> palette = {};
};

/// Decodes an info header of any size with its masks and colour table, and the pixels: in `bits`, or where
/// that is not given right behind the table.
Result<Picture> DecodeDib(Bytes dib, std::optional<Bytes> bits, const DibOptions& dibOptions,
                          const DecodeOptions& options);

}  // namespace tessara
