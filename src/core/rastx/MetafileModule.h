#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

enum class MetafileKind { Windows, Enhanced };

/// Draws a metafile. The player needs a toolkit for fonts and curves, so it lives in a module that is loaded
/// when the first metafile is read; without the module that is an `Unsupported` failure.
Result<Picture> PlayMetafile(MetafileKind kind, Bytes file, const DecodeOptions& options);

/// What the module exports under the name `kPlayMetafileSymbol`. The file is never empty of meaning: its
/// header was checked before.
using PlayMetafileFunction = void (*)(MetafileKind kind, Bytes file, const DecodeOptions& options,
                                      Result<Picture>& played);
inline constexpr char kPlayMetafileSymbol[] = "TessaraPlayMetafile";
inline constexpr char kMetafileModuleName[] = "tessara_metafile.so";

}  // namespace tessara
