// Records that draw lines, shapes and regions.

#include "metafile/WmfPlayer.h"

namespace tessara::metafile {

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

}  // namespace tessara::metafile
