#include "desktop/VisibleFocus.h"

#include <QDialog>
#include <QEvent>

namespace tessara {

bool VisibleFocus::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show)
        if (auto* const dialog = qobject_cast<QDialog*>(watched))
            dialog->setAttribute(Qt::WA_KeyboardFocusChange);
    return false;
}

}  // namespace tessara
