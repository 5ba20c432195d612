// The fields of an EXIF block (CIPA DC-008), which is a TIFF file without a picture:
//   0   "II" or "MM", 42, offset of directory 0 (the picture)
//   directory: u16 count, count entries, u32 offset of the next directory (the thumbnail)
//   entry: u16 tag, u16 type, u32 count, u32 value or its offset

#include "core/rastx/Exif.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <optional>
#include <utility>

#include "core/ByteReader.h"
#include "core/rastx/TiffTags.h"

namespace tessara {
namespace {

using namespace tiff;

constexpr std::uint64_t kLargestExif = std::uint64_t{1} << 20;  ///< of all values that are taken over

/// A reader in the byte order of the block.
class ExifReader {
  public:
    explicit ExifReader(Bytes block)
        : reader_(block), bigEndian_(HasSignature(block, std::string_view("MM\0*", 4))) {
        valid_ = bigEndian_ || HasSignature(block, std::string_view("II*\0", 4));
    }

    bool Valid() const { return valid_; }
    bool BigEndian() const { return bigEndian_; }
    bool Overrun() const { return reader_.Overrun(); }
    std::uint32_t U16(std::uint64_t position) {
        if (!reader_.Seek(position)) return 0;
        return bigEndian_ ? reader_.U16Be() : reader_.U16Le();
    }
    std::uint32_t U32(std::uint64_t position) {
        if (!reader_.Seek(position)) return 0;
        return bigEndian_ ? reader_.U32Be() : reader_.U32Le();
    }

  private:
    ByteReader reader_;
    bool bigEndian_;
    bool valid_;
};

struct Entry {
    std::uint32_t tag = 0, type = 0, count = 0;
    std::uint64_t valuePosition = 0;
};

struct Directory {
    std::vector<Entry> entries;
    std::uint64_t linkPosition =
        0;  ///< of the offset of the next directory; 0 where the block ends before it
};

Directory ReadDirectory(ExifReader& reader, std::uint64_t position) {
    Directory directory;
    const std::uint32_t count = reader.U16(position);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint64_t start = position + 2 + i * kEntrySize;
        const Entry entry{reader.U16(start), reader.U16(start + 2), reader.U32(start + 4), start + 8};
        reader.U32(entry.valuePosition);
        if (reader.Overrun()) return directory;
        directory.entries.push_back(entry);
    }
    directory.linkPosition = position + 2 + count * kEntrySize;
    return directory;
}

std::uint32_t IntegerOf(ExifReader& reader, const Entry& entry) {
    if (entry.type == kShort) return reader.U16(entry.valuePosition);
    return entry.type == kLong ? reader.U32(entry.valuePosition) : 0;
}

double RationalOf(ExifReader& reader, const Entry& entry) {
    if (entry.type != kRational) return IntegerOf(reader, entry);
    const std::uint64_t position = reader.U32(entry.valuePosition);
    const double numerator = reader.U32(position);
    const double denominator = reader.U32(position + 4);
    return denominator > 0 ? numerator / denominator : 0;
}

void SetU16(ByteVector& block, bool bigEndian, std::uint64_t position, std::uint32_t value) {
    if (position + 2 > block.size()) return;
    block[position + (bigEndian ? 1 : 0)] = static_cast<std::uint8_t>(value);
    block[position + (bigEndian ? 0 : 1)] = static_cast<std::uint8_t>(value >> 8);
}

void SetInteger(ByteVector& block, bool bigEndian, const Entry& entry, std::uint32_t value) {
    const std::uint64_t low = entry.valuePosition + (bigEndian && entry.type == kLong ? 2 : 0);
    const std::uint64_t high = entry.valuePosition + (bigEndian ? 0 : 2);
    if (entry.type == kShort || entry.type == kLong) SetU16(block, bigEndian, low, value);
    if (entry.type == kLong) SetU16(block, bigEndian, high, value >> 16);
}

/// Cuts the link to the second directory, and the thumbnail itself where it stands at the block's end.
void RemoveThumbnail(ByteVector& block, ExifReader& reader, const Directory& first) {
    if (first.linkPosition == 0 || first.linkPosition + 4 > block.size()) return;
    std::uint64_t start = 0;
    std::uint64_t length = 0;
    const std::uint32_t second = reader.U32(first.linkPosition);
    for (const Entry& entry : second ? ReadDirectory(reader, second).entries : std::vector<Entry>()) {
        if (entry.tag == kThumbnailOffset) start = IntegerOf(reader, entry);
        if (entry.tag == kThumbnailLength) length = IntegerOf(reader, entry);
    }
    std::fill_n(block.begin() + static_cast<std::ptrdiff_t>(first.linkPosition), 4, std::uint8_t{0});
    if (length > 0 && start >= first.linkPosition + 4 && start + length == block.size())
        block.resize(static_cast<std::size_t>(start));
}

/// Nothing where the type is unknown, the values are not there, or they are longer than `room`, from which
/// they are taken.
std::optional<ExifEntry> ReadEntry(Bytes block, ExifReader& reader, const Entry& entry, std::uint64_t& room) {
    if (entry.type < 1 || entry.type > std::size(kTypeSizes)) return std::nullopt;
    const TypeSize size = kTypeSizes[entry.type - 1];
    const std::uint64_t length = std::uint64_t{entry.count} * size.number * size.numbers;
    const std::uint64_t position = length <= 4 ? entry.valuePosition : reader.U32(entry.valuePosition);
    if (position + length > block.size() || length > room) return std::nullopt;
    room -= length;
    const Bytes values = block.subspan(static_cast<std::size_t>(position), static_cast<std::size_t>(length));
    ExifEntry read{static_cast<std::uint16_t>(entry.tag), static_cast<std::uint16_t>(entry.type), entry.count,
                   ByteVector(values.begin(), values.end())};
    if (reader.BigEndian())
        for (auto number = read.values.begin(); number != read.values.end(); number += size.number)
            std::reverse(number, number + size.number);
    return read;
}

bool Describes(std::uint32_t tag) {
    constexpr std::uint32_t kTags[] = {kImageDescription, kMake,   kModel,    kSoftware,
                                       kDateTime,         kArtist, kCopyright};
    return std::ranges::find(kTags, tag) != std::end(kTags);
}

std::vector<ExifEntry> ReadEntries(Bytes block, ExifReader& reader, const std::vector<Entry>& entries,
                                   std::uint64_t& room) {
    constexpr std::uint32_t kInteroperability = 40965;  // a directory of its own that nothing needs
    std::vector<ExifEntry> read;
    for (const Entry& entry : entries)
        if (entry.tag != kInteroperability)
            if (auto one = ReadEntry(block, reader, entry, room)) read.push_back(std::move(*one));
    return read;
}

/// The directory that an entry of the first one points to. Of several entries one counts: to follow them all
/// could take hours in a hostile block.
std::vector<Entry> ReadOwnDirectory(ExifReader& reader, const Directory& first, Tag tag) {
    const auto entry = std::ranges::find(first.entries, std::uint32_t{tag}, &Entry::tag);
    if (entry == first.entries.end()) return {};
    return ReadDirectory(reader, IntegerOf(reader, *entry)).entries;
}

/// Where pixel (x, y) of a stored picture belongs: at origin + x * alongX + y * alongY of the upright one.
struct Placement {
    std::ptrdiff_t origin, alongX, alongY;
};

Placement PlacementOf(std::ptrdiff_t width, std::ptrdiff_t height, int orientation) {
    const std::ptrdiff_t right = width - 1;
    const std::ptrdiff_t bottom = height - 1;
    switch (orientation) {
        case 2:
            return {right, -1, width};
        case 3:
            return {bottom * width + right, -1, -width};
        case 4:
            return {bottom * width, 1, -width};
        case 5:
            return {0, height, 1};
        case 6:
            return {bottom, height, -1};
        case 7:
            return {right * height + bottom, -height, -1};
        case 8:
            return {right * height, -height, 1};
        default:
            return {0, 1, width};
    }
}

/// Rows become columns: block by block, or each pixel written would touch another cache line.
void PlaceColumns(const Pixel* rows, std::ptrdiff_t count, std::ptrdiff_t width, const Placement& to,
                  Pixel* upright) {
    constexpr std::ptrdiff_t kBlock = 16;  // pixels, a cache line
    for (std::ptrdiff_t top = 0; top < count; top += kBlock) {
        const std::ptrdiff_t bottom = std::min(top + kBlock, count);
        for (std::ptrdiff_t x = 0; x < width; ++x) {
            Pixel* const target = upright + to.origin + x * to.alongX;
            for (std::ptrdiff_t y = top; y < bottom; ++y) target[y * to.alongY] = rows[y * width + x];
        }
    }
}

}  // namespace

ExifFields ReadExif(Bytes block) {
    ExifFields fields;
    ExifReader reader(block);
    if (!reader.Valid()) return fields;
    constexpr std::uint32_t kCentimetre = 3;
    std::uint32_t unit = 2;  // inch, where nothing is said
    for (const Entry& entry : ReadDirectory(reader, reader.U32(kDirectoryOffset)).entries) {
        if (entry.tag == kOrientation) fields.orientation = static_cast<int>(IntegerOf(reader, entry));
        if (entry.tag == kXResolution) fields.resolution.x = RationalOf(reader, entry);
        if (entry.tag == kYResolution) fields.resolution.y = RationalOf(reader, entry);
        if (entry.tag == kResolutionUnit) unit = IntegerOf(reader, entry);
    }
    if (fields.orientation < 1 || fields.orientation > 8) fields.orientation = 1;
    const double perInch = unit == kCentimetre ? 2.54 : unit == 2 ? 1 : 0;
    fields.resolution = {fields.resolution.x * perInch, fields.resolution.y * perInch};
    return fields;
}

ExifDirectories ReadExifDirectories(Bytes block) {
    ExifDirectories directories;
    ExifReader reader(block);
    if (!reader.Valid()) return directories;
    // Any number of entries can claim the same bytes of a hostile block.
    std::uint64_t room = std::min<std::uint64_t>(block.size(), kLargestExif);
    const Directory first = ReadDirectory(reader, reader.U32(kDirectoryOffset));
    std::vector<Entry> describing = first.entries;
    std::erase_if(describing, [](const Entry& entry) { return !Describes(entry.tag); });
    directories.image = ReadEntries(block, reader, describing, room);
    directories.photo = ReadEntries(block, reader, ReadOwnDirectory(reader, first, kPhotoDirectory), room);
    directories.place = ReadEntries(block, reader, ReadOwnDirectory(reader, first, kPlaceDirectory), room);
    return directories;
}

ByteVector UprightExif(Bytes block) {
    ExifReader reader(block);
    if (!reader.Valid()) return {};
    ByteVector upright(block.begin(), block.end());
    const Directory directory = ReadDirectory(reader, reader.U32(kDirectoryOffset));
    for (const Entry& entry : directory.entries)
        if (entry.tag == kOrientation) SetInteger(upright, reader.BigEndian(), entry, 1);
    RemoveThumbnail(upright, reader, directory);
    return upright;
}

ByteVector ExifOf(const Picture& picture) {
    if (!picture.Meta().exif) return {};
    ByteVector block = *picture.Meta().exif;
    ExifReader reader(*picture.Meta().exif);
    const auto set = [&](const Entry& entry, int side) {
        SetInteger(block, reader.BigEndian(), entry, static_cast<std::uint32_t>(side));
    };
    const Directory first = ReadDirectory(reader, reader.U32(kDirectoryOffset));
    for (const Entry& entry : ReadOwnDirectory(reader, first, kPhotoDirectory)) {
        if (entry.tag == kPixelWidth) set(entry, picture.Width());
        if (entry.tag == kPixelHeight) set(entry, picture.Height());
    }
    return block;
}

void PlaceOriented(std::span<const Pixel> rows, int firstRow, int width, int height, int orientation,
                   std::span<Pixel> upright) {
    const auto count = static_cast<std::ptrdiff_t>(rows.size()) / width;
    assert(firstRow >= 0 && firstRow + count <= height);
    assert(upright.size() == static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    Placement to = PlacementOf(width, height, orientation);
    to.origin += firstRow * to.alongY;
    if (SwapsSides(orientation)) return PlaceColumns(rows.data(), count, width, to, upright.data());
    for (std::ptrdiff_t y = 0; y < count; ++y) {
        const Pixel* const row = rows.data() + y * width;
        // Rightmost pixels of a mirrored row come first.
        Pixel* const target = upright.data() + to.origin + y * to.alongY + (to.alongX < 0 ? 1 - width : 0);
        if (to.alongX < 0)
            std::reverse_copy(row, row + width, target);
        else
            std::copy(row, row + width, target);
    }
}

Result<Picture> ApplyOrientation(Picture picture, int orientation) {
    if (orientation < 2 || orientation > 8) return picture;
    const bool swaps = SwapsSides(orientation);
    const Limits unlimited{.side = std::max(picture.Width(), picture.Height()), .decodedBytes = UINT64_MAX};
    TRY_ASSIGN(Picture upright,
               Picture::Create(swaps ? picture.Height() : picture.Width(),
                               swaps ? picture.Width() : picture.Height(),
                               picture.HasAlpha() ? Alpha::Straight : Alpha::None, unlimited));
    PlaceOriented(picture.Pixels(), 0, picture.Width(), picture.Height(), orientation,
                  upright.MutablePixels());
    Metadata metadata = picture.Meta();
    if (swaps) std::swap(metadata.resolution.x, metadata.resolution.y);
    upright.SetMeta(std::move(metadata));
    return upright;
}

}  // namespace tessara
