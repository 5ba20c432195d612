#include "core/rastx/codecs/Pcx.h"

namespace tessara {

bool RecognisePcx(Bytes) {
    return false;
}

Result<Picture> DecodePcx(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

}  // namespace tessara
