#include "desktop/Screen.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusServer>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <filesystem>

#include "desktop/DesktopScreen.h"
#include "desktop/PortalScreen.h"
#include "tests/Support.h"

namespace tessara {

/// Answers as the desktop's portal does, over a connection of its own.
class FakePortal : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Screenshot")
  public:
    uint code = 0;     ///< 0: the user agreed
    std::string file;  ///< the screenshot; empty for a call that fails
    int calls = 0;

  public Q_SLOTS:
    QDBusObjectPath Screenshot(const QString&, const QVariantMap& options) {
        ++calls;
        const QString request = QStringLiteral("/org/freedesktop/portal/desktop/request/1/") +
                                options.value(QStringLiteral("handle_token")).toString();
        if (file.empty()) {
            sendErrorReply(QDBusError::Failed);
            return QDBusObjectPath(request);
        }
        const QVariantMap results = {
            {QStringLiteral("uri"), QUrl::fromLocalFile(QString::fromStdString(file)).toString()}};
        for (const QString& path : {QStringLiteral("/someone/elses/request"), request}) {
            QDBusMessage response = QDBusMessage::createSignal(
                path, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
            // Another request of ours has been refused.
            response << (path == request ? code : 2u) << results;
            connection().send(response);
        }
        return QDBusObjectPath(request);
    }
};

namespace {

class PortalScreenTest : public testing::Test {
  protected:
    PortalScreenTest() {
        QObject::connect(&server_, &QDBusServer::newConnection, &portal_, [this](QDBusConnection connection) {
            connection.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal_,
                                      QDBusConnection::ExportAllSlots);
        });
        portal_.file = folder_.File("shot.png");
        test::WriteWhole(portal_.file, test::Encode(*FindCodec({}, "png"), test::Draw("RG BW")));
    }
    ~PortalScreenTest() override { QDBusConnection::disconnectFromPeer(kName); }

    const QString kName = QStringLiteral("portal test");
    test::TemporaryFolder folder_;
    FakePortal portal_;
    QDBusServer server_{QStringLiteral("unix:dir=/tmp")};
    PortalScreen screen_{QDBusConnection::connectToPeer(server_.address(), kName)};
};

TEST_F(PortalScreenTest, ThePortalsPictureIsTakenAndItsFileRemoved) {
    EXPECT_EQ(test::Sketch(test::Must(screen_.CaptureAll())), "RG BW");
    EXPECT_FALSE(std::filesystem::exists(portal_.file));
}

TEST_F(PortalScreenTest, ASeriesOfCapturesAsksOnce) {
    screen_.BeginCapture();
    EXPECT_EQ(test::Sketch(test::Must(screen_.CaptureRectangle({1, 0, 2, 2}))), "GK WK");
    EXPECT_EQ(test::Sketch(test::Must(screen_.CaptureRectangle({-1, 1, 2, 1}))), "KB");
    EXPECT_EQ(portal_.calls, 1);
    screen_.BeginCapture();
    EXPECT_FALSE(screen_.CaptureRectangle({0, 0, 1, 1})) << "the file is gone";
    EXPECT_FALSE(screen_.CaptureRectangle({0, 0, 1, 1}));
    EXPECT_EQ(portal_.calls, 2);
}

TEST_F(PortalScreenTest, ARefusalIsAFailure) {
    portal_.code = 1;
    EXPECT_FALSE(screen_.CaptureAll());
    portal_.file.clear();
    EXPECT_FALSE(screen_.CaptureAll());
    EXPECT_FALSE(PortalScreen(QDBusConnection(QStringLiteral("none"))).CaptureAll());
}

TEST_F(PortalScreenTest, ACaptureWithinACaptureFailsAtOnce) {
    bool within = true;
    QTimer::singleShot(0, &server_, [&] { within = bool(screen_.CaptureRectangle({0, 0, 1, 1})); });
    EXPECT_TRUE(screen_.CaptureAll());
    EXPECT_FALSE(within);
    EXPECT_EQ(portal_.calls, 1);
}

TEST(Screen, ShowsTheWindowsAndBlackBeyondItsEdges) {
    QWidget window(nullptr, Qt::FramelessWindowHint);
    window.setStyleSheet(QStringLiteral("background: blue"));
    window.setGeometry(0, 0, 90, 80);
    QWidget corner(&window);
    corner.setStyleSheet(QStringLiteral("background: red"));
    corner.setGeometry(0, 0, 50, 40);
    window.show();
    QCoreApplication::processEvents();
    const auto screen = MakeScreen();
    const Picture whole = test::Must(screen->CaptureAll());
    EXPECT_EQ(ColorFromPixel(whole.At(49, 39)), RGB(255, 0, 0));
    EXPECT_EQ(ColorFromPixel(whole.At(50, 40)), RGB(0, 0, 255));
    const Picture part = test::Must(screen->CaptureRectangle({-10, 30, 30, 20}));
    EXPECT_EQ(part.At(9, 5), kBlack);
    EXPECT_EQ(ColorFromPixel(part.At(10, 9)), RGB(255, 0, 0));
    EXPECT_EQ(ColorFromPixel(part.At(10, 10)), RGB(0, 0, 255));
}

TEST(Screen, APartBeyondTheEdgesIsBlack) {
    const Picture picture = test::Draw("RG BW");
    struct Row {
        QRect rectangle;
        const char* part;
    };
    const Row kRows[] = {
        {{0, 0, 2, 2}, "RG BW"},    {{1, 1, 1, 1}, "W"},  {{-1, -1, 2, 2}, "KK KR"},
        {{1, 0, 2, 3}, "GK WK KK"}, {{5, 5, 2, 1}, "KK"},
    };
    for (const Row& row : kRows)
        EXPECT_EQ(test::Sketch(test::Must(PartOf(picture, row.rectangle))), row.part);
    EXPECT_FALSE(PartOf(picture, {0, 0, 0, 5}));
}

}  // namespace
}  // namespace tessara

#include "ScreenTest.moc"
