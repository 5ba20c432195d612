#include "desktop/Application.h"

#include <new>

namespace tessara {

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::bad_alloc&) {
        // What ended so does not take back its hourglass.
        while (overrideCursor() != nullptr) restoreOverrideCursor();
        return false;
    }
}

}  // namespace tessara
