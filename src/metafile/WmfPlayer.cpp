#include "metafile/WmfPlayer.h"

#include <algorithm>
#include <cmath>

#include "metafile/CodePage.h"
#include "metafile/Player.h"

namespace tessara::metafile {
namespace {

/// Coordinates lie in records as y before x, boxes as bottom, right, top, left.
QPointF ReadYX(ByteReader& reader) {
    const double y = reader.I16Le();
    return {static_cast<double>(reader.I16Le()), y};
}

QRectF ReadBox(ByteReader& reader) {
    const QPointF bottomRight = ReadYX(reader);
    return {ReadYX(reader), bottomRight};
}

/// Height and width, then top and left.
QRectF ReadTarget(ByteReader& reader) {
    const QPointF size = ReadYX(reader);
    const QPointF corner = ReadYX(reader);
    return {corner, QSizeF(size.x(), size.y())};
}

/// Points of polygons lie as x before y.
std::vector<QPointF> ReadPoints(ByteReader& reader, std::size_t count) {
    std::vector<QPointF> points(std::min(count, reader.Left() / 4));
    for (QPointF& point : points) {
        point.setX(reader.I16Le());
        point.setY(reader.I16Le());
    }
    return points;
}

void SetNonZero(QPointF& target, QPointF value) {
    if (value.x() != 0 && value.y() != 0) target = value;
}

}  // namespace

const WmfPlayer::Row WmfPlayer::kRows[] = {
    {0x001E, &WmfPlayer::SaveState},
    {0x0127, &WmfPlayer::RestoreState},
    {0x0037, &WmfPlayer::SetPaletteEntries},
    {0x00F7, &WmfPlayer::CreatePalette},
    {0x0139, &WmfPlayer::ResizePalette},
    {0x0234, &WmfPlayer::SelectPalette},
    {0x0436, &WmfPlayer::SetPaletteEntries},
    {0x0102, &WmfPlayer::SetBackgroundMode},
    {0x0103, &WmfPlayer::SetMapMode},
    {0x0104, &WmfPlayer::SetDrawingMode},
    {0x0106, &WmfPlayer::SetPolygonFill},
    {0x0108, &WmfPlayer::SetCharacterExtra},
    {0x012E, &WmfPlayer::SetTextAlign},
    {0x0149, &WmfPlayer::SetLayout},
    {0x0201, &WmfPlayer::SetBackgroundColor},
    {0x0209, &WmfPlayer::SetTextColor},
    {0x020A, &WmfPlayer::SetTextJustification},
    {0x020B, &WmfPlayer::SetWindowOrigin},
    {0x020C, &WmfPlayer::SetWindowExtent},
    {0x020D, &WmfPlayer::SetViewportOrigin},
    {0x020E, &WmfPlayer::SetViewportExtent},
    {0x020F, &WmfPlayer::OffsetWindowOrigin},
    {0x0211, &WmfPlayer::OffsetViewportOrigin},
    {0x0410, &WmfPlayer::ScaleWindowExtent},
    {0x0412, &WmfPlayer::ScaleViewportExtent},
    {0x0220, &WmfPlayer::OffsetClip},
    {0x0415, &WmfPlayer::ExcludeClipRect},
    {0x0416, &WmfPlayer::IntersectClipRect},
    {0x012C, &WmfPlayer::SelectClipRegion},
    {0x0214, &WmfPlayer::MoveTo},
    {0x0213, &WmfPlayer::LineTo},
    {0x041B, &WmfPlayer::Rectangle},
    {0x061C, &WmfPlayer::RoundRect},
    {0x0418, &WmfPlayer::Ellipse},
    {0x0817, &WmfPlayer::Arc},
    {0x081A, &WmfPlayer::Pie},
    {0x0830, &WmfPlayer::Chord},
    {0x0324, &WmfPlayer::Polygon},
    {0x0325, &WmfPlayer::Polyline},
    {0x0538, &WmfPlayer::PolyPolygon},
    {0x041F, &WmfPlayer::SetPixel},
    {0x0419, &WmfPlayer::FloodFill},
    {0x0548, &WmfPlayer::ExtendedFloodFill},
    {0x012A, &WmfPlayer::InvertRegion},
    {0x012B, &WmfPlayer::PaintRegion},
    {0x0228, &WmfPlayer::FillRegion},
    {0x0429, &WmfPlayer::FrameRegion},
    {0x0521, &WmfPlayer::TextOut},
    {0x0A32, &WmfPlayer::ExtendedTextOut},
    {0x02FA, &WmfPlayer::CreatePen},
    {0x02FC, &WmfPlayer::CreateBrush},
    {0x02FB, &WmfPlayer::CreateFont},
    {0x0142, &WmfPlayer::CreateDibPatternBrush},
    {0x01F9, &WmfPlayer::CreatePatternBrush},
    {0x00F8, &WmfPlayer::CreatePlaceholder},  // CreateBrush
    {0x02FD, &WmfPlayer::CreatePlaceholder},  // CreateBitmapIndirect
    {0x06FE, &WmfPlayer::CreatePlaceholder},  // CreateBitmap
    {0x06FF, &WmfPlayer::CreateRegion},
    {0x012D, &WmfPlayer::SelectObject},
    {0x01F0, &WmfPlayer::DeleteObject},
    {0x0F43, &WmfPlayer::StretchDib},
    {0x0D33, &WmfPlayer::SetDibToDevice},
    {0x0B41, &WmfPlayer::DibStretchBlt},
    {0x0940, &WmfPlayer::DibBitBlt},
    {0x0B23, &WmfPlayer::StretchBlt},
    {0x0922, &WmfPlayer::BitBlt},
    {0x061D, &WmfPlayer::PatternBlt},
};

WmfPlayer::WmfPlayer(Canvas& canvas, const DecodeOptions& options, const QRectF& window,
                     const QRectF& viewport)
    : canvas_(canvas),
      options_(options),
      viewport_(viewport),
      baseViewport_(viewport),
      context_(canvas, QTransform(), QPointF(96 / 25.4, 96 / 25.4)) {
    Mapping& mapping = State().mapping;
    mapping.mode = MapMode::Anisotropic;
    mapping.windowOrigin = window.topLeft();
    mapping.windowExtent = {window.width(), window.height()};
    mapping.viewportOrigin = viewport.topLeft();
    mapping.viewportExtent = {viewport.width(), viewport.height()};
}

void WmfPlayer::Play(Bytes records) {
    WmfRecords walk(records);
    while (const auto record = walk.Next()) {
        const auto* row = std::ranges::find(kRows, record->function, &Row::function);
        if (row == std::end(kRows)) continue;
        withoutBitmap_ = record->words == (record->function >> 8) + 3u;
        ByteReader reader(record->parameters);
        (this->*row->handler)(reader);
        if (!canvas_.Budget().Spend(100)) return;
    }
}

QRgb WmfPlayer::ReadColor(ByteReader& reader) const {
    return ColorOf(reader.U32Le(), context_.State().palette);
}

void WmfPlayer::SaveState(ByteReader&) {
    context_.Save();
}
void WmfPlayer::RestoreState(ByteReader& reader) {
    context_.Restore(reader.I16Le());
}
void WmfPlayer::SetBackgroundMode(ByteReader& reader) {
    State().opaqueBackground = reader.U16Le() != 1;
}
void WmfPlayer::SetDrawingMode(ByteReader& reader) {
    State().drawingMode = reader.U16Le();
}
void WmfPlayer::SetPolygonFill(ByteReader& reader) {
    State().fillRule = reader.U16Le() == 2 ? Qt::WindingFill : Qt::OddEvenFill;
}
void WmfPlayer::SetCharacterExtra(ByteReader& reader) {
    State().characterExtra = reader.I16Le();
}
void WmfPlayer::SetTextAlign(ByteReader& reader) {
    State().textAlign = reader.U16Le();
}
void WmfPlayer::SetLayout(ByteReader& reader) {
    State().mirrored = (reader.U16Le() & 1) != 0;
}
void WmfPlayer::SetBackgroundColor(ByteReader& reader) {
    State().backgroundColor = ReadColor(reader);
}
void WmfPlayer::SetTextColor(ByteReader& reader) {
    State().textColor = ReadColor(reader);
}
void WmfPlayer::SetTextJustification(ByteReader& reader) {
    const int count = reader.I16Le();
    const double extra = reader.I16Le();
    State().breakExtra = count > 0 ? extra / count : 0;
}

// Many files never set a mode but count on their window; the text mode is therefore no different.
void WmfPlayer::SetMapMode(ByteReader& reader) {
    const auto mode = static_cast<MapMode>(reader.U16Le());
    const bool known = mode >= MapMode::Text && mode <= MapMode::Anisotropic;
    State().mapping.mode = !known || mode == MapMode::Text ? MapMode::Anisotropic : mode;
}

void WmfPlayer::SetWindowOrigin(ByteReader& reader) {
    State().mapping.windowOrigin = ReadYX(reader);
}
void WmfPlayer::SetWindowExtent(ByteReader& reader) {
    SetNonZero(State().mapping.windowExtent, ReadYX(reader));
}
void WmfPlayer::OffsetWindowOrigin(ByteReader& reader) {
    State().mapping.windowOrigin += ReadYX(reader);
}

// A viewport is in pixels of a screen that nobody knows. What the file sets before it draws is taken for the
// whole picture; later changes are relative to that.
QRectF WmfPlayer::FileViewport() const {
    const Mapping& mapping = context_.State().mapping;
    const double x = baseViewport_.width() / viewport_.width();
    const double y = baseViewport_.height() / viewport_.height();
    return {baseViewport_.x() + (mapping.viewportOrigin.x() - viewport_.x()) * x,
            baseViewport_.y() + (mapping.viewportOrigin.y() - viewport_.y()) * y,
            mapping.viewportExtent.x() * x, mapping.viewportExtent.y() * y};
}

void WmfPlayer::SetFileViewport(const QRectF& viewport) {
    if (viewport.width() == 0 || viewport.height() == 0) return;
    if (!canvas_.Touched()) {
        baseViewport_ = viewport;
        return;
    }
    const double x = viewport_.width() / baseViewport_.width();
    const double y = viewport_.height() / baseViewport_.height();
    Mapping& mapping = State().mapping;
    mapping.viewportOrigin = {viewport_.x() + (viewport.x() - baseViewport_.x()) * x,
                              viewport_.y() + (viewport.y() - baseViewport_.y()) * y};
    mapping.viewportExtent = {viewport.width() * x, viewport.height() * y};
}

void WmfPlayer::SetViewportOrigin(ByteReader& reader) {
    QRectF viewport = FileViewport();
    viewport.moveTopLeft(ReadYX(reader));
    SetFileViewport(viewport);
}
void WmfPlayer::SetViewportExtent(ByteReader& reader) {
    const QPointF extent = ReadYX(reader);
    SetFileViewport({FileViewport().topLeft(), QSizeF(extent.x(), extent.y())});
}
void WmfPlayer::OffsetViewportOrigin(ByteReader& reader) {
    SetFileViewport(FileViewport().translated(ReadYX(reader)));
}

namespace {

/// Denominator and numerator, y before x; an extent never becomes zero.
QPointF Scaled(QPointF extent, ByteReader& reader) {
    const double yDenominator = reader.I16Le();
    const double yNumerator = reader.I16Le();
    const double xDenominator = reader.I16Le();
    const double xNumerator = reader.I16Le();
    const QPointF scaled(extent.x() * xNumerator / xDenominator, extent.y() * yNumerator / yDenominator);
    const bool sane = IsUsable(scaled) && std::abs(scaled.x()) > 1e-6 && std::abs(scaled.y()) > 1e-6;
    return sane ? scaled : extent;
}

}  // namespace

void WmfPlayer::ScaleWindowExtent(ByteReader& reader) {
    State().mapping.windowExtent = Scaled(State().mapping.windowExtent, reader);
}
void WmfPlayer::ScaleViewportExtent(ByteReader& reader) {
    State().mapping.viewportExtent = Scaled(State().mapping.viewportExtent, reader);
}

void WmfPlayer::CreatePen(ByteReader& reader) {
    Pen pen;
    pen.style = reader.U16Le();
    pen.width = std::abs(reader.I16Le());
    reader.Skip(2);
    pen.ink.color = ReadColor(reader);
    objects_.InsertInFirstFree(pen);
}

void WmfPlayer::CreateBrush(ByteReader& reader) {
    Brush brush;
    const unsigned style = reader.U16Le();
    brush.color = ReadColor(reader);
    brush.hatch = reader.U16Le();
    brush.kind = style == 1 ? Brush::Kind::None : style == 2 ? Brush::Kind::Hatch : Brush::Kind::Solid;
    objects_.InsertInFirstFree(brush);
}

void WmfPlayer::CreateFont(ByteReader& reader) {
    Font font;
    font.height = reader.I16Le();
    font.width = reader.I16Le();
    font.escapement = reader.I16Le() / 10.0;
    reader.Skip(2);
    font.weight = reader.I16Le();
    ReadFontStyle(reader, font);
    const Bytes name = reader.TakeUpTo(32);
    const auto end = std::ranges::find(name, std::uint8_t{0});
    font.face = DecodeText(name.first(static_cast<std::size_t>(end - name.begin())), font.charset).text;
    objects_.InsertInFirstFree(font);
}

void WmfPlayer::CreateDibPatternBrush(ByteReader& reader) {
    constexpr std::uint32_t kLongestHeader = 256;
    reader.Skip(2);
    RecordBitmap bitmap;
    bitmap.usage = static_cast<ColorUsage>(reader.U16Le());
    bitmap.header = reader.Rest();
    Brush brush;
    brush.kind = Brush::Kind::Pattern;
    const std::uint32_t headerSize = ByteReader(bitmap.header).U32Le();
    if (headerSize >= 12 && headerSize <= kLongestHeader) {
        brush.tile = DecodeBitmap(bitmap, State().palette, options_, canvas_.Budget());
    } else {
        const DeviceBitmap old = DecodeDeviceBitmap(bitmap.header, 10, canvas_.Budget());
        brush.tile = old.image;
        brush.monochrome = old.monochrome;
    }
    objects_.InsertInFirstFree(brush);
}

void WmfPlayer::CreatePatternBrush(ByteReader& reader) {
    constexpr std::size_t kBitsOffset = 32;  // behind a dead pointer and 18 bytes of nothing
    const DeviceBitmap bitmap = DecodeDeviceBitmap(reader.Rest(), kBitsOffset, canvas_.Budget());
    Brush brush;
    brush.kind = Brush::Kind::Pattern;
    brush.tile = bitmap.image;
    brush.monochrome = bitmap.monochrome;
    objects_.InsertInFirstFree(brush);
}

void WmfPlayer::CreateRegion(ByteReader& reader) {
    reader.Skip(10);
    const unsigned scans = reader.U16Le();
    reader.Skip(10);
    Region region;
    for (unsigned scan = 0; scan < scans && reader.Left() >= 6; ++scan) {
        const unsigned edges = reader.U16Le();
        const int top = reader.I16Le();
        const int bottom = reader.I16Le();
        for (unsigned i = 0; i + 1 < edges && reader.Left() >= 4; i += 2) {
            const int left = reader.I16Le();
            const int right = reader.I16Le();
            region.boxes.emplace_back(QPoint(left, top), QPoint(right - 1, bottom - 1));
        }
        if (!reader.Skip(2)) break;
    }
    objects_.InsertInFirstFree(region);
}

void WmfPlayer::CreatePalette(ByteReader& reader) {
    reader.Skip(2);
    const std::size_t count = reader.U16Le();
    objects_.InsertInFirstFree(Palette{ReadPaletteColors(reader, count)});
}

void WmfPlayer::CreatePlaceholder(ByteReader&) {
    objects_.InsertInFirstFree(Placeholder{});
}

void WmfPlayer::SelectPalette(ByteReader& reader) {
    Select(objects_.At(reader.U16Le()));
}

void WmfPlayer::SetPaletteEntries(ByteReader& reader) {
    const std::size_t start = reader.U16Le();
    const std::size_t count = reader.U16Le();
    std::vector<Pixel>& colors = State().palette.colors;
    const std::vector<Pixel> given = ReadPaletteColors(reader, count);
    for (std::size_t i = 0; i < given.size() && start + i < colors.size(); ++i) colors[start + i] = given[i];
}

void WmfPlayer::ResizePalette(ByteReader& reader) {
    State().palette.colors.resize(reader.U16Le());
}

void WmfPlayer::Select(const Object& object) {
    if (const auto* pen = std::get_if<Pen>(&object)) State().pen = *pen;
    if (const auto* brush = std::get_if<Brush>(&object)) State().brush = *brush;
    if (const auto* font = std::get_if<Font>(&object)) State().font = *font;
    if (const auto* palette = std::get_if<Palette>(&object)) State().palette = *palette;
    if (const auto* region = std::get_if<Region>(&object))
        context_.ClipToRegion(*region, ClipMode::Copy, context_.ToPicture());
}

void WmfPlayer::SelectObject(ByteReader& reader) {
    Select(objects_.At(reader.U16Le()));
}
void WmfPlayer::DeleteObject(ByteReader& reader) {
    objects_.Delete(reader.U16Le());
}

const Region* WmfPlayer::FindRegion(std::size_t slot) const {
    return std::get_if<Region>(&objects_.At(slot));
}

void WmfPlayer::OffsetClip(ByteReader& reader) {
    context_.OffsetClip(ReadYX(reader));
}
void WmfPlayer::ExcludeClipRect(ByteReader& reader) {
    context_.ClipToBox(ReadBox(reader), ClipMode::Difference);
}
void WmfPlayer::IntersectClipRect(ByteReader& reader) {
    context_.ClipToBox(ReadBox(reader), ClipMode::And);
}

void WmfPlayer::SelectClipRegion(ByteReader& reader) {
    if (const Region* region = FindRegion(reader.U16Le()))
        return context_.ClipToRegion(*region, ClipMode::Copy, context_.ToPicture());
    context_.ResetClip();
}

void WmfPlayer::MoveTo(ByteReader& reader) {
    context_.MoveTo(ReadYX(reader));
}
void WmfPlayer::LineTo(ByteReader& reader) {
    context_.LineTo(ReadYX(reader));
}
void WmfPlayer::Rectangle(ByteReader& reader) {
    context_.Rectangle(ReadBox(reader));
}
void WmfPlayer::Ellipse(ByteReader& reader) {
    context_.Ellipse(ReadBox(reader));
}

void WmfPlayer::RoundRect(ByteReader& reader) {
    const QPointF corner = ReadYX(reader);
    context_.RoundRect(ReadBox(reader), corner.x(), corner.y());
}

void WmfPlayer::DrawArc(ByteReader& reader, ArcKind kind) {
    const QPointF end = ReadYX(reader);
    const QPointF start = ReadYX(reader);
    context_.Arc(ReadBox(reader), start, end, kind);
}

void WmfPlayer::Polygon(ByteReader& reader) {
    context_.Polygon(ReadPoints(reader, reader.U16Le()));
}
void WmfPlayer::Polyline(ByteReader& reader) {
    context_.Polyline(ReadPoints(reader, reader.U16Le()));
}

void WmfPlayer::PolyPolygon(ByteReader& reader) {
    const std::size_t polygons = reader.U16Le();
    ByteReader counts(reader.Take(2 * polygons));
    QPainterPath figures;
    for (std::size_t i = 0; i < polygons && counts.Left() >= 2; ++i) {
        const std::vector<QPointF> points = ReadPoints(reader, counts.U16Le());
        if (points.empty()) break;
        figures.addPolygon(QPolygonF(QList<QPointF>(points.begin(), points.end())));
        figures.closeSubpath();
    }
    context_.Shape(figures);
}

void WmfPlayer::SetPixel(ByteReader& reader) {
    const QRgb color = ReadColor(reader);
    context_.SetPixel(ReadYX(reader), color);
}

void WmfPlayer::FloodFill(ByteReader& reader) {
    const QRgb border = ReadColor(reader);
    context_.FloodFill(ReadYX(reader), border, true);
}

void WmfPlayer::ExtendedFloodFill(ByteReader& reader) {
    const bool toBorder = reader.U16Le() == 0;
    const QRgb color = ReadColor(reader);
    context_.FloodFill(ReadYX(reader), color, toBorder);
}

void WmfPlayer::InvertRegion(ByteReader& reader) {
    if (const Region* region = FindRegion(reader.U16Le())) context_.InvertRegion(*region);
}
void WmfPlayer::PaintRegion(ByteReader& reader) {
    if (const Region* region = FindRegion(reader.U16Le())) context_.FillRegion(*region, State().brush);
}

void WmfPlayer::FillRegion(ByteReader& reader) {
    const Region* region = FindRegion(reader.U16Le());
    const auto* brush = std::get_if<Brush>(&objects_.At(reader.U16Le()));
    if (region && brush) context_.FillRegion(*region, *brush);
}

void WmfPlayer::FrameRegion(ByteReader& reader) {
    const Region* region = FindRegion(reader.U16Le());
    const auto* brush = std::get_if<Brush>(&objects_.At(reader.U16Le()));
    const QPointF size = ReadYX(reader);
    if (region && brush) context_.FrameRegion(*region, *brush, size.x(), size.y());
}

void WmfPlayer::DrawText(Bytes text, TextCall call, ByteReader* advances) {
    const DecodedText decoded = DecodeText(text, State().font.charset);
    call.text = decoded.text;
    if (advances && advances->Left() >= 2 * text.size()) {
        for (const int bytes : decoded.bytesOfUnit) {
            double advance = 0;
            for (int i = 0; i < bytes; ++i) advance += advances->I16Le();
            call.advances.push_back(advance);
        }
    }
    context_.DrawText(call);
}

void WmfPlayer::TextOut(ByteReader& reader) {
    const std::size_t count = reader.U16Le();
    const Bytes text = reader.TakeUpTo(count);
    reader.Skip(count % 2);
    TextCall call;
    call.reference = ReadYX(reader);
    DrawText(text, call, nullptr);
}

void WmfPlayer::ExtendedTextOut(ByteReader& reader) {
    constexpr unsigned kFillBox = 2, kClipToBox = 4;
    TextCall call;
    call.reference = ReadYX(reader);
    const std::size_t count = reader.U16Le();
    const unsigned options = reader.U16Le();
    call.fillBox = (options & kFillBox) != 0;
    call.clipToBox = (options & kClipToBox) != 0;
    if (call.fillBox || call.clipToBox) {
        const double left = reader.I16Le();
        const double top = reader.I16Le();
        const double right = reader.I16Le();
        call.box = QRectF(QPointF(left, top), QPointF(right, reader.I16Le()));
    }
    const Bytes text = reader.TakeUpTo(count);
    reader.Skip(count % 2);
    DrawText(text, call, &reader);
}

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
