#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Photo CD image packs: Base, 4Base and 16Base.
bool RecognisePcd(Bytes file);
Result<Picture> DecodePcd(Bytes file, const DecodeOptions& options);

}  // namespace tessara
