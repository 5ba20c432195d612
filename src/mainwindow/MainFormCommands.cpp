#include "edit/EffectCatalogue.h"
#include "edit/dialogs/DialogTrcol.h"
#include "mainwindow/Dialogprogress.h"
#include "mainwindow/InformationDialogs.h"
#include "mainwindow/ListedFiles.h"
#include "mainwindow/MainForm.h"
#include "settings/dialogs/Dialog1.h"

// What the menus, the toolbar and the buttons of the strip do.

namespace tessara {

void MainForm::MenuClick(const std::string& array, int index) {
    if (array == "mFolder") return fileCommands_->mFolder_Click(index);
    if (array == "mFile") return fileCommands_->mFile_Click(index);
    if (array == "mEdit") return selection_->mEdit_Click(index);
    if (array == "mnOptions") return mnOptions_Click();
    if (array == "mHelp") return mHelp_Click(index);
    if (array == "mTransform") return mTransform_Click(index);
    if (FindEffectEntry(array, index) != nullptr) return effects_->Click(array, index);
}

void MainForm::Imagetool_Click(int Index) {
    struct Tool {
        const char* menu;
        int index;
    };
    // Buttons that do what an entry of the menus does.
    static constexpr Tool kEntries[] = {
        {"mFolder", 0},
        {"mFolder", 1},
        {"mFolder", 4},
        {"mFile", 0},
        {"mFile", 1},
        {},
        {"mEdit", 0},
        {"mEdit", 1},
        {},
        {},
        {"mHelp", 0},
        {},
        {"mFile", 16},
    };
    constexpr int kDelete = 5, kUndo = 8, kRedo = 9;
    if (Index == kCaptureTool) return capture_->CaptureTool_Click();
    capture_->EndCapture();
    if (Index == kUndo) return editor_->StepBack();
    if (Index == kRedo) return undo_->UndoCommand("REDO");
    if (Index == kDelete) return fileCommands_->DeleteWithQuestions();
    if (const Tool& tool = kEntries[Index]; tool.menu != nullptr) MenuClick(tool.menu, tool.index);
}

void MainForm::mTransform_Click(int Index) {
    constexpr int kFirstThatReloads = 3;
    if (Index >= kFirstThatReloads) return convert_->CommandCon_Click(1);
    session_.ConvertOptions.ConvertScope = static_cast<std::uint8_t>(Index);
    summary_->PrintNote();
    convert_->CommandCon_Click(0);
}

void MainForm::mHelp_Click(int Index) {
    capture_->EndCapture();
    const OpenLinkFunction open = [this](const std::string& target, const std::string& kind) {
        services_.links.OpenLink(target, kind);
    };
    switch (Index) {
        case 0:
            return help_.RunHtmlHelp("2-1.htm");
        case 2:
            return static_cast<void>(FrmHomePage(open, this).exec());
        case 3:
            return static_cast<void>(DialogProd(open, this).exec());
        case 4:
            return open(kNewsletterAddress, "WEB");
        case 5:
            return static_cast<void>(ServicesForm(open, this).exec());
        case 9:
            return static_cast<void>(AboutForm(open, this).exec());
    }
}

void MainForm::mnOptions_Click() {
    session_.OptionsFromConvert = false;
    Loaddialog1();
}

void MainForm::Loaddialog1() {
    const ConvertOptions before = session_.ConvertOptions;
    Dialog1(session_, services_.prompts, *this, this).Loaddialog1();
    const ConvertOptions& after = session_.ConvertOptions;
    const bool listsOthers = after.ListAllFiles != before.ListAllFiles ||
                             after.ListImportOnly != before.ListImportOnly ||
                             (after.ListImportOnly && after.ImportOn != before.ImportOn);
    // A conversion that follows needs the files and the picture as they are.
    const bool converts = session_.OptionsFromConvert && session_.ConvertConfirmed;
    if (listsOthers && !converts) list_->FileViewFile_PathChange();
}

void MainForm::LoadDialog2() {
    Dialog2 dialog({*editor_, services_.prompts, &rastx1(1), &rastx1(0), [this] { ShowDialogTrcol(); }},
                   this);
    Dialog2_ = &dialog;
    dialog.LoadDialog2();
    Dialog2_ = nullptr;
}

void MainForm::ShowDialogTrcol() {
    DialogTrcol(*editor_, this).exec();
}

void MainForm::Convert() {
    targetFolder_->Withdraw();
    ListedFiles files(*list_);
    Dialogprogress dialog({session_, rastx1(1).rastx(), files, services_.prompts, FrameRst_[0],
                           [this](bool on) { BusyCursor(on); }, [this] { summary_->SelectIcoSourceIco(); }},
                          this);
    connect(toolbar_, &Toolbar::ProgressToFront, &dialog, &QWidget::raise);
    dialog.LoadDialogprogress();
    if (!dialog.LastWritten().empty()) targetFolder_->Offer(dialog.LastWritten());
}

}  // namespace tessara
