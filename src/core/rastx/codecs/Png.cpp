#include "core/rastx/codecs/Png.h"

namespace tessara {

bool RecognisePng(Bytes) {
    return false;
}

Result<Picture> DecodePng(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

Result<void> EncodePng(const Picture&, const EncodeOptions&, ByteSink&) {
    return Unsupported("not written yet");
}
}  // namespace tessara
