#include "core/rastx/codecs/Jpg.h"

namespace tessara {

bool RecogniseJpg(Bytes) {
    return false;
}

Result<Picture> DecodeJpg(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

Result<void> EncodeJpg(const Picture&, const EncodeOptions&, ByteSink&) {
    return Unsupported("not written yet");
}
}  // namespace tessara
