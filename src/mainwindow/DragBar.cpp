#include "mainwindow/DragBar.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "artwork/Artwork.h"
#include "artwork/FieldColors.h"
#include "desktop/SpokenRole.h"

namespace tessara {

DragBar::DragBar(const QString& name, Qt::Orientation orientation, QWidget* parent)
    : QWidget(parent), orientation_(orientation) {
    setObjectName(name);
    setFocusPolicy(Qt::TabFocus);
    SetSpokenRole(this, QAccessible::Splitter);
    setCursor(orientation == Qt::Vertical ? Qt::SplitHCursor : Qt::SplitVCursor);
}

void DragBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) Q_EMIT MouseDown();
}

void DragBar::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    if (event->buttons().testFlag(Qt::LeftButton)) Q_EMIT MouseMove(at.x(), at.y());
}

void DragBar::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) Q_EMIT MouseUp();
}

void DragBar::keyPressEvent(QKeyEvent* event) {
    constexpr int kStep = 10;  // pixels
    const bool sideways = orientation_ == Qt::Vertical;
    if (event->key() == (sideways ? Qt::Key_Left : Qt::Key_Up))
        Q_EMIT Step(-kStep);
    else if (event->key() == (sideways ? Qt::Key_Right : Qt::Key_Down))
        Q_EMIT Step(kStep);
    else
        event->ignore();
}

void DragBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (hasFocus()) {
        painter.setBrush(palette().highlight());
        painter.drawRoundedRect(rect(), 3, 3);
    }
    // Three dots in the middle show that the bar can be taken.
    painter.setBrush(hasFocus() ? palette().color(QPalette::HighlightedText) : FaintLine(palette()));
    constexpr qreal kDistance = 6, kRadius = 1.2;
    for (const int i : {-1, 0, 1}) {
        const QPointF step =
            orientation_ == Qt::Vertical ? QPointF(0, i * kDistance) : QPointF(i * kDistance, 0);
        painter.drawEllipse(QRectF(rect()).center() + step, kRadius, kRadius);
    }
}

DragGhost::DragGhost(const QString& name, QWidget* parent) : QWidget(parent) {
    setObjectName(name);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void DragGhost::paintEvent(QPaintEvent*) {
    // Dark, unless everything around it is.
    QPainter(this).fillRect(rect(), IsDark(palette()) ? QColor(176, 176, 176) : QColor(64, 64, 64));
}

}  // namespace tessara
