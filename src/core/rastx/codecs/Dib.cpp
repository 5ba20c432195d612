#include "core/rastx/codecs/Dib.h"

namespace tessara {

Result<Picture> DecodeDib(Bytes, std::optional<Bytes>, const DibOptions&, const DecodeOptions&) {
    return Unsupported("not read yet");
}

}  // namespace tessara
