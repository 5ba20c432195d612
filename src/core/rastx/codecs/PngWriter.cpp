#include "core/rastx/codecs/Png.h"
namespace tessara {
Result<void> EncodePng(const Picture&, const EncodeOptions&, ByteSink&) { return Unsupported("not written yet"); }
}
