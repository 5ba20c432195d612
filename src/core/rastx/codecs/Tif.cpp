#include "core/rastx/codecs/Tif.h"

namespace tessara {

bool RecogniseTif(Bytes) {
    return false;
}

Result<Picture> DecodeTif(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

Result<void> EncodeTif(const Picture&, const EncodeOptions&, ByteSink&) {
    return Unsupported("not written yet");
}
}  // namespace tessara
