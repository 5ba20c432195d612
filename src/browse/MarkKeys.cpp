#include "browse/MarkKeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <utility>

namespace tessara {

MarkKeys::MarkKeys(QAbstractItemView* view, std::function<void()> moved)
    : QObject(view), view_(view), moved_(std::move(moved)) {
    view->installEventFilter(this);
}

bool MarkKeys::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::FocusOut) pressed_ = false;  // the key comes up somewhere else
    // An editor within the view hands on the presses that it has no use for, and keeps their ends.
    const QWidget* focus = QApplication::focusWidget();
    if (focus != nullptr && focus != view_ && view_->isAncestorOf(focus)) return false;
    if (event->type() == QEvent::KeyPress && !std::exchange(pressed_, true)) mark_ = view_->currentIndex();
    if (event->type() != QEvent::KeyRelease) return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (key.isAutoRepeat()) return false;
    const bool leads = std::exchange(pressed_, false) && view_->currentIndex() != mark_;
    if (leads || key.key() == Qt::Key_Up || key.key() == Qt::Key_Down) moved_();
    return false;
}

}  // namespace tessara
