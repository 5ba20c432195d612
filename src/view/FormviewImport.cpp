#include "view/FormviewImport.h"

#include <QScreen>
#include <algorithm>
#include <array>
#include <filesystem>

#include "desktop/PathText.h"
#include "desktop/SpokenRole.h"
#include "edit/LoadRoute.h"
#include "view/ViewerPlace.h"
#include "view/ViewerTexts.h"

namespace tessara {

FormviewImport::FormviewImport(const ViewSurroundings& surroundings)
    : surroundings_(surroundings),
      session_(surroundings.editor.session),
      host_(surroundings.host),
      FrameToolBar1_(new ViewerToolbar(this)),
      rastx1_(new RastxPane({.carrier = &surroundings.editor.clipboard}, this)),
      selection_(surroundings.editor, rastx1_->rastx(), *this, session_.SelectionViewActive),
      slides_(session_, walk_, *this, surroundings.clock, surroundings.random) {
    SetSpokenRole(this, QAccessible::Window);
    setObjectName(QStringLiteral("FormviewImport"));
    rastx1_->setObjectName(QStringLiteral("rastx1(0)"));
    rastx1_->setAccessibleName(QStringLiteral("Import image"));
    connect(FrameToolBar1_->PictureToolBack(), &ToolStrip::Imagetool_Click, this,
            &FormviewImport::Imagetool_Click);
    ConnectPane();
    Form_Load();
}

void FormviewImport::Form_Load() {
    walk_.GoTo(host_.SelectedItem());
    SetupForm();
}

void FormviewImport::SetupForm() {
    surroundings_.editor.host.BusyCursor(true);
    PlaceViewer(*this);
    FrameToolBar1_->Place(screen()->geometry().width());
    SetBackPict();
    SetupRastx();
    session_.ViewImportOpen = true;
    surroundings_.selection.SetViewerGesture(&selection_);
    LoadPict(session_.ImagePath);
    SetCaption();
    surroundings_.editor.host.BusyCursor(false);
    show();
    rastx1_->setFocus();
}

void FormviewImport::SetupRastx() {
    rastx1_->SetViewMode(2);
    rastx1_->setGeometry(0, 24, std::max(0, width() - 6), std::max(0, height() - 50));
}

void FormviewImport::SetCaption() {
    // LabelPict tells the size at 100 %, the other labels positions and sizes at the present zoom.
    const Rastx& pane = rastx1_->rastx();
    FrameToolBar1_->SetCaption(
        width(), QSize(pane.ImageWidth(), pane.ImageHeight()).expandedTo({ImageWidth100_, ImageHeight100_}));
}

void FormviewImport::Form_Resize() {
    SetupRastx();
    SetCaption();
    SetImageTool(kFullScreen, !isMaximized());
    SetImageTool(kNormalShow, isMaximized());
}

void FormviewImport::Form_Unload() {
    slides_.Unload();
    surroundings_.selection.SetViewerGesture(nullptr);
    session_.SelectionViewActive = session_.ViewImportOpen = false;
}

void FormviewImport::LoadPict(const std::string& path) {
    Rastx& pane = rastx1_->rastx();
    pane.ClearImage();
    if (path.empty()) {
        PasteImportPicture();
    } else {
        std::string loaded = path;
        LoadIntoPanes(loaded, std::array{&pane},
                      {session_, surroundings_.editor.clipboard, host_.BackColor()});
    }
    Ignore(pane.CopyClip());
    TellPicture(path);
}

void FormviewImport::TakeImportPicture() {
    rastx1_->rastx().ClearImage();
    PasteImportPicture();
    const int item = host_.SelectedItem();
    // A running show keeps its place, and its buttons.
    if (item > 0 && host_.ItemKey(item) == session_.ImagePath && !session_.SlideRunning) walk_.GoTo(item);
    TellPicture(session_.ImagePath);
}

void FormviewImport::PasteImportPicture() {
    Ignore(surroundings_.importPane.CopyClip());
    Ignore(rastx1_->rastx().PasteClip());
}

void FormviewImport::TellPicture(const std::string& path) {
    const Rastx& pane = rastx1_->rastx();
    SetImportToolTip(kSelectToolTip);
    setWindowTitle(ShownText(CaptionText(path, walk_.ListIndex, ItemCount())));
    FrameToolBar1_->LabelPict()->setText(ShownText(PictureSizeText(pane.ImageWidth(), pane.ImageHeight())));
    ShowZoom(100);
    // The level stays: the next step of the zoom goes on from that of the former picture.
    ImageWidth100_ = pane.ImageWidth();
    ImageHeight100_ = pane.ImageHeight();
    SetCaption();
}

void FormviewImport::Loadfile00() {
    if (!walk_.OnItem()) return;
    surroundings_.editor.host.BusyCursor(true);
    host_.MakeItemVisible(walk_.ListIndex);
    LoadPict(host_.ItemKey(walk_.ListIndex));
    surroundings_.editor.host.BusyCursor(false);
}

void FormviewImport::Zoom(int index) {
    surroundings_.editor.host.BusyCursor(true);
    if (index == kZoomOut) zoom_.ZoomOut();
    if (index == kZoomIn) zoom_.ZoomIn();
    SetImageTool(kZoomOut, zoom_.CanZoomOut());
    SetImageTool(kZoomIn, zoom_.CanZoomIn());
    // Always from the picture at 100 %, so that no step suffers from those before.
    if (ImageWidth100_ > 0) {
        Ignore(rastx1_->rastx().PasteClip());
        Ignore(rastx1_->rastx().Resample(zoom_.Scaled(ImageWidth100_), zoom_.Scaled(ImageHeight100_), true));
    }
    ShowZoom(zoom_.Percent());
    surroundings_.editor.host.BusyCursor(false);
}

void FormviewImport::ShowZoom(int percent) {
    FrameToolBar1_->LabelZoom()->setText(ShownText(ZoomText(percent)));
}

// The question comes after the removal, and No does not bring the item back.
void FormviewImport::DeleteFile() {
    if (!walk_.OnItem()) return;
    const std::string key = host_.ItemKey(walk_.ListIndex);
    host_.RemoveItem(walk_.ListIndex);
    const Answer answer = surroundings_.prompts.Ask(
        {"This file has been deleted from the Current List.\n\nDo you want to delete it from your disk?",
         PromptButtons::YesNo});
    std::error_code ignored;
    if (answer == Answer::Yes) std::filesystem::remove(key, ignored);
    Loadfile00();
}

}  // namespace tessara
