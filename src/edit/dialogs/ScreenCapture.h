#pragma once

#include <QSize>
#include <functional>
#include <memory>

#include "artwork/Artwork.h"
#include "desktop/Clock.h"
#include "desktop/Prompts.h"
#include "desktop/Screen.h"
#include "edit/Editor.h"

namespace tessara {

/// What a capture needs of the main window.
class CaptureHost {
  public:
    virtual ~CaptureHost() = default;
    virtual Qt::WindowStates WindowState() const = 0;
    /// Without Qt::WindowMinimized in `states` a minimised window is restored and comes to the front.
    virtual void SetWindowState(Qt::WindowStates states) = 0;
    /// The picture of the toolbar's button 11.
    virtual void SetCapturePicture(PictureState picture) = 0;
    virtual void Setvalid(bool valid) = 0;
    /// The labels and the import pane's tooltip, for a picture that has just come into both panes.
    virtual void ImportPictureTaken() = 0;
};

/// The window that shows what will be taken.
class CaptureWindow {
  public:
    virtual ~CaptureWindow() = default;
    /// Called when a Ctrl key goes down in the window while its key preview is on.
    std::function<void()> Grasp;
    /// Called when the user has closed the window.
    std::function<void()> Closed;

    /// Shapes the window, in the middle of the screen, around a picture of that size in the screen's pixels.
    virtual void SetupCaptureWindow(const QSize& size) = 0;
    virtual void ShowTopmost() = 0;
    /// Above all other windows again, where something has come in front of it.
    virtual void MakeTopmost() = 0;
    virtual void SetKeyPreview(bool on) = 0;
    virtual void ShowPicture(const Picture& Picture1) = 0;
    virtual void Unload() = 0;
};

/// Takes the part of the screen around the pointer into both panes.
class ScreenCapture {
  public:
    struct Surroundings {
        Editor& editor;
        Rastx& importPane;
        Screen& screen;
        Clock& clock;
        Prompts& prompts;
        CaptureHost& host;
        CaptureWindow& window;
    };
    /// Takes the window's events.
    explicit ScreenCapture(const Surroundings& surroundings);

    /// The toolbar's button 11, and entry 5 of the copy menu.
    void CaptureTool_Click();
    /// What every other command does on its way in. Leaves the main window as it is.
    void EndCapture();
    /// What the main window does with a key of the toolkit, beside the shortcuts of its menus.
    void Form_KeyDown(int key);

    Timer& TimerGrasp() { return *TimerGrasp_; }

  private:
    void StartCapture();
    /// Does nothing unless `flag`. Leaves both windows as they are.
    void StopCapture(bool flag);
    void ShowHint();
    void Tick();
    void CaptureTick();
    bool ControlKeyWentDown();
    /// Asks whether the picture shown is to be taken, and ends the capture.
    void Grasp();
    void GetGraspPict();
    void WindowClosed();
    void CloseWindow();
    QSize CaptureSize() const;
    Session& session() const { return surroundings_.editor.session; }

    Surroundings surroundings_;
    std::unique_ptr<Timer> TimerGrasp_;
    int CaptureHintCount_ = 0;  ///< how often a capture was started
    bool GraspBusy_ = false;    ///< the screen is being read or taken: ticks and keys are passed over
    Qt::WindowStates SavedWindowState_;
    int blinkCount_ = 0;
    bool controlKeyWasDown_ = false;  ///< at the last look
    Picture Picture1_;                ///< what the window shows
};

}  // namespace tessara
