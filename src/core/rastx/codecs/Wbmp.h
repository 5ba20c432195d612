#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Wireless bitmaps, type 0.
bool RecogniseWbmp(Bytes file);
Result<Picture> DecodeWbmp(Bytes file, const DecodeOptions& options);
Result<void> EncodeWbmp(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
}  // namespace tessara
