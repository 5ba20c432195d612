#include <QKeyEvent>
#include <algorithm>

#include "desktop/RastxPane.h"

// What the keys do to the pane.

namespace tessara {
namespace {

constexpr int kLongStep = 16;

/// The way of an arrow key; nowhere for any other key.
QPoint StepOf(const QKeyEvent& key) {
    const int length = key.modifiers().testFlag(Qt::ControlModifier) ? kLongStep : 1;
    switch (key.key()) {
        case Qt::Key_Left:
            return {-length, 0};
        case Qt::Key_Right:
            return {length, 0};
        case Qt::Key_Up:
            return {0, -length};
        case Qt::Key_Down:
            return {0, length};
        default:
            return {};
    }
}

}  // namespace

void RastxPane::keyPressEvent(QKeyEvent* event) {
    const QPoint step = StepOf(*event);
    if (CanScroll())
        QAbstractScrollArea::keyPressEvent(event);
    else if (rastx_.ImageWidth() > 0 && !step.isNull())
        MoveMark(step, event->modifiers().testFlag(Qt::ShiftModifier));
    else if (mark_ && event->key() == Qt::Key_Space && !event->isAutoRepeat())
        ClickMark();
    else
        event->ignore();  // keys that do nothing here are for the window
}

void RastxPane::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Shift && mark_ && pressed_) EndPress();
    event->ignore();
}

/// The first step begins in the middle of the picture.
void RastxPane::MoveMark(const QPoint& step, bool drags) {
    const QRectF picture(QPointF(Geometry().Target().topLeft()) / PixelRatio(),
                         QSizeF(Geometry().Target().size()) / PixelRatio());
    const QPointF from = mark_.value_or(picture.center());
    if (drags && !pressed_) BeginPress(from);
    mark_ = {std::clamp(from.x() + step.x(), picture.left(), picture.right() - 1),
             std::clamp(from.y() + step.y(), picture.top(), picture.bottom() - 1)};
    MoveMouse(*mark_);
    Q_EMIT ImageMouseMove();
    viewport()->update();
}

void RastxPane::ClickMark() {
    BeginPress(*mark_);
    EndPress();
}

void RastxPane::HideMark() {
    if (mark_ && pressed_) EndPress();
    mark_.reset();
    viewport()->update();
}

}  // namespace tessara
