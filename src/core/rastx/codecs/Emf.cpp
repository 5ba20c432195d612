#include "core/rastx/codecs/Emf.h"

namespace tessara {

bool RecogniseEmf(Bytes) {
    return false;
}

Result<Picture> DecodeEmf(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

Result<void> EncodeEmf(const Picture&, const EncodeOptions&, ByteSink&) {
    return Unsupported("not written yet");
}
}  // namespace tessara
