#include <algorithm>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/codecs/DibPixels.h"

namespace tessara::dib {
namespace {

/// Run-length coded pixels: pairs of a count and a value; a count of 0 starts an escape.
class RunDecoder {
  public:
    RunDecoder(Bytes data, const DibHeader& header, std::vector<Pixel> colors, Picture& picture)
        : reader_(data), header_(header), colors_(std::move(colors)), picture_(picture) {
        colors_.resize(256, kBlack);
        pixels_ = picture.MutablePixels();
    }

    /// Pixels that the runs skip get the first colour; rows behind the end of a cut file stay missing.
    void Decode() {
        const Pixel skipped = header_.layout == Layout::Rle24 ? kBlack : colors_[0];
        std::ranges::fill(pixels_, skipped);
        while (!ended_ && y_ < picture_.Height() && reader_.Left() >= 2) DecodePair();
        if (ended_ || y_ >= picture_.Height()) return;
        const int rows = static_cast<int>(y_) + (x_ > 0 ? 1 : 0);
        header_.topDown ? picture_.FillRows(rows, picture_.Height(), kWhite)
                        : picture_.FillRows(0, picture_.Height() - rows, kWhite);
    }

  private:
    enum Escape : std::uint8_t { kEndOfLine = 0, kEndOfBitmap = 1, kDelta = 2 };

    void DecodePair() {
        const std::uint8_t count = reader_.U8();
        if (count > 0) return DecodeRun(count);
        const std::uint8_t escape = reader_.U8();
        switch (escape) {
            case kEndOfLine:
                x_ = 0;
                ++y_;
                break;
            case kEndOfBitmap:
                ended_ = true;
                break;
            case kDelta:
                x_ += reader_.U8();
                y_ += reader_.U8();
                break;
            default:
                DecodeLiterals(escape);
        }
    }

    void DecodeRun(std::size_t count) {
        const std::span<Pixel> run = Advance(count);
        if (header_.layout == Layout::Rle24) {
            const Bytes color = reader_.Take(3);
            if (!color.empty()) std::ranges::fill(run, Pixel{color[0], color[1], color[2], 255});
            return;
        }
        const std::uint8_t value = reader_.U8();
        const bool nibbles = header_.layout == Layout::Rle4;
        const Pixel even = colors_[nibbles ? value >> 4 : value];
        const Pixel odd = colors_[nibbles ? value & 15 : value];
        for (std::size_t i = 0; i < run.size(); ++i) run[i] = i % 2 == 0 ? even : odd;
    }

    void DecodeLiterals(std::size_t count) {
        const std::size_t bits = header_.bitsPerPixel * count;
        const Bytes literals = reader_.TakeUpTo((bits + 7) / 8);
        reader_.Skip(std::min(reader_.Left(), literals.size() % 2));
        const std::span<Pixel> run = Advance(count);
        const std::size_t held = std::min(run.size(), literals.size() * 8 / header_.bitsPerPixel);
        for (std::size_t i = 0; i < held; ++i) run[i] = Literal(literals, i);
    }

    Pixel Literal(Bytes literals, std::size_t i) const {
        if (header_.layout == Layout::Rle24)
            return {literals[3 * i], literals[3 * i + 1], literals[3 * i + 2], 255};
        if (header_.layout == Layout::Rle8) return colors_[literals[i]];
        return colors_[(literals[i / 2] >> (i % 2 == 0 ? 4 : 0)) & 15];
    }

    /// Moves on by `count` pixels and gives those of them that lie inside the picture.
    std::span<Pixel> Advance(std::size_t count) {
        const std::int64_t begin = x_;
        x_ += static_cast<std::int64_t>(count);
        if (begin >= picture_.Width() || y_ >= picture_.Height()) return {};
        const std::int64_t end = std::min<std::int64_t>(x_, picture_.Width());
        const std::int64_t row = header_.topDown ? y_ : picture_.Height() - 1 - y_;
        return pixels_.subspan(static_cast<std::size_t>(row * picture_.Width() + begin),
                               static_cast<std::size_t>(end - begin));
    }

    ByteReader reader_;
    const DibHeader& header_;
    std::vector<Pixel> colors_;
    Picture& picture_;
    std::span<Pixel> pixels_;
    std::int64_t x_ = 0;
    std::int64_t y_ = 0;
    bool ended_ = false;
};

}  // namespace

Result<Picture> DecodeRuns(const DibHeader& header, Bytes bits, std::vector<Pixel> colors,
                           const Limits& limits) {
    constexpr std::uint64_t kPixelsPerByte =
        16;  // real pictures; even a single colour gives no more than 128
    TRY(limits.Check(header.width, header.height));
    const auto pixels = static_cast<std::uint64_t>(header.width * header.height);
    TRY(CheckAgainstData(pixels, pixels / kPixelsPerByte, bits.size()));
    TRY_ASSIGN(Picture picture, Picture::Create(header.width, header.height, Alpha::None, limits));
    RunDecoder(bits, header, std::move(colors), picture).Decode();
    return picture;
}

}  // namespace tessara::dib
