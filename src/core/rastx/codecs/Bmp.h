#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Windows and OS/2 bitmaps, with or without their file header (.bmp .dib .rle).
bool RecogniseBmp(Bytes file);
Result<Picture> DecodeBmp(Bytes file, const DecodeOptions& options);
Result<void> EncodeBmp(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
}  // namespace tessara
