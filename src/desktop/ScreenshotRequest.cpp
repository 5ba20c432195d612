#include "desktop/ScreenshotRequest.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QRandomGenerator>
#include <QTimer>
#include <QUrl>

#include "desktop/PathText.h"

namespace tessara {
namespace {

// Long enough for a person to read the desktop's question.
constexpr int kPatience = 60'000;

QDBusMessage ScreenshotCall(const QString& token) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Screenshot"), QStringLiteral("Screenshot"));
    const QVariantMap options = {{QStringLiteral("handle_token"), token},
                                 {QStringLiteral("interactive"), false}};
    call << QString() << options;
    return call;
}

}  // namespace

ScreenshotRequest::ScreenshotRequest(const QDBusConnection& bus)
    : bus_(bus),
      token_(QStringLiteral("tessara%1").arg(QRandomGenerator::system()->generate())),
      path_(CannotRead("the desktop gives no picture of its screen")) {
    // Before the call, or a quick answer would be missed; of any object, as its path is only told by the
    // reply.
    bus_.connect(QString(), QString(), QStringLiteral("org.freedesktop.portal.Request"),
                 QStringLiteral("Response"), this, SLOT(Response(uint, QVariantMap)));
}

Result<std::string> ScreenshotRequest::Run() {
    const QDBusPendingCallWatcher reply(bus_.asyncCall(ScreenshotCall(token_)));
    // There may be no bus at all.
    if (reply.isError()) return path_;
    connect(&reply, &QDBusPendingCallWatcher::finished, &loop_, [this](QDBusPendingCallWatcher* finished) {
        if (finished->isError()) loop_.quit();
    });
    QTimer::singleShot(kPatience, &loop_, &QEventLoop::quit);
    loop_.exec(QEventLoop::ExcludeUserInputEvents);
    return path_;
}

void ScreenshotRequest::Response(uint code, const QVariantMap& results) {
    if (!message().path().endsWith(QLatin1Char('/') + token_)) return;
    const QUrl uri(results.value(QStringLiteral("uri")).toString());
    if (code == 0 && uri.isLocalFile()) path_ = BytesOfText(uri.toLocalFile());
    loop_.quit();
}

}  // namespace tessara
