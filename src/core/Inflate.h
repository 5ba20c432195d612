#pragma once

#include <span>

#include "core/Bytes.h"

namespace tessara {

/// Inflates a zlib stream (RFC 1950) and returns how many bytes of `target` were written. What comes before
/// damage or a cut is kept; what does not fit is left out.
std::size_t InflateInto(Bytes compressed, std::span<std::uint8_t> target);

/// The most bytes that `compressed` bytes can grow to: deflate stores at best 258 bytes in two bits.
constexpr std::uint64_t MostInflated(std::uint64_t compressed) {
    return compressed * 1032;
}

}  // namespace tessara
