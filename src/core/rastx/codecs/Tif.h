#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// TIFF and BigTIFF: the first picture of a file.
bool RecogniseTif(Bytes file);
Result<Picture> DecodeTif(Bytes file, const DecodeOptions& options);
Result<void> EncodeTif(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
}  // namespace tessara
