#include "artwork/TiledBack.h"

#include <QEvent>
#include <QPainter>
#include <iterator>

#include "artwork/Artwork.h"

namespace tessara {
namespace {

constexpr int kStone = 6;  ///< pixels
/// How much of the text's colour the stones of each column have, in thousandths, were they at the bottom:
/// upwards the mosaic fades.
constexpr int kStones[][7] = {
    {14, 26, 18, 30, 12, 24, 20}, {24, 12, 28, 16, 26, 18, 10}, {16, 22, 10, 24, 20, 28, 14},
    {28, 14, 20, 12, 30, 16, 22}, {12, 24, 30, 18, 14, 22, 26}, {20, 16, 14, 28, 22, 10, 18},
    {26, 30, 22, 14, 16, 20, 12}, {18, 10, 24, 20, 28, 12, 30},
};

}  // namespace

TiledBack::TiledBack(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void TiledBack::SetBackPict() {
    tile_ = {};
    update();
}

QPixmap TiledBack::MakeTile() const {
    const QColor window = palette().color(QPalette::Window);
    const QColor text = palette().color(QPalette::WindowText);
    QPixmap tile(QSize(static_cast<int>(std::size(kStones)) * kStone, height()) * devicePixelRatioF());
    tile.setDevicePixelRatio(devicePixelRatioF());
    tile.fill(window);
    QPainter painter(&tile);
    int x = 0;
    for (const auto& column : kStones) {
        for (int y = 0, i = 0; y < height(); y += kStone, ++i) {
            const float fade = static_cast<float>(y + kStone) / static_cast<float>(height());
            const float share = static_cast<float>(column[i % std::size(column)]) / 1000 * fade;
            painter.fillRect(x, y, kStone - 1, kStone - 1, Mixed(window, text, share));
        }
        x += kStone;
    }
    return tile;
}

void TiledBack::paintEvent(QPaintEvent*) {
    if (tile_.isNull() || tile_.devicePixelRatio() != devicePixelRatioF()) tile_ = MakeTile();
    QPainter(this).drawTiledPixmap(rect(), tile_);
}

void TiledBack::resizeEvent(QResizeEvent*) {
    SetBackPict();
}

void TiledBack::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) SetBackPict();
    QWidget::changeEvent(event);
}

}  // namespace tessara
