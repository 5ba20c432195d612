#include "core/rastx/codecs/Pcd.h"

namespace tessara {

bool RecognisePcd(Bytes) {
    return false;
}

Result<Picture> DecodePcd(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

}  // namespace tessara
