#include "core/rastx/codecs/Dib.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <vector>

#include "core/ByteReader.h"
#include "core/Parallel.h"
#include "core/rastx/ColorProfile.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Jpg.h"
#include "core/rastx/codecs/Png.h"

// A device independent bitmap, all little-endian:
//
//   info header   u32 size, then by that size
//                   12      u16 width, height, planes, bits per pixel; 3-byte colours
//                   16..64  OS/2 2: the first fields of the 40-byte header, cut anywhere
//                   40      i32 width, height (negative: top-down), u16 planes, bits per pixel, u32
//                   compression,
//                           image size, i32 pixels per metre (2), u32 colours used, colours important
//                   52 56   and u32 masks of red, green, blue (and alpha)
//                   108 124 and the colour space
//   masks         3 or 4 u32, if bit fields are used and the header has no room for them
//   colour table  B, G, R, 0 each
//   pixels        rows of a multiple of four bytes, bottom row first; or runs; or a JPEG or PNG file
//   mask          of icons: 1 bit per pixel, rows as above
//
// Source: the Windows GDI reference, "Bitmap Storage" and BITMAPV5HEADER; OS/2 2.0 Presentation Manager.

namespace tessara {
namespace {

constexpr std::uint32_t kCoreSize = 12;
constexpr std::uint32_t kLargestHeader = 65536;
constexpr std::uint32_t kV5Size = 124;

enum Compression : std::uint32_t {
    kPlain = 0,
    kRle8 = 1,
    kRle4 = 2,
    kBitFields = 3,
    kJpegOrRle24 = 4,
    kPng = 5,
    kAlphaBitFields = 6,
};

enum class Layout { Rows, Rle4, Rle8, Rle24, Embedded };

struct Masks {
    std::uint32_t red = 0, green = 0, blue = 0, alpha = 0;
};
constexpr Masks kMasks555{0x7c00, 0x03e0, 0x001f, 0};
constexpr Masks kMasks888{0xff0000, 0x00ff00, 0x0000ff, 0};
constexpr std::uint32_t kFourthByte = 0xff000000;

struct DibHeader {
    std::uint32_t size = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool topDown = false;
    std::uint32_t planes = 0;
    unsigned bitsPerPixel = 0;
    std::uint32_t compression = kPlain;
    std::uint32_t colorsUsed = 0;
    Resolution resolution;
    Masks masks;
    std::uint64_t tableStart = 0;
    Layout layout = Layout::Rows;

    bool Core() const { return size == kCoreSize; }
    bool Indexed() const { return layout != Layout::Embedded && bitsPerPixel <= 8; }
    std::uint64_t UnpaddedRow() const { return (static_cast<std::uint64_t>(width) * bitsPerPixel + 7) / 8; }
    std::uint64_t Stride() const { return (UnpaddedRow() + 3) / 4 * 4; }
    std::uint64_t MaskStride() const { return (static_cast<std::uint64_t>(width) + 31) / 32 * 4; }
};

/// Pixels per metre. The number of whole dots per inch that gives them, rounded or cut, is meant where there
/// is one.
double DotsPerInch(std::int32_t perMetre) {
    constexpr double kMetresPerInch = 0.0254;
    constexpr double kAbsurd = 100000;
    const double exact = perMetre * kMetresPerInch;
    const double whole = std::round(exact);
    const double dots = std::abs(whole / kMetresPerInch - perMetre) < 1 ? whole : exact;
    return dots > 0 && dots < kAbsurd ? dots : 0;
}

void ParseCoreFields(ByteReader& reader, DibHeader& header) {
    header.width = reader.U16Le();
    header.height = reader.U16Le();
    header.planes = reader.U16Le();
    header.bitsPerPixel = reader.U16Le();
}

void ParseInfoFields(ByteReader& reader, DibHeader& header) {
    header.width = reader.I32Le();
    header.height = reader.I32Le();
    header.topDown = header.height < 0;
    header.height = std::abs(header.height);
    header.planes = reader.U16Le();
    header.bitsPerPixel = reader.U16Le();
    header.compression = reader.U32Le();
    reader.Skip(4);
    const double x = DotsPerInch(reader.I32Le());
    const double y = DotsPerInch(reader.I32Le());
    header.resolution = x > 0 && y > 0 ? Resolution{x, y} : Resolution{};
    header.colorsUsed = reader.U32Le();
    reader.Skip(4);
}

/// Reads the masks from the header, or from behind it where it is too short for them. An OS/2 header of 64
/// bytes has other fields in their place.
Result<void> ParseMasks(Bytes dib, DibHeader& header) {
    header.tableStart = header.size;
    if (header.compression != kBitFields && header.compression != kAlphaBitFields) return {};
    const bool inside = header.size >= 52 && header.size != 64;
    const bool alpha = inside ? header.size >= 56 : header.compression == kAlphaBitFields;
    ByteReader reader(Slice(dib, inside ? 40 : header.size));
    header.masks = {reader.U32Le(), reader.U32Le(), reader.U32Le(), alpha ? reader.U32Le() : 0};
    if (reader.Overrun()) return Damaged("the bitmap's masks are cut");
    if (!inside) header.tableStart += alpha ? 16 : 12;
    return {};
}

Result<DibHeader> ParseHeader(Bytes dib) {
    DibHeader header;
    header.size = ByteReader(dib).U32Le();
    if (header.size != kCoreSize && (header.size < 16 || header.size > kLargestHeader))
        return Damaged("the bitmap's info header has no legal size");
    if (header.size > dib.size()) return Damaged("the bitmap's info header is cut");
    // Fields that a short header leaves out count as 0.
    std::array<std::uint8_t, 40> fields{};
    std::copy_n(dib.begin(), std::min<std::size_t>(header.size, fields.size()), fields.begin());
    ByteReader reader(fields);
    reader.Skip(4);
    header.Core() ? ParseCoreFields(reader, header) : ParseInfoFields(reader, header);
    TRY(ParseMasks(dib, header));
    return header;
}

bool OneOf(unsigned value, std::initializer_list<unsigned> values) {
    return std::ranges::find(values, value) != values.end();
}

/// What the pair of compression and bits per pixel stands for; OS/2 and Windows share number 4.
Result<Layout> FindLayout(const DibHeader& header) {
    const unsigned bits = header.bitsPerPixel;
    switch (header.compression) {
        case kPlain:
            if (OneOf(bits, {1, 2, 4, 8, 16, 24, 32})) return Layout::Rows;
            break;
        case kRle8:
            if (bits == 8) return Layout::Rle8;
            break;
        case kRle4:
            if (bits == 4) return Layout::Rle4;
            break;
        case kBitFields:
        case kAlphaBitFields:
            if (bits == 16 || bits == 32) return Layout::Rows;
            break;
        case kJpegOrRle24:
        case kPng:
            return Layout::Embedded;
        default:
            break;
    }
    return Unsupported("a bitmap of this compression and depth is not read");
}

struct ColorTable {
    std::vector<Pixel> colors;
    std::uint64_t end = 0;  ///< from the start of the info header
};

/// Whether a file header's pixel offset can be: behind the headers, and with room for at least one colour.
bool OffsetIsUsable(const DibHeader& header, std::uint64_t offset, std::uint64_t size) {
    const std::uint64_t smallestTable = header.Indexed() ? 3 : 0;
    return offset >= header.tableStart + smallestTable && offset < size;
}

Pixel TableEntry(ByteReader& reader, const DibHeader& header, std::span<const Pixel> palette) {
    if (!palette.empty()) {
        const std::size_t index = reader.U16Le();
        return index < palette.size() ? palette[index] : kBlack;
    }
    const Pixel color{reader.U8(), reader.U8(), reader.U8(), 255};
    if (!header.Core()) reader.Skip(1);
    return color;
}

/// Reads the colours of indexed pixels. Deeper pixels may come with a table as a hint, which is only skipped.
ColorTable ReadColorTable(Bytes dib, const DibHeader& header, const DibOptions& dibOptions) {
    const bool offsetIsUsable = OffsetIsUsable(header, dibOptions.pixelOffset, dib.size());
    const std::uint64_t limit = offsetIsUsable ? dibOptions.pixelOffset : dib.size();
    const std::uint64_t entrySize = !dibOptions.palette.empty() ? 2 : header.Core() ? 3 : 4;
    const std::uint64_t room = limit > header.tableStart ? (limit - header.tableStart) / entrySize : 0;
    const std::uint64_t colors = header.Indexed() ? std::uint64_t{1} << header.bitsPerPixel : 0;
    std::uint64_t entries = header.colorsUsed > 0 ? header.colorsUsed : colors;
    if (entries > room) entries = std::min(colors, room);  // an absurd count must not swallow the pixels

    ColorTable table;
    ByteReader reader(Slice(dib, header.tableStart));
    for (std::uint64_t i = 0; i < std::min(entries, colors); ++i)
        table.colors.push_back(TableEntry(reader, header, dibOptions.palette));
    table.end = offsetIsUsable ? limit : header.tableStart + entries * entrySize;
    return table;
}

/// One colour of a bit field, scaled to 8 bits by a table.
class Channel {
  public:
    Channel(std::uint32_t mask, std::uint8_t valueWithoutMask) : mask_(mask) {
        if (mask == 0) {
            values_ = {valueWithoutMask};
            return;
        }
        const int width = std::bit_width(mask) - std::countr_zero(mask);
        shift_ = std::countr_zero(mask) + std::max(0, width - 16);  // 16 bits tell enough of longer fields
        const std::uint32_t maximum = mask >> shift_;
        values_.reserve(maximum + 1);
        for (std::uint32_t value = 0; value <= maximum; ++value)
            values_.push_back(ScaleTo8Bits(value, maximum));
    }
    std::uint8_t Of(std::uint32_t pixel) const { return values_[(pixel & mask_) >> shift_]; }

  private:
    std::uint32_t mask_;
    int shift_ = 0;
    std::vector<std::uint8_t> values_;
};

/// Converts uncompressed rows of any depth.
class RowConverter {
  public:
    RowConverter(const DibHeader& header, const Masks& masks, std::vector<Pixel> colors)
        : bitsPerPixel_(header.bitsPerPixel),
          colors_(std::move(colors)),
          red_(masks.red, 0),
          green_(masks.green, 0),
          blue_(masks.blue, 0),
          alpha_(masks.alpha, 255),
          lieAsPixels_(masks.red == kMasks888.red && masks.green == kMasks888.green &&
                       masks.blue == kMasks888.blue && (masks.alpha == 0 || masks.alpha == kFourthByte)),
          opaque_(masks.alpha == 0) {}

    void Convert(Bytes row, std::span<Pixel> pixels, std::vector<std::uint8_t>& indexes) const {
        if (bitsPerPixel_ == 24) return BgrToPixels(row, pixels);
        if (bitsPerPixel_ == 32) return lieAsPixels_ ? Copy(row, pixels) : ConvertFields<4>(row, pixels);
        if (bitsPerPixel_ == 16) return ConvertFields<2>(row, pixels);
        if (bitsPerPixel_ == 8) return PaletteToPixels(row, colors_, pixels);
        indexes.resize(pixels.size());
        UnpackBits(row, static_cast<int>(bitsPerPixel_), indexes);
        PaletteToPixels(indexes, colors_, pixels);
    }

  private:
    void Copy(Bytes row, std::span<Pixel> pixels) const {
        const auto set = static_cast<std::uint8_t>(opaque_ ? 255 : 0);
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = {row[4 * i], row[4 * i + 1], row[4 * i + 2],
                         static_cast<std::uint8_t>(row[4 * i + 3] | set)};
    }

    template <unsigned bytes>
    void ConvertFields(Bytes row, std::span<Pixel> pixels) const {
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            std::uint32_t value = 0;
            for (unsigned k = 0; k < bytes; ++k) value |= std::uint32_t{row[bytes * i + k]} << (8 * k);
            pixels[i] = {blue_.Of(value), green_.Of(value), red_.Of(value), alpha_.Of(value)};
        }
    }

    unsigned bitsPerPixel_;
    std::vector<Pixel> colors_;
    Channel red_, green_, blue_, alpha_;
    bool lieAsPixels_;
    bool opaque_;
};

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

/// A header that claims much and brings next to nothing is not worth the memory it asks for. Small pictures
/// get the benefit of the doubt.
Result<void> CheckAgainstData(std::uint64_t pixels, std::uint64_t needed, std::uint64_t present) {
    constexpr std::uint64_t kLargePicture = std::uint64_t{16} << 20;
    constexpr std::uint64_t kSmallestPart = 64;
    if (present == 0) return Damaged("the bitmap has no pixels");
    if (pixels > kLargePicture && present < needed / kSmallestPart)
        return Damaged("the bitmap is far larger than its file");
    return {};
}

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

Masks MasksOf(const DibHeader& header, bool fourthByteCounts) {
    Masks masks = header.masks;
    if ((masks.red | masks.green | masks.blue) == 0) {
        const Masks& usual = header.bitsPerPixel == 16 ? kMasks555 : kMasks888;
        masks = {usual.red, usual.green, usual.blue, masks.alpha};
    }
    if (header.bitsPerPixel == 32 && fourthByteCounts && masks.alpha == 0) masks.alpha = kFourthByte;
    return masks;
}

Result<Picture> DecodeRows(const DibHeader& header, Bytes bits, const Masks& masks, std::vector<Pixel> colors,
                           const Limits& limits) {
    TRY(limits.Check(header.width, header.height));
    const auto height = static_cast<std::uint64_t>(header.height);
    const std::uint64_t stride = header.Stride();
    // The last row of a file may come without its padding.
    const std::uint64_t held = (bits.size() + (stride - header.UnpaddedRow())) / stride;
    const int present = static_cast<int>(std::min(height, held));
    TRY(CheckAgainstData(height * static_cast<std::uint64_t>(header.width), height * stride,
                         static_cast<std::uint64_t>(present) * stride));
    TRY_ASSIGN(Picture picture, Picture::Create(header.width, header.height,
                                                masks.alpha != 0 ? Alpha::Straight : Alpha::None, limits));
    const RowConverter converter(header, masks, std::move(colors));
    const std::span<Pixel> pixels = picture.MutablePixels();
    const auto width = static_cast<std::size_t>(picture.Width());
    const int minimumRows = static_cast<int>((std::size_t{1} << 20) / width) + 1;
    ParallelRows(present, HardwareThreads(), minimumRows, [&](int begin, int end) {
        std::vector<std::uint8_t> indexes;
        for (int i = begin; i < end; ++i) {
            const int y = header.topDown ? i : picture.Height() - 1 - i;
            converter.Convert(Slice(bits, static_cast<std::uint64_t>(i) * stride, stride),
                              pixels.subspan(static_cast<std::size_t>(y) * width, width), indexes);
        }
    });
    Pixel missing = kWhite;
    if (masks.alpha != 0) missing.a = 0;
    header.topDown ? picture.FillRows(present, picture.Height(), missing)
                   : picture.FillRows(0, picture.Height() - present, missing);
    return picture;
}

/// The last header can name a place in the file for an ICC profile.
void ConvertByProfile(Bytes dib, const DibHeader& header, Picture& picture) {
    constexpr std::uint32_t kEmbeddedProfile = 0x4d424544;
    if (header.size < kV5Size) return;
    ByteReader reader(dib);
    reader.Seek(56);
    if (reader.U32Le() != kEmbeddedProfile) return;
    reader.Seek(112);
    const std::uint64_t offset = reader.U32Le();
    const std::uint64_t length = reader.U32Le();
    const auto profile = ColorProfile::Open(Slice(dib, offset, length), SampleColors::Rgb);
    if (profile) profile->ConvertPixels(picture.MutablePixels());
}

bool AllTransparent(const Picture& picture) {
    return std::ranges::all_of(picture.Pixels(), [](Pixel pixel) { return pixel.a == 0; });
}

void MakeOpaque(Picture& picture) {
    for (Pixel& pixel : picture.MutablePixels()) pixel.a = 255;
    picture.SetAlpha(Alpha::None);
}

/// Makes the pixels transparent whose bit is set. A cut mask leaves the rest opaque.
void ApplyMask(Bytes mask, std::uint64_t stride, Picture& picture) {
    picture.SetAlpha(Alpha::Straight);
    const std::span<Pixel> pixels = picture.MutablePixels();
    const auto width = static_cast<std::size_t>(picture.Width());
    for (int y = picture.Height() - 1; y >= 0 && !mask.empty(); --y) {
        const Bytes row = Slice(mask, 0, stride);
        mask = Slice(mask, stride);
        const std::size_t held = std::min(width, row.size() * 8);
        for (std::size_t x = 0; x < held; ++x)
            if ((row[x / 8] >> (7 - x % 8)) & 1)
                pixels[static_cast<std::size_t>(y) * width + x] = kTransparent;
    }
}

void SettleAlpha(const DibHeader& header, Bytes bits, const DibOptions& dibOptions, Picture& picture) {
    const bool used = picture.HasAlpha() && !AllTransparent(picture);
    const bool writerKnowsAlpha =
        header.size >= kV5Size && !dibOptions.iconWithMask && !dibOptions.alphaWhereUsed;
    if (dibOptions.premultipliedAlpha && picture.HasAlpha()) {
        Unpremultiply(picture.MutablePixels());
    } else if (picture.HasAlpha() && !used && !writerKnowsAlpha) {
        // Writers that know nothing of alpha leave 0 in its place; those of the last header know.
        MakeOpaque(picture);
    }
    if (dibOptions.iconWithMask && !used)
        ApplyMask(Slice(bits, static_cast<std::uint64_t>(header.height) * header.Stride()),
                  header.MaskStride(), picture);
    picture.DropUnusedAlpha();
}

/// A JPEG or PNG file in place of the pixels. What is no file of either kind can only be OS/2 runs.
Result<Picture> DecodeEmbedded(const DibHeader& header, Bytes bits, const DecodeOptions& options) {
    const bool jpg = RecogniseJpg(bits);
    if (!jpg && !RecognisePng(bits)) {
        if (header.compression != kJpegOrRle24 || header.bitsPerPixel != 24)
            return Damaged("the bitmap carries no JPEG or PNG file");
        DibHeader runs = header;
        runs.layout = Layout::Rle24;
        return DecodeRuns(runs, bits, {}, options.limits);
    }
    if (options.nestingLeft < 1) return Damaged("too many pictures inside one another");
    return (jpg ? DecodeJpg : DecodePng)(bits, options.Nested());
}

Result<Picture> DecodePixels(Bytes dib, std::optional<Bytes> givenBits, const DibHeader& header,
                             const DibOptions& dibOptions, const DecodeOptions& options) {
    ColorTable table = ReadColorTable(dib, header, dibOptions);
    const Bytes bits = givenBits.value_or(Slice(dib, table.end));
    if (header.layout == Layout::Embedded) return DecodeEmbedded(header, bits, options);
    if (header.layout != Layout::Rows) {
        TRY_ASSIGN(Picture picture, DecodeRuns(header, bits, std::move(table.colors), options.limits));
        ConvertByProfile(dib, header, picture);
        return picture;
    }
    const bool fourthByteCounts =
        dibOptions.iconWithMask || dibOptions.premultipliedAlpha || dibOptions.alphaWhereUsed;
    TRY_ASSIGN(Picture picture, DecodeRows(header, bits, MasksOf(header, fourthByteCounts),
                                           std::move(table.colors), options.limits));
    SettleAlpha(header, bits, dibOptions, picture);
    ConvertByProfile(dib, header, picture);
    return picture;
}

}  // namespace

Result<Picture> DecodeDib(Bytes dib, std::optional<Bytes> bits, const DibOptions& dibOptions,
                          const DecodeOptions& options) {
    TRY_ASSIGN(DibHeader header, ParseHeader(dib));
    TRY_ASSIGN(header.layout, FindLayout(header));
    if (dibOptions.iconWithMask) {
        header.height /= 2;
        header.topDown = false;  // not legal in icons
    }
    TRY_ASSIGN(Picture picture, DecodePixels(dib, bits, header, dibOptions, options));
    if (!picture.Meta().resolution.Known()) picture.SetResolution(header.resolution);
    return picture;
}

bool LooksLikeDib(Bytes bytes) {
    const Result<DibHeader> parsed = ParseHeader(bytes);
    if (!parsed) return false;
    const DibHeader& header = parsed.Value();
    const Result<Layout> layout = FindLayout(header);
    const bool deepEnough =
        header.bitsPerPixel > 0 || header.compression == kPng || header.compression == kJpegOrRle24;
    return OneOf(header.size, {12, 40, 52, 56, 64, 108, 124}) && layout && deepEnough && header.planes == 1 &&
           Limits{}.Check(header.width, header.height) && header.tableStart < bytes.size() &&
           header.colorsUsed <= bytes.size() / 3;
}

std::optional<DibShape> DibShapeOf(Bytes dib) {
    const Result<DibHeader> parsed = ParseHeader(dib);
    if (!parsed || !FindLayout(parsed.Value()) || parsed.Value().width < 1) return {};
    const DibHeader& header = parsed.Value();
    return DibShape{header.width, header.height, static_cast<int>(header.bitsPerPixel),
                    ReadColorTable(dib, header, {}).end, header.Stride()};
}

}  // namespace tessara
