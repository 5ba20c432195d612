#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// PNG.
bool RecognisePng(Bytes file);
Result<Picture> DecodePng(Bytes file, const DecodeOptions& options);
Result<void> EncodePng(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
/// Red, green, blue and alpha of 8 bits each, even where a leaner form would do.
Result<void> EncodePngRgba(const Picture& picture, ByteSink& sink);
}  // namespace tessara
