// Reading TGA. The pixels of the file are unpacked row by row.

#include "core/rastx/codecs/Tga.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Partial.h"
#include "core/rastx/codecs/TgaFormat.h"

namespace tessara {
namespace {

using namespace tga;

/// The packed pixels of the file one after the other. One reader serves the whole picture, because there are
/// writers whose packets run across the ends of rows.
class PixelReader {
  public:
    PixelReader(Bytes data, const Header& header)
        : reader_(data), pixelBytes_(header.PixelBytes()), runLengths_(header.runLengths) {
        if (runLengths_) row_.resize(header.width * pixelBytes_);
    }

    /// The next `count` pixels, or as many as are left; no more than the width at once.
    Bytes Next(std::size_t count) {
        if (!runLengths_) return reader_.TakeUpTo(count * pixelBytes_);
        switch (pixelBytes_) {
            case 1:
                return Unpack<1>(count);
            case 2:
                return Unpack<2>(count);
            case 3:
                return Unpack<3>(count);
            default:
                return Unpack<4>(count);
        }
    }

  private:
    template <std::size_t pixelBytes>
    Bytes Unpack(std::size_t count) {
        std::size_t done = 0;
        while (done < count && (left_ > 0 || StartPacket())) {
            std::size_t step = std::min(left_, count - done);
            const std::span<std::uint8_t> target =
                std::span(row_).subspan(done * pixelBytes, step * pixelBytes);
            if (repeated_.empty()) {
                const Bytes literal = reader_.TakeUpTo(target.size());
                std::copy(literal.begin(), literal.end(), target.begin());
                step = literal.size() / pixelBytes;
                if (literal.size() < target.size()) left_ = step;  // the file ends within this packet
            } else {
                std::array<std::uint8_t, pixelBytes> pixel;
                std::copy_n(repeated_.begin(), pixelBytes, pixel.begin());
                for (std::size_t i = 0; i < target.size(); i += pixelBytes)
                    std::memcpy(&target[i], pixel.data(), pixelBytes);
            }
            left_ -= step;
            done += step;
        }
        return Bytes(row_).first(done * pixelBytes);
    }

    bool StartPacket() {
        if (reader_.AtEnd()) return false;
        const std::uint8_t packet = reader_.U8();
        left_ = (packet & ~kRepeat) + std::size_t{1};
        repeated_ = packet & kRepeat ? reader_.Take(pixelBytes_) : Bytes{};
        if (packet & kRepeat && repeated_.empty()) left_ = 0;
        return left_ > 0;
    }

    ByteReader reader_;
    std::size_t pixelBytes_;
    bool runLengths_;
    ByteVector row_;
    std::size_t left_ = 0;  ///< pixels of the current packet
    Bytes repeated_;        ///< its pixel, or nothing where the pixels follow one by one
};

/// Words of 5 bits each of red, green and blue, blue lowest.
void WordsToPixels(Bytes words, bool topBitIsAlpha, std::span<Pixel> pixels) {
    const auto widen = [](unsigned value) {
        value &= 31;
        return static_cast<std::uint8_t>(value << 3 | value >> 2);
    };
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const unsigned word = words[2 * i] | unsigned{words[2 * i + 1]} << 8;
        const bool opaque = !topBitIsAlpha || (word & 0x8000);
        pixels[i] = {widen(word), widen(word >> 5), widen(word >> 10),
                     opaque ? std::uint8_t{255} : std::uint8_t{0}};
    }
}

/// Colours of 15 to 32 bits, of the picture or of its map.
void ColorsToPixels(Bytes colors, int bits, int alphaBits, std::span<Pixel> pixels) {
    if (bits <= 16) {
        WordsToPixels(colors, bits == 16 && alphaBits > 0, pixels);
    } else if (bits == 24) {
        BgrToPixels(colors, pixels);
    } else if (!pixels.empty()) {
        std::memcpy(pixels.data(), colors.data(), pixels.size_bytes());  // already blue, green, red, alpha
    }
}

/// The colours of all indexes, black below the first entry; those behind the last one are not in it.
Result<std::vector<Pixel>> ReadMap(const Header& header, Bytes file) {
    if (header.kind != Kind::Mapped) return std::vector<Pixel>{};
    const Bytes entries = Slice(file, header.MapOffset(), header.MapBytes());
    if (entries.size() < header.MapBytes()) return Damaged("the colour map is cut short");
    std::vector<Pixel> map(std::size_t{header.mapFirst} + header.mapEntries, kBlack);
    ColorsToPixels(entries, header.mapBits, header.AlphaBits(), std::span(map).subspan(header.mapFirst));
    return map;
}

void WideIndexesToPixels(Bytes indexes, std::span<const Pixel> map, std::span<Pixel> pixels) {
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const std::size_t index = indexes[2 * i] | unsigned{indexes[2 * i + 1]} << 8;
        pixels[i] = index < map.size() ? map[index] : kBlack;
    }
}

void ConvertRow(const Header& header, Bytes packed, std::span<const Pixel> map, std::span<Pixel> pixels) {
    switch (header.kind) {
        case Kind::Mapped:
            if (header.bits == 8)
                PaletteToPixels(packed, map, pixels);
            else
                WideIndexesToPixels(packed, map, pixels);
            break;
        case Kind::Color:
            ColorsToPixels(packed, header.bits, header.AlphaBits(), pixels);
            break;
        case Kind::Grey:
            if (header.bits == 8)
                GreyToPixels(packed, pixels);
            else
                GreyAlphaToPixels(packed, pixels);
            break;
    }
}

/// Where a row and its first pixels go: the file may start in any corner.
struct Placement {
    const Header& header;

    int Row(int fileRow) const {
        return header.descriptor & kFromTop ? fileRow : header.height - 1 - fileRow;
    }
    std::span<Pixel> First(std::span<Pixel> row, std::size_t count) const {
        return header.descriptor & kFromRight ? row.last(count) : row.first(count);
    }
    std::span<Pixel> Rest(std::span<Pixel> row, std::size_t count) const {
        return header.descriptor & kFromRight ? row.first(row.size() - count) : row.subspan(count);
    }
};

/// How much of the picture was there, and what its alpha turned out to be.
struct RowsRead {
    int complete = 0;
    std::size_t pixelsOfNext = 0;
    AlphaCensus alpha;
};

RowsRead ReadRows(const Header& header, Bytes data, std::span<const Pixel> map, Picture& picture) {
    const Placement placement{header};
    PixelReader reader(data, header);
    RowsRead read;
    for (; read.complete < header.height; ++read.complete) {
        const Bytes packed = reader.Next(header.width);
        const std::size_t count = packed.size() / header.PixelBytes();
        const auto pixels = placement.First(picture.MutableRow(placement.Row(read.complete)), count);
        ConvertRow(header, packed, map, pixels);
        if (header.descriptor & kFromRight) std::reverse(pixels.begin(), pixels.end());
        if (header.StoresAlpha()) read.alpha.Add(pixels);
        read.pixelsOfNext = count;
        if (count < header.width) return read;
    }
    read.pixelsOfNext = 0;
    return read;
}

void SettleAlpha(AlphaUse use, const AlphaCensus& census, Picture& picture) {
    if (census.AllFull()) return;
    const std::span<Pixel> pixels = picture.MutablePixels();
    if (use == AlphaUse::None || (use == AlphaUse::Unsure && census.AllEmpty())) {
        for (Pixel& pixel : pixels) pixel.a = 255;
        return;
    }
    picture.SetAlpha(Alpha::Straight);
    if (use == AlphaUse::Premultiplied) Unpremultiply(pixels);
}

void FillMissing(const Header& header, const RowsRead& read, Picture& picture) {
    const Placement placement{header};
    for (int y = read.complete; y < header.height; ++y) {
        const std::size_t present = y == read.complete ? read.pixelsOfNext : 0;
        std::ranges::fill(placement.Rest(picture.MutableRow(placement.Row(y)), present),
                          MissingPixel(picture));
    }
}

}  // namespace

bool RecogniseTga(Bytes file) {
    const auto header = ReadHeader(file);
    if (!header) return false;
    if (HasFooter(file)) return true;
    // There is no signature: anything that no writer would produce speaks against it.
    const Header& h = header.Value();
    const int alphaMost = h.kind == Kind::Color && h.bits == 16 ? 1 : 8;
    return h.AlphaBits() <= alphaMost && !(h.descriptor & kInterleaved) &&
           (h.mapType == 1 ? IsColorDepth(h.mapBits) : h.mapEntries == 0) &&
           PossiblePixels(h, file) >= h.PixelCount();
}

Result<Picture> DecodeTga(Bytes file, const DecodeOptions& options) {
    TRY_ASSIGN(const Header header, ReadHeader(file));
    TRY_ASSIGN(const std::vector<Pixel> map, ReadMap(header, file));
    TRY(CheckDataFor(header.PixelCount(), PossiblePixels(header, file)));
    TRY_ASSIGN(Picture picture, Picture::Create(header.width, header.height, Alpha::None, options.limits));
    const RowsRead read = ReadRows(header, Slice(file, header.PixelsOffset()), map, picture);
    if (read.complete == 0 && read.pixelsOfNext == 0) return Damaged("the file holds no pixels");
    SettleAlpha(AlphaUseOf(header, file), read.alpha, picture);
    FillMissing(header, read, picture);
    return picture;
}

}  // namespace tessara
