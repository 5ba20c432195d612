#include "core/rastx/codecs/Gif.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Quantizer.h"
#include "core/rastx/Rows.h"

// Graphics Interchange Format, version 89a (CompuServe, 1990). All numbers are little-endian.
//
//   "GIF89a"
//   screen    u16 width, height; u8 flags, background, aspect; 3 * 2^n bytes of palette where flags say so
//   blocks    0x21 label, sub-blocks                       extension; label 0xF9 tells the transparent index
//             0x2C u16 left, top, width, height; u8 flags;  picture
//                  palette; u8 minimum code size; sub-blocks of LZW codes
//             0x3B                                          end
//   sub-blocks are a length byte and as many bytes each, the last one of length 0

namespace tessara {
namespace {

constexpr std::uint8_t kExtension = 0x21;
constexpr std::uint8_t kImage = 0x2C;
constexpr std::uint8_t kTrailer = 0x3B;
constexpr std::uint8_t kGraphicControl = 0xF9;
constexpr std::uint8_t kHasPalette = 0x80;
constexpr std::uint8_t kInterlaced = 0x40;
constexpr std::uint8_t kTransparency = 0x01;

constexpr int kLargestCodeSize = 12;
constexpr unsigned kCodes = 1u << kLargestCodeSize;

// ---- Reading ----

using GifPalette = std::vector<Pixel>;

struct Screen {
    int width = 0;
    int height = 0;
    GifPalette palette;
};

struct Frame {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool interlaced = false;
    GifPalette palette;
    int transparentIndex = -1;
    int minimumCodeSize = 0;
    ByteVector codes;

    std::size_t PixelCount() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
};

GifPalette ReadPalette(ByteReader& reader, std::uint8_t flags) {
    if (!(flags & kHasPalette)) return {};
    const std::size_t entries = std::size_t{2} << (flags & 7);
    const Bytes colors = reader.TakeUpTo(3 * entries);
    GifPalette palette(colors.size() / 3);
    RgbToPixels(colors, palette);
    return palette;
}

Screen ReadScreen(ByteReader& reader) {
    Screen screen;
    reader.Skip(6);
    screen.width = reader.U16Le();
    screen.height = reader.U16Le();
    const std::uint8_t flags = reader.U8();
    reader.Skip(2);
    screen.palette = ReadPalette(reader, flags);
    return screen;
}

/// Joins the data of sub-blocks up to the closing one, or as far as the file goes.
ByteVector ReadSubBlocks(ByteReader& reader) {
    ByteVector data;
    while (const std::uint8_t length = reader.U8()) {
        const Bytes block = reader.TakeUpTo(length);
        data.insert(data.end(), block.begin(), block.end());
    }
    return data;
}

/// The transparent index where the extension is a graphic control that names one, else what held before.
int ReadExtension(ByteReader& reader, int transparentIndex) {
    const std::uint8_t label = reader.U8();
    const ByteVector data = ReadSubBlocks(reader);
    if (label != kGraphicControl || data.size() < 4) return transparentIndex;
    return data[0] & kTransparency ? data[3] : -1;
}

Frame ReadFrame(ByteReader& reader, const Screen& screen, int transparentIndex) {
    Frame frame;
    frame.left = reader.U16Le();
    frame.top = reader.U16Le();
    frame.width = reader.U16Le();
    frame.height = reader.U16Le();
    const std::uint8_t flags = reader.U8();
    frame.interlaced = flags & kInterlaced;
    frame.palette = ReadPalette(reader, flags);
    if (frame.palette.empty()) frame.palette = screen.palette;
    frame.transparentIndex = transparentIndex;
    frame.minimumCodeSize = reader.U8();
    frame.codes = ReadSubBlocks(reader);
    return frame;
}

/// The first picture that has a size. Bytes that begin no block are passed over.
Result<Frame> FindFirstFrame(ByteReader& reader, const Screen& screen) {
    int transparentIndex = -1;
    while (!reader.AtEnd()) {
        const std::uint8_t introducer = reader.U8();
        if (introducer == kTrailer) break;
        if (introducer == kExtension) transparentIndex = ReadExtension(reader, transparentIndex);
        if (introducer != kImage) continue;
        Frame frame = ReadFrame(reader, screen, transparentIndex);
        if (frame.width > 0 && frame.height > 0) return frame;
        transparentIndex = -1;
    }
    return Damaged("the file holds no picture");
}

/// Codes of changing size from bytes, the first in the least significant bits.
class CodeReader {
  public:
    explicit CodeReader(Bytes bytes) : bytes_(bytes) {}

    /// The next code, or -1 where the bytes end.
    int Next(int size) {
        if (count_ < size) Refill();
        if (count_ < size) return -1;
        const int code = static_cast<int>(bits_ & ((1u << size) - 1));
        bits_ >>= size;
        count_ -= size;
        return code;
    }

  private:
    void Refill() {
        if (bytes_.size() - position_ >= 4) {
            const std::uint8_t* next = &bytes_[position_];
            bits_ |= (std::uint64_t{next[0]} | std::uint64_t{next[1]} << 8 | std::uint64_t{next[2]} << 16 |
                      std::uint64_t{next[3]} << 24)
                     << count_;
            position_ += 4;
            count_ += 32;
            return;
        }
        for (; position_ < bytes_.size(); ++position_, count_ += 8)
            bits_ |= std::uint64_t{bytes_[position_]} << count_;
    }

    Bytes bytes_;
    std::size_t position_ = 0;
    std::uint64_t bits_ = 0;
    int count_ = 0;
};

/// Decodes LZW codes to palette indexes.
///
/// Every string of the table once was part of the output: the string of the code before and the first index
/// of the next one stand there side by side. So a table entry is a place in the output, and a string is
/// copied from there at once instead of being spelled backwards link by link.
class LzwDecoder {
  public:
    LzwDecoder(int minimumCodeSize, std::size_t pixels)
        : minimumCodeSize_(minimumCodeSize),
          end_(kRoots + pixels),
          output_(std::make_unique_for_overwrite<std::uint8_t[]>(end_ + kSlack)) {
        // The roots' strings stand before the picture, so that they are copied like all others.
        for (std::uint32_t i = 0; i < kRoots; ++i) {
            output_[i] = static_cast<std::uint8_t>(i);
            strings_[i] = {i, 1};
        }
    }

    /// The indexes up to the end, or up to the first code that cannot be.
    Bytes Decode(Bytes data) {
        CodeReader codes(data);
        const unsigned clear = 1u << minimumCodeSize_;
        Clear();
        while (position_ < end_) {
            const int read = codes.Next(codeSize_);
            if (read < 0) break;
            const auto code = static_cast<unsigned>(read);
            if (code == clear) {
                Clear();
                continue;
            }
            if (code == clear + 1 || !Append(code)) break;
        }
        return {&output_[kRoots], position_ - kRoots};
    }

  private:
    static constexpr std::size_t kRoots = 256;
    static constexpr std::size_t kChunk = 8;
    static constexpr std::size_t kSlack = kChunk;  // strings are copied in whole chunks

    struct String {
        std::uint32_t start = 0;
        std::uint32_t length = 0;
    };

    void Clear() {
        next_ = (1u << minimumCodeSize_) + 2;
        codeSize_ = minimumCodeSize_ + 1;
        previous_ = {};
    }

    bool Append(unsigned code) {
        if (previous_.length > 0) {
            if (code > next_) return false;
            if (next_ < kCodes) {
                strings_[next_] = {previous_.start, previous_.length + 1};
                // A string that ends with its own first index reads a byte which is not written yet.
                if (code == next_) output_[position_] = output_[previous_.start];
                ++next_;
            }
        } else if (code >= 1u << minimumCodeSize_) {
            return false;
        }
        // A full table is kept in use until a clear code comes, however late.
        if (next_ == 1u << codeSize_ && codeSize_ < kLargestCodeSize) ++codeSize_;
        CopyString(strings_[code]);
        return true;
    }

    void CopyString(String string) {
        const std::size_t length = std::min<std::size_t>(string.length, end_ - position_);
        for (std::size_t done = 0; done < length; done += kChunk)
            std::memcpy(&output_[position_ + done], &output_[string.start + done], kChunk);
        previous_ = {static_cast<std::uint32_t>(position_), string.length};
        position_ += length;
    }

    int minimumCodeSize_;
    std::size_t end_;
    std::unique_ptr<std::uint8_t[]> output_;
    std::size_t position_ = kRoots;
    unsigned next_ = 0;
    int codeSize_ = 0;
    String previous_;
    std::array<String, kCodes> strings_;
};

/// The colours of all 256 indexes.
GifPalette FullPalette(const Frame& frame) {
    GifPalette palette = frame.palette;
    if (palette.empty())
        for (unsigned i = 0, last = (1u << frame.minimumCodeSize) - 1; i <= last; ++i)
            palette.push_back(Grey(ScaleTo8Bits(i, last)));
    const auto transparent = static_cast<std::size_t>(std::max(frame.transparentIndex, 0));
    if (frame.transparentIndex >= 0 && transparent < palette.size()) palette[transparent] = kTransparent;
    return palette;
}

/// The rows of a frame in the order in which the file holds them.
std::vector<int> RowOrder(const Frame& frame) {
    struct Pass {
        int first, step;
    };
    constexpr Pass kPasses[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    std::vector<int> order;
    order.reserve(static_cast<std::size_t>(frame.height));
    if (frame.interlaced) {
        for (const Pass pass : kPasses)
            for (int y = pass.first; y < frame.height; y += pass.step) order.push_back(y);
    } else {
        for (int y = 0; y < frame.height; ++y) order.push_back(y);
    }
    return order;
}

/// Writes the decoded indexes to their place; those that are missing become `missing`.
void PaintFrame(const Frame& frame, Bytes indexes, Pixel missing, Picture& picture) {
    const GifPalette palette = FullPalette(frame);
    const auto pixels = picture.MutablePixels();
    const auto width = static_cast<std::size_t>(frame.width);
    for (const int y : RowOrder(frame)) {
        const std::size_t start =
            static_cast<std::size_t>(frame.top + y) * static_cast<std::size_t>(picture.Width()) +
            static_cast<std::size_t>(frame.left);
        const std::size_t present = std::min(width, indexes.size());
        PaletteToPixels(indexes, palette, pixels.subspan(start, present));
        std::fill_n(pixels.begin() + static_cast<std::ptrdiff_t>(start + present), width - present, missing);
        indexes = indexes.subspan(present);
    }
}

/// A code of 12 bits stands for fewer than 4096 pixels. Files that are cut short may claim more than the rest
/// of them holds, but not any size.
bool IsPlausible(std::uint64_t pixels, std::size_t fileSize) {
    constexpr std::uint64_t kAlwaysPlausible = std::uint64_t{4} << 20;
    return pixels <= std::max(kAlwaysPlausible, std::uint64_t{fileSize} * kCodes);
}

}  // namespace

bool RecogniseGif(Bytes file) {
    return HasSignature(file, "GIF8") && HasSignature(file, "a", 5);
}

Result<Picture> DecodeGif(Bytes file, const DecodeOptions& options) {
    if (!RecogniseGif(file)) return Damaged("not a GIF file");
    ByteReader reader(file);
    const Screen screen = ReadScreen(reader);
    TRY_ASSIGN(const Frame frame, FindFirstFrame(reader, screen));
    if (frame.minimumCodeSize < 1 || frame.minimumCodeSize > 8) return Damaged("no size of codes");

    const int width = std::max(screen.width, frame.left + frame.width);
    const int height = std::max(screen.height, frame.top + frame.height);
    TRY(options.limits.Check(width, height));
    if (!IsPlausible(static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height), file.size()))
        return Damaged("the picture is larger than the file can hold");

    LzwDecoder decoder(frame.minimumCodeSize, frame.PixelCount());
    const Bytes indexes = decoder.Decode(frame.codes);
    if (indexes.empty()) return Damaged("no pixel of the picture can be read");

    // The screen's background colour has not been shown by anyone for decades: it is transparent.
    const bool seeThrough = frame.transparentIndex >= 0 || frame.width < width || frame.height < height;
    TRY_ASSIGN(Picture picture,
               Picture::Create(width, height, seeThrough ? Alpha::Straight : Alpha::None, options.limits));
    PaintFrame(frame, indexes, seeThrough ? kTransparent : kWhite, picture);
    picture.DropUnusedAlpha();
    return picture;
}

// ---- Writing ----

namespace {

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
