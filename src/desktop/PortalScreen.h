#pragma once

#include <QDBusConnection>
#include <optional>

#include "desktop/Screen.h"

namespace tessara {

/// The screen where programs may not read it (Wayland): the desktop's portal takes a picture of all of it,
/// with the user's consent. The pointer is known over our own windows only.
class PortalScreen final : public Screen {
  public:
    explicit PortalScreen(QDBusConnection bus) : bus_(std::move(bus)) {}

    /// Waits for the portal; a capture that is asked for meanwhile fails.
    Result<Picture> CaptureAll() override;
    void BeginCapture() override { series_.reset(); }
    Result<Picture> CaptureRectangle(const QRect& rectangle) override;
    QPoint CursorPosition() override;
    bool ControlKeyDown() override;

  private:
    QDBusConnection bus_;
    std::optional<Result<Picture>> series_;  ///< a refusal too counts for all of a series
    bool waiting_ = false;
};

}  // namespace tessara
