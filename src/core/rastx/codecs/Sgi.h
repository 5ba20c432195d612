#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Silicon Graphics images (.sgi).
bool RecogniseSgi(Bytes file);
Result<Picture> DecodeSgi(Bytes file, const DecodeOptions& options);

}  // namespace tessara
