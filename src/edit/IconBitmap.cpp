#include "edit/IconBitmap.h"

#include <algorithm>
#include <filesystem>

#include "core/ByteReader.h"
#include "core/ByteSink.h"
#include "core/Files.h"
#include "core/Text.h"
#include "core/rastx/Codec.h"

// The icon as it is taken here: one directory entry, then the image at once.
//
//   0   u16 reserved, type, image count
//   6   u8 width, height, colours, reserved; u16 planes, bits; u32 size, offset
//   22  the image header of 40 bytes
//   62  palette and pixels, then the mask

namespace tessara {
namespace {

constexpr int kImageHeader = 22;
constexpr int kImageHeaderSize = 40;
constexpr int kPixels = 62;
constexpr int kDirectWidth = 32;
constexpr int kLargeFrom = 97;

/// The fields of the file's first 24 bytes that count.
struct IconRecord {
    int width = 0, height = 0, bits = 0;
};

Result<IconRecord> ReadRecord(Bytes icon) {
    ByteReader reader(icon);
    reader.Skip(6);
    IconRecord record;
    record.width = reader.U8();
    record.height = reader.U8();
    reader.Skip(4);
    record.bits = reader.U16Le();
    reader.Skip(10);
    if (reader.Overrun()) return Damaged("the icon ends within its record");
    return record;
}

/// Bytes of a row that is filled up to a multiple of four, from its length in bytes; real division
/// throughout.
int PaddedRow(double bytes) {
    return static_cast<int>((bytes + 3) / 4) * 4;
}
int MaskRow(int width) {
    return PaddedRow((width + 7) / 8.0);
}

void PutU16(ByteVector& bytes, std::size_t offset, int value) {
    for (int i = 0; i < 2; ++i)
        bytes[offset + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (8 * i));
}
void PutU32(ByteVector& bytes, std::size_t offset, int value) {
    PutU16(bytes, offset, value);
    PutU16(bytes, offset + 2, value >> 16);
}

Result<void> WriteWhole(const std::string& path, Bytes bytes) {
    return ReplaceFile(path, [&](ByteSink& sink) { return sink.Write(bytes); });
}

void Remove(const std::string& path) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

/// The bitmap file of a large icon: a header in front of the icon's own palette and pixels.
Result<ByteVector> CopyLargeIcon(Bytes icon) {
    TRY_ASSIGN(const IconRecord record, ReadRecord(icon));
    constexpr int kBitmapHeader = 54;
    const int maskSize = MaskRow(record.width) * record.height;
    const int dataSize = static_cast<int>(icon.size()) - kPixels - maskSize;
    if (dataSize <= 0) return Damaged("the icon has no pixels");
    const int offset = record.bits >= 16 ? kBitmapHeader : (1 << record.bits) * 4 + kBitmapHeader;
    ByteWriter header;
    header.Text("BM")
        .I32Le(dataSize + kBitmapHeader)
        .U16Le(0)
        .U16Le(0)
        .U32Le(static_cast<std::uint32_t>(offset));
    header.U32Le(kImageHeaderSize).I32Le(record.width).I32Le(record.height).U16Le(1);
    header.U16Le(static_cast<std::uint32_t>(record.bits)).U32Le(0);
    constexpr int kPixelsPerMetre = 2834;
    header.I32Le(BitmapImageSize(dataSize, record.bits, "Bmp")).I32Le(kPixelsPerMetre).I32Le(kPixelsPerMetre);
    header.U32Le(0).U32Le(0);
    header.Append(icon.subspan(kPixels, static_cast<std::size_t>(dataSize)));
    return header.TakeBytes();
}

/// The first image of an icon on a colour, at its own size.
Result<Picture> DrawIcon(Bytes icon, bool imageFollowsRecord, ColorNumber backColor) {
    ByteVector alone(icon.begin(), icon.end());
    if (alone.size() < kPixels) return Damaged("the icon has no pixels");
    PutU16(alone, 4, 1);
    if (imageFollowsRecord) PutU32(alone, 18, kImageHeader);
    TRY_ASSIGN(const Picture picture, DecodeFile(alone, "ico"));
    return picture.FlattenedOn(PixelFromColor(backColor));
}

}  // namespace

IconSizes IconImageSizes(int width, int height, int bits) {
    IconSizes sizes;
    sizes.maskRowSize = MaskRow(width);
    switch (bits) {
        case 1:
            sizes.rowSize = MaskRow(width);
            sizes.paletteBytes = 8;
            break;
        case 4:
            sizes.rowSize = PaddedRow((width + 1) / 2.0);
            sizes.paletteBytes = 64;
            break;
        case 8:
            sizes.rowSize = PaddedRow(width);
            sizes.paletteBytes = 1024;
            break;
        case 16:
        case 24:
        case 32:
            sizes.rowSize = PaddedRow(width * (bits / 8));
            break;
        default:
            break;
    }
    sizes.pixelBytes = sizes.rowSize * height / 2;
    sizes.maskBytes = sizes.maskRowSize * height / 2;
    sizes.total = sizes.paletteBytes + sizes.pixelBytes + sizes.maskBytes + kImageHeaderSize;
    return sizes;
}

int BitmapImageSize(int size, int bits, const std::string& kind) {
    if (bits == 1) size -= 8;
    if (bits == 4) size -= 64;
    if (bits == 8) size -= 1024;
    return EqualIgnoringCase(kind, "ICON") ? size - kImageHeaderSize : size;
}

Result<ByteVector> AlphaIconTo24(Bytes icon) {
    TRY_ASSIGN(const IconRecord record, ReadRecord(icon));
    if (record.bits != 32) return BadArgument("the icon has no alpha");
    const IconSizes from = IconImageSizes(record.width, record.height * 2, 32);
    const IconSizes to = IconImageSizes(record.width, record.height * 2, 24);
    if (icon.size() < static_cast<std::size_t>(kPixels + from.pixelBytes))
        return Damaged("the icon ends early");

    ByteVector made(static_cast<std::size_t>(kPixels + to.pixelBytes + to.maskBytes));
    std::copy_n(icon.begin(), kPixels, made.begin());
    PutU16(made, 12, 24);
    PutU32(made, 14, to.total);
    PutU16(made, kImageHeader + 14, 24);
    PutU32(made, kImageHeader + 20, to.total - kImageHeaderSize);
    const Bytes pixels = icon.subspan(kPixels);
    for (int r = 0; r < record.height; ++r)
        for (int c = 0; c < record.width; ++c)
            std::copy_n(pixels.begin() + (r * record.width + c) * 4, 3,
                        made.begin() + kPixels + r * to.rowSize + c * 3);
    const Bytes mask =
        Slice(pixels, static_cast<std::size_t>(from.pixelBytes), static_cast<std::size_t>(from.maskBytes));
    std::ranges::copy(mask, made.begin() + kPixels + to.pixelBytes);
    return made;
}

Result<void> PrepareIconBitmap(std::string& source, const std::string& bitmap, bool& converted,
                               const IconRoute& route) {
    TRY_ASSIGN(FileBytes icon, FileBytes::Read(source));
    TRY_ASSIGN(const IconRecord record, ReadRecord(icon.View()));
    if (record.width == kDirectWidth && record.height == kDirectWidth && record.bits != 32) return {};
    converted = true;
    const bool large = record.width >= kLargeFrom || record.height >= kLargeFrom;
    const bool alpha = record.bits == 32;
    if (alpha) {
        Remove(route.scratchIcon);
        source = route.scratchIcon;
        TRY_ASSIGN(const ByteVector without, AlphaIconTo24(icon.View()));
        TRY(WriteWhole(route.scratchIcon, without));
        TRY_ASSIGN(icon, FileBytes::Read(route.scratchIcon));
    }
    if (large) {
        const Result<ByteVector> copied = CopyLargeIcon(icon.View());
        Remove(route.scratchIcon);
        if (!copied) return copied.Error();
        return WriteWhole(bitmap, copied.Value());
    }
    TRY_ASSIGN(const Picture drawn, DrawIcon(icon.View(), alpha, route.backColor));
    const auto bmp = std::ranges::find(ExportFormatTable(), ".bmp", &ExportFormat::suffix);
    return ReplaceFile(bitmap, [&](ByteSink& sink) { return bmp->codec->encode(drawn, {}, sink); });
}

}  // namespace tessara
