#include "core/rastx/codecs/Psp.h"

namespace tessara {

bool RecognisePsp(Bytes) {
    return false;
}

Result<Picture> DecodePsp(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

}  // namespace tessara
