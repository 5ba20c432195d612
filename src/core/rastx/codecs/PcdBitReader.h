#pragma once

#include "core/Bytes.h"

namespace tessara::pcd {

/// Bits from the most significant on; zeros behind the end.
class BitReader {
  public:
    explicit BitReader(Bytes bytes) : bytes_(bytes) {}

    /// The next `count` bits, at most 32.
    std::uint32_t Peek(unsigned count) {
        if (available_ < count) Refill();
        return static_cast<std::uint32_t>(bits_ >> (64 - count));
    }
    void Skip(unsigned count) {
        if (available_ < count) Refill();
        bits_ <<= count;
        available_ -= count;
    }
    /// Whether bits behind the end were taken.
    bool Overrun() const { return next_ > bytes_.size() && (next_ - bytes_.size()) * 8 > available_; }
    /// Bytes begun so far.
    std::size_t Position() const { return next_ - available_ / 8; }

  private:
    void Refill() {
        while (available_ <= 56) {
            const std::uint64_t byte = next_ < bytes_.size() ? bytes_[next_] : 0;
            bits_ |= byte << (56 - available_);
            available_ += 8;
            ++next_;
        }
    }

    Bytes bytes_;
    std::size_t next_ = 0;
    std::uint64_t bits_ = 0;
    unsigned available_ = 0;
};

}  // namespace tessara::pcd
