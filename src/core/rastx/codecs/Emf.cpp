// Enhanced metafile, little-endian, [MS-EMF]. Records of u32 type, u32 size in bytes, data; the first is
//
//    0  type 1              8  bounds, 4 x i32 pixels      40  " EMF"                  72  device, 2 x i32
//    pixels 4  size                24  frame, 4 x i32 0.01 mm     60  description: length,    80  device, 2 x
//    i32 mm
//                                                              offset                  100  2 x i32
//                                                              micrometres

#include "core/rastx/codecs/Emf.h"

#include <algorithm>
#include <cmath>

#include "core/ByteReader.h"
#include "core/rastx/MetafileModule.h"
#include "core/rastx/codecs/Dib.h"
#include "core/rastx/codecs/MetafileBitmap.h"

namespace tessara {
namespace {

constexpr std::uint32_t kShortestHeader = 88;
constexpr std::uint32_t kFullHeader = 108;
constexpr std::uint32_t kCopy = 0x00CC0020;
constexpr std::uint32_t kStretchDibBytes = 80;
constexpr std::uint32_t kEndBytes = 20;

EmfBox ReadBox(ByteReader& reader) {
    EmfBox box;
    box.left = reader.I32Le();
    box.top = reader.I32Le();
    box.right = reader.I32Le();
    box.bottom = reader.I32Le();
    return box;
}

/// How much of the header record is header: a description or a pixel format may follow early, where newer
/// headers have further fields.
std::uint32_t HeaderLength(Bytes header) {
    ByteReader reader(header);
    reader.Seek(4);
    std::uint32_t length = reader.U32Le();
    const auto endAt = [&](std::uint32_t size, std::uint32_t offset) {
        if (size > 0 && offset >= kShortestHeader) length = std::min(length, offset);
    };
    reader.Seek(60);
    const std::uint32_t descriptionLength = reader.U32Le();
    endAt(descriptionLength, reader.U32Le());
    if (length < 100) return length;
    reader.Seek(88);
    const std::uint32_t formatSize = reader.U32Le();
    endAt(formatSize, reader.U32Le());
    return length;
}

double Ratio(std::int32_t pixels, double millimetres) {
    constexpr double kScreen = 96 / 25.4;
    return pixels > 0 && millimetres > 0 ? pixels / millimetres : kScreen;
}

/// The two parts of the bitmap of a StretchDIBits record.
struct CarriedBitmap {
    Bytes header, bits;
};

/// The bitmap of a record that copies the whole of it, a pixel of the reference device for each of its own.
std::optional<CarriedBitmap> WholeBitmap(const EmfRecord& record, int width, int height) {
    ByteReader reader(record.bytes);
    reader.Skip(24);
    for (const int expected : {0, 0, 0, 0, width, height})
        if (reader.I32Le() != expected) return std::nullopt;
    const std::uint32_t headerOffset = reader.U32Le();
    const std::uint32_t headerBytes = reader.U32Le();
    const std::uint32_t bitsOffset = reader.U32Le();
    reader.Skip(4);
    if (reader.U32Le() != 0 || reader.U32Le() != kCopy || reader.I32Le() != width || reader.I32Le() != height)
        return std::nullopt;
    const CarriedBitmap bitmap{Slice(record.bytes, headerOffset, headerBytes),
                               Slice(record.bytes, bitsOffset)};
    ByteReader dib(bitmap.header);
    const bool plain = dib.U32Le() == kBitmapHeaderBytes && dib.I32Le() == width && dib.I32Le() == height;
    return plain ? std::optional(bitmap) : std::nullopt;
}

/// The bitmap of a metafile that carries one and draws nothing else, pixel for pixel: what most converters
/// write. Such a file needs no player, and its pixels survive whatever resolution it states.
std::optional<CarriedBitmap> FindCarriedBitmap(Bytes file, const EmfHeader& header) {
    if (header.bounds.left != 0 || header.bounds.top != 0) return std::nullopt;
    if (header.bounds.right == INT32_MAX || header.bounds.bottom == INT32_MAX) return std::nullopt;
    std::optional<CarriedBitmap> bitmap;
    EmfRecords records(file);
    while (const auto record = records.Next()) {
        if (record->type == emf::kStretchDib && !bitmap) {
            bitmap = WholeBitmap(*record, header.bounds.right + 1, header.bounds.bottom + 1);
            if (!bitmap) return std::nullopt;
        } else if (record->type != emf::kHeader && record->type != emf::kSetStretchMode) {
            return std::nullopt;
        }
    }
    return bitmap;
}

Resolution ReferenceResolution(const EmfHeader& header) {
    return {header.pixelsPerMillimetreX * 25.4, header.pixelsPerMillimetreY * 25.4};
}

/// The reference device of a written file: a screen of 1920 by 1440 pixels whose size gives the resolution.
struct ReferenceDevice {
    static constexpr std::uint32_t kWidth = 1920, kHeight = 1440;
    std::uint32_t widthMicrometres, heightMicrometres;

    explicit ReferenceDevice(Resolution resolution)
        : widthMicrometres(Micrometres(kWidth, resolution.x)),
          heightMicrometres(Micrometres(kHeight, resolution.y)) {}

    static std::uint32_t Micrometres(std::uint32_t pixels, double dotsPerInch) {
        return static_cast<std::uint32_t>(std::lround(pixels * 25400.0 / dotsPerInch));
    }
    static std::uint32_t Millimetres(std::uint32_t micrometres) {
        return std::max(1u, (micrometres + 500) / 1000);
    }
};

void PutBounds(ByteWriter& file, const Picture& picture) {
    file.U32Le(0).U32Le(0).I32Le(picture.Width() - 1).I32Le(picture.Height() - 1);
}

void PutHeader(ByteWriter& file, const Picture& picture, std::uint32_t fileBytes) {
    const Resolution resolution = ResolutionOrDefault(picture);
    const ReferenceDevice device(resolution);
    const auto hundredths = [](int pixels, double dotsPerInch) {
        return static_cast<std::int32_t>(std::ceil(pixels * 2540.0 / dotsPerInch));
    };
    file.U32Le(emf::kHeader).U32Le(kFullHeader);
    PutBounds(file, picture);
    file.U32Le(0).U32Le(0);
    file.I32Le(hundredths(picture.Width(), resolution.x)).I32Le(hundredths(picture.Height(), resolution.y));
    file.Text(" EMF")
        .U32Le(0x00010000)
        .U32Le(fileBytes)
        .U32Le(4)
        .U16Le(1)
        .U16Le(0)
        .U32Le(0)
        .U32Le(0)
        .U32Le(0);
    file.U32Le(device.kWidth).U32Le(device.kHeight);
    file.U32Le(device.Millimetres(device.widthMicrometres));
    file.U32Le(device.Millimetres(device.heightMicrometres));
    file.U32Le(0).U32Le(0).U32Le(0).U32Le(device.widthMicrometres).U32Le(device.heightMicrometres);
}

void PutStretchDib(ByteWriter& file, const Picture& picture, std::uint32_t bitmapBytes) {
    const auto width = static_cast<std::uint32_t>(picture.Width());
    const auto height = static_cast<std::uint32_t>(picture.Height());
    file.U32Le(emf::kStretchDib).U32Le(kStretchDibBytes + kBitmapHeaderBytes + bitmapBytes);
    PutBounds(file, picture);
    file.U32Le(0).U32Le(0).U32Le(0).U32Le(0).U32Le(width).U32Le(height);
    file.U32Le(kStretchDibBytes).U32Le(kBitmapHeaderBytes);
    file.U32Le(kStretchDibBytes + kBitmapHeaderBytes).U32Le(bitmapBytes);
    file.U32Le(0).U32Le(kCopy).U32Le(width).U32Le(height);
}

}  // namespace

std::optional<EmfRecord> EmfRecords::Next() {
    ByteReader reader(rest_);
    EmfRecord record;
    record.type = reader.U32Le();
    const std::uint32_t size = reader.U32Le();
    complete_ = record.type == emf::kEnd;
    if (reader.Overrun() || size < 8 || size % 4 != 0 || size > rest_.size() || complete_)
        return std::nullopt;
    record.bytes = rest_.first(size);
    rest_ = rest_.subspan(size);
    return record;
}

Result<EmfHeader> ReadEmfHeader(Bytes file) {
    if (!RecogniseEmf(file) || file.size() < kShortestHeader)
        return Damaged("the metafile's header is cut off");
    EmfHeader header;
    ByteReader reader(file);
    reader.Seek(8);
    header.bounds = ReadBox(reader);
    header.frame = ReadBox(reader);
    reader.Seek(72);
    const std::int32_t deviceWidth = reader.I32Le();
    const std::int32_t deviceHeight = reader.I32Le();
    double millimetresX = reader.I32Le();
    double millimetresY = reader.I32Le();
    reader.Seek(100);
    const std::int32_t micrometresX = HeaderLength(file) >= kFullHeader ? reader.I32Le() : 0;
    const std::int32_t micrometresY = micrometresX > 0 ? reader.I32Le() : 0;
    if (micrometresX > 0 && micrometresY > 0) {
        millimetresX = micrometresX / 1000.0;
        millimetresY = micrometresY / 1000.0;
    }
    header.pixelsPerMillimetreX = Ratio(deviceWidth, millimetresX);
    header.pixelsPerMillimetreY = Ratio(deviceHeight, millimetresY);
    return header;
}

bool RecogniseEmf(Bytes file) {
    return ByteReader(file).U32Le() == emf::kHeader && HasSignature(file, " EMF", 40);
}

Result<Picture> DecodeEmf(Bytes file, const DecodeOptions& options) {
    TRY_ASSIGN(const EmfHeader header, ReadEmfHeader(file));
    if (const auto bitmap = FindCarriedBitmap(file, header)) {
        TRY_ASSIGN(Picture picture, DecodeDib(bitmap->header, bitmap->bits, {}, options));
        if (!picture.Meta().resolution.Known()) picture.SetResolution(ReferenceResolution(header));
        return picture;
    }
    return PlayMetafile(MetafileKind::Enhanced, file, options);
}

Result<void> EncodeEmf(const Picture& picture, const EncodeOptions&, ByteSink& sink) {
    if (picture.Empty()) return BadArgument("an empty picture cannot be written");
    constexpr std::uint32_t kStretchModeBytes = 12;
    constexpr std::uint64_t kOverhead =
        kFullHeader + kStretchModeBytes + kStretchDibBytes + kBitmapHeaderBytes + kEndBytes;
    const std::uint64_t bitmapBytes = BitmapBytes(picture.Width(), picture.Height());
    if (bitmapBytes + kOverhead > INT32_MAX) return TooBig("the picture is too big for a metafile");

    ByteWriter file;
    PutHeader(file, picture, static_cast<std::uint32_t>(bitmapBytes + kOverhead));
    file.U32Le(emf::kSetStretchMode).U32Le(kStretchModeBytes).U32Le(3);
    PutStretchDib(file, picture, static_cast<std::uint32_t>(bitmapBytes));
    TRY(sink.Write(file.Written()));
    TRY(WriteBitmap(picture, sink));
    ByteWriter end;
    end.U32Le(emf::kEnd).U32Le(kEndBytes).U32Le(0).U32Le(16).U32Le(kEndBytes);
    return sink.Write(end.Written());
}

}  // namespace tessara
