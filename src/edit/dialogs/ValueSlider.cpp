#include "edit/dialogs/ValueSlider.h"

namespace tessara {

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

}  // namespace tessara
