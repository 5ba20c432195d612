#include "desktop/PaneDrawing.h"

namespace tessara {
namespace {

QColor Mix(const QColor& a, const QColor& b, double partOfB) {
    const auto mixed = [=](int x, int y) { return qRound(x + (y - x) * partOfB); };
    return QColor(mixed(a.red(), b.red()), mixed(a.green(), b.green()), mixed(a.blue(), b.blue()));
}

QImage BoardTile(int cell, const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    QImage tile(2 * cell, 2 * cell, QImage::Format_RGB32);
    tile.fill(Mix(base, text, 0.06));
    QPainter painter(&tile);
    const QColor darker = Mix(base, text, 0.16);
    painter.fillRect(0, 0, cell, cell, darker);
    painter.fillRect(cell, cell, cell, cell, darker);
    return tile;
}

}  // namespace

QImage OnBoard(const QImage& image, const QRect& part, const QPoint& corner, int cell,
               const QPalette& palette) {
    QImage board(part.size(), QImage::Format_RGB32);
    QPainter painter(&board);
    painter.setBrushOrigin(corner - part.topLeft());
    painter.fillRect(board.rect(), QBrush(BoardTile(cell, palette)));
    painter.drawImage(QPoint(), image, part);
    return board;
}

void DrawFrame(QPainter& painter, const QRect& rectangle, QPen pen) {
    // A line is centred on its coordinates: those of the pixels' middles keep it on the pixels meant.
    const double half = 0.5 * pen.width();
    pen.setJoinStyle(Qt::MiterJoin);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(pen);
    painter.drawRect(QRectF(rectangle).adjusted(half, half, -half, -half));
}

void DrawBand(QPainter& painter, const QRect& rectangle, int lineWidth) {
    QPen pen(Qt::black, lineWidth);
    DrawFrame(painter, rectangle, pen);
    pen.setColor(Qt::white);
    pen.setCapStyle(Qt::FlatCap);
    pen.setDashPattern({4, 4});
    DrawFrame(painter, rectangle, pen);
}

void DrawMark(QPainter& painter, const QPoint& point, int lineWidth) {
    constexpr int kArm = 6, kGap = 2;  // the point itself stays in sight
    for (const auto& [color, width] : {std::pair{Qt::black, 3 * lineWidth}, {Qt::white, lineWidth}}) {
        painter.setPen(QPen(color, width, Qt::SolidLine, Qt::FlatCap));
        for (const QPoint& way : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)})
            painter.drawLine(point + kGap * lineWidth * way, point + (kGap + kArm) * lineWidth * way);
    }
}

}  // namespace tessara
