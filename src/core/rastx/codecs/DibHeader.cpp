#include "core/rastx/codecs/DibHeader.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/ByteReader.h"

// A device independent bitmap, all little-endian:
//
//   info header   u32 size, then by that size
//                   12      u16 width, height, planes, bits per pixel; 3-byte colours
//                   16..64  OS/2 2: the first fields of the 40-byte header, cut anywhere
//                   40      i32 width, height (negative: top-down), u16 planes, bits per pixel,
//                           u32 compression, image size, i32 pixels per metre (2), u32 colours used,
//                           colours important
//                   52 56   and u32 masks of red, green, blue (and alpha)
//                   108 124 and the colour space
//   masks         3 or 4 u32, if bit fields are used and the header has no room for them
//   colour table  B, G, R, 0 each
//   pixels        rows of a multiple of four bytes, bottom row first; or runs; or a JPEG or PNG file
//   mask          of icons: 1 bit per pixel, rows as above
//
// Source: the Windows GDI reference, "Bitmap Storage" and BITMAPV5HEADER; OS/2 2.0 Presentation Manager.

namespace tessara::dib {
namespace {

constexpr std::uint32_t kLargestHeader = 65536;

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

bool OneOf(unsigned value, std::initializer_list<unsigned> values) {
    return std::ranges::find(values, value) != values.end();
}

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

}  // namespace

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

Result<void> CheckAgainstData(std::uint64_t pixels, std::uint64_t needed, std::uint64_t present) {
    constexpr std::uint64_t kLargePicture = std::uint64_t{16} << 20;
    constexpr std::uint64_t kSmallestPart = 64;
    if (present == 0) return Damaged("the bitmap has no pixels");
    if (pixels > kLargePicture && present < needed / kSmallestPart)
        return Damaged("the bitmap is far larger than its file");
    return {};
}

}  // namespace tessara::dib

namespace tessara {

using namespace dib;

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
