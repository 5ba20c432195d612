// Pens and brushes at work.

#include <QPainterPathStroker>
#include <algorithm>
#include <array>
#include <cmath>

#include "metafile/DeviceContext.h"

namespace tessara::metafile {
namespace {

/// A pen of up to this many pixels is drawn through the centres of pixels: its upright lines stay sharp.
constexpr double kHairline = 1.5;

bool IsDashed(unsigned style) {
    return (style >= Pen::kDash && style <= Pen::kDashDotDot) || style == Pen::kUserDashes ||
           style == Pen::kAlternate;
}

/// Dashes and gaps, in pixels of thin lines and in widths of thick ones.
QList<qreal> DashesOf(const Pen& pen, double width, double pixelsPerUnit) {
    // Those of a pen whose width is in logical units grow and shrink with it, however thin it gets.
    const bool thick = pen.extended && pen.width > 0;
    const double dash = thick ? 3 : 18;
    const double dot = thick ? 1 : 3;
    const double gap = thick ? 1 : 6;
    switch (pen.style & Pen::kStyleMask) {
        case Pen::kDash:
            return {dash, gap};
        case Pen::kDot:
            return {dot, thick ? 1.0 : 3.0};
        case Pen::kDashDot:
            return {thick ? dash : 9, gap, dot, gap};
        case Pen::kDashDotDot:
            return {thick ? dash : 9, dot, dot, dot, dot, dot};
        case Pen::kAlternate:
            return {1, 1};
        default:
            break;
    }
    QList<qreal> dashes;
    const double scale = (thick ? pixelsPerUnit : 1) / width;
    for (const double length : pen.dashes) dashes << std::clamp(length * scale, 0.01, 1e6);
    if (dashes.size() % 2 == 1) dashes += dashes;
    return dashes;
}

double ThroughCentre(double value) {
    constexpr double kRounding = 1e-6;
    return std::floor(value + kRounding) + 0.5;
}

/// Moves the points of straight lines so that upright ones run through the centres of pixels.
QPolygonF ThroughCentres(const QPolygonF& line) {
    const auto upright = [](double a, double b) { return std::abs(a - b) < 1e-3; };
    const bool closed = line.isClosed();
    const qsizetype last = line.size() - 1;
    QPolygonF moved;
    for (qsizetype i = 0; i <= last; ++i) {
        const QPointF point = line[i];
        const QPointF before = line[i > 0 ? i - 1 : closed ? last - 1 : 0];
        const QPointF after = line[i < last ? i + 1 : closed ? 1 : last];
        const bool vertical = upright(point.x(), before.x()) || upright(point.x(), after.x());
        const bool horizontal = upright(point.y(), before.y()) || upright(point.y(), after.y());
        moved << QPointF(vertical ? ThroughCentre(point.x()) : point.x() + 0.5,
                         horizontal ? ThroughCentre(point.y()) : point.y() + 0.5);
    }
    return moved;
}

bool HasCurves(const QPainterPath& path) {
    for (int i = 0; i < path.elementCount(); ++i)
        if (path.elementAt(i).type == QPainterPath::CurveToElement) return true;
    return false;
}

QPainterPath HairlinePath(const QPainterPath& path) {
    if (HasCurves(path)) return path.translated(0.5, 0.5);
    QPainterPath moved;
    for (const QPolygonF& line : path.toSubpathPolygons()) {
        if (line.size() < 2) continue;
        const QPolygonF centred = ThroughCentres(line);
        moved.addPolygon(centred);
        if (line.isClosed()) moved.closeSubpath();
    }
    return moved;
}

/// Lines that begin half a pixel earlier: the first dash then begins at the edge of its pixel.
QPainterPath FromPixelEdge(const QPainterPath& path) {
    QPainterPath moved;
    for (QPolygonF line : path.toSubpathPolygons()) {
        if (line.size() < 2) continue;
        const QPointF first = line[1] - line[0];
        const double length = std::hypot(first.x(), first.y());
        if (length > 0) line[0] -= first * (0.5 / length);
        moved.addPolygon(line);
    }
    return moved;
}

using Rows = std::array<std::uint8_t, 8>;
constexpr Rows kHatches[] = {
    {0, 0, 0, 0xFF, 0, 0, 0, 0},                       // horizontal
    {0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10},  // vertical
    {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01},  // falling
    {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80},  // rising
    {0x10, 0x10, 0x10, 0xFF, 0x10, 0x10, 0x10, 0x10},  // cross
    {0x81, 0x42, 0x24, 0x18, 0x18, 0x24, 0x42, 0x81},  // diagonal cross
};

QImage HatchTile(unsigned hatch, QRgb line, QRgb gap) {
    const Rows& rows = kHatches[std::min<std::size_t>(hatch, std::size(kHatches) - 1)];
    QImage tile(8, 8, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            tile.setPixel(x, y, (rows[static_cast<std::size_t>(y)] & (0x80 >> x)) != 0 ? line : gap);
    return tile;
}

}  // namespace

QImage Recolored(const QImage& blackAndWhite, QRgb black, QRgb white) {
    QImage image = blackAndWhite.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) row[x] = qGray(row[x]) < 128 ? black : white;
    }
    return image;
}

QBrush DeviceContext::BrushFor(const Brush& brush) const {
    QBrush result;
    switch (brush.kind) {
        case Brush::Kind::None:
            return Qt::NoBrush;
        case Brush::Kind::Solid:
            return QColor(brush.color);
        case Brush::Kind::Hatch:
            result = QBrush(HatchTile(brush.hatch, brush.color,
                                      state_.opaqueBackground ? state_.backgroundColor : qRgba(0, 0, 0, 0)));
            break;
        case Brush::Kind::Pattern:
            if (brush.tile.isNull()) return Qt::NoBrush;
            if (brush.monochrome && !canvas_.Budget().Spend(5.0 * brush.tile.width() * brush.tile.height()))
                return Qt::NoBrush;
            result = QBrush(brush.monochrome ? Recolored(brush.tile, state_.textColor, state_.backgroundColor)
                                             : brush.tile);
            break;
    }
    const QPointF origin = toPicture_.map(state_.brushOrigin) - toPicture_.map(QPointF(0, 0));
    result.setTransform(QTransform::fromTranslate(std::round(origin.x()), std::round(origin.y())));
    return result;
}

double DeviceContext::PenScale() const {
    const QTransform toPicture = ToPicture();
    return std::hypot(toPicture.m11(), toPicture.m12());
}

double DeviceContext::PenWidth() const {
    const double longest = 2.0 * std::max(canvas_.Area().width(), canvas_.Area().height());
    return std::clamp(state_.pen.width * PenScale(), 1.0, longest);
}

QPen DeviceContext::PenForStroke() const {
    const Pen& pen = state_.pen;
    const double width = PenWidth();
    const bool thin = width <= kHairline;
    const bool dashed = IsDashed(pen.style & Pen::kStyleMask) && (thin || pen.extended);
    constexpr Qt::PenCapStyle kCaps[] = {Qt::RoundCap, Qt::SquareCap, Qt::FlatCap};
    constexpr Qt::PenJoinStyle kJoins[] = {Qt::RoundJoin, Qt::BevelJoin, Qt::SvgMiterJoin};
    QPen result(BrushFor(pen.ink), width);
    result.setCapStyle(thin ? dashed ? Qt::FlatCap : Qt::SquareCap : kCaps[static_cast<int>(pen.cap)]);
    result.setJoinStyle(thin ? Qt::MiterJoin : kJoins[static_cast<int>(pen.join)]);
    result.setMiterLimit(thin ? 1 : std::clamp(state_.miterLimit, 1.0, 100.0));
    if (dashed) {
        if (const QList<qreal> dashes = DashesOf(pen, width, PenScale()); !dashes.isEmpty())
            result.setDashPattern(dashes);
    }
    return result;
}

QPainterPath DeviceContext::PlacedForPen(const QPainterPath& shape) const {
    const double width = PenWidth();
    if (width <= kHairline) {
        const QPainterPath line = HairlinePath(shape);
        return IsDashed(state_.pen.style & Pen::kStyleMask) ? FromPixelEdge(line) : line;
    }
    const bool odd = std::lround(width) % 2 == 1;
    return odd ? shape.translated(0.5, 0.5) : shape;
}

void DeviceContext::StrokeShape(const QPainterPath& shape) {
    if (state_.pen.IsVisible()) StrokeLine(PlacedForPen(shape));
}

void DeviceContext::StrokeLine(const QPainterPath& line) {
    const QPen pen = PenForStroke();
    const bool paintGaps =
        pen.style() == Qt::CustomDashLine && state_.opaqueBackground && !state_.pen.extended;
    if (paintGaps)
        canvas_.Stroke(line, QPen(QColor(state_.backgroundColor), pen.widthF()), DrawingOperation());
    canvas_.Stroke(line, pen, DrawingOperation());
}

QPainterPath DeviceContext::WithFillRule(QPainterPath shape) const {
    if (state_.fillRule == Qt::WindingFill) shape.setFillRule(Qt::WindingFill);
    return shape;
}

void DeviceContext::FillShape(const QPainterPath& shape) {
    canvas_.Fill(WithFillRule(shape), BrushFor(state_.brush), DrawingOperation());
}

void DeviceContext::Paint(const QPainterPath& shape, bool fill, bool stroke) {
    if (fill) FillShape(shape);
    if (stroke) StrokeShape(shape);
}

QRectF DeviceContext::InsetForPen(const QRectF& box, Edges edges) const {
    if (!state_.pen.IsVisible()) return box;
    const double width = PenWidth();
    // The right and bottom edges lie outside: the line runs through the last pixels before them.
    if (width <= kHairline && edges == Edges::Straight)
        return QRectF(SnapToPixels(box)).adjusted(0.5, 0.5, -0.5, -0.5);
    const bool inside = (state_.pen.style & Pen::kStyleMask) == Pen::kInsideFrame;
    const double x = std::min(inside ? width : 1.0, box.width()) / 2;
    const double y = std::min(inside ? width : 1.0, box.height()) / 2;
    return box.adjusted(x, y, -x, -y);
}

}  // namespace tessara::metafile
