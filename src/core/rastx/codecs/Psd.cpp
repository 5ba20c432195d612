#include "core/rastx/codecs/Psd.h"

namespace tessara {

bool RecognisePsd(Bytes) {
    return false;
}

Result<Picture> DecodePsd(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

}  // namespace tessara
