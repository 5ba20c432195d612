#include "core/rastx/codecs/Wmf.h"

namespace tessara {

bool RecogniseWmf(Bytes) {
    return false;
}

Result<Picture> DecodeWmf(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

Result<void> EncodeWmf(const Picture&, const EncodeOptions&, ByteSink&) {
    return Unsupported("not written yet");
}
}  // namespace tessara
