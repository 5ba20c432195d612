#include "core/rastx/codecs/Tif.h"

namespace tessara {
Result<void> EncodeTif(const Picture&, const EncodeOptions&, ByteSink&) {
    return Unsupported("not written yet");
}
}  // namespace tessara
