#pragma once

#include <cstddef>
#include <cstdint>

namespace tessara {

/// A fixed block of zeroed memory. A large one asks the system for huge pages: touching 100 MB of small pages
/// for the first time costs as much as decoding a good part of a JPEG.
class LargeBuffer {
  public:
    LargeBuffer() = default;
    /// Check Valid() afterwards: a block that cannot be had is empty.
    explicit LargeBuffer(std::size_t size);
    ~LargeBuffer();
    LargeBuffer(LargeBuffer&& other) noexcept;
    LargeBuffer& operator=(LargeBuffer&& other) noexcept;

    bool Valid() const { return data_ != nullptr; }
    std::uint8_t* Data() const { return data_; }
    std::size_t Size() const { return size_; }

  private:
    std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
    bool mapped_ = false;
};

}  // namespace tessara
