#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

#include "core/Bytes.h"

namespace tessara {

/// Reads numbers and slices from a span, and can never leave it.
///
/// A read that does not fit gives 0 (or an empty span), leaves the position where it was and is remembered:
/// a header is read straight through and `Overrun()` asked once at its end.
class ByteReader {
  public:
    explicit ByteReader(Bytes bytes) : bytes_(bytes) {}

    std::size_t Position() const { return position_; }
    std::size_t Size() const { return bytes_.size(); }
    std::size_t Left() const { return bytes_.size() - position_; }
    bool AtEnd() const { return position_ == bytes_.size(); }
    bool Overrun() const { return overrun_; }

    /// Moves to an absolute position, at most to the end.
    bool Seek(std::uint64_t position) {
        if (position > bytes_.size()) return Fail();
        position_ = static_cast<std::size_t>(position);
        return true;
    }
    bool Skip(std::uint64_t count) {
        if (count > Left()) return Fail();
        position_ += static_cast<std::size_t>(count);
        return true;
    }

    std::uint8_t U8() { return static_cast<std::uint8_t>(Read<1, std::endian::little>()); }
    std::uint16_t U16Le() { return static_cast<std::uint16_t>(Read<2, std::endian::little>()); }
    std::uint16_t U16Be() { return static_cast<std::uint16_t>(Read<2, std::endian::big>()); }
    std::uint32_t U32Le() { return static_cast<std::uint32_t>(Read<4, std::endian::little>()); }
    std::uint32_t U32Be() { return static_cast<std::uint32_t>(Read<4, std::endian::big>()); }
    std::uint64_t U64Le() { return Read<8, std::endian::little>(); }
    std::uint64_t U64Be() { return Read<8, std::endian::big>(); }
    std::int8_t I8() { return static_cast<std::int8_t>(U8()); }
    std::int16_t I16Le() { return static_cast<std::int16_t>(U16Le()); }
    std::int16_t I16Be() { return static_cast<std::int16_t>(U16Be()); }
    std::int32_t I32Le() { return static_cast<std::int32_t>(U32Le()); }
    std::int32_t I32Be() { return static_cast<std::int32_t>(U32Be()); }
    float F32Le() { return std::bit_cast<float>(U32Le()); }
    float F32Be() { return std::bit_cast<float>(U32Be()); }
    double F64Le() { return std::bit_cast<double>(U64Le()); }

    /// The next `count` bytes, or none at all where fewer are left.
    Bytes Take(std::uint64_t count) {
        if (count > Left()) {
            overrun_ = true;
            return {};
        }
        const Bytes taken = bytes_.subspan(position_, static_cast<std::size_t>(count));
        position_ += taken.size();
        return taken;
    }
    /// The next `count` bytes, or as many as are left.
    Bytes TakeUpTo(std::uint64_t count) { return Take(count < Left() ? count : Left()); }
    Bytes Rest() const { return bytes_.subspan(position_); }

    /// The byte `ahead` of the position without moving, 0 behind the end.
    std::uint8_t Peek(std::size_t ahead = 0) const { return ahead < Left() ? bytes_[position_ + ahead] : 0; }

  private:
    bool Fail() {
        overrun_ = true;
        return false;
    }

    template <unsigned count, std::endian order>
    std::uint64_t Read() {
        if (count > Left()) {
            overrun_ = true;
            return 0;
        }
        std::uint64_t value = 0;
        for (unsigned i = 0; i < count; ++i) {
            const unsigned shift = 8 * (order == std::endian::little ? i : count - 1 - i);
            value |= std::uint64_t{bytes_[position_ + i]} << shift;
        }
        position_ += count;
        return value;
    }

    Bytes bytes_;
    std::size_t position_ = 0;
    bool overrun_ = false;
};

/// Whether `bytes` begin with the characters of `signature` at `offset`.
inline bool HasSignature(Bytes bytes, std::string_view signature, std::size_t offset = 0) {
    if (bytes.size() < offset || bytes.size() - offset < signature.size()) return false;
    for (std::size_t i = 0; i < signature.size(); ++i)
        if (bytes[offset + i] != static_cast<std::uint8_t>(signature[i])) return false;
    return true;
}

}  // namespace tessara
