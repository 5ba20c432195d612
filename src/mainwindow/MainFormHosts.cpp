#include <QApplication>
#include <QCursor>
#include <QMenu>

#include "core/Text.h"
#include "desktop/PathText.h"
#include "mainwindow/MainForm.h"
#include "view/DialogSlideOpt.h"

// What the components ask of the window.

namespace tessara {
namespace {

constexpr int kProgressInterval = 50;  ///< milliseconds between two states of a progress bar

/// The branches of the menu that open as pop-ups.
struct PopUp {
    std::string_view selector;
    std::string_view menu;
};
constexpr PopUp kPopUps[] = {
    {"FILE", "mnFile"},
    {"TREEVIEWS", "mnFolder"},
    {"RST", "mnEdit"},
    {"CONVERT", "mnTransform"},
};

}  // namespace

void MainForm::LoadPict(std::string path) {
    workingImage_->LoadPict(path);
}

void MainForm::Setvalid(bool valid) {
    workingImage_->Setvalid(valid);
}

void MainForm::ClearPanes() {
    for (RastxPane* pane : panes_) pane->rastx().ClearImage();
    // The list is made anew: what was done with the one before is over.
    targetFolder_->Withdraw();
}

void MainForm::ClearSelection() {
    session_.SelectionActive = false;
    selection_->ForgetSelection();
}

void MainForm::UndoRefresh(const std::string& command) {
    undo_->UndoRefresh(command);
}

void MainForm::SetFilePanel(int panel, const std::string& text) {
    StatusBarSfile_->SetText(panel, ShownText(text));
}

void MainForm::SetOptionsPanel(const std::string& text) {
    StatusBarSico_->SetText(1, ShownText(text));
}

void MainForm::SetCaption(const std::string& text) {
    setWindowTitle(ShownText(text));
}

void MainForm::SetTreeToolTip(const std::string& text) {
    tree_->TreeViewS()->setToolTip(ToolTipOf(ShownText(text)));
}

void MainForm::BusyCursor(bool on) {
    // Under a slider that is being dragged it would flicker at every step.
    if (on && Dialog2_ != nullptr && QApplication::mouseButtons() != Qt::NoButton) return;
    // The pointer is set, not stacked: one normal pointer ends any number of hourglasses.
    while (QApplication::overrideCursor() != nullptr) QApplication::restoreOverrideCursor();
    if (on) QApplication::setOverrideCursor(Qt::WaitCursor);
}

void MainForm::ShowListProgress(int value, bool shown) {
    QProgressBar& bar = *ProgressBarS_[0];
    // A bar draws itself at once, and to draw it at every step would take longer than the steps.
    constexpr int kDrawInterval = 40;  // milliseconds
    const bool isDue = !shown || bar.isHidden() || listProgressDrawn_.hasExpired(kDrawInterval);
    bar.setVisible(shown);
    if (!isDue) return;
    bar.setValue(value);
    listProgressDrawn_.start();
}

void MainForm::Repaint() {
    if (isVisible()) repaint();
}

void MainForm::SetKeyPreview(bool on) {
    keyPreview_ = on;
}

void MainForm::SetMenuEnabled(const std::string& menu, int index, bool enabled) {
    menus_->SetEnabled(menu, index, enabled);
}

void MainForm::SetImageTool(int index, bool enabled) {
    toolbar_->SetImageTool(index, enabled);
}

void MainForm::PopMenu(const std::string& selector) {
    PopMenuAt(QCursor::pos(), selector);
}

void MainForm::PopMenuAt(const QPoint& place, const std::string& selector) {
    const std::string kind = UpperCase(selector);
    if (kind == "FILE" && list_->RowCount() == 0) return;
    for (const PopUp& popUp : kPopUps)
        if (popUp.selector == kind) menus_->Menu(popUp.menu)->popup(place);
}

void MainForm::SetmnFile() {
    const ConvertOptions& options = session_.ConvertOptions;
    const int mode = options.ListAllFiles ? 10 : options.ListImportOnly ? 12 : 11;
    for (int index : {10, 11, 12}) menus_->SetChecked("mFile", index, index == mode);
}

void MainForm::SetImageCommandsEnabled(bool enabled) {
    CommandCon_[1]->setEnabled(enabled);
    for (const char* head : {"mnEffects", "mnFilters"}) menus_->SetEnabled(head, MainMenu::kHead, enabled);
    menus_->SetEnabled("mEdit", 3, enabled);
    for (int index : {0, 1, 2, 4}) menus_->SetEnabled("mTransform", index, enabled);
}

void MainForm::SetImportToolTip(const std::string& text) {
    rastx1(0).setToolTip(ShownText(text));
}

void MainForm::SetLabelPict(const std::string& text) {
    LabelPict_->setText(ShownText(text));
}

void MainForm::ClearPositionLabels() {
    SetLabelXY({});
    SetLabelWH({});
}

void MainForm::SetLabelXY(const std::string& text) {
    LabelXY_->setText(ShownText(text));
    ShowLabelsThatFit();
}

void MainForm::SetLabelWH(const std::string& text) {
    LabelWH_->setText(ShownText(text));
    ShowLabelsThatFit();
}

/// In a narrow window the buttons come first: half a number beside them would be a wrong one.
void MainForm::ShowLabelsThatFit() {
    const int end = CommandCon_[1]->x();
    for (QLabel* label : {LabelXY_, LabelWH_})
        label->setVisible(label->x() + label->sizeHint().width() <= end);
    // What parts the two labels is only wanted between two texts.
    const bool parts = !LabelWH_->text().isEmpty() && !LabelWH_->isHidden();
    for (QFrame* marker : Image2and3_) marker->setVisible(parts);
}

void MainForm::PutviewExport(int which) {
    workingImage_->PutviewExport(which);
}

void MainForm::SetObjFalse() {
    capture_->TimerGrasp().SetEnabled(false);
    for (int index : {0, 1, 2, 4}) menus_->SetEnabled("mTransform", index, false);
    for (int index : {3, 4, 5, 12}) toolbar_->SetImageTool(index, false);
}

void MainForm::CheckPaste() {
    selection_->CheckPaste(services_.clipboard.HasPicture());
}

void MainForm::BringDialog2ToFront() {
    if (Dialog2_ == nullptr) return;
    Dialog2_->raise();
    Dialog2_->activateWindow();
}

void MainForm::ShowProgress(int Max, bool On) {
    if (On) {
        ProgressBarS_[1]->setRange(0, Max);
        ProgressBarS_[1]->setValue(0);
        progressShownAt_ = services_.clock.Now();
    }
    ProgressBarS_[1]->setVisible(On);
    BusyCursor(On);
}

void MainForm::SetProgress(int value) {
    // Painting the bar for each row of a picture would take longer than most effects do.
    const std::int64_t now = services_.clock.Now();
    if (now - progressShownAt_ < kProgressInterval) return;
    progressShownAt_ = now;
    ProgressBarS_[1]->setValue(value);
}

void MainForm::StopCapture() {
    capture_->EndCapture();
}

void MainForm::SetWindowState(Qt::WindowStates states) {
    setWindowState(states);
    if (!states.testFlag(Qt::WindowMinimized)) activateWindow();
}

void MainForm::SetCapturePicture(PictureState picture) {
    toolbar_->Imagetool(kCaptureTool)->SetPicture(picture);
}

void MainForm::ImportPictureTaken() {
    selection_->ForgetSelection();
    selection_->ShowImportSize();
}

void MainForm::RunHtmlHelp(const std::string& topic) {
    help_.RunHtmlHelp(topic);
}

void MainForm::RefreshViewers(int which) {
    viewers_->PutviewExport(which);
}

void MainForm::OpenImportViewer() {
    viewers_->ShowFormviewImport();
}

void MainForm::OpenExportViewer() {
    viewers_->ShowFormviewExport();
}

void MainForm::StartSlideShow() {
    viewers_->StartSlideShow();
}

void MainForm::MakeItemVisible(int item) {
    QTreeWidget* table = list_->ListViewFile();
    table->scrollToItem(table->topLevelItem(item - 1));
}

void MainForm::RemoveItem(int item) {
    list_->TakeRows({item - 1});
    summary_->SelectIcoSourceIco();
}

void MainForm::ShowDialogSlideOpt() {
    DialogSlideOpt(session_, services_.prompts, this).exec();
}

void MainForm::PrintNote() {
    summary_->PrintNote();
}

std::string MainForm::SelectedFile() const {
    const int row = list_->SelectedRow();
    return row < 0 ? session_.ImagePath : list_->KeyOf(row);
}

ColorNumber MainForm::BackColor() const {
    const QColor color = palette().color(QPalette::Window);
    return RGB(color.red(), color.green(), color.blue());
}

}  // namespace tessara
