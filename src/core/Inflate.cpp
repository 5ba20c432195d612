#include "core/Inflate.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace tessara {
namespace {

struct FreeDecompressor {
    void operator()(libdeflate_decompressor* decompressor) const {
        libdeflate_free_decompressor(decompressor);
    }
};

/// Slower, but tells how far it came.
std::size_t InflateStepwise(Bytes compressed, std::span<std::uint8_t> target) {
    z_stream stream = {};
    if (inflateInit(&stream) != Z_OK) return 0;
    constexpr std::size_t kMostPerCall = std::numeric_limits<uInt>::max();
    std::size_t written = 0;
    int status = Z_OK;
    while (status == Z_OK && written < target.size()) {
        // The library takes the input as not const for historic reasons, and does not write to it.
        stream.next_in = const_cast<Bytef*>(compressed.data());
        stream.avail_in = static_cast<uInt>(std::min(compressed.size(), kMostPerCall));
        stream.next_out = target.data() + written;
        stream.avail_out = static_cast<uInt>(std::min(target.size() - written, kMostPerCall));
        status = inflate(&stream, Z_NO_FLUSH);
        compressed = compressed.subspan(static_cast<std::size_t>(stream.next_in - compressed.data()));
        written = static_cast<std::size_t>(stream.next_out - target.data());
    }
    inflateEnd(&stream);
    return written;
}

}  // namespace

std::size_t InflateInto(Bytes compressed, std::span<std::uint8_t> target) {
    if (compressed.empty() || target.empty()) return 0;
    const std::unique_ptr<libdeflate_decompressor, FreeDecompressor> whole(libdeflate_alloc_decompressor());
    std::size_t written = 0;
    if (whole && libdeflate_zlib_decompress(whole.get(), compressed.data(), compressed.size(), target.data(),
                                            target.size(), &written) == LIBDEFLATE_SUCCESS)
        return written;
    return InflateStepwise(compressed, target);
}

}  // namespace tessara
