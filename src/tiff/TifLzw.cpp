#include "tiff/TifLzw.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace tessara {
namespace {

constexpr std::uint32_t kClear = 256;
constexpr std::uint32_t kEnd = 257;
constexpr std::uint32_t kFirstFree = 258;
constexpr std::uint32_t kCodes = 4096;
constexpr unsigned kShortestCode = 9;
constexpr unsigned kLongestCode = 12;
constexpr std::size_t kStep = 8;  ///< bytes copied at a time

/// The 256 bytes as strings of one, with room behind for copying in steps.
constexpr auto kLiterals = [] {
    std::array<std::uint8_t, 256 + kStep> literals{};
    for (std::size_t i = 0; i < 256; ++i) literals[i] = static_cast<std::uint8_t>(i);
    return literals;
}();

/// Reads codes from the highest bit down; zeros follow behind the end.
class CodeReader {
  public:
    explicit CodeReader(Bytes packed) : packed_(packed), bits_(std::uint64_t{packed.size()} * 8) {}

    bool AtEnd(unsigned width) const { return bits_ - position_ < width; }
    std::uint32_t Read(unsigned width) {
        const std::uint64_t window = Window(position_ / 8) << (position_ % 8);
        position_ += width;
        return static_cast<std::uint32_t>(window >> (64 - width));
    }

  private:
    std::uint64_t Window(std::size_t offset) const {
        std::array<std::uint8_t, 8> bytes{};
        const std::size_t left = packed_.size() - offset;
        if (left >= bytes.size())
            std::memcpy(bytes.data(), packed_.data() + offset, bytes.size());
        else
            std::memcpy(bytes.data(), packed_.data() + offset, left);
        std::uint64_t window = 0;
        for (const std::uint8_t byte : bytes) window = window << 8 | byte;
        return window;
    }

    Bytes packed_;
    std::uint64_t bits_;
    std::uint64_t position_ = 0;
};

/// The strings of the codes. Each is the one before it and the byte that followed, and so stands in what has
/// been unpacked already: no string is ever put together.
class StringTable {
  public:
    StringTable() {
        for (std::size_t i = 0; i < 256; ++i) {
            starts_[i] = &kLiterals[i];
            lengths_[i] = 1;
        }
    }

    void Clear() { free_ = kFirstFree; }
    std::uint32_t Free() const { return free_; }
    void Add(const std::uint8_t* start, std::uint32_t length) {
        if (free_ == kCodes) return;
        starts_[free_] = start;
        lengths_[free_] = static_cast<std::uint16_t>(length);
        ++free_;
    }
    const std::uint8_t* Start(std::uint32_t code) const { return starts_[code]; }
    std::uint32_t Length(std::uint32_t code) const { return lengths_[code]; }

  private:
    std::array<const std::uint8_t*, kCodes> starts_;
    std::array<std::uint16_t, kCodes> lengths_;
    std::uint32_t free_ = kFirstFree;
};

/// Copies in steps where there is room for the last one to run over.
void CopyString(const std::uint8_t* from, std::size_t length, std::uint8_t* to, std::size_t room) {
    if (room < length + kStep) {
        for (std::size_t i = 0; i < std::min(length, room); ++i) to[i] = from[i];
        return;
    }
    for (std::size_t i = 0; i < length; i += kStep) std::memcpy(to + i, from + i, kStep);
}

}  // namespace

bool IsOldTifLzw(Bytes packed) {
    // The first code is a clear, which begins with a set bit; read from the other end it leaves these traces.
    return packed.size() >= 2 && packed[0] == 0 && (packed[1] & 1) != 0;
}

std::size_t UnpackTifLzw(Bytes packed, std::span<std::uint8_t> target) {
    CodeReader reader(packed);
    StringTable table;
    unsigned width = kShortestCode;
    std::uint8_t* out = target.data();
    std::uint8_t* const end = out + target.size();
    const std::uint8_t* previous = nullptr;
    std::uint32_t previousLength = 0;
    while (out < end && !reader.AtEnd(width)) {
        const std::uint32_t code = reader.Read(width);
        if (code == kEnd) break;
        if (code == kClear) {
            table.Clear();
            width = kShortestCode;
            previous = nullptr;
            continue;
        }
        const std::uint32_t free = table.Free();
        if (code > free || (code == free && !previous)) break;
        if (previous) table.Add(previous, previousLength + 1);
        const auto room = static_cast<std::size_t>(end - out);
        const std::uint32_t length = table.Length(code);
        if (code == free) {
            // The string that this very code completes: the previous one and its own first byte.
            CopyString(previous, previousLength, out, room);
            if (previousLength < room) out[previousLength] = out[0];
        } else {
            CopyString(table.Start(code), length, out, room);
        }
        previous = out;
        previousLength = length;
        out += std::min<std::size_t>(length, room);
        if (table.Free() + 1 >= 1u << width && width < kLongestCode) ++width;
    }
    return static_cast<std::size_t>(out - target.data());
}

}  // namespace tessara
