#include "metafile/WmfPlayer.h"

#include <algorithm>

#include "metafile/Player.h"

namespace tessara::metafile {

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

QPointF WmfPlayer::ReadYX(ByteReader& reader) {
    const double y = reader.I16Le();
    return {static_cast<double>(reader.I16Le()), y};
}

QRectF WmfPlayer::ReadBox(ByteReader& reader) {
    const QPointF bottomRight = ReadYX(reader);
    return {ReadYX(reader), bottomRight};
}

QRectF WmfPlayer::ReadTarget(ByteReader& reader) {
    const QPointF size = ReadYX(reader);
    const QPointF corner = ReadYX(reader);
    return {corner, QSizeF(size.x(), size.y())};
}

std::vector<QPointF> WmfPlayer::ReadPoints(ByteReader& reader, std::size_t count) {
    std::vector<QPointF> points(std::min(count, reader.Left() / 4));
    for (QPointF& point : points) {
        point.setX(reader.I16Le());
        point.setY(reader.I16Le());
    }
    return points;
}

}  // namespace tessara::metafile
