#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Windows icons and cursors: the largest and deepest picture.
bool RecogniseIco(Bytes file);
Result<Picture> DecodeIco(Bytes file, const DecodeOptions& options);
Result<void> EncodeIco(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
}  // namespace tessara
