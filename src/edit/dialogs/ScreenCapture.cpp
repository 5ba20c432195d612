#include "edit/dialogs/ScreenCapture.h"

#include <algorithm>
#include <utility>

#include "core/Numbers.h"
#include "edit/dialogs/SelectionClipboard.h"

namespace tessara {
namespace {

constexpr int kTickInterval = 50;  ///< milliseconds
constexpr int kHintedStarts = 2;
constexpr int kLastBlinkCount = 8;
constexpr int kLastLitCount = 4;

}  // namespace

ScreenCapture::ScreenCapture(const Surroundings& surroundings)
    : surroundings_(surroundings), TimerGrasp_(surroundings.clock.MakeTimer([this] { Tick(); })) {
    surroundings_.window.Grasp = [this] { Grasp(); };
    surroundings_.window.Closed = [this] { WindowClosed(); };
}

void ScreenCapture::CaptureTool_Click() {
    if (session().CaptureMode) {
        EndCapture();
        return;
    }
    surroundings_.editor.undo.UndoCommand("SAVE");
    ++CaptureHintCount_;
    session().CaptureMode = true;
    StartCapture();
    session().UndoPending = true;
}

void ScreenCapture::EndCapture() {
    if (!session().CaptureMode) return;
    StopCapture(true);
    CloseWindow();
}

void ScreenCapture::Form_KeyDown(int key) {
    if (key == Qt::Key_Control && TimerGrasp_->Enabled()) Grasp();
}

void ScreenCapture::StopCapture(bool flag) {
    if (!flag) return;
    TimerGrasp_->SetEnabled(false);
    TimerGrasp_->SetInterval(0);
    surroundings_.window.SetKeyPreview(false);
    session().CaptureMode = false;
}

void ScreenCapture::StartCapture() {
    if (CaptureHintCount_ <= kHintedStarts && !TimerGrasp_->Enabled()) ShowHint();
    TimerGrasp_->SetEnabled(!TimerGrasp_->Enabled());
    if (!TimerGrasp_->Enabled()) {
        EndCapture();
        return;
    }
    const QSize size = CaptureSize();
    if (auto blank = Picture::Create(size.width(), size.height(), kWhite, Alpha::None))
        Picture1_ = std::move(blank).Value();
    surroundings_.window.SetupCaptureWindow(size);
    surroundings_.window.ShowPicture(Picture1_);
    surroundings_.window.SetKeyPreview(true);
    surroundings_.window.ShowTopmost();
    SavedWindowState_ = surroundings_.host.WindowState();
    TimerGrasp_->SetInterval(kTickInterval);
    surroundings_.host.SetWindowState(SavedWindowState_ | Qt::WindowMinimized);
    surroundings_.screen.BeginCapture();
    // A key that is held down already was not meant for the capture.
    controlKeyWasDown_ = surroundings_.screen.ControlKeyDown();
}

void ScreenCapture::ShowHint() {
    surroundings_.prompts.Ask(
        {"Press Ctrl key to capture the picture selected!", PromptButtons::Ok, PromptIcon::Warning});
}

void ScreenCapture::Tick() {
    blinkCount_ = blinkCount_ == kLastBlinkCount ? 0 : blinkCount_ + 1;
    surroundings_.host.SetCapturePicture(blinkCount_ <= kLastLitCount ? PictureState::Hover
                                                                      : PictureState::Normal);
    surroundings_.window.MakeTopmost();
    CaptureTick();
}

void ScreenCapture::CaptureTick() {
    if (GraspBusy_) return;
    const QSize size = CaptureSize();
    const QPoint middle(RoundToEven(size.width() / 2.0), RoundToEven(size.height() / 2.0));
    const QRect rectangle(surroundings_.screen.CursorPosition() - middle, size);
    // Some desktops ask the user for leave first: events come in meanwhile, which may even end the capture.
    GraspBusy_ = true;
    auto live = surroundings_.screen.CaptureRectangle(rectangle);
    GraspBusy_ = false;
    if (!session().CaptureMode) return;
    if (live) {
        Picture1_ = std::move(live).Value();
        surroundings_.window.ShowPicture(Picture1_);
    }
    if (ControlKeyWentDown()) Grasp();
}

bool ScreenCapture::ControlKeyWentDown() {
    const bool before = std::exchange(controlKeyWasDown_, surroundings_.screen.ControlKeyDown());
    return controlKeyWasDown_ && !before;
}

void ScreenCapture::Grasp() {
    surroundings_.prompts.Beep();
    if (GraspBusy_) return;
    TimerGrasp_->SetEnabled(false);
    const bool paste = surroundings_.prompts.Ask({"Paste the image captured?", PromptButtons::YesNo,
                                                  PromptIcon::Question}) == Answer::Yes;
    StopCapture(true);
    if (paste && !ConfirmDiscardExport(session().ExportChanged, surroundings_.prompts)) {
        // The main window stays minimised until the user restores it.
        CloseWindow();
        return;
    }
    if (paste) {
        GraspBusy_ = true;
        GetGraspPict();
        surroundings_.host.Setvalid(true);
        session().ImagePath.clear();
        session().ExportChanged = false;
        surroundings_.editor.host.PutviewExport(2);
        surroundings_.host.ImportPictureTaken();
    }
    CloseWindow();
    surroundings_.host.SetWindowState(SavedWindowState_);
}

void ScreenCapture::GetGraspPict() {
    Rastx Pic_TempImage;
    Pic_TempImage.SetImage(Picture1_);
    const std::string scratch = session().PrivateFile("QuillonCapture.bmp");
    const bool saved = Pic_TempImage.SaveBmp(scratch).Ok();
    for (Rastx* pane : {&surroundings_.importPane, &surroundings_.editor.exportPane})
        // What a failed save leaves under that name is an earlier capture.
        if (!saved || !pane->LoadImage(scratch)) pane->SetImage(Picture1_);
    surroundings_.window.Unload();
    GraspBusy_ = false;
}

void ScreenCapture::WindowClosed() {
    if (!session().CaptureMode) return;
    EndCapture();
    surroundings_.host.SetWindowState(SavedWindowState_);
}

void ScreenCapture::CloseWindow() {
    surroundings_.window.Unload();
    surroundings_.host.SetCapturePicture(PictureState::Normal);
}

QSize ScreenCapture::CaptureSize() const {
    // The options dialog takes 0 too.
    return {std::max(1, session().CaptureWidth), std::max(1, session().CaptureHeight)};
}

}  // namespace tessara
