#pragma once

#include <cstdint>
#include <string_view>

#include "core/Bytes.h"
#include "core/Result.h"

namespace tessara {

/// Where an encoder puts its bytes: a file or memory. Encoders write as they go, so that a large picture is
/// never held a second time in its encoded form.
class ByteSink {
  public:
    virtual ~ByteSink() = default;
    virtual Result<void> Write(Bytes bytes) = 0;
    /// Replaces bytes that were already written, for lengths that are known only at the end.
    virtual Result<void> Overwrite(std::uint64_t position, Bytes bytes) = 0;
    /// Bytes written so far.
    virtual std::uint64_t Position() const = 0;
};

class MemorySink final : public ByteSink {
  public:
    MemorySink() = default;
    /// With room for so many bytes, so that they need not be moved as they become more.
    explicit MemorySink(std::size_t expected) { bytes_.reserve(expected); }
    Result<void> Write(Bytes bytes) override {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
        return {};
    }
    Result<void> Overwrite(std::uint64_t position, Bytes bytes) override {
        if (position > bytes_.size() || bytes_.size() - position < bytes.size())
            return BadArgument("overwriting bytes that were not written");
        std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(position));
        return {};
    }
    std::uint64_t Position() const override { return bytes_.size(); }

    const ByteVector& Written() const { return bytes_; }
    ByteVector TakeBytes() { return std::move(bytes_); }

  private:
    ByteVector bytes_;
};

/// Gathers the numbers of a header in memory, the counterpart of ByteReader.
class ByteWriter {
  public:
    ByteWriter& U8(std::uint32_t value) { return Put<1>(value, false); }
    ByteWriter& U16Le(std::uint32_t value) { return Put<2>(value, false); }
    ByteWriter& U16Be(std::uint32_t value) { return Put<2>(value, true); }
    ByteWriter& U32Le(std::uint32_t value) { return Put<4>(value, false); }
    ByteWriter& U32Be(std::uint32_t value) { return Put<4>(value, true); }
    ByteWriter& I32Le(std::int32_t value) { return U32Le(static_cast<std::uint32_t>(value)); }
    ByteWriter& U64Le(std::uint64_t value) { return Put<8>(value, false); }
    ByteWriter& Text(std::string_view text) {
        bytes_.insert(bytes_.end(), text.begin(), text.end());
        return *this;
    }
    ByteWriter& Append(Bytes bytes) {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
        return *this;
    }
    ByteWriter& Zeros(std::size_t count) {
        bytes_.resize(bytes_.size() + count);
        return *this;
    }

    std::size_t Size() const { return bytes_.size(); }
    const ByteVector& Written() const { return bytes_; }
    ByteVector TakeBytes() { return std::move(bytes_); }

  private:
    template <unsigned count>
    ByteWriter& Put(std::uint64_t value, bool bigEndian) {
        for (unsigned i = 0; i < count; ++i)
            bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * (bigEndian ? count - 1 - i : i))));
        return *this;
    }

    ByteVector bytes_;
};

}  // namespace tessara
