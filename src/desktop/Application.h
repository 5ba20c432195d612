#pragma once

#include <QApplication>

namespace tessara {

/// The toolkit's application. An event for which there is not enough memory ends alone: the program and the
/// picture in it live on.
class Application final : public QApplication {
  public:
    using QApplication::QApplication;
    bool notify(QObject* receiver, QEvent* event) override;
};

}  // namespace tessara
