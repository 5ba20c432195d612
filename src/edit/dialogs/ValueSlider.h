#pragma once

#include <QSlider>

namespace tessara {

/// A slider that tells a drag from all other changes.
class ValueSlider final : public QSlider {
    Q_OBJECT
  public:
    explicit ValueSlider(QWidget* parent);
    void SetRange(int Min, int Max, int SmallChange, int LargeChange);

  Q_SIGNALS:
    /// A new value that stands: after a step, from code, or when a drag ends somewhere else than it began.
    void Change();
    /// A new value while the handle is being dragged.
    void Scroll();

  private:
    int valueBeforeDrag_ = 0;
};

}  // namespace tessara
