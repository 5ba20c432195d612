#pragma once

#include <QKeyEvent>
#include <QObject>

namespace tessara {

/// For buttons of what comes up by itself: the key that has answered the dialog before, and is still held
/// down, does not answer this one too.
class HeldKeyFilter final : public QObject {
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        const bool presses = event->type() == QEvent::KeyPress;
        if (!presses && event->type() != QEvent::KeyRelease) return false;
        const auto& key = static_cast<const QKeyEvent&>(*event);
        // A repetition is a release and a press of one moment. Under load the toolkit takes some for two.
        const bool repeats = key.isAutoRepeat() || (key.timestamp() != 0 && key.timestamp() == releasedAt_);
        if (!presses) releasedAt_ = key.timestamp();
        return presses && repeats;
    }

  private:
    quint64 releasedAt_ = 0;  ///< milliseconds; 0 for never
};

}  // namespace tessara
