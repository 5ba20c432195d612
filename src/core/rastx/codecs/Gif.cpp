#include "core/rastx/codecs/Gif.h"

namespace tessara {

bool RecogniseGif(Bytes) {
    return false;
}

Result<Picture> DecodeGif(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

Result<void> EncodeGif(const Picture&, const EncodeOptions&, ByteSink&) {
    return Unsupported("not written yet");
}
}  // namespace tessara
