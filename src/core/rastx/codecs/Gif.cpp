// Reading GIF: the codes of a picture to indexes, and those to pixels.

#include "core/rastx/codecs/Gif.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/GifFormat.h"
#include "core/rastx/codecs/GifFrame.h"

namespace tessara {
namespace {

using namespace gif;

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

}  // namespace tessara
