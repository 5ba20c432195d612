#include "metafile/EmfPlayer.h"

#include <algorithm>
#include <cmath>

#include "metafile/Player.h"

namespace tessara::metafile {

constexpr bool kShortPoints = true;

const EmfPlayer::Row EmfPlayer::kRowTable[] = {
    {2, &EmfPlayer::PolyBezier},
    {3, &EmfPlayer::Polygon},
    {4, &EmfPlayer::Polyline},
    {5, &EmfPlayer::PolyBezierTo},
    {6, &EmfPlayer::PolylineTo},
    {7, &EmfPlayer::PolyPolyline},
    {8, &EmfPlayer::PolyPolygon},
    {9, &EmfPlayer::SetWindowExtent},
    {10, &EmfPlayer::SetWindowOrigin},
    {11, &EmfPlayer::SetViewportExtent},
    {12, &EmfPlayer::SetViewportOrigin},
    {13, &EmfPlayer::SetBrushOrigin},
    {15, &EmfPlayer::SetPixel},
    {17, &EmfPlayer::SetMapMode},
    {18, &EmfPlayer::SetBackgroundMode},
    {19, &EmfPlayer::SetPolygonFill},
    {20, &EmfPlayer::SetDrawingMode},
    {22, &EmfPlayer::SetTextAlign},
    {24, &EmfPlayer::SetTextColor},
    {25, &EmfPlayer::SetBackgroundColor},
    {26, &EmfPlayer::OffsetClip},
    {27, &EmfPlayer::MoveTo},
    {28, &EmfPlayer::SetMetaRegion},
    {29, &EmfPlayer::ExcludeClipRect},
    {30, &EmfPlayer::IntersectClipRect},
    {31, &EmfPlayer::ScaleViewportExtent},
    {32, &EmfPlayer::ScaleWindowExtent},
    {33, &EmfPlayer::SaveState},
    {34, &EmfPlayer::RestoreState},
    {35, &EmfPlayer::SetWorldTransform},
    {36, &EmfPlayer::ModifyWorldTransform},
    {37, &EmfPlayer::SelectObject},
    {38, &EmfPlayer::CreatePen},
    {39, &EmfPlayer::CreateBrush},
    {40, &EmfPlayer::DeleteObject},
    {41, &EmfPlayer::AngleArc},
    {42, &EmfPlayer::Ellipse},
    {43, &EmfPlayer::Rectangle},
    {44, &EmfPlayer::RoundRect},
    {45, &EmfPlayer::Arc},
    {46, &EmfPlayer::Chord},
    {47, &EmfPlayer::Pie},
    {48, &EmfPlayer::SelectObject},  // SelectPalette
    {49, &EmfPlayer::CreatePalette},
    {50, &EmfPlayer::SetPaletteEntries},
    {51, &EmfPlayer::ResizePalette},
    {53, &EmfPlayer::FloodFill},
    {54, &EmfPlayer::LineTo},
    {55, &EmfPlayer::ArcTo},
    {56, &EmfPlayer::PolyDraw},
    {57, &EmfPlayer::SetArcDirection},
    {58, &EmfPlayer::SetMiterLimit},
    {59, &EmfPlayer::BeginPath},
    {60, &EmfPlayer::EndPath},
    {61, &EmfPlayer::CloseFigure},
    {62, &EmfPlayer::FillPath},
    {63, &EmfPlayer::StrokeAndFillPath},
    {64, &EmfPlayer::StrokePath},
    {65, &EmfPlayer::FlattenPath},
    {66, &EmfPlayer::WidenPath},
    {67, &EmfPlayer::SelectClipPath},
    {68, &EmfPlayer::AbortPath},
    {71, &EmfPlayer::FillRegion},
    {72, &EmfPlayer::FrameRegion},
    {73, &EmfPlayer::InvertRegion},
    {74, &EmfPlayer::PaintRegion},
    {75, &EmfPlayer::SelectClipRegion},
    {76, &EmfPlayer::BitBlt},
    {77, &EmfPlayer::StretchBlt},
    {78, &EmfPlayer::MaskBlt},
    {79, &EmfPlayer::ParallelogramBlt},
    {80, &EmfPlayer::SetDibToDevice},
    {81, &EmfPlayer::StretchDib},
    {82, &EmfPlayer::CreateFont},
    {83, &EmfPlayer::ExtendedTextOutNarrow},
    {84, &EmfPlayer::ExtendedTextOutWide},
    {85, &EmfPlayer::PolyBezier, kShortPoints},
    {86, &EmfPlayer::Polygon, kShortPoints},
    {87, &EmfPlayer::Polyline, kShortPoints},
    {88, &EmfPlayer::PolyBezierTo, kShortPoints},
    {89, &EmfPlayer::PolylineTo, kShortPoints},
    {90, &EmfPlayer::PolyPolyline, kShortPoints},
    {91, &EmfPlayer::PolyPolygon, kShortPoints},
    {92, &EmfPlayer::PolyDraw, kShortPoints},
    {93, &EmfPlayer::CreatePatternBrush},
    {94, &EmfPlayer::CreatePatternBrush},
    {95, &EmfPlayer::CreateExtendedPen},
    {96, &EmfPlayer::PolyTextOutNarrow},
    {97, &EmfPlayer::PolyTextOutWide},
    {108, &EmfPlayer::SmallTextOut},
    {114, &EmfPlayer::AlphaBlend},
    {115, &EmfPlayer::SetLayout},
    {116, &EmfPlayer::TransparentBlt},
    {118, &EmfPlayer::GradientFill},
    {120, &EmfPlayer::SetTextJustification},
};
const std::span<const EmfPlayer::Row> EmfPlayer::kRows(kRowTable);

EmfPlayer::EmfPlayer(Canvas& canvas, const DecodeOptions& options, const EmfHeader& header,
                     const QTransform& toPicture)
    : canvas_(canvas),
      options_(options),
      context_(canvas, toPicture, QPointF(header.pixelsPerMillimetreX, header.pixelsPerMillimetreY)) {}

bool EmfPlayer::Play(Bytes file) {
    EmfRecords walk(file);
    while (const auto found = walk.Next()) {
        const auto row = std::ranges::lower_bound(kRows, found->type, {}, &Row::type);
        if (row == kRows.end() || row->type != found->type) continue;
        Record record{found->type, found->bytes, ByteReader(found->bytes), row->shortPoints};
        record.reader.Skip(8);
        (this->*row->handler)(record);
        if (!canvas_.Budget().Spend(100)) return true;
    }
    return walk.Complete();
}

QPointF ReadPoint(ByteReader& reader) {
    const double x = reader.I32Le();
    return {x, static_cast<double>(reader.I32Le())};
}

QRectF ReadBox(ByteReader& reader) {
    const QPointF corner = ReadPoint(reader);
    return {corner, ReadPoint(reader)};
}

std::optional<QTransform> ReadTransform(ByteReader& reader) {
    double values[6];
    for (double& value : values) value = reader.F32Le();
    const QTransform transform(values[0], values[1], values[2], values[3], values[4], values[5]);
    return IsUsable(transform) ? std::optional(transform) : std::nullopt;
}

Region ReadRegion(Bytes data) {
    constexpr std::size_t kHeaderBytes = 32;
    ByteReader reader(data);
    reader.Skip(8);
    const std::size_t count = reader.U32Le();
    Region region;
    if (!reader.Seek(kHeaderBytes)) return region;
    const std::size_t held = std::min(count, reader.Left() / 16);
    region.boxes.reserve(held);
    const auto edge = [&] { return std::clamp(reader.I32Le(), -(1 << 28), 1 << 28); };
    for (std::size_t i = 0; i < held; ++i) {
        const int left = edge();
        const int top = edge();
        const int right = edge();
        region.boxes.emplace_back(QPoint(left, top), QPoint(right - 1, edge() - 1));
    }
    return region;
}

QRgb EmfPlayer::ReadColor(Record& record) const {
    return ColorOf(record.reader.U32Le(), context_.State().palette);
}

}  // namespace tessara::metafile
