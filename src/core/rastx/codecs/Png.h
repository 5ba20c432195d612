#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// PNG.
bool RecognisePng(Bytes file);
Result<Picture> DecodePng(Bytes file, const DecodeOptions& options);
Result<void> EncodePng(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
}  // namespace tessara
