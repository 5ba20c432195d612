#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Enhanced metafiles. Reading draws them with the metafile module.
bool RecogniseEmf(Bytes file);
Result<Picture> DecodeEmf(Bytes file, const DecodeOptions& options);
Result<void> EncodeEmf(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
}  // namespace tessara
