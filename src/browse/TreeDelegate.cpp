#include "browse/TreeDelegate.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace tessara {

TreeDelegate::TreeDelegate(QObject* parent) : OneLineDelegate(parent) {
    connect(this, &QAbstractItemDelegate::closeEditor, this, [this](QWidget* editor, EndEditHint hint) {
        const auto* line = qobject_cast<QLineEdit*>(editor);
        if (line != nullptr && labelEditEnded)
            labelEditEnded(hint == RevertModelCache ? QString() : line->text());
    });
}

bool TreeDelegate::eventFilter(QObject* editor, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        // Who looks something up in another window comes back to an open edit.
        if (static_cast<QFocusEvent*>(event)->reason() == Qt::ActiveWindowFocusReason) return false;
    }
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
            // There is no next label to go to.
            Q_EMIT closeEditor(qobject_cast<QWidget*>(editor), SubmitModelCache);
            return true;
        }
    }
    return OneLineDelegate::eventFilter(editor, event);
}

void TreeDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    OneLineDelegate::initStyleOption(option, index);
    if (dropHighlight.isValid() && index == dropHighlight) option->state |= QStyle::State_Selected;
}

}  // namespace tessara
