#include "core/rastx/codecs/UtahRle.h"

namespace tessara {

bool RecogniseUtahRle(Bytes) {
    return false;
}

Result<Picture> DecodeUtahRle(Bytes, const DecodeOptions&) {
    return Unsupported("not read yet");
}

}  // namespace tessara
