#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Utah Raster Toolkit images (.rle).
bool RecogniseUtahRle(Bytes file);
Result<Picture> DecodeUtahRle(Bytes file, const DecodeOptions& options);

}  // namespace tessara
