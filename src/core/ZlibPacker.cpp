#include "core/ZlibPacker.h"

#include <isa-l/igzip_lib.h>
#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cstring>
#include <numeric>

#include "core/Multiversion.h"

namespace tessara {
namespace {

constexpr std::size_t kSymbols = 257;  ///< the bytes and the end of a block
constexpr std::size_t kEndOfBlock = 256;
constexpr unsigned kLongestCode = 11;
constexpr std::size_t kBytesPerRound = 5;  ///< so many codes fit into a word beside 7 bits that wait
constexpr std::size_t kTrialSize = 32768;
constexpr int kPiecesPerTrial = 4;
/// Bytes that a stream has beside its codes, generously.
constexpr std::size_t kOverhead = 1024;

using Counts = std::array<std::uint32_t, kSymbols>;
using Lengths = std::array<std::uint8_t, kSymbols>;

/// Counts one run of bytes in so many. Every symbol counts once more, so that all get a code.
Counts CountSymbols(Bytes raw, std::size_t oneIn) {
    constexpr std::size_t kRun = 64;
    // Two tables, because a byte that comes twice would wait for its own count to be stored.
    Counts even;
    Counts odd{};
    even.fill(1);
    for (std::size_t start = 0; start < raw.size(); start += kRun * oneIn) {
        const Bytes run = raw.subspan(start, std::min(kRun, raw.size() - start));
        for (std::size_t i = 0; i + 1 < run.size(); i += 2) {
            ++even[run[i]];
            ++odd[run[i + 1]];
        }
    }
    for (std::size_t i = 0; i < kSymbols; ++i) even[i] += odd[i];
    return even;
}

Lengths HuffmanLengths(const Counts& counts) {
    std::array<std::uint16_t, kSymbols> order;
    std::iota(order.begin(), order.end(), std::uint16_t{0});
    std::sort(order.begin(), order.end(), [&](auto a, auto b) { return counts[a] < counts[b]; });

    // First the leaves from the rarest on, behind them the joined nodes, which are made in rising order.
    constexpr std::size_t kRoot = 2 * kSymbols - 2;
    std::array<std::uint32_t, kRoot + 1> weight{};
    std::array<std::uint16_t, kRoot + 1> parent{};
    for (std::size_t i = 0; i < kSymbols; ++i) weight[i] = counts[order[i]];
    std::size_t leaf = 0;
    std::size_t joined = kSymbols;
    for (std::size_t node = kSymbols; node <= kRoot; ++node)
        for (int child = 0; child < 2; ++child) {
            const bool takeLeaf = leaf < kSymbols && (joined == node || weight[leaf] <= weight[joined]);
            const std::size_t taken = takeLeaf ? leaf++ : joined++;
            weight[node] += weight[taken];
            parent[taken] = static_cast<std::uint16_t>(node);
        }

    std::array<std::uint8_t, kRoot + 1> depth{};
    for (std::size_t node = kRoot; node-- > 0;)
        depth[node] = static_cast<std::uint8_t>(depth[parent[node]] + 1);
    Lengths lengths;
    for (std::size_t i = 0; i < kSymbols; ++i) lengths[order[i]] = depth[i];
    return lengths;
}

/// The same with no code longer than allowed: flatter counts make flatter trees.
Lengths LimitedLengths(Counts counts) {
    Lengths lengths = HuffmanLengths(counts);
    while (*std::max_element(lengths.begin(), lengths.end()) > kLongestCode) {
        for (std::uint32_t& count : counts) count = count / 2 + 1;
        lengths = HuffmanLengths(counts);
    }
    return lengths;
}

/// The bits of a code, the first one lowest as they go into the stream, and below them in a byte their
/// number.
using Code = std::uint32_t;
using Codes = std::array<Code, kSymbols>;

std::uint32_t Reversed(std::uint32_t bits, unsigned count) {
    std::uint32_t reversed = 0;
    for (unsigned i = 0; i < count; ++i) reversed |= (bits >> i & 1) << (count - 1 - i);
    return reversed;
}

/// The canonical code of RFC 1951, section 3.2.2.
Codes CodesOf(const Lengths& lengths) {
    std::array<std::uint32_t, kLongestCode + 1> count{};
    for (const std::uint8_t length : lengths) ++count[length];
    std::array<std::uint32_t, kLongestCode + 1> next{};
    for (unsigned length = 1; length <= kLongestCode; ++length)
        next[length] = (next[length - 1] + (length > 1 ? count[length - 1] : 0)) << 1;
    Codes codes;
    for (std::size_t i = 0; i < kSymbols; ++i)
        codes[i] = Reversed(next[lengths[i]]++, lengths[i]) << 8 | lengths[i];
    return codes;
}

/// Writes bits into memory that must have room for them and for a word behind.
class BitWriter {
  public:
    explicit BitWriter(std::uint8_t* target) : next_(target) {}

    /// Several calls may come between two of Flush, as long as no more than 57 bits do.
    void Put(std::uint64_t bits, unsigned count) {
        word_ |= bits << held_;
        held_ += count;
    }
    void Put(Code code) { Put(code >> 8, code & 0xff); }
    void Flush() {
        for (unsigned i = 0; i < 8; ++i) next_[i] = static_cast<std::uint8_t>(word_ >> 8 * i);
        next_ += held_ / 8;
        word_ >>= held_ & ~7u;
        held_ &= 7;
    }
    /// The end of what was written, filled up to a whole byte.
    std::uint8_t* Finish() {
        Flush();
        return next_ + (held_ > 0 ? 1 : 0);
    }

  private:
    std::uint8_t* next_;
    std::uint64_t word_ = 0;
    unsigned held_ = 0;
};

/// The head of a last block with codes of its own (RFC 1951, section 3.2.7), as plainly as possible: the
/// lengths 0 to 15 have codes of 4 bits each, which are the lengths themselves. There are two codes for
/// distances, none is used.
void PutBlockHead(BitWriter& writer, const Lengths& lengths) {
    constexpr unsigned kLengthsInOrder = 19;
    constexpr unsigned kRepeatCodes = 3;  // come first in that order
    writer.Put(0b101, 3);
    writer.Put(kSymbols - 257, 5);
    writer.Put(2 - 1, 5);
    writer.Put(kLengthsInOrder - 4, 4);
    for (unsigned i = 0; i < kLengthsInOrder; ++i) {
        writer.Put(i < kRepeatCodes ? 0 : 4, 3);
        writer.Flush();
    }
    const auto putLength = [&](unsigned length) {
        writer.Put(Reversed(length, 4), 4);
        writer.Flush();
    };
    for (const std::uint8_t length : lengths) putLength(length);
    putLength(1);
    putLength(1);
}

/// Much of the time of packing is spent here; newer processors shift faster.
TESSARA_MULTIVERSION void PutRounds(BitWriter& writer, const std::uint8_t* raw, std::size_t rounds,
                                    const Code* codes) {
    BitWriter local = writer;  // a copy that nobody else can see stays in registers
    for (std::size_t i = 0; i < rounds; ++i, raw += kBytesPerRound) {
        for (std::size_t k = 0; k < kBytesPerRound; ++k) local.Put(codes[raw[k]]);
        local.Flush();
    }
    writer = local;
}

void PutBytes(BitWriter& writer, Bytes raw, const Codes& codes) {
    const std::size_t rounds = raw.size() / kBytesPerRound;
    PutRounds(writer, raw.data(), rounds, codes.data());
    for (const std::uint8_t byte : raw.subspan(rounds * kBytesPerRound)) {
        writer.Put(codes[byte]);
        writer.Flush();
    }
}

}  // namespace

ZlibPacker::ZlibPacker() : workspace_(ISAL_DEF_LVL1_DEFAULT) {}

Bytes ZlibPacker::Pack(Bytes raw) {
    packed_.resize(raw.size() * kLongestCode / 8 + kOverhead);
    // Neighbouring pieces of a picture are alike.
    if (--piecesUntilTrial_ <= 0) {
        repeats_ = Repeats(raw);
        piecesUntilTrial_ = kPiecesPerTrial;
    }
    const std::size_t size = repeats_ ? PackWithMatches(raw) : PackWithoutMatches(raw);
    return Bytes(packed_).first(size);
}

/// Tries a part of the middle: whether matches save enough to be worth four times the time.
bool ZlibPacker::Repeats(Bytes raw) {
    if (raw.size() < 2 * kTrialSize) return true;
    const Bytes part = raw.subspan((raw.size() - kTrialSize) / 2, kTrialSize);
    const Counts counts = CountSymbols(part, 1);
    const Lengths lengths = LimitedLengths(counts);
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < kSymbols; ++i) bits += std::uint64_t{counts[i]} * lengths[i];
    return PackWithMatches(part) < bits / 8 * 3 / 4;
}

std::size_t ZlibPacker::PackWithMatches(Bytes raw) {
    isal_zstream stream;
    isal_deflate_stateless_init(&stream);
    stream.next_in = const_cast<std::uint8_t*>(raw.data());
    stream.avail_in = static_cast<std::uint32_t>(raw.size());
    stream.next_out = packed_.data();
    stream.avail_out = static_cast<std::uint32_t>(packed_.size());
    stream.end_of_stream = 1;
    stream.level = 1;
    stream.level_buf = workspace_.data();
    stream.level_buf_size = static_cast<std::uint32_t>(workspace_.size());
    stream.gzip_flag = IGZIP_ZLIB;
    [[maybe_unused]] const int status = isal_deflate_stateless(&stream);
    assert(status == COMP_OK);
    return stream.total_out;
}

std::size_t ZlibPacker::PackWithoutMatches(Bytes raw) {
    constexpr std::size_t kCountOneRunIn = 8;
    const Lengths lengths = LimitedLengths(CountSymbols(raw, kCountOneRunIn));
    const Codes codes = CodesOf(lengths);
    std::uint8_t* const begin = packed_.data();
    begin[0] = 0x78;
    begin[1] = 0x01;
    BitWriter writer(begin + 2);
    PutBlockHead(writer, lengths);
    PutBytes(writer, raw, codes);
    writer.Put(codes[kEndOfBlock]);
    std::uint8_t* end = writer.Finish();
    const std::uint32_t check = libdeflate_adler32(1, raw.data(), raw.size());
    for (const unsigned shift : {24u, 16u, 8u, 0u}) *end++ = static_cast<std::uint8_t>(check >> shift);
    return static_cast<std::size_t>(end - begin);
}

}  // namespace tessara
