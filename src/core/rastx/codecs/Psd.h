#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// Layered documents with a merged picture (.psd and the large form, PSB).
bool RecognisePsd(Bytes file);
Result<Picture> DecodePsd(Bytes file, const DecodeOptions& options);

}  // namespace tessara
