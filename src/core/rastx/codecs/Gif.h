#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// GIF: the first picture of a file.
bool RecogniseGif(Bytes file);
Result<Picture> DecodeGif(Bytes file, const DecodeOptions& options);
Result<void> EncodeGif(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
}  // namespace tessara
