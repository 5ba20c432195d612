#include "core/rastx/codecs/Tga.h"

namespace tessara {

bool RecogniseTga(Bytes) {
    return false;
}

Result<Picture> DecodeTga(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

Result<void> EncodeTga(const Picture&, const EncodeOptions&, ByteSink&) {
    return Unsupported("not written yet");
}
}  // namespace tessara
