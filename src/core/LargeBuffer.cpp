#include "core/LargeBuffer.h"

#include <cstdlib>
#include <utility>

// Under the address sanitizer every block comes from the checked heap.
#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__)
#include <sys/mman.h>
#define TESSARA_MAPS_MEMORY 1
#endif

namespace tessara {

LargeBuffer::LargeBuffer(std::size_t size) : size_(size) {
#ifdef TESSARA_MAPS_MEMORY
    constexpr std::size_t kMappedFrom = std::size_t{4} << 20;
    if (size >= kMappedFrom) {
        void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) return;
        madvise(memory, size, MADV_HUGEPAGE);
        data_ = static_cast<std::uint8_t*>(memory);
        mapped_ = true;
        return;
    }
#endif
    data_ = static_cast<std::uint8_t*>(std::calloc(size > 0 ? size : 1, 1));
}

LargeBuffer::~LargeBuffer() {
#ifdef TESSARA_MAPS_MEMORY
    if (mapped_) {
        munmap(data_, size_);
        return;
    }
#endif
    std::free(data_);
}

LargeBuffer::LargeBuffer(LargeBuffer&& other) noexcept {
    *this = std::move(other);
}

LargeBuffer& LargeBuffer::operator=(LargeBuffer&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    std::swap(mapped_, other.mapped_);
    return *this;
}

}  // namespace tessara
