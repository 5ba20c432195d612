#include "metafile/RecordBitmaps.h"

#include <algorithm>

#include "core/ByteReader.h"
#include "core/ByteSink.h"
#include "core/rastx/codecs/Dib.h"

namespace tessara::metafile {
namespace {

constexpr std::uint32_t kCoreHeader = 12;
/// What an embedded picture file may decode to beyond the size that its header claims.
constexpr std::uint64_t kMostUnclaimedBytes = 64 << 20;

/// A bitmap without a colour table has one bit per pixel, 0 black and 1 white; this gives it the table that
/// says so.
ByteVector WithBlackAndWhite(Bytes header) {
    const std::uint32_t size = ByteReader(header).U32Le();
    const Bytes plain = Slice(header, 0, size);
    ByteWriter writer;
    writer.Append(plain).U32Le(0).U32Le(0xFFFFFF);
    return writer.TakeBytes();
}

}  // namespace

bool RecordBitmap::BottomUp() const {
    ByteReader reader(header);
    if (reader.U32Le() == kCoreHeader) return true;
    reader.Skip(4);
    return reader.I32Le() > 0;
}

QImage ImageOf(Picture picture) {
    auto* kept = new Picture(std::move(picture));
    const auto* data = reinterpret_cast<const uchar*>(kept->Pixels().data());
    return {data,
            kept->Width(),
            kept->Height(),
            qsizetype{4} * kept->Width(),
            kept->HasAlpha() ? QImage::Format_ARGB32 : QImage::Format_RGB32,
            [](void* held) { delete static_cast<Picture*>(held); },
            kept};
}

QImage DecodeBitmap(const RecordBitmap& bitmap, const Palette& palette, const DecodeOptions& options,
                    WorkBudget& budget) {
    const std::optional<DibShape> shape = DibShapeOf(bitmap.header);
    if (!shape || options.nestingLeft < 1) return {};
    if (!budget.Spend(5.0 * static_cast<double>(shape->width) * static_cast<double>(shape->height)))
        return {};
    // A picture file in the place of the pixels has a size of its own, which nothing has counted yet.
    DecodeOptions nested = options.Nested();
    const auto claimed =
        static_cast<std::uint64_t>(shape->width) * static_cast<std::uint64_t>(shape->height) * sizeof(Pixel);
    nested.limits.decodedBytes = std::min(nested.limits.decodedBytes, std::max(claimed, kMostUnclaimedBytes));
    DibOptions dibOptions;
    dibOptions.premultipliedAlpha = bitmap.premultipliedAlpha;
    if (bitmap.usage == ColorUsage::PaletteIndexes) dibOptions.palette = *palette.colors;
    ByteVector replaced;
    Bytes header = bitmap.header;
    if (bitmap.usage == ColorUsage::None && bitmap.bits && shape->bitsPerPixel == 1)
        header = replaced = WithBlackAndWhite(header);
    Result<Picture> picture = DecodeDib(header, bitmap.bits, dibOptions, nested);
    if (!picture) return {};
    QImage image = ImageOf(std::move(picture).Value());
    return budget.Spend(5.0 * image.width() * image.height()) ? image : QImage();
}

DeviceBitmap DecodeDeviceBitmap(Bytes bitmap, std::size_t bitsOffset, WorkBudget& budget) {
    ByteReader reader(bitmap);
    reader.Skip(2);
    const int width = reader.I16Le();
    const int height = reader.I16Le();
    const std::size_t rowBytes = reader.U16Le();
    reader.Skip(1);
    const unsigned bitsPerPixel = reader.U8();
    const Bytes bits = Slice(bitmap, bitsOffset);
    const bool monochrome = bitsPerPixel == 1;
    if (width < 1 || height < 1 || (!monochrome && bitsPerPixel != 24 && bitsPerPixel != 32)) return {};
    if (rowBytes * 8 < static_cast<std::size_t>(width) * bitsPerPixel || !budget.Spend(4.0 * width * height))
        return {};
    DeviceBitmap decoded{QImage(width, height, QImage::Format_RGB32), monochrome};
    if (decoded.image.isNull()) return {};
    decoded.image.fill(Qt::white);
    for (int y = 0; y < height; ++y) {
        const Bytes row = Slice(bits, static_cast<std::size_t>(y) * rowBytes, rowBytes);
        if (row.size() < rowBytes) break;
        auto* out = reinterpret_cast<QRgb*>(decoded.image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const auto at = static_cast<std::size_t>(x) * bitsPerPixel / 8;
            if (monochrome) {
                out[x] = (row[at] & (0x80 >> (x % 8))) != 0 ? qRgb(255, 255, 255) : qRgb(0, 0, 0);
            } else {
                out[x] = qRgb(row[at + 2], row[at + 1], row[at]);
            }
        }
    }
    return decoded;
}

}  // namespace tessara::metafile
