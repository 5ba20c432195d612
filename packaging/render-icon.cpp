// Draws an SVG file as a square PNG file: tessara_render_icon SVG SIZE PNG

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>
#include <cstdlib>

int main(int count, char** arguments) {
    if (count != 4) return EXIT_FAILURE;
    const int size = std::atoi(arguments[2]);
    QSvgRenderer drawing(QString::fromLocal8Bit(arguments[1]));
    QImage icon(size, size, QImage::Format_ARGB32);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    drawing.render(&painter);
    painter.end();
    if (drawing.isValid() && icon.save(QString::fromLocal8Bit(arguments[3]))) return EXIT_SUCCESS;
    std::fprintf(stderr, "%s cannot be drawn as %s\n", arguments[1], arguments[3]);
    return EXIT_FAILURE;
}
