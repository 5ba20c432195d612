#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Windows metafiles, placeable or not. Reading draws them with the metafile module.
bool RecogniseWmf(Bytes file);
Result<Picture> DecodeWmf(Bytes file, const DecodeOptions& options);
Result<void> EncodeWmf(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
}  // namespace tessara
