#pragma once

#include <QObject>

namespace tessara {

/// Dialogs show which control has the focus from the moment they open; the toolkit waits for the Tab key. A
/// filter for the events of the whole application.
class VisibleFocus final : public QObject {
  public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace tessara
