// Windows metafile, little-endian, [MS-WMF]:
//
//   22 bytes  placeable header, may be missing: key, handle, rectangle, units per inch, reserved, checksum
//   18 bytes  header: type 1 or 2, words of the header (9), version, four counters that files get wrong
//   records   u32 size in words, u16 function, parameters in the reverse order of the drawing call

#include "core/rastx/codecs/Wmf.h"

#include <cmath>

#include "core/ByteReader.h"
#include "core/rastx/MetafileModule.h"
#include "core/rastx/codecs/Dib.h"
#include "core/rastx/codecs/MetafileBitmap.h"

namespace tessara {
namespace {

constexpr std::uint32_t kPlaceableKey = 0x9AC6CDD7;
constexpr std::size_t kPlaceableBytes = 22;
constexpr std::size_t kHeaderBytes = 18;
constexpr unsigned kHeaderWords = kHeaderBytes / 2;
constexpr int kLongestSide = 32767;
constexpr std::uint16_t kAnisotropic = 8;

bool HasStandardHeader(Bytes bytes) {
    ByteReader reader(bytes);
    const unsigned type = reader.U16Le();
    const unsigned words = reader.U16Le();
    const unsigned version = reader.U16Le();
    return (type == 1 || type == 2) && words == kHeaderWords && (version == 0x0100 || version == 0x0300);
}

bool HasPlaceableHeader(Bytes file) {
    return ByteReader(file).U32Le() == kPlaceableKey;
}

WmfPlacement ReadPlacement(Bytes file) {
    ByteReader reader(file);
    reader.Skip(6);
    WmfPlacement placement;
    placement.left = reader.I16Le();
    placement.top = reader.I16Le();
    placement.right = reader.I16Le();
    placement.bottom = reader.I16Le();
    placement.unitsPerInch = reader.U16Le();
    return placement;
}

/// Whether a record changes nothing that shows in a metafile of one bitmap.
bool IsHarmless(const WmfRecord& record) {
    constexpr std::uint16_t kSaveState = 0x001E, kSetBackgroundMode = 0x0102, kSetDrawingMode = 0x0104,
                            kSetPolygonFill = 0x0106, kRestoreState = 0x0127, kSetTextAlign = 0x012E;
    switch (record.function) {
        case kSaveState:
        case kRestoreState:
        case wmf::kSetMapMode:
        case wmf::kSetStretchMode:
        case kSetBackgroundMode:
        case kSetDrawingMode:
        case kSetPolygonFill:
        case kSetTextAlign:
            return true;
        default:
            return false;
    }
}

/// The bitmap of a StretchDIB record that copies the whole of it to a rectangle of as many units as it has
/// pixels, from the origin on.
Bytes WholeBitmap(const WmfRecord& record, int width, int height) {
    ByteReader reader(record.parameters);
    if (reader.U32Le() != wmf::kCopy || reader.U16Le() != 0) return {};
    for (const int expected : {height, width, 0, 0, height, width, 0, 0})
        if (reader.I16Le() != expected) return {};
    const Bytes bitmap = reader.Rest();
    const bool plain =
        reader.U32Le() == kBitmapHeaderBytes && reader.I32Le() == width && reader.I32Le() == height;
    return plain ? bitmap : Bytes{};
}

/// The bitmap of a metafile that carries one and draws nothing else, a unit per pixel: what most converters
/// write. Such a file needs no player, and its pixels survive whatever resolution it states.
Bytes FindCarriedBitmap(const WmfHeader& header) {
    if (!header.placement || header.placement->left != 0 || header.placement->top != 0) return {};
    const int width = header.placement->right;
    const int height = header.placement->bottom;
    Bytes bitmap;
    WmfRecords records(header.records);
    while (const auto record = records.Next()) {
        ByteReader reader(record->parameters);
        if (record->function == wmf::kStretchDib && bitmap.empty()) {
            bitmap = WholeBitmap(*record, width, height);
            if (bitmap.empty()) return {};
        } else if (record->function == wmf::kSetWindowOrigin) {
            if (reader.I16Le() != 0 || reader.I16Le() != 0) return {};
        } else if (record->function == wmf::kSetWindowExtent) {
            if (reader.I16Le() != height || reader.I16Le() != width) return {};
        } else if (!IsHarmless(*record)) {
            return {};
        }
    }
    return bitmap;
}

Result<Picture> DecodeCarriedBitmap(Bytes bitmap, const WmfPlacement& placement,
                                    const DecodeOptions& options) {
    TRY_ASSIGN(Picture picture, DecodeDib(bitmap, std::nullopt, {}, options));
    const auto dotsPerInch = static_cast<double>(placement.unitsPerInch);
    if (dotsPerInch > 0 && !picture.Meta().resolution.Known())
        picture.SetResolution({dotsPerInch, dotsPerInch});
    return picture;
}

void PutRecordHead(ByteWriter& file, std::uint32_t words, std::uint16_t function) {
    file.U32Le(words).U16Le(function);
}

void PutPlacement(ByteWriter& file, const Picture& picture) {
    const auto inch = static_cast<std::uint32_t>(std::lround(ResolutionOrDefault(picture).x));
    const auto width = static_cast<std::uint32_t>(picture.Width());
    const auto height = static_cast<std::uint32_t>(picture.Height());
    file.U32Le(kPlaceableKey).U16Le(0).U16Le(0).U16Le(0).U16Le(width).U16Le(height).U16Le(inch).U32Le(0);
    const std::uint32_t checksum = (kPlaceableKey & 0xFFFF) ^ (kPlaceableKey >> 16) ^ width ^ height ^ inch;
    file.U16Le(checksum);
}

}  // namespace

std::optional<WmfRecord> WmfRecords::Next() {
    ByteReader reader(rest_);
    WmfRecord record;
    record.words = reader.U32Le();
    record.function = reader.U16Le();
    if (reader.Overrun() || record.words < 3 || record.function == wmf::kEnd) return std::nullopt;
    const std::uint64_t bytes = std::uint64_t{2} * record.words;
    // The last record of a file that was cut short may still hold most of its drawing.
    record.parameters = reader.TakeUpTo(bytes - reader.Position());
    rest_ = Slice(rest_, bytes);
    return record;
}

Result<WmfHeader> ReadWmfHeader(Bytes file) {
    WmfHeader header;
    if (HasPlaceableHeader(file)) {
        if (file.size() < kPlaceableBytes) return Damaged("the metafile's header is cut off");
        header.placement = ReadPlacement(file);
        file = Slice(file, kPlaceableBytes);
    }
    if (!HasStandardHeader(file)) return Damaged("the metafile's header is not one");
    header.records = Slice(file, kHeaderBytes);
    if (header.records.empty()) return Damaged("the metafile has no records");
    return header;
}

bool RecogniseWmf(Bytes file) {
    return HasPlaceableHeader(file) || HasStandardHeader(file);
}

Result<Picture> DecodeWmf(Bytes file, const DecodeOptions& options) {
    TRY_ASSIGN(const WmfHeader header, ReadWmfHeader(file));
    if (const Bytes bitmap = FindCarriedBitmap(header); !bitmap.empty())
        return DecodeCarriedBitmap(bitmap, *header.placement, options);
    return PlayMetafile(MetafileKind::Windows, file, options);
}

Result<void> EncodeWmf(const Picture& picture, const EncodeOptions&, ByteSink& sink) {
    const int width = picture.Width();
    const int height = picture.Height();
    if (picture.Empty()) return BadArgument("an empty picture cannot be written");
    if (width > kLongestSide || height > kLongestSide) return TooBig("a side is too long for a metafile");
    const std::uint64_t bitmapBytes = kBitmapHeaderBytes + BitmapBytes(width, height);
    if (bitmapBytes / 2 + 44 > UINT32_MAX) return TooBig("the picture is too big for a metafile");

    const auto w = static_cast<std::uint32_t>(width);
    const auto h = static_cast<std::uint32_t>(height);
    const auto bitmapWords = static_cast<std::uint32_t>(bitmapBytes / 2);
    const std::uint32_t largest = 14 + bitmapWords;
    ByteWriter file;
    PutPlacement(file, picture);
    file.U16Le(1).U16Le(kHeaderWords).U16Le(0x0300).U32Le(30 + largest).U16Le(0).U32Le(largest).U16Le(0);
    PutRecordHead(file, 4, wmf::kSetMapMode);
    file.U16Le(kAnisotropic);
    PutRecordHead(file, 5, wmf::kSetWindowOrigin);
    file.U16Le(0).U16Le(0);
    PutRecordHead(file, 5, wmf::kSetWindowExtent);
    file.U16Le(h).U16Le(w);
    PutRecordHead(file, 4, wmf::kSetStretchMode);
    file.U16Le(3);
    PutRecordHead(file, largest, wmf::kStretchDib);
    file.U32Le(wmf::kCopy).U16Le(0).U16Le(h).U16Le(w).U16Le(0).U16Le(0).U16Le(h).U16Le(w).U16Le(0).U16Le(0);
    TRY(sink.Write(file.Written()));
    TRY(WriteBitmap(picture, sink));
    ByteWriter end;
    PutRecordHead(end, 3, wmf::kEnd);
    return sink.Write(end.Written());
}

}  // namespace tessara
