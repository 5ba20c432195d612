#include "core/rastx/codecs/Pnm.h"

namespace tessara {

bool RecognisePnm(Bytes) {
    return false;
}

Result<Picture> DecodePnm(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

}  // namespace tessara
