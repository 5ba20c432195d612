// Records that draw bitmaps.

#include "metafile/WmfPlayer.h"

namespace tessara::metafile {

void WmfPlayer::PatternBlt(ByteReader& reader) {
    const auto operation = RasterOperation::OfBitmap(reader.U32Le());
    context_.FillPattern(ReadTarget(reader), operation);
}

void WmfPlayer::StretchDib(ByteReader& reader) {
    const auto operation = RasterOperation::OfBitmap(reader.U32Le());
    RecordBitmap bitmap;
    bitmap.usage = static_cast<ColorUsage>(reader.U16Le());
    QRectF source = ReadTarget(reader);
    const QRectF target = ReadTarget(reader);
    bitmap.header = reader.Rest();
    if (!operation.NeedsSource()) return context_.FillPattern(target, operation);
    const QImage image = DecodeBitmap(bitmap, State().palette, options_, canvas_.Budget());
    if (bitmap.BottomUp()) source.moveTop(image.height() - source.y() - source.height());
    context_.DrawBitmap(PartOf(image, source, target, operation));
}

void WmfPlayer::SetDibToDevice(ByteReader& reader) {
    RecordBitmap bitmap;
    bitmap.usage = static_cast<ColorUsage>(reader.U16Le());
    reader.Skip(4);
    const QPointF corner = ReadYX(reader);
    const QPointF size = ReadYX(reader);
    const QPointF target = ReadYX(reader);
    bitmap.header = reader.Rest();
    const QImage image = DecodeBitmap(bitmap, State().palette, options_, canvas_.Budget());
    QRectF source(corner, QSizeF(size.x(), size.y()));
    if (bitmap.BottomUp()) source.moveTop(image.height() - source.y() - source.height());
    context_.DrawBitmap(PartOf(image, source, QRectF(target, source.size()), RasterOperation::CopySource()));
}

QImage WmfPlayer::SourceOf(ByteReader& reader, bool deviceDependent) {
    if (!deviceDependent) {
        RecordBitmap bitmap;
        bitmap.header = reader.Rest();
        return DecodeBitmap(bitmap, State().palette, options_, canvas_.Budget());
    }
    const DeviceBitmap bitmap = DecodeDeviceBitmap(reader.Rest(), 10, canvas_.Budget());
    return bitmap.monochrome ? Recolored(bitmap.image, State().textColor, State().backgroundColor)
                             : bitmap.image;
}

void WmfPlayer::StretchBitmap(ByteReader& reader, bool stretches, bool deviceDependent) {
    const auto operation = RasterOperation::OfBitmap(reader.U32Le());
    QPointF sourceSize;
    if (stretches) sourceSize = ReadYX(reader);
    const QPointF sourceCorner = ReadYX(reader);
    if (withoutBitmap_) reader.Skip(2);
    const QRectF target = ReadTarget(reader);
    if (!stretches) sourceSize = {target.width(), target.height()};
    if (withoutBitmap_ || !operation.NeedsSource()) {
        if (!operation.NeedsSource()) context_.FillPattern(target, operation);
        return;
    }
    const QImage image = SourceOf(reader, deviceDependent);
    const QRectF source(sourceCorner, QSizeF(sourceSize.x(), sourceSize.y()));
    context_.DrawBitmap(PartOf(image, source, target, operation));
}

}  // namespace tessara::metafile
