#include "core/rastx/codecs/Pcd.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"

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

/// One component of a picture.
struct Plane {
    std::size_t width = 0;
    std::size_t height = 0;
    ByteVector samples;

    Plane() = default;
    Plane(std::size_t w, std::size_t h) : width(w), height(h), samples(w * h) {}
    std::span<std::uint8_t> Row(std::size_t y) { return std::span(samples).subspan(y * width, width); }
    Bytes Row(std::size_t y) const { return Bytes(samples).subspan(y * width, width); }
};

/// Luma and two chroma planes of half its width and height, whose samples lie on every second of luma.
struct Components {
    Plane luma, blue, red;
};

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

/// The samples between those of a row, and of the row below where there is one: the mean of their neighbours,
/// rounded. The last column stands in for the one behind it.
void InterpolateRow(Bytes row, Bytes below, std::span<std::uint8_t> even, std::span<std::uint8_t> odd) {
    const std::size_t last = row.size() - 1;
    for (std::size_t x = 0; x <= last; ++x) {
        const std::size_t next = std::min(x + 1, last);
        const unsigned a = row[x], b = row[next], c = below[x], d = below[next];
        even[2 * x] = row[x];
        even[2 * x + 1] = static_cast<std::uint8_t>((a + b + 1) >> 1);
        odd[2 * x] = static_cast<std::uint8_t>((a + c + 1) >> 1);
        odd[2 * x + 1] = static_cast<std::uint8_t>((a + b + c + d + 2) >> 2);
    }
}

/// A plane of twice the width and height. The writer predicted the next larger size in exactly this way.
Plane Doubled(const Plane& plane) {
    Plane large(2 * plane.width, 2 * plane.height);
    for (std::size_t y = 0; y < plane.height; ++y)
        InterpolateRow(plane.Row(y), plane.Row(std::min(y + 1, plane.height - 1)), large.Row(2 * y),
                       large.Row(2 * y + 1));
    return large;
}

/// Bits from the most significant on; zeros behind the end.
class BitReader {
  public:
    explicit BitReader(Bytes bytes) : bytes_(bytes) {}

    /// The next `count` bits, at most 32.
    std::uint32_t Peek(unsigned count) {
        if (available_ < count) Refill();
        return static_cast<std::uint32_t>(bits_ >> (64 - count));
    }
    void Skip(unsigned count) {
        if (available_ < count) Refill();
        bits_ <<= count;
        available_ -= count;
    }
    /// Whether bits behind the end were taken.
    bool Overrun() const { return next_ > bytes_.size() && (next_ - bytes_.size()) * 8 > available_; }
    /// Bytes begun so far.
    std::size_t Position() const { return next_ - available_ / 8; }

  private:
    void Refill() {
        while (available_ <= 56) {
            const std::uint64_t byte = next_ < bytes_.size() ? bytes_[next_] : 0;
            bits_ |= byte << (56 - available_);
            available_ += 8;
            ++next_;
        }
    }

    Bytes bytes_;
    std::size_t next_ = 0;
    std::uint64_t bits_ = 0;
    unsigned available_ = 0;
};

constexpr unsigned kLongestCode = 16;

/// The code and difference for each value of the next 16 bits; length 0 where no code begins so.
class DifferenceTable {
  public:
    struct Entry {
        std::uint8_t length = 0;
        std::int8_t difference = 0;
    };

    static Result<DifferenceTable> Read(ByteReader& reader) {
        DifferenceTable table;
        table.codes_ = reader.U8() + 1u;
        for (unsigned i = 0; i < table.codes_; ++i) {
            const unsigned length = reader.U8() + 1u;
            const unsigned code = reader.U16Be();
            const std::int8_t difference = reader.I8();
            if (length > kLongestCode) return Damaged("a code of the table is too long");
            const unsigned span = 1u << (kLongestCode - length);
            if (code % span != 0) continue;
            std::fill_n(table.entries_.begin() + code, span,
                        Entry{static_cast<std::uint8_t>(length), difference});
        }
        if (reader.Overrun()) return Damaged("the table is cut short");
        return table;
    }

    Entry Find(std::uint32_t next16) const { return entries_[next16]; }
    unsigned Codes() const { return codes_; }

  private:
    DifferenceTable() : entries_(std::size_t{1} << kLongestCode) {}

    std::vector<Entry> entries_;
    unsigned codes_ = 0;
};

/// The plane that a row of differences belongs to, as its head counts; 1 does not occur.
enum PlaneNumber : unsigned { kLuma = 0, kBlueChroma = 2, kRedChroma = 3, kPlaneNumbers = 4 };

/// Adds rows of differences to predicted planes. A row stands behind 23 ones and a zero, at any bit, and 16
/// bits of its own: plane, row of luma, an unused one. The row behind the last ends the stream.
class DifferenceReader {
  public:
    explicit DifferenceReader(Bytes stream) : bits_(stream) {}

    void SetPlane(PlaneNumber number, Plane& plane, const DifferenceTable& table) {
        targets_[number] = {&plane, &table};
    }

    /// Whether the stream was one: most of its rows could be read to their end. A file cut short keeps what
    /// it has, the rest stays as predicted.
    bool Read() {
        const std::size_t height = targets_[kLuma].plane->height;
        unsigned whole = 0, broken = 0;
        while (FindMark()) {
            const std::uint32_t head = bits_.Peek(16);
            bits_.Skip(16);
            const std::size_t row = head >> 1 & 0x1fff;
            if (row == height) break;
            const Target& target = targets_[head >> 14];
            if (row > height || !target.plane) continue;
            const bool luma = head >> 14 == kLuma;
            (ReadRow(*target.table, target.plane->Row(luma ? row : row / 2)) ? whole : broken) += 1;
        }
        return whole > broken;
    }
    /// Bytes begun so far.
    std::size_t Position() const { return bits_.Position(); }

  private:
    struct Target {
        Plane* plane = nullptr;
        const DifferenceTable* table = nullptr;
    };
    static constexpr std::uint32_t kMark = 0xfffffe;  // 24 bits
    static constexpr std::uint32_t kMarkOnes = kMark >> 1;

    /// Passes over the next mark.
    bool FindMark() {
        while (!bits_.Overrun()) {
            const std::uint32_t next = bits_.Peek(24);
            if (next == kMark) {
                bits_.Skip(24);
                return true;
            }
            // A mark can only begin within the ones at the end of these bits.
            const auto ones = static_cast<unsigned>(std::countr_one(next));
            bits_.Skip(std::max(1u, 24 - ones));
        }
        return false;
    }

    /// False if the row broke off; what it had counts.
    bool ReadRow(const DifferenceTable& table, std::span<std::uint8_t> row) {
        for (std::uint8_t& sample : row) {
            const std::uint32_t next = bits_.Peek(23);
            const DifferenceTable::Entry entry = table.Find(next >> (23 - kLongestCode));
            if (entry.length == 0 || next == kMarkOnes || bits_.Overrun()) return false;
            bits_.Skip(entry.length);
            sample = static_cast<std::uint8_t>(std::clamp(sample + entry.difference, 0, 255));
        }
        return true;
    }

    BitReader bits_;
    std::array<Target, kPlaneNumbers> targets_;
};

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

/// Brightness to tones of sRGB, as a curve that is straight between these points.
struct Knot {
    int in, out;
};
/// White of the scene is near 247, highlights reach 346 and are bent rather than cut.
constexpr Knot kFilmTones[] = {{0, 0},     {61, 64},   {130, 139}, {194, 201},
                               {241, 236}, {270, 249}, {304, 254}, {350, 255}};
/// White is the largest luma, 346.
constexpr Knot kFullRangeTones[] = {{0, 0}, {346, 255}, {350, 255}};

constexpr int kBrightest = 350;
using ToneTable = std::array<std::uint8_t, kBrightest + 1>;

constexpr ToneTable MakeToneTable(std::span<const Knot> knots) {
    ToneTable table{};
    for (std::size_t k = 1; k < knots.size(); ++k) {
        const Knot from = knots[k - 1];
        const Knot to = knots[k];
        const int width = to.in - from.in;
        for (int i = 0; i <= width; ++i)
            table[static_cast<std::size_t>(from.in + i)] =
                static_cast<std::uint8_t>(from.out + ((to.out - from.out) * i + width / 2) / width);
    }
    return table;
}
constexpr ToneTable kFilmToneTable = MakeToneTable(kFilmTones);
constexpr ToneTable kFullRangeToneTable = MakeToneTable(kFullRangeTones);

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

std::uint8_t Tone(const ToneTable& tones, int fixed) {
    constexpr int kFraction = 20;
    const int value = (fixed + (1 << (kFraction - 1))) >> kFraction;
    return tones[static_cast<std::size_t>(std::clamp(value, 0, kBrightest))];
}

/// Luma and chroma to colours. The factors are fixed point numbers of 20 bits.
void ComponentsToPixels(Bytes luma, Bytes blue, Bytes red, const ToneTable& tones, std::span<Pixel> pixels) {
    constexpr int kNeutralBlue = 156, kNeutralRed = 137;
    for (std::size_t x = 0; x < pixels.size(); ++x) {
        const int y = 1424386 * luma[x];
        const int b = blue[x] - kNeutralBlue;
        const int r = red[x] - kNeutralRed;
        pixels[x] = {Tone(tones, y + 2325637 * b), Tone(tones, y - 451174 * b - 972180 * r),
                     Tone(tones, y + 1909981 * r), 255};
    }
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
