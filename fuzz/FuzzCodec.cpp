#include <algorithm>
#include <cstdlib>

#include "core/rastx/Codec.h"

/// Decodes whatever the fuzzer makes up, with limits that keep one run short.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto codec =
        std::ranges::find(tessara::Codecs(), TESSARA_FUZZED_CODEC, &tessara::Codec::name);
    if (codec == tessara::Codecs().end()) std::abort();
    tessara::DecodeOptions options;
    options.limits = {.side = 4096, .decodedBytes = std::uint64_t{16} << 20};
    const tessara::Bytes file(data, size);
    static_cast<void>(codec->recognise(file));
    const tessara::Result<tessara::Picture> picture = codec->decode(file, options);
    if (picture && picture.Value().Empty()) std::abort();
    return 0;
}
