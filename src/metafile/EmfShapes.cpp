// Records that draw lines, shapes and regions.

#include <QColor>
#include <algorithm>

#include "metafile/EmfPlayer.h"
#include "metafile/Player.h"

namespace tessara::metafile {
namespace {

constexpr std::size_t kBoundsBytes = 16;

QPainterPath FiguresOf(const std::vector<std::vector<QPointF>>& polygons, bool closed) {
    QPainterPath figures;
    for (const std::vector<QPointF>& points : polygons) {
        if (points.empty()) continue;
        figures.addPolygon(QPolygonF(QList<QPointF>(points.begin(), points.end())));
        if (closed) figures.closeSubpath();
    }
    return figures;
}

}  // namespace

std::vector<QPointF> EmfPlayer::ReadPointList(Record& record, std::size_t count) const {
    std::vector<QPointF> points(std::min(count, record.reader.Left() / (record.shortPoints ? 4 : 8)));
    for (QPointF& point : points) {
        if (record.shortPoints) {
            const double x = record.reader.I16Le();
            point = QPointF(x, record.reader.I16Le());
        } else {
            point = ReadPoint(record.reader);
        }
    }
    return points;
}

std::vector<QPointF> EmfPlayer::ReadCountedPoints(Record& record) const {
    record.reader.Skip(kBoundsBytes);
    return ReadPointList(record, record.reader.U32Le());
}

std::vector<std::vector<QPointF>> EmfPlayer::ReadPolygons(Record& record) const {
    record.reader.Skip(kBoundsBytes);
    const std::size_t polygons = record.reader.U32Le();
    record.reader.Skip(4);
    ByteReader counts(record.reader.Take(std::uint64_t{4} * polygons));
    std::vector<std::vector<QPointF>> read;
    while (counts.Left() >= 4) {
        std::vector<QPointF> points = ReadPointList(record, counts.U32Le());
        if (points.empty()) break;
        read.push_back(std::move(points));
    }
    return read;
}

void EmfPlayer::PolyBezier(Record& record) {
    context_.PolyBezier(ReadCountedPoints(record));
}
void EmfPlayer::Polygon(Record& record) {
    context_.Polygon(ReadCountedPoints(record));
}
void EmfPlayer::Polyline(Record& record) {
    context_.Polyline(ReadCountedPoints(record));
}
void EmfPlayer::PolyBezierTo(Record& record) {
    context_.PolyBezierTo(ReadCountedPoints(record));
}
void EmfPlayer::PolylineTo(Record& record) {
    context_.PolylineTo(ReadCountedPoints(record));
}
void EmfPlayer::PolyPolyline(Record& record) {
    context_.Lines(FiguresOf(ReadPolygons(record), false));
}
void EmfPlayer::PolyPolygon(Record& record) {
    context_.Shape(FiguresOf(ReadPolygons(record), true));
}

void EmfPlayer::PolyDraw(Record& record) {
    enum PointType : unsigned { kClose = 1, kLine = 2, kBezier = 4, kMove = 6 };
    const std::vector<QPointF> points = ReadCountedPoints(record);
    const Bytes types = record.reader.TakeUpTo(points.size());
    QPointF start = State().position;
    for (std::size_t i = 0; i < types.size(); ++i) {
        const unsigned kind = types[i] & 6u;
        bool close = (types[i] & kClose) != 0;
        if (kind == kMove) {
            start = points[i];
            context_.MoveTo(start);
        } else if (kind == kLine) {
            context_.LineTo(points[i]);
        } else if (kind == kBezier && i + 2 < types.size()) {
            context_.PolyBezierTo(std::span(points).subspan(i, 3));
            i += 2;
            close = (types[i] & kClose) != 0;
        }
        if (close) context_.CloseFigure(start);
    }
}

void EmfPlayer::MoveTo(Record& record) {
    context_.MoveTo(ReadPoint(record.reader));
}
void EmfPlayer::LineTo(Record& record) {
    context_.LineTo(ReadPoint(record.reader));
}

void EmfPlayer::SetPixel(Record& record) {
    const QPointF point = ReadPoint(record.reader);
    context_.SetPixel(point, ReadColor(record));
}

void EmfPlayer::Ellipse(Record& record) {
    context_.Ellipse(ReadBox(record.reader));
}
void EmfPlayer::Rectangle(Record& record) {
    context_.Rectangle(ReadBox(record.reader));
}

void EmfPlayer::RoundRect(Record& record) {
    const QRectF box = ReadBox(record.reader);
    const QPointF corner = ReadPoint(record.reader);
    context_.RoundRect(box, corner.x(), corner.y());
}

void EmfPlayer::DrawArc(Record& record, ArcKind kind) {
    const QRectF box = ReadBox(record.reader);
    const QPointF start = ReadPoint(record.reader);
    context_.Arc(box, start, ReadPoint(record.reader), kind);
}

void EmfPlayer::ArcTo(Record& record) {
    const QRectF box = ReadBox(record.reader);
    const QPointF start = ReadPoint(record.reader);
    context_.ArcTo(box, start, ReadPoint(record.reader));
}

void EmfPlayer::AngleArc(Record& record) {
    const QPointF center = ReadPoint(record.reader);
    const double radius = record.reader.U32Le();
    const double start = record.reader.F32Le();
    context_.AngleArc(center, radius, start, record.reader.F32Le());
}

void EmfPlayer::FloodFill(Record& record) {
    const QPointF point = ReadPoint(record.reader);
    const QRgb color = ReadColor(record);
    context_.FloodFill(point, color, record.reader.U32Le() == 0);
}

void EmfPlayer::GradientFill(Record& record) {
    enum Mode : std::uint32_t { kHorizontal, kVertical, kTriangle };
    constexpr std::size_t kVertexBytes = 16;
    struct Vertex {
        QPointF point;
        QColor color;
    };
    ByteReader& reader = record.reader;
    reader.Skip(kBoundsBytes);
    const std::size_t vertexCount = reader.U32Le();
    const std::size_t elementCount = reader.U32Le();
    const std::uint32_t mode = reader.U32Le();
    std::vector<Vertex> vertices(std::min(vertexCount, reader.Left() / kVertexBytes));
    for (Vertex& vertex : vertices) {
        vertex.point = ReadPoint(reader);
        const int red = reader.U16Le() >> 8;
        const int green = reader.U16Le() >> 8;
        vertex.color = QColor(red, green, reader.U16Le() >> 8);
        reader.Skip(2);
    }
    const std::size_t corners = mode == kTriangle ? 3 : 2;
    for (std::size_t i = 0; i < elementCount && reader.Left() >= 4 * corners; ++i) {
        std::array<Vertex, 3> element;
        bool known = true;
        for (std::size_t k = 0; k < corners; ++k) {
            const std::uint32_t index = reader.U32Le();
            known = known && index < vertices.size();
            if (known) element[k] = vertices[index];
        }
        if (!known) continue;
        if (mode == kTriangle) {
            context_.FillTriangle({element[0].point, element[1].point, element[2].point},
                                  {element[0].color, element[1].color, element[2].color});
        } else {
            context_.GradientBox(element[0].point, element[1].point, element[0].color, element[1].color,
                                 mode == kVertical);
        }
    }
}

void EmfPlayer::FillRegion(Record& record) {
    record.reader.Skip(kBoundsBytes);
    const std::uint32_t size = record.reader.U32Le();
    const auto* brush = std::get_if<Brush>(&objects_.At(record.reader.U32Le()));
    if (brush) context_.FillRegion(ReadRegion(record.reader.TakeUpTo(size)), *brush);
}

void EmfPlayer::FrameRegion(Record& record) {
    record.reader.Skip(kBoundsBytes);
    const std::uint32_t size = record.reader.U32Le();
    const auto* brush = std::get_if<Brush>(&objects_.At(record.reader.U32Le()));
    const QPointF width = ReadPoint(record.reader);
    if (brush) context_.FrameRegion(ReadRegion(record.reader.TakeUpTo(size)), *brush, width.x(), width.y());
}

void EmfPlayer::InvertRegion(Record& record) {
    record.reader.Skip(kBoundsBytes);
    const std::uint32_t size = record.reader.U32Le();
    context_.InvertRegion(ReadRegion(record.reader.TakeUpTo(size)));
}

void EmfPlayer::PaintRegion(Record& record) {
    record.reader.Skip(kBoundsBytes);
    const std::uint32_t size = record.reader.U32Le();
    context_.FillRegion(ReadRegion(record.reader.TakeUpTo(size)), State().brush);
}

}  // namespace tessara::metafile
