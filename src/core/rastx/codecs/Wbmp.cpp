#include "core/rastx/codecs/Wbmp.h"

namespace tessara {

bool RecogniseWbmp(Bytes) {
    return false;
}

Result<Picture> DecodeWbmp(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

Result<void> EncodeWbmp(const Picture&, const EncodeOptions&, ByteSink&) {
    return Unsupported("not written yet");
}
}  // namespace tessara
