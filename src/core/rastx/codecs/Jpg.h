#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// JPEG/JFIF, with EXIF orientation and embedded profiles.
bool RecogniseJpg(Bytes file);
Result<Picture> DecodeJpg(Bytes file, const DecodeOptions& options);
Result<void> EncodeJpg(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
}  // namespace tessara
