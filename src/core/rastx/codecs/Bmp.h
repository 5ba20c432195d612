#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Windows and OS/2 bitmaps, with or without their file header (.bmp .dib .rle).
bool RecogniseBmp(Bytes file);
Result<Picture> DecodeBmp(Bytes file, const DecodeOptions& options);
/// 24 bits per pixel; a picture with alpha is composed on white.
Result<void> EncodeBmp(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
/// Keeps alpha, in 32 bits per pixel: for the program's own files, as not every reader knows it. A picture
/// without alpha is written by EncodeBmp.
Result<void> EncodeBmpWithAlpha(const Picture& picture, ByteSink& sink);

}  // namespace tessara
