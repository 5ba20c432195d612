#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <utility>

#include "desktop/PathText.h"
#include "view/DialogSlideOpt.h"
#include "view/FormviewImport.h"
#include "view/ViewerPlace.h"

// What the user and the slide show do to the image viewer.

namespace tessara {

void FormviewImport::SetImageTool(int index, bool enabled) {
    FrameToolBar1_->PictureToolBack()->SetImageTool(index, enabled);
}

void FormviewImport::Imagetool_Click(int Index) {
    switch (Index) {
        case kPrevious:
        case kNext:
            LastNext(Index);
            return Loadfile00();
        case kSlideShow:
            return StartSlide();
        case kSlideOptions:
            return ShowSlideOptions();
        case kNormalShow:
            return ShowNormal();
        case kZoomOut:
        case kZoomIn:
            return Zoom(Index);
        case kDelete:
            return DeleteFile();
        case kFullScreen:
            return ShowFullScreen();
        default:
            return;
    }
}

void FormviewImport::ShowSlideOptions() {
    DialogSlideOpt dialog(session_, surroundings_.prompts, this);
    dialog.exec();
}

void FormviewImport::ShowNormal() {
    showNormal();
    SetImageTool(kNormalShow, false);
    SetImageTool(kFullScreen, true);
}

void FormviewImport::ShowFullScreen() {
    showMaximized();
    SetImageTool(kNormalShow, true);
    SetImageTool(kFullScreen, false);
}

void FormviewImport::SetSlideToolTip(const std::string& text) {
    Imagetool(kSlideShow)->setToolTip(ShownText(text));
    Imagetool(kSlideShow)->setAccessibleName(ShownText(text));
}

void FormviewImport::FitSlide() {
    constexpr int kBorder = 4;
    const Rastx& picture = rastx1_->rastx();
    const QSize pane = rastx1_->size() * rastx1_->devicePixelRatioF();
    const bool larger = picture.ImageWidth() > pane.width() || picture.ImageHeight() > pane.height();
    if (session_.SlideOptions.SlideResize != 1 || !larger) return ShowZoom(100);
    const int width = pane.width() - kBorder, height = pane.height() - kBorder;
    const double zoom = std::min(1.0 * width / picture.ImageWidth(), 1.0 * height / picture.ImageHeight());
    Ignore(rastx1_->rastx().Resample(width, height, true));
    ShowZoom(static_cast<int>(zoom * 100));
}

void FormviewImport::AdvanceSlides() {
    if (session_.SlideRunning) SlideShowNow();
}

// The pane.

void FormviewImport::ConnectPane() {
    connect(rastx1_, &RastxPane::ImageMouseDown, this,
            [this] { selection_.ImageMouseDown(&surroundings_.selection.ImportGesture()); });
    connect(rastx1_, &RastxPane::ImageMouseMove, this, [this] { selection_.ImageMouseMove(); });
    connect(rastx1_, &RastxPane::ImageMouseUp, this, [this] { selection_.ImageMouseUp(); });
    connect(rastx1_, &RastxPane::ImageRightClick, this, &FormviewImport::AdvanceSlides);
    connect(rastx1_, &RastxPane::ImageChanged, this, [this] {
        ForgetSelection();
        SetCaption();
    });
    connect(rastx1_, &RastxPane::ImageDblClick, this, [this] { ToggleMaximized(*this); });
    rastx1_->installEventFilter(this);
    rastx1_->viewport()->installEventFilter(this);
    FrameToolBar1_->PictureToolBack()->installEventFilter(this);
}

// A rectangle belongs to the picture that it was dragged on, at its zoom.
void FormviewImport::ForgetSelection() {
    rastx1_->rastx().ClearSelect();
    session_.SelectionViewActive = false;
    FrameToolBar1_->LabelXY()->clear();
    FrameToolBar1_->LabelWH()->clear();
}

void FormviewImport::SetLabelXY(const std::string& text) {
    FrameToolBar1_->LabelXY()->setText(ShownText(text));
    surroundings_.labels.SetLabelXY(text);
}

void FormviewImport::SetLabelWH(const std::string& text) {
    FrameToolBar1_->LabelWH()->setText(ShownText(text));
    surroundings_.labels.SetLabelWH(text);
}

void FormviewImport::SetImportToolTip(const std::string& text) {
    rastx1_->setToolTip(ShownText(text));
}

// The window.

void FormviewImport::resizeEvent(QResizeEvent*) {
    Form_Resize();
}

void FormviewImport::changeEvent(QEvent* event) {
    // A desktop may tell of the new state after the new size.
    if (event->type() == QEvent::WindowStateChange) Form_Resize();
    QWidget::changeEvent(event);
}

void FormviewImport::closeEvent(QCloseEvent*) {
    Form_Unload();
    Q_EMIT Unloaded();
}

void FormviewImport::keyPressEvent(QKeyEvent* event) {
    keyPressed_ = true;
    // Any key only leads on to the next slide.
    if (event->key() == Qt::Key_Escape && !session_.SlideRunning) return static_cast<void>(close());
    QWidget::keyPressEvent(event);
}

void FormviewImport::keyReleaseEvent(QKeyEvent* event) {
    if (event->isAutoRepeat()) return;
    if (std::exchange(keyPressed_, false)) AdvanceSlides();
    if (event->key() == Qt::Key_F7) Q_EMIT ExportViewerWanted();
}

void FormviewImport::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!childAt(event->position().toPoint())) close();
}

// A slide show goes on wherever the pane is clicked, also beside the picture of a small file or none.
bool FormviewImport::eventFilter(QObject* watched, QEvent* event) {
    // The pane keeps keys that scroll to itself.
    if (watched == rastx1_ && event->type() == QEvent::KeyPress) keyPressed_ = true;
    const bool onPane = watched == rastx1_->viewport() && event->type() == QEvent::MouseButtonPress;
    const bool onStrip =
        watched == FrameToolBar1_->PictureToolBack() && event->type() == QEvent::MouseButtonRelease;
    const bool left =
        (onPane || onStrip) && static_cast<const QMouseEvent*>(event)->button() == Qt::LeftButton;
    if (left) AdvanceSlides();
    return QWidget::eventFilter(watched, event);
}

}  // namespace tessara
