#include "edit/dialogs/ValueSlider.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace tessara {
namespace {

bool MovesSlider(int key) {
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}
bool MovesSliderOrCursor(int key) {
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Home || key == Qt::Key_End;
}

}  // namespace

ValueSlider::ValueSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
    connect(this, &QSlider::sliderPressed, this, [this] { valueBeforeDrag_ = value(); });
    connect(this, &QSlider::valueChanged, this, [this] {
        if (isSliderDown())
            Q_EMIT Scroll();
        else
            Q_EMIT Change();
    });
    connect(this, &QSlider::sliderReleased, this, [this] {
        if (value() != valueBeforeDrag_) Q_EMIT Change();
    });
}

void ValueSlider::SetRange(int Min, int Max, int SmallChange, int LargeChange) {
    setRange(Min, Max);
    setSingleStep(SmallChange);
    setPageStep(LargeChange);
}

bool ValueSlider::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    auto* const press = static_cast<QKeyEvent*>(event);
    const bool isText = qobject_cast<QLineEdit*>(watched) != nullptr;
    if (!MovesSlider(press->key()) && (isText || !MovesSliderOrCursor(press->key()))) return false;
    keyPressEvent(press);
    return true;
}

}  // namespace tessara
