#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Targa (.tga .icb .vda .vst).
bool RecogniseTga(Bytes file);
Result<Picture> DecodeTga(Bytes file, const DecodeOptions& options);
Result<void> EncodeTga(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
}  // namespace tessara
