#pragma once

#include <QSlider>

namespace tessara {

/// A slider that tells a drag from all other changes, and that keys can move on after it has lost the focus.
class ValueSlider final : public QSlider {
    Q_OBJECT
  public:
    explicit ValueSlider(QWidget* parent);
    void SetRange(int Min, int Max, int SmallChange, int LargeChange);
    /// From now on the keys that move a slider move this one while `widget` has the focus, rather than one
    /// that was told so before. A box for text keeps those that move its cursor.
    void TakeKeysOf(QWidget* widget) { widget->installEventFilter(this); }

  Q_SIGNALS:
    /// A new value that stands: after a step, from code, or when a drag ends somewhere else than it began.
    void Change();
    /// A new value while the handle is being dragged.
    void Scroll();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    int valueBeforeDrag_ = 0;
};

}  // namespace tessara
