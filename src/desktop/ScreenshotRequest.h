#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QEventLoop>
#include <QObject>
#include <QVariantMap>
#include <string>

#include "core/Result.h"

namespace tessara {

/// One screenshot of the desktop's portal (org.freedesktop.portal.Screenshot). The toolkit finds the context
/// of a call only where it is no private base.
class ScreenshotRequest final : public QObject, protected QDBusContext {
    Q_OBJECT
  public:
    explicit ScreenshotRequest(const QDBusConnection& bus);

    /// Asks, and waits for the answer: the path of a file that belongs to us. The user may be asked first.
    Result<std::string> Run();

  private Q_SLOTS:
    void Response(uint code, const QVariantMap& results);

  private:
    QDBusConnection bus_;
    QString token_;
    QEventLoop loop_;
    Result<std::string> path_;
};

}  // namespace tessara
