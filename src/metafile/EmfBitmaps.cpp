// Records that draw bitmaps.

#include "metafile/EmfPlayer.h"
#include "metafile/Player.h"

namespace tessara::metafile {
namespace {

constexpr std::size_t kBoundsBytes = 16;

/// An image whose pixels of one colour are transparent.
QImage WithTransparentColor(const QImage& image, QRgb key) {
    QImage keyed = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < keyed.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(keyed.scanLine(y));
        for (int x = 0; x < keyed.width(); ++x)
            if ((row[x] & 0xFFFFFF) == (key & 0xFFFFFF)) row[x] = 0;
    }
    return keyed;
}

/// An image that shows where a mask is white, or where it is not; `maskCorner` lies on the image's.
QImage WithMask(const QImage& image, const QImage& mask, QPointF maskCorner, bool white, WorkBudget& budget) {
    constexpr double kPerPixel = 10;
    if (!budget.Spend(kPerPixel * image.width() * image.height())) return {};
    QImage masked = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < masked.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(masked.scanLine(y));
        for (int x = 0; x < masked.width(); ++x) {
            const QPointF place = maskCorner + QPointF(x, y);
            const QPoint at = QRectF(mask.rect()).contains(place) ? place.toPoint() : QPoint(-1, -1);
            const bool isWhite = mask.valid(at) && qGray(mask.pixel(at)) >= 128;
            if (isWhite != white) row[x] = 0;
        }
    }
    return masked;
}

}  // namespace

RecordBitmap EmfPlayer::ReadBitmapPlace(Record& record, bool usageFollows) const {
    ByteReader& reader = record.reader;
    RecordBitmap bitmap;
    if (usageFollows) bitmap.usage = static_cast<ColorUsage>(reader.U32Le());
    const std::uint32_t headerOffset = reader.U32Le();
    const std::uint32_t headerBytes = reader.U32Le();
    const std::uint32_t bitsOffset = reader.U32Le();
    reader.Skip(4);  // the length of the bits, which some programs leave 0 or too small
    if (headerBytes > 0) bitmap.header = Slice(record.bytes, headerOffset, headerBytes);
    bitmap.bits = Slice(record.bytes, bitsOffset);
    return bitmap;
}

QImage EmfPlayer::Decode(const RecordBitmap& bitmap) {
    return DecodeBitmap(bitmap, State().palette, options_, canvas_.Budget());
}

EmfPlayer::DibRecord EmfPlayer::ReadDibRecord(Record& record) const {
    ByteReader& reader = record.reader;
    reader.Skip(kBoundsBytes);
    DibRecord dib;
    dib.corner = ReadPoint(reader);
    dib.sourceCorner = ReadPoint(reader);
    dib.sourceSize = ReadPoint(reader);
    dib.bitmap = ReadBitmapPlace(record, false);
    dib.bitmap.usage = static_cast<ColorUsage>(reader.U32Le());
    return dib;
}

QRectF EmfPlayer::DibRecord::Source(int imageHeight) const {
    QRectF source(sourceCorner, QSizeF(sourceSize.x(), sourceSize.y()));
    if (bitmap.BottomUp()) source.moveTop(imageHeight - source.y() - source.height());
    return source;
}

void EmfPlayer::StretchDib(Record& record) {
    const DibRecord dib = ReadDibRecord(record);
    const auto operation = RasterOperation::OfBitmap(record.reader.U32Le());
    const QPointF size = ReadPoint(record.reader);
    const QRectF target(dib.corner, QSizeF(size.x(), size.y()));
    if (!operation.NeedsSource()) return context_.FillPattern(target, operation);
    const QImage image = Decode(dib.bitmap);
    context_.DrawBitmap(PartOf(image, dib.Source(image.height()), target, operation));
}

void EmfPlayer::SetDibToDevice(Record& record) {
    const DibRecord dib = ReadDibRecord(record);
    const QImage image = Decode(dib.bitmap);
    const QRectF source = dib.Source(image.height());
    // The corner is logical, but the size counts pixels.
    BitmapCall call = PartOf(image, source, QRectF(context_.ToReference().map(dib.corner), source.size()),
                             RasterOperation::CopySource());
    call.targetInPixels = true;
    context_.DrawBitmap(call);
}

EmfPlayer::Transfer EmfPlayer::ReadTransfer(Record& record) {
    ByteReader& reader = record.reader;
    Transfer transfer;
    reader.Skip(kBoundsBytes);
    const QPointF corner = ReadPoint(reader);
    const QPointF size = ReadPoint(reader);
    transfer.target = QRectF(corner, QSizeF(size.x(), size.y()));
    transfer.code = reader.U32Le();
    transfer.sourceCorner = ReadPoint(reader);
    transfer.sourceTransform = ReadTransform(reader).value_or(QTransform());
    transfer.background = ReadColor(record);
    transfer.bitmap = ReadBitmapPlace(record);
    transfer.hasBitmap = !transfer.bitmap.header.empty();
    return transfer;
}

/// The size of the source follows in the records that can stretch. The transform of the source's own device
/// context places the box on the bitmap.
QRectF EmfPlayer::ReadSourceBox(Record& record, const Transfer& transfer) {
    const QPointF size = ReadPoint(record.reader);
    return transfer.sourceTransform.mapRect(QRectF(transfer.sourceCorner, QSizeF(size.x(), size.y())));
}

void EmfPlayer::BlockTransfer(Record& record, bool stretches) {
    const Transfer transfer = ReadTransfer(record);
    const auto operation = RasterOperation::OfBitmap(transfer.code);
    if (!operation.NeedsSource()) return context_.FillPattern(transfer.target, operation);
    if (!transfer.hasBitmap) return;
    QRectF source(transfer.sourceCorner, transfer.target.size());
    source = stretches ? ReadSourceBox(record, transfer) : transfer.sourceTransform.mapRect(source);
    context_.DrawBitmap(PartOf(Decode(transfer.bitmap), source, transfer.target, operation));
}

void EmfPlayer::MaskBlt(Record& record) {
    const Transfer transfer = ReadTransfer(record);
    const QPointF maskCorner = ReadPoint(record.reader);
    const QImage mask = Decode(ReadBitmapPlace(record));
    const auto whereWhite = RasterOperation::OfBitmap(transfer.code);
    const RasterOperation whereBlack(static_cast<std::uint8_t>(transfer.code >> 24));
    QRectF source = transfer.sourceTransform.mapRect(QRectF(transfer.sourceCorner, transfer.target.size()));
    QImage image = Decode(transfer.bitmap);
    if (!transfer.hasBitmap && !whereWhite.NeedsSource() && !whereBlack.NeedsSource()) {
        // Any image will do.
        image = mask;
        source.moveTopLeft(maskCorner);
    }
    if (image.isNull()) return;
    if (mask.isNull()) return context_.DrawBitmap(PartOf(image, source, transfer.target, whereWhite));
    for (const bool white : {true, false}) {
        const QImage masked = WithMask(image, mask, maskCorner - source.topLeft(), white, canvas_.Budget());
        context_.DrawBitmap(PartOf(masked, source, transfer.target, white ? whereWhite : whereBlack));
    }
}

void EmfPlayer::ParallelogramBlt(Record& record) {
    ByteReader& reader = record.reader;
    reader.Skip(kBoundsBytes);
    const QPointF first = ReadPoint(reader);
    const QPointF second = ReadPoint(reader);
    const QPointF third = ReadPoint(reader);
    const QPointF corner = ReadPoint(reader);
    const QPointF size = ReadPoint(reader);
    const QTransform sourceTransform = ReadTransform(reader).value_or(QTransform());
    reader.Skip(4);
    const RecordBitmap bitmap = ReadBitmapPlace(record);
    const QPointF maskCorner = ReadPoint(reader);
    const QRectF source = sourceTransform.mapRect(QRectF(corner, QSizeF(size.x(), size.y())));
    QImage image = Decode(bitmap);
    const QImage mask = Decode(ReadBitmapPlace(record));
    if (!mask.isNull()) image = WithMask(image, mask, maskCorner - source.topLeft(), true, canvas_.Budget());
    image = PartOf(image, source, source, RasterOperation::CopySource()).image;
    context_.DrawParallelogram(image, {first, second, third});
}

void EmfPlayer::TransparentBlt(Record& record) {
    const Transfer transfer = ReadTransfer(record);
    const QRectF source = ReadSourceBox(record, transfer);
    const QImage image = Decode(transfer.bitmap);
    if (image.isNull()) return;
    const QImage keyed = WithTransparentColor(image, ColorOf(transfer.code, State().palette));
    const BitmapCall call = PartOf(keyed, source, transfer.target, RasterOperation::CopySource());
    context_.DrawTransparent(call.image, call.target, 1);
}

void EmfPlayer::AlphaBlend(Record& record) {
    constexpr std::uint32_t kSourceHasAlpha = 1;
    Transfer transfer = ReadTransfer(record);
    const QRectF source = ReadSourceBox(record, transfer);
    transfer.bitmap.premultipliedAlpha = transfer.code >> 24 == kSourceHasAlpha;
    const double opacity = ((transfer.code >> 16) & 0xFF) / 255.0;
    const BitmapCall call =
        PartOf(Decode(transfer.bitmap), source, transfer.target, RasterOperation::CopySource());
    context_.DrawTransparent(call.image, call.target, opacity);
}

}  // namespace tessara::metafile
