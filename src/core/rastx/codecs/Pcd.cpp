// Reading Photo CD: finds the sizes that a file holds and makes the largest of them.

#include "core/rastx/codecs/Pcd.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/codecs/PcdColors.h"
#include "core/rastx/codecs/PcdDifferences.h"
#include "core/rastx/codecs/PcdPlanes.h"

// Photo CD image pacs: one photograph in several sizes. The maker never published the format; what follows is
// known from independent decoders. Numbers are big-endian, places are counted in sectors of 2048 bytes.
//
//   sector   1  "PCD_IPI"                              384  4Base: Huffman codes of what its luma differs
//   byte 0xe02  bits 0-1 quarter turns, counter-            from Base doubled; table in 388, rows from 389
//               clockwise; 2-3 largest size: Base,     then 16Base: the same of luma and chroma against
//               4Base, 16Base, 64Base elsewhere             4Base doubled; tables 12 sectors and rows 14
//   byte 0xe03  u16 sector behind 4Base                     behind the end of 4Base
//   byte 0xe09  interleaving with sound; 0 and 1 none
//   sector   4  Base/16: 192 x 128, stored plainly     An overview pac begins with "PCD_OPA" and has pictures
//   sector  23  Base/4:  384 x 256                     of the smallest size from sector 5 on.
//   sector  96  Base:    768 x 512
//
// A plain picture is pairs of luma rows, each pair followed by one row of each chroma plane at half the
// width.

namespace tessara {
namespace {

using namespace pcd;

constexpr std::uint64_t kSector = 2048;
constexpr std::string_view kImagePac = "PCD_IPI";
constexpr std::string_view kOverviewPac = "PCD_OPA";
constexpr std::size_t kAttributesOffset = 0xe02;

constexpr std::uint64_t kFirstOfOverview = 5;
constexpr std::uint64_t kFourBaseTable = 388;
constexpr std::uint64_t kFourBaseRows = 389;
constexpr std::uint64_t kSixteenBaseTableGap = 12;
constexpr std::uint64_t kSixteenBaseRowsGap = 14;

enum Size { kBase, kFourBase, kSixteenBase };

struct PlainSize {
    std::size_t width, height;
    std::uint64_t sector;
};
constexpr PlainSize kBaseOver16{192, 128, 4};
constexpr PlainSize kPlainSizes[] = {{768, 512, 96}, {384, 256, 23}, kBaseOver16};

struct Header {
    unsigned quarterTurns = 0;
    Size largest = kBase;
    std::uint64_t fourBaseEnd = 0;  ///< sector
};

Result<Header> ReadHeader(Bytes file) {
    if (!HasSignature(file, kImagePac, kSector)) return Unsupported("no Photo CD picture");
    ByteReader reader(file);
    reader.Seek(kAttributesOffset);
    const std::uint8_t attributes = reader.U8();
    Header header;
    header.fourBaseEnd = reader.U16Be();
    reader.Skip(4);
    const std::uint8_t interleaving = reader.U8();
    if (reader.Overrun()) return Damaged("the header is cut short");
    if (interleaving > 1) return Unsupported("a Photo CD picture with sound");
    header.quarterTurns = attributes & 3;
    header.largest = std::min(static_cast<Size>(attributes >> 2 & 3), kSixteenBase);
    return header;
}

std::optional<Components> ReadPlain(Bytes file, std::size_t width, std::size_t height, std::uint64_t sector) {
    ByteReader reader(Slice(file, sector * kSector, width * height * 3 / 2));
    Components picture{{width, height}, {width / 2, height / 2}, {width / 2, height / 2}};
    if (reader.Size() < width * height * 3 / 2) return std::nullopt;
    for (std::size_t y = 0; y < height; y += 2) {
        std::ranges::copy(reader.Take(2 * width), picture.luma.Row(y).begin());
        std::ranges::copy(reader.Take(width / 2), picture.blue.Row(y / 2).begin());
        std::ranges::copy(reader.Take(width / 2), picture.red.Row(y / 2).begin());
    }
    return picture;
}

/// The largest of the three plain pictures that the file holds whole.
Result<Components> ReadLargestPlain(Bytes file) {
    for (const PlainSize& size : kPlainSizes)
        if (auto picture = ReadPlain(file, size.width, size.height, size.sector)) return std::move(*picture);
    return Damaged("the file holds no whole picture");
}

/// Base to 4Base; the sector where the differences end, or nothing where they are no good.
std::optional<std::uint64_t> EnlargeToFourBase(Bytes file, Components& picture) {
    ByteReader tableReader(Slice(file, kFourBaseTable * kSector));
    const auto table = DifferenceTable::Read(tableReader);
    if (!table) return std::nullopt;
    Plane luma = Doubled(picture.luma);
    DifferenceReader reader(Slice(file, kFourBaseRows * kSector));
    reader.SetPlane(kLuma, luma, table.Value());
    if (!reader.Read()) return std::nullopt;
    // Chroma has no differences in this size.
    picture = {std::move(luma), Doubled(picture.blue), Doubled(picture.red)};
    return kFourBaseRows + (reader.Position() + kSector - 1) / kSector;
}

/// 4Base to 16Base, from the differences behind the sector `start`; false where they are no good.
bool EnlargeToSixteenBase(Bytes file, std::uint64_t start, Components& picture) {
    ByteReader tableReader(Slice(file, (start + kSixteenBaseTableGap) * kSector));
    std::vector<DifferenceTable> tables;
    for (int i = 0; i < 3; ++i) {
        auto table = DifferenceTable::Read(tableReader);
        if (!table) return false;
        // Some writers leave a stump where the table before serves as well.
        constexpr unsigned kFewestCodes = 4;
        tables.push_back(i > 0 && table.Value().Codes() < kFewestCodes ? tables.back()
                                                                       : std::move(table).Value());
    }
    Components large{Doubled(picture.luma), Doubled(picture.blue), Doubled(picture.red)};
    DifferenceReader reader(Slice(file, (start + kSixteenBaseRowsGap) * kSector));
    reader.SetPlane(kLuma, large.luma, tables[0]);
    reader.SetPlane(kBlueChroma, large.blue, tables[1]);
    reader.SetPlane(kRedChroma, large.red, tables[2]);
    if (!reader.Read()) return false;
    picture = std::move(large);
    return true;
}

/// The largest size that can be read. What fails leaves the next smaller one.
Result<Components> ReadLargest(Bytes file, const Header& header) {
    TRY_ASSIGN(Components picture, ReadLargestPlain(file));
    if (picture.luma.width != kPlainSizes[0].width || header.largest < kFourBase) return picture;
    const auto end = EnlargeToFourBase(file, picture);
    if (!end || header.largest < kSixteenBase) return picture;
    // The header's place comes first; where it is wrong, the end of 4Base tells.
    if (header.fourBaseEnd <= kFourBaseRows || !EnlargeToSixteenBase(file, header.fourBaseEnd, picture))
        if (*end != header.fourBaseEnd) EnlargeToSixteenBase(file, *end, picture);
    return picture;
}

/// Whether a program wrote the file rather than the workstation of a scanner. The one that is used for it
/// stores white as the largest luma instead of leaving room for highlights; shown by the film's curve, its
/// pictures would be overexposed by half. It is known by a fixed first sector and an information area without
/// a word.
bool IsWrittenByProgram(Bytes file) {
    constexpr std::size_t kOnes = 32, kFourteens = 4;
    constexpr std::size_t kInformation = kSector + 8;
    const auto all = [file](std::size_t offset, std::size_t length, std::uint8_t value) {
        return std::ranges::all_of(Slice(file, offset, length),
                                   [=](std::uint8_t byte) { return byte == value; });
    };
    return all(0, kOnes, 0xff) && all(kOnes, kFourteens, 0x0e) &&
           all(kInformation, kAttributesOffset - kInformation, 0);
}

/// The picture turned counter-clockwise. Squares keep both the rows read and the columns written in the
/// cache.
Result<Picture> Turned(const Picture& picture, unsigned quarters, const Limits& limits) {
    if (quarters == 0) return picture;
    constexpr int kSquare = 32;
    const int width = picture.Width(), height = picture.Height();
    const bool onSide = quarters % 2 == 1;
    TRY_ASSIGN(Picture turned,
               Picture::Create(onSide ? height : width, onSide ? width : height, Alpha::None, limits));
    const auto source = picture.Pixels();
    const auto target = turned.MutablePixels();
    // Where the first pixel goes, and how far apart its neighbours to the right and below are then.
    const std::ptrdiff_t origins[] = {0, std::ptrdiff_t{width - 1} * height,
                                      std::ptrdiff_t{width} * height - 1, height - 1};
    const std::ptrdiff_t rights[] = {1, -height, -1, height};
    const std::ptrdiff_t belows[] = {width, 1, -width, -1};
    for (int top = 0; top < height; top += kSquare)
        for (int left = 0; left < width; left += kSquare)
            for (int y = top; y < std::min(top + kSquare, height); ++y)
                for (int x = left; x < std::min(left + kSquare, width); ++x)
                    target[static_cast<std::size_t>(origins[quarters] + x * rights[quarters] +
                                                    y * belows[quarters])] =
                        source[static_cast<std::size_t>(std::ptrdiff_t{y} * width + x)];
    return turned;
}

Result<Picture> ToPicture(const Components& components, const ToneTable& tones, const Limits& limits) {
    const Plane& luma = components.luma;
    TRY_ASSIGN(Picture picture, Picture::Create(static_cast<std::int64_t>(luma.width),
                                                static_cast<std::int64_t>(luma.height), Alpha::None, limits));
    const Plane blue = Doubled(components.blue);
    const Plane red = Doubled(components.red);
    for (int y = 0; y < picture.Height(); ++y) {
        const auto row = static_cast<std::size_t>(y);
        ComponentsToPixels(luma.Row(row), blue.Row(row), red.Row(row), tones, picture.MutableRow(y));
    }
    return picture;
}

}  // namespace

bool RecognisePcd(Bytes file) {
    return HasSignature(file, kImagePac, kSector) || HasSignature(file, kOverviewPac);
}

Result<Picture> DecodePcd(Bytes file, const DecodeOptions& options) {
    if (HasSignature(file, kOverviewPac)) {
        const auto first = ReadPlain(file, kBaseOver16.width, kBaseOver16.height, kFirstOfOverview);
        if (!first) return Damaged("the overview holds no whole picture");
        return ToPicture(*first, kFilmToneTable, options.limits);
    }
    TRY_ASSIGN(const Header header, ReadHeader(file));
    TRY_ASSIGN(const Components components, ReadLargest(file, header));
    const ToneTable& tones = IsWrittenByProgram(file) ? kFullRangeToneTable : kFilmToneTable;
    TRY_ASSIGN(const Picture picture, ToPicture(components, tones, options.limits));
    return Turned(picture, header.quarterTurns, options.limits);
}

}  // namespace tessara
