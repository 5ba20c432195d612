// Writing GIF. Rows are matched to the palette and packed as they come.

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <vector>

#include "core/rastx/Quantizer.h"
#include "core/rastx/codecs/Gif.h"
#include "core/rastx/codecs/GifFormat.h"

namespace tessara {
namespace {

using namespace gif;

using Codes = std::vector<std::uint16_t>;

/// Palette indexes to LZW codes.
class LzwEncoder {
  public:
    explicit LzwEncoder(int minimumCodeSize) : clear_(1u << minimumCodeSize) {}

    /// Appends the codes of further indexes.
    void Put(Bytes indexes, Codes& codes) {
        std::size_t i = 0;
        if (prefix_ == kNone && !indexes.empty()) {
            Clear(codes);
            prefix_ = indexes[i++];
        }
        std::uint32_t prefix = prefix_;
        for (; i < indexes.size(); ++i) {
            const std::uint32_t key = prefix << 8 | indexes[i];
            std::uint32_t slot = key * 2654435769u >> (32 - kSlotBits);
            while (slots_[slot] >> kLargestCodeSize != key && slots_[slot] != kEmpty)
                slot = (slot + 1) % kSlots;
            if (slots_[slot] != kEmpty) {
                prefix = slots_[slot] % kCodes;
                continue;
            }
            codes.push_back(static_cast<std::uint16_t>(prefix));
            prefix = indexes[i];
            slots_[slot] = key << kLargestCodeSize | next_;
            if (++next_ == kCodes) Clear(codes);
        }
        prefix_ = prefix;
    }

    void Finish(Codes& codes) {
        codes.push_back(static_cast<std::uint16_t>(prefix_));
        codes.push_back(static_cast<std::uint16_t>(clear_ + 1));
    }

  private:
    // A slot holds a string (the code of its head, 12 bits, and its last index, 8 bits) and its own code in
    // 12 bits: the whole table fits into the first cache.
    static constexpr int kSlotBits = 13;
    static constexpr std::uint32_t kSlots = 1u << kSlotBits;
    static constexpr std::uint32_t kEmpty = 0xffffffff;  // would begin with code 4095, which is never used
    static constexpr std::uint32_t kNone = 0xffffffff;

    void Clear(Codes& codes) {
        slots_.fill(kEmpty);
        codes.push_back(static_cast<std::uint16_t>(clear_));
        next_ = clear_ + 2;
    }

    std::uint32_t clear_;
    std::uint32_t next_ = 0;
    std::uint32_t prefix_ = kNone;
    std::array<std::uint32_t, kSlots> slots_;
};

/// Packs LZW codes into sub-blocks. Their sizes follow from their number since the last clear code.
class CodeWriter {
  public:
    CodeWriter(int minimumCodeSize, ByteSink& sink)
        : sink_(sink), minimumCodeSize_(minimumCodeSize), codeSize_(minimumCodeSize + 1) {}

    Result<void> Put(const Codes& codes) {
        packed_.resize(used_ + 2 * codes.size() + sizeof(std::uint32_t));
        for (const std::uint32_t code : codes) {
            bits_ |= std::uint64_t{code} << count_;
            count_ += codeSize_;
            if (count_ >= 32) Flush(4);
            if (code == 1u << minimumCodeSize_) {
                codeSize_ = minimumCodeSize_ + 1;
                next_ = code + 2;
            } else if (next_++ == 1u << codeSize_ && codeSize_ < kLargestCodeSize) {
                ++codeSize_;
            }
        }
        return used_ < kBatch ? Result<void>() : WriteFullBlocks();
    }

    Result<void> Finish() {
        packed_.resize(used_ + 2 * sizeof(std::uint32_t));
        Flush(static_cast<std::size_t>(count_ + 7) / 8);
        TRY(WriteFullBlocks());
        ByteWriter last;
        if (used_ > 0) last.U8(static_cast<std::uint32_t>(used_)).Append({packed_.data(), used_});
        return sink_.Write(last.U8(0).Written());
    }

  private:
    static constexpr std::size_t kBlock = 255;
    static constexpr std::size_t kBatch = 256 * kBlock;

    void Flush(std::size_t bytes) {
        for (std::size_t i = 0; i < 4; ++i) packed_[used_ + i] = static_cast<std::uint8_t>(bits_ >> (8 * i));
        used_ += bytes;
        bits_ >>= 32;
        count_ -= 32;
    }

    Result<void> WriteFullBlocks() {
        ByteWriter framed;
        Bytes rest(packed_.data(), used_);
        for (; rest.size() >= kBlock; rest = rest.subspan(kBlock))
            framed.U8(kBlock).Append(rest.first(kBlock));
        std::copy(rest.begin(), rest.end(), packed_.begin());
        used_ = rest.size();
        return sink_.Write(framed.Written());
    }

    ByteSink& sink_;
    int minimumCodeSize_;
    int codeSize_;
    std::uint32_t next_ = 0;
    std::uint64_t bits_ = 0;
    int count_ = 0;
    ByteVector packed_;
    std::size_t used_ = 0;
};

ByteVector Header(const Picture& picture, const Quantizer& quantizer, int bits) {
    ByteWriter header;
    const auto width = static_cast<std::uint32_t>(picture.Width());
    const auto height = static_cast<std::uint32_t>(picture.Height());
    header.Text("GIF89a").U16Le(width).U16Le(height);
    header.U8(kHasPalette | static_cast<unsigned>(bits - 1) * 0x11u).U8(0).U8(0);
    for (const Pixel color : quantizer.Palette()) header.U8(color.r).U8(color.g).U8(color.b);
    header.Zeros(3 * ((std::size_t{1} << bits) - quantizer.Palette().size()));
    if (const auto index = quantizer.TransparentIndex())
        header.U8(kExtension).U8(kGraphicControl).U8(4).U8(kTransparency).U16Le(0).U8(*index).U8(0);
    header.U8(kImage).U16Le(0).U16Le(0).U16Le(width).U16Le(height).U8(0);
    return header.TakeBytes();
}

}  // namespace

Result<void> EncodeGif(const Picture& picture, const EncodeOptions& options, ByteSink& sink) {
    if (picture.Empty()) return BadArgument("an empty picture");
    Quantizer quantizer(picture, options.transparent ? std::optional(options.color) : std::nullopt);
    const int bits = std::max(1, static_cast<int>(std::bit_width(quantizer.Palette().size() - 1)));
    const int minimumCodeSize = std::max(2, bits);
    TRY(sink.Write(Header(picture, quantizer, bits)));
    TRY(sink.Write(ByteWriter().U8(static_cast<unsigned>(minimumCodeSize)).Written()));

    CodeWriter writer(minimumCodeSize, sink);
    LzwEncoder encoder(minimumCodeSize);
    ByteVector indexes(static_cast<std::size_t>(picture.Width()));
    Codes codes;
    for (int y = 0; y < picture.Height(); ++y) {
        quantizer.NextRow(indexes);
        encoder.Put(indexes, codes);
        TRY(writer.Put(codes));
        codes.clear();
    }
    encoder.Finish(codes);
    TRY(writer.Put(codes));
    TRY(writer.Finish());
    return sink.Write(ByteWriter().U8(kTrailer).Written());
}

}  // namespace tessara
