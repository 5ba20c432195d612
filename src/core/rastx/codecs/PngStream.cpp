#include "core/rastx/codecs/PngStream.h"

#include <algorithm>
#include <utility>

#include "core/rastx/codecs/PngChunks.h"

namespace tessara::png {

Inflater::Inflater(std::function<Bytes()> nextPiece)
    : nextPiece_(std::move(nextPiece)), state_(std::make_unique<inflate_state>()) {
    isal_inflate_init(state_.get());
    state_->crc_flag = ISAL_ZLIB;
}

std::size_t Inflater::Read(std::span<std::uint8_t> out) {
    std::size_t done = 0;
    while (done < out.size() && !ended_) {
        const auto wanted = static_cast<std::uint32_t>(std::min<std::size_t>(out.size() - done, 1u << 30));
        const std::size_t got = Step(out.subspan(done, wanted));
        done += got;
        if (got == 0 && state_->avail_in == 0) Feed();
    }
    return done;
}

std::size_t Inflater::Step(std::span<std::uint8_t> out) {
    state_->next_out = out.data();
    state_->avail_out = static_cast<std::uint32_t>(out.size());
    const int status = isal_inflate(state_.get());
    const std::size_t got = out.size() - state_->avail_out;
    if (status != ISAL_DECOMP_OK && status != ISAL_END_INPUT) ended_ = true;
    // All output has been given, not only made.
    if (state_->block_state == ISAL_BLOCK_FINISH) ended_ = true;
    return got;
}

void Inflater::Feed() {
    const Bytes piece = nextPiece_();
    if (piece.empty()) ended_ = true;
    state_->next_in = const_cast<std::uint8_t*>(piece.data());
    state_->avail_in = static_cast<std::uint32_t>(piece.size());
}

ByteVector InflateProfile(Bytes compressed) {
    constexpr std::size_t kLargest = std::size_t{16} << 20;
    constexpr std::size_t kStep = std::size_t{256} << 10;
    Inflater inflater([rest = compressed]() mutable { return std::exchange(rest, Bytes()); });
    ByteVector profile;
    for (std::size_t got = kStep; got == kStep && profile.size() < kLargest;) {
        profile.resize(profile.size() + kStep);
        got = inflater.Read(std::span(profile).last(kStep));
        profile.resize(profile.size() - kStep + got);
    }
    return profile;
}

RowSource::RowSource(ByteReader chunks, Bytes firstPiece, std::size_t longestRow)
    : inflater_([chunks, piece = firstPiece]() mutable {
          while (piece.empty()) {
              const Chunk chunk = ReadChunk(chunks);
              if (chunk.type != "IDAT") break;
              piece = chunk.data;
          }
          return std::exchange(piece, Bytes());
      }),
      buffer_(std::max(longestRow + 1, kBufferSize)) {}

Bytes RowSource::Take(std::size_t size) {
    if (end_ - begin_ < size) {
        std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
                  buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
        end_ -= begin_;
        begin_ = 0;
        end_ += inflater_.Read(std::span(buffer_).subspan(end_));
    }
    if (end_ - begin_ < size) return {};
    begin_ += size;
    return Bytes(buffer_).subspan(begin_ - size, size);
}

}  // namespace tessara::png
