#include "desktop/DesktopScreen.h"

#include <QCursor>
#include <QDBusConnection>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QTimer>
#include <cmath>
#include <utility>
#include <vector>

#include "desktop/PictureImage.h"
#include "desktop/PortalScreen.h"

namespace tessara {
namespace {

constexpr int kSettleTime = 250;  ///< milliseconds

/// A monitor's place on the desktop in the screen's own pixels. The toolkit scales its size, not its corner,
/// and rounds: the last column and row may not be there.
QRect PixelsOf(const QScreen& monitor) {
    const QSizeF size = QSizeF(monitor.geometry().size()) * monitor.devicePixelRatio();
    return {monitor.geometry().topLeft(), size.toSize()};
}

/// The corner of all monitors together, from which we count.
QPoint DesktopCorner() {
    return QGuiApplication::primaryScreen()->virtualGeometry().topLeft();
}

QImage Grabbed(QScreen& monitor, const QRect& part) {
    QImage image = monitor.grabWindow(0, part.x(), part.y(), part.width(), part.height()).toImage();
    image.setDevicePixelRatio(1);
    return image;
}

/// Draws what a monitor shows of `wanted` into a picture of that rectangle.
void DrawMonitor(QScreen& monitor, const QRect& wanted, QPainter& painter) {
    const QRect pixels = PixelsOf(monitor);
    const QRect part = (wanted & pixels).translated(-pixels.topLeft());
    if (part.isEmpty()) return;
    // The toolkit takes scaled lengths: the whole ones around the part, and more than the part is got.
    const double ratio = monitor.devicePixelRatio();
    const QPoint begin(static_cast<int>(part.left() / ratio), static_cast<int>(part.top() / ratio));
    const QPoint end(static_cast<int>(std::ceil((part.right() + 1) / ratio)),
                     static_cast<int>(std::ceil((part.bottom() + 1) / ratio)));
    const QImage grabbed = Grabbed(monitor, QRect(begin, end - QPoint(1, 1)));
    const QPoint origin = (QPointF(begin) * ratio).toPoint();
    painter.drawImage(part.topLeft() + pixels.topLeft() - wanted.topLeft(), grabbed,
                      part.translated(-origin));
}

/// A picture of a rectangle's size, black where `draw` leaves it.
template <typename Draw>
Result<Picture> Drawn(const QRect& rectangle, const Draw& draw) {
    QImage image(rectangle.size(), QImage::Format_RGB32);
    if (image.isNull()) return TooBig("no memory for the screen");
    image.fill(Qt::black);
    QPainter painter(&image);
    draw(painter);
    painter.end();
    return PictureOf(image);
}

/// Lets a menu or dialog that has just been closed disappear: what was below it is drawn by events, and put
/// on the screen by a compositor that may fade.
void Settle(int milliseconds) {
    QEventLoop events;
    QTimer::singleShot(milliseconds, &events, &QEventLoop::quit);
    events.exec(QEventLoop::ExcludeUserInputEvents);
}

/// A screen that may be read at any time, as X11's.
class OpenScreen final : public Screen {
  public:
    Result<Picture> CaptureAll() override {
        if (QGuiApplication::platformName() == QLatin1String("xcb")) Settle(kSettleTime);
        // Whole monitors tell their true sizes.
        std::vector<std::pair<QPoint, QImage>> monitors;
        QRect whole;
        for (QScreen* monitor : QGuiApplication::screens()) {
            const QPoint corner = monitor->geometry().topLeft() - DesktopCorner();
            monitors.emplace_back(corner, Grabbed(*monitor, QRect(QPoint(), QSize(-1, -1))));
            whole |= QRect(corner, monitors.back().second.size());
        }
        return Drawn(whole, [&](QPainter& painter) {
            for (const auto& [corner, image] : monitors) painter.drawImage(corner, image);
        });
    }
    void BeginCapture() override {}
    Result<Picture> CaptureRectangle(const QRect& rectangle) override {
        return Drawn(rectangle, [&](QPainter& painter) {
            for (QScreen* monitor : QGuiApplication::screens())
                DrawMonitor(*monitor, rectangle.translated(DesktopCorner()), painter);
        });
    }
    QPoint CursorPosition() override {
        const QPoint position = QCursor::pos();
        const QScreen* monitor = QGuiApplication::screenAt(position);
        if (!monitor) monitor = QGuiApplication::primaryScreen();
        const QPoint corner = monitor->geometry().topLeft();
        const QPoint pixels = corner + (QPointF(position - corner) * monitor->devicePixelRatio()).toPoint();
        return pixels - DesktopCorner();
    }
    bool ControlKeyDown() override {
        return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ControlModifier);
    }
};

}  // namespace

std::unique_ptr<Screen> MakeScreen() {
    if (QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return std::make_unique<PortalScreen>(QDBusConnection::sessionBus());
    return std::make_unique<OpenScreen>();
}

}  // namespace tessara
