#pragma once

#include <QEvent>
#include <QPainter>
#include <QPalette>

namespace tessara {

/// A control with a frame around it while the keys go to it, for those of which most styles show nothing of
/// the kind: views, whose marked row looks the same without the focus, and scroll bars.
template <typename Control>
class FocusFramed : public Control {
  public:
    using Control::Control;

  protected:
    bool event(QEvent* event) override {
        const bool done = Control::event(event);
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) this->update();
        if (event->type() == QEvent::Paint && this->hasFocus()) {
            QPainter painter(this);
            painter.setPen(this->palette().color(QPalette::Highlight));
            painter.drawRect(this->rect().adjusted(0, 0, -1, -1));
        }
        return done;
    }
};

}  // namespace tessara
