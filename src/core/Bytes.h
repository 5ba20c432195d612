#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tessara {

/// A view of bytes that somebody else holds: a file in memory, a record of it, a row of samples.
using Bytes = std::span<const std::uint8_t>;
using ByteVector = std::vector<std::uint8_t>;

inline Bytes AsBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// The part of `bytes` from `offset` on, of at most `length` bytes; empty where the offset lies behind the
/// end.
constexpr Bytes Slice(Bytes bytes, std::uint64_t offset, std::uint64_t length = UINT64_MAX) {
    if (offset >= bytes.size()) return {};
    const std::uint64_t rest = bytes.size() - offset;
    return bytes.subspan(static_cast<std::size_t>(offset),
                         static_cast<std::size_t>(length < rest ? length : rest));
}

}  // namespace tessara
