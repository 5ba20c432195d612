#include "desktop/PortalScreen.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScopedValueRollback>
#include <QScreen>
#include <cstdio>

#include "core/Files.h"
#include "core/Paths.h"
#include "core/rastx/Codec.h"
#include "desktop/ScreenshotRequest.h"

namespace tessara {

Result<Picture> PortalScreen::CaptureAll() {
    if (waiting_) return CannotRead("a picture of the screen is already being taken");
    const QScopedValueRollback<bool> waiting(waiting_, true);
    TRY_ASSIGN(const std::string path, ScreenshotRequest(bus_).Run());
    const auto file = FileBytes::Read(path);
    // It was written for us alone.
    std::remove(path.c_str());
    if (!file) return file.Error();
    return DecodeFile(file.Value().View(), ExtensionOf(path));
}

Result<Picture> PortalScreen::CaptureRectangle(const QRect& rectangle) {
    if (!series_) {
        if (waiting_) return CannotRead("a picture of the screen is being taken");
        series_ = CaptureAll();
    }
    TRY_ASSIGN(const Picture whole, *series_);
    return PartOf(whole, rectangle);
}

QPoint PortalScreen::CursorPosition() {
    const QRect desktop = QGuiApplication::primaryScreen()->virtualGeometry();
    const QPointF position = QCursor::pos() - desktop.topLeft();
    const bool known = series_ && *series_ && !desktop.isEmpty();
    const double ratio =
        known ? 1.0 * series_->Value().Width() / desktop.width() : qGuiApp->devicePixelRatio();
    return (position * ratio).toPoint();
}

bool PortalScreen::ControlKeyDown() {
    return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ControlModifier);
}

}  // namespace tessara
