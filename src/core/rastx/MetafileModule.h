#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

enum class MetafileKind { Windows, Enhanced };

/// Draws a metafile whose header was checked. The player needs a toolkit for fonts and curves, so it lives in
/// a module that is loaded when the first metafile is read; without it that is an `Unsupported` failure.
Result<Picture> PlayMetafile(MetafileKind kind, Bytes file, const DecodeOptions& options);

/// What the module exports under the name kPlayMetafileFunction.
using PlayMetafileFunction = void (*)(MetafileKind kind, Bytes file, const DecodeOptions& options,
                                      Result<Picture>& played);
inline constexpr char kPlayMetafileFunction[] = "TessaraPlayMetafile";

}  // namespace tessara
