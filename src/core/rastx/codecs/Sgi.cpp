#include "core/rastx/codecs/Sgi.h"

namespace tessara {

bool RecogniseSgi(Bytes) {
    return false;
}

Result<Picture> DecodeSgi(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

}  // namespace tessara
