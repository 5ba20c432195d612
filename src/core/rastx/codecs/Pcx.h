#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// PCX.
bool RecognisePcx(Bytes file);
Result<Picture> DecodePcx(Bytes file, const DecodeOptions& options);

}  // namespace tessara
