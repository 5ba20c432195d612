#include "core/rastx/codecs/Ico.h"

namespace tessara {

bool RecogniseIco(Bytes) {
    return false;
}

Result<Picture> DecodeIco(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

Result<void> EncodeIco(const Picture&, const EncodeOptions&, ByteSink&) {
    return Unsupported("not written yet");
}
}  // namespace tessara
