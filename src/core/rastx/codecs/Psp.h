#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Block-structured layered documents, versions 3 to 10 and later (.psp).
bool RecognisePsp(Bytes file);
Result<Picture> DecodePsp(Bytes file, const DecodeOptions& options);

}  // namespace tessara
