#pragma once

#include <QPoint>
#include <QRect>

#include "core/Result.h"
#include "core/rastx/Picture.h"

namespace tessara {

/// The whole desktop, over all monitors, and what the user points at. Lengths are the screen's own pixels,
/// whatever scale factor the windows have.
class Screen {
  public:
    virtual ~Screen() = default;
    virtual Result<Picture> CaptureAll() = 0;
    /// Told when a series of captures starts. Where the desktop only gives pictures of the whole screen, one
    /// is taken for all of the series.
    virtual void BeginCapture() = 0;
    /// A part of the desktop; what lies outside of it is black.
    virtual Result<Picture> CaptureRectangle(const QRect& rectangle) = 0;
    virtual QPoint CursorPosition() = 0;
    /// Whether a Ctrl key is held down now, whichever window has the focus (on Wayland: one of ours).
    virtual bool ControlKeyDown() = 0;
};

/// A part of a picture; what lies outside of it is black.
Result<Picture> PartOf(const Picture& picture, const QRect& rectangle);

/// A screen that shows a fixed picture.
class ScriptedScreen final : public Screen {
  public:
    Picture desktop;  ///< while it is empty captures fail
    QPoint cursor;
    bool controlKeyDown = false;
    int captures = 0;

    Result<Picture> CaptureAll() override {
        ++captures;
        if (desktop.Empty()) return CannotRead("there is no screen");
        return desktop;
    }
    void BeginCapture() override {}
    Result<Picture> CaptureRectangle(const QRect& rectangle) override {
        ++captures;
        if (desktop.Empty()) return CannotRead("there is no screen");
        return PartOf(desktop, rectangle);
    }
    QPoint CursorPosition() override { return cursor; }
    bool ControlKeyDown() override { return controlKeyDown; }
};

}  // namespace tessara
