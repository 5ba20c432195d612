#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Portable bitmaps, greymaps and pixmaps, P1 to P6 (.pbm .pgm .ppm).
bool RecognisePnm(Bytes file);
Result<Picture> DecodePnm(Bytes file, const DecodeOptions& options);

}  // namespace tessara
