#include "core/rastx/codecs/Tga.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Partial.h"

// Truevision TGA File Format, version 2.0. All numbers are little-endian.
//
//   0  u8   length of the identification     8  u16 x2  origin, without meaning here
//   1  u8   colour map: 0 none, 1 present   12  u16 x2  width, height
//   2  u8   kind: 1 map, 2 colour, 3 grey;  16  u8      bits per pixel
//           8 more with run lengths         17  u8      bits 0-3 alpha bits, 4 from the right, 5 from the
//           top,
//   3  u16  first entry of the map                      6-7 interleaving, given up by all writers
//   5  u16  entries of the map              18  identification, colour map, pixels
//   7  u8   bits per entry
//
// Version 2 ends with an extension area, anywhere in the file, and a footer of 26 bytes that points to it.

namespace tessara {
namespace {

constexpr std::size_t kHeaderSize = 18;
constexpr std::uint8_t kRunLengthKind = 8;
constexpr std::uint8_t kFromRight = 0x10;
constexpr std::uint8_t kFromTop = 0x20;
constexpr std::uint8_t kInterleaved = 0xc0;

constexpr std::string_view kFooterSignature{"TRUEVISION-XFILE.\0", 18};
constexpr std::size_t kFooterSize = 26;
constexpr std::size_t kExtensionSize = 495;
constexpr std::size_t kAttributesOffset = 494;

/// Pixels that one packet holds at most; bit 7 of its first byte tells a repeated pixel.
constexpr std::size_t kPacketPixels = 128;
constexpr std::uint8_t kRepeat = 0x80;

enum class Kind : std::uint8_t { Mapped = 1, Color = 2, Grey = 3 };

/// The last byte of the extension area.
enum class Attributes : int {
    NotTold = -1,
    NoAlpha = 0,
    Undefined = 1,
    UndefinedButKept = 2,
    Straight = 3,
    Premultiplied = 4
};

/// What the alpha bits of the pixels are taken for; Unsure is settled by their values.
enum class AlphaUse { None, Unsure, Straight, Premultiplied };

struct Header {
    std::uint8_t identification = 0;
    std::uint8_t mapType = 0;
    Kind kind{};
    bool runLengths = false;
    std::uint16_t mapFirst = 0;
    std::uint16_t mapEntries = 0;
    std::uint8_t mapBits = 0;
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint8_t bits = 0;
    std::uint8_t descriptor = 0;

    int AlphaBits() const { return descriptor & 0x0f; }
    /// Whether pixels or map entries have bits that may be alpha.
    bool StoresAlpha() const {
        const int colorBits = kind == Kind::Mapped ? mapBits : bits;
        return colorBits == 32 || (colorBits == 16 && (kind == Kind::Grey || AlphaBits() > 0));
    }
    std::size_t PixelBytes() const { return (bits + 7u) / 8; }
    std::size_t MapBytes() const { return mapType == 0 ? 0 : mapEntries * ((mapBits + 7u) / 8); }
    std::size_t MapOffset() const { return kHeaderSize + identification; }
    std::size_t PixelsOffset() const { return MapOffset() + MapBytes(); }
    std::uint64_t PixelCount() const { return std::uint64_t{width} * height; }
};

bool IsColorDepth(int bits) {
    return bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

Result<Header> ReadHeader(Bytes file) {
    ByteReader reader(file);
    Header header;
    header.identification = reader.U8();
    header.mapType = reader.U8();
    const std::uint8_t kind = reader.U8();
    header.mapFirst = reader.U16Le();
    header.mapEntries = reader.U16Le();
    header.mapBits = reader.U8();
    reader.Skip(4);
    header.width = reader.U16Le();
    header.height = reader.U16Le();
    header.bits = reader.U8();
    header.descriptor = reader.U8();
    if (reader.Overrun()) return Damaged("the header is cut short");

    header.runLengths = kind & kRunLengthKind;
    header.kind = static_cast<Kind>(kind & ~kRunLengthKind);
    if (header.mapType > 1) return Unsupported("an unknown kind of colour map");
    if (header.width == 0 || header.height == 0) return Damaged("the picture has no size");
    bool legal = false;
    switch (header.kind) {
        case Kind::Mapped:
            legal = header.mapType == 1 && header.mapEntries > 0 && IsColorDepth(header.mapBits) &&
                    (header.bits == 8 || header.bits == 16);
            break;
        case Kind::Color:
            legal = IsColorDepth(header.bits);
            break;
        case Kind::Grey:
            legal = header.bits == 8 || header.bits == 16;
            break;
    }
    if (!legal) return Unsupported("an unknown kind of pixels");
    return header;
}

/// Pixels that the file can hold at most.
std::uint64_t PossiblePixels(const Header& header, Bytes file) {
    const std::uint64_t bytes = Slice(file, header.PixelsOffset()).size();
    return header.runLengths ? bytes / (1 + header.PixelBytes()) * kPacketPixels + kPacketPixels
                             : bytes / header.PixelBytes();
}

bool HasFooter(Bytes file) {
    return file.size() >= kHeaderSize + kFooterSize &&
           HasSignature(file, kFooterSignature, file.size() - kFooterSignature.size());
}

Attributes AttributesOf(Bytes file) {
    if (!HasFooter(file)) return Attributes::NotTold;
    ByteReader reader(file);
    reader.Seek(file.size() - kFooterSize);
    const std::uint32_t extension = reader.U32Le();
    if (extension == 0 || !reader.Seek(extension) || reader.U16Le() < kExtensionSize ||
        !reader.Seek(std::uint64_t{extension} + kAttributesOffset))
        return Attributes::NotTold;
    const std::uint8_t attributes = reader.U8();
    return reader.Overrun() || attributes > 4 ? Attributes::NotTold : static_cast<Attributes>(attributes);
}

AlphaUse AlphaUseOf(const Header& header, Bytes file) {
    switch (AttributesOf(file)) {
        // Writers that fill the extension area with zeros say so and mean nothing by it: the header decides.
        case Attributes::NoAlpha:
            return header.AlphaBits() > 0 ? AlphaUse::Unsure : AlphaUse::None;
        case Attributes::Undefined:
        case Attributes::UndefinedButKept:
            return AlphaUse::None;
        case Attributes::Straight:
            return AlphaUse::Straight;
        case Attributes::Premultiplied:
            return AlphaUse::Premultiplied;
        case Attributes::NotTold:
            break;
    }
    return AlphaUse::Unsure;
}

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

namespace {

bool IsGrey(const Picture& picture) {
    for (int y = 0; y < picture.Height(); ++y) {
        std::uint8_t difference = 0;
        for (const Pixel pixel : picture.Row(y))
            difference |= static_cast<std::uint8_t>((pixel.b ^ pixel.g) | (pixel.g ^ pixel.r));
        if (difference != 0) return false;
    }
    return true;
}

/// Pixels equal to the first one, at most as many as a packet holds.
std::size_t RunLength(std::span<const Pixel> pixels) {
    const std::size_t most = std::min(pixels.size(), kPacketPixels);
    const auto first = std::bit_cast<std::uint32_t>(pixels[0]);
    std::size_t length = 1;
    while (length < most && std::bit_cast<std::uint32_t>(pixels[length]) == first) ++length;
    return length;
}

/// Packs one row at a time; packets never cross rows.
class RowPacker {
  public:
    RowPacker(int width, std::size_t pixelBytes) : pixelBytes_(pixelBytes) {
        const auto pixels = static_cast<std::size_t>(width);
        packed_.resize(pixels * pixelBytes);
        out_.reserve(packed_.size() + pixels / kPacketPixels + 1);
    }

    Bytes Pack(std::span<const Pixel> row) {
        ToFileLayout(row);
        out_.clear();
        const std::size_t worthwhile = pixelBytes_ == 1 ? 3 : 2;
        std::size_t literalsFrom = 0;
        for (std::size_t x = 0; x < row.size();) {
            const std::size_t run = RunLength(row.subspan(x));
            if (run >= worthwhile) {
                AppendLiterals(literalsFrom, x);
                AppendPacket(static_cast<std::uint8_t>(kRepeat | (run - 1)), x, 1);
                literalsFrom = x + run;
            }
            x += run;
        }
        AppendLiterals(literalsFrom, row.size());
        return out_;
    }

  private:
    void ToFileLayout(std::span<const Pixel> row) {
        if (pixelBytes_ == 1)
            std::ranges::transform(row, packed_.begin(), &Pixel::g);
        else if (pixelBytes_ == 3)
            PixelsToBgr(row, packed_);
        else
            std::memcpy(packed_.data(), row.data(), row.size_bytes());
    }
    void AppendLiterals(std::size_t begin, std::size_t end) {
        for (std::size_t count = 0; begin < end; begin += count) {
            count = std::min(end - begin, kPacketPixels);
            AppendPacket(static_cast<std::uint8_t>(count - 1), begin, count);
        }
    }
    void AppendPacket(std::uint8_t head, std::size_t first, std::size_t count) {
        out_.push_back(head);
        const Bytes pixels = Slice(packed_, first * pixelBytes_, count * pixelBytes_);
        out_.insert(out_.end(), pixels.begin(), pixels.end());
    }

    std::size_t pixelBytes_;
    ByteVector packed_;
    ByteVector out_;
};

ByteVector WriteHeader(const Picture& picture, std::size_t pixelBytes) {
    const Kind kind = pixelBytes == 1 ? Kind::Grey : Kind::Color;
    ByteWriter header;
    header.U8(0).U8(0).U8(static_cast<std::uint8_t>(kind) | kRunLengthKind).Zeros(9);
    header.U16Le(static_cast<std::uint32_t>(picture.Width()))
        .U16Le(static_cast<std::uint32_t>(picture.Height()));
    header.U8(static_cast<std::uint32_t>(8 * pixelBytes)).U8(kFromTop | (pixelBytes == 4 ? 8 : 0));
    return header.TakeBytes();
}

/// The footer, behind an extension area where there is alpha: only that says that a picture whose alpha is
/// empty all over is meant to be so.
ByteVector WriteEnd(bool alpha, std::uint64_t position) {
    ByteWriter end;
    if (alpha)
        end.U16Le(kExtensionSize).Zeros(kAttributesOffset - 2).U8(static_cast<int>(Attributes::Straight));
    // A file of more than 4 GiB cannot say where its extension area is; readers then decide by the values.
    const bool told = alpha && position <= UINT32_MAX;
    end.U32Le(told ? static_cast<std::uint32_t>(position) : 0).U32Le(0).Text(kFooterSignature);
    return end.TakeBytes();
}

}  // namespace

Result<void> EncodeTga(const Picture& picture, const EncodeOptions&, ByteSink& sink) {
    if (picture.Empty()) return BadArgument("there is no picture");
    const std::size_t pixelBytes = picture.HasAlpha() ? 4 : IsGrey(picture) ? 1 : 3;
    const std::uint64_t start = sink.Position();
    TRY(sink.Write(WriteHeader(picture, pixelBytes)));
    RowPacker packer(picture.Width(), pixelBytes);
    // From the top down: there are readers that take a picture from the bottom up for one to be turned, and
    // pass it on upside down.
    for (int y = 0; y < picture.Height(); ++y) TRY(sink.Write(packer.Pack(picture.Row(y))));
    return sink.Write(WriteEnd(pixelBytes == 4, sink.Position() - start));
}

}  // namespace tessara
