#include "core/rastx/codecs/Bmp.h"

namespace tessara {

bool RecogniseBmp(Bytes) {
    return false;
}

Result<Picture> DecodeBmp(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

Result<void> EncodeBmp(const Picture&, const EncodeOptions&, ByteSink&) {
    return Unsupported("not written yet");
}
}  // namespace tessara
