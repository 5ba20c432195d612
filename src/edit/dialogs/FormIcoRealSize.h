#pragma once

#include <QLabel>
#include <QRect>
#include <QWidget>

#include "edit/dialogs/ScreenCapture.h"

namespace tessara {

/// The places on the capture window around a picture of `picture` pixels. All in twips, 15 to the pixel. As
/// in all of the design the window counts with its edges and title bar, Picture1 stands in what they enclose.
struct CaptureLayout {
    explicit CaptureLayout(const QSize& picture);
    QSize window;
    QSize inside;
    QRect Picture1;
};

/// The window of a running screen capture; always on top.
class FormIcoRealSize final : public QWidget, public CaptureWindow {
    Q_OBJECT
  public:
    FormIcoRealSize();

    void SetupCaptureWindow(const QSize& size) override;
    void ShowTopmost() override;
    void MakeTopmost() override { raise(); }
    void SetKeyPreview(bool on) override { KeyPreview_ = on; }
    void ShowPicture(const Picture& Picture1) override;
    void Unload() override { hide(); }

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    class LivePicture;

    LivePicture* Picture1_;
    QLabel* Image1_;  ///< what the window shows while there is no capture
    bool KeyPreview_ = false;
};

}  // namespace tessara
