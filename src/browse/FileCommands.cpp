#include "browse/FileCommands.h"

#include <unistd.h>

#include "browse/FileList.h"
#include "browse/FolderNaming.h"
#include "browse/FolderTree.h"
#include "browse/SelectionSummary.h"

namespace tessara {

void FileCommands::mFile_Click(int index) {
    BrowserHost& host = browser_.host;
    host.StopCapture();
    int removed = 0;
    switch (index) {
        case 0:
            return CheckRows(Check::All);
        case 1:
            return CheckRows(Check::None);
        case 2:
            return CheckRows(Check::Inverted);
        case 4:
            return RemoveCheckedFromList(removed);
        case 5:
            return AskAndDeleteFiles();
        case 7:
            return host.OpenImportViewer();
        case 8:
            return host.OpenExportViewer();
        case 10:
            return SetListMode(true, false);
        case 11:
            return SetListMode(false, false);
        case 12:
            return SetListMode(false, true);
        case 14:
            return browser_.list->FileViewFile_PathChange();
        case 16:
            return host.StartSlideShow();
        default:
            return;
    }
}

void FileCommands::mFolder_Click(int index) {
    browser_.host.StopCapture();
    FolderTree& tree = *browser_.tree;
    switch (index) {
        case 0:
            return tree.CloseTreeS();
        case 1:
            return tree.RefreshTreeViewS();
        case 2:
            if (const FolderNode* node = tree.SelectedNode()) tree.EnsureVisible(*node);
            return;
        case 4:
            return tree.Naming().AddNewFolderNode();
        default:
            return;
    }
}

void FileCommands::CheckRows(Check check) {
    FileList& list = *browser_.list;
    for (int row = 0; row < list.RowCount(); ++row)
        list.SetChecked(row, check == Check::Inverted ? !list.IsChecked(row) : check == Check::All);
    browser_.summary->SelectIcoSourceIco();
}

void FileCommands::SetListMode(bool allFiles, bool importOnly) {
    browser_.session.ConvertOptions.ListAllFiles = allFiles;
    browser_.session.ConvertOptions.ListImportOnly = importOnly;
    browser_.host.SetmnFile();
    browser_.list->FileViewFile_PathChange();
}

void FileCommands::AskAndDeleteFiles() {
    const Prompt question{"Delete the files selected?", PromptButtons::YesNo, PromptIcon::Warning};
    if (browser_.prompts.Ask(question) == Answer::Yes) DelFilefromListViewFile();
}

void FileCommands::DeleteWithQuestions() {
    const bool one = browser_.session.SelectedCount < 2;
    const std::string files = one ? "file" : "files";
    const std::string filesHave = one ? "file has" : "files have";
    std::string place = "your disk.";
    // A box that is closed without an answer deletes nothing.
    if (browser_.prompts.Ask({"Do you want to delete the selected " + files + " from your disk?",
                              PromptButtons::YesNo, PromptIcon::Warning}) == Answer::Yes) {
        DelFilefromListViewFile();
    } else {
        int removed = 0;
        RemoveCheckedFromList(removed);
        place = "above File List.";
    }
    browser_.prompts.Ask({"The selected " + filesHave + " been deleted from " + place, PromptButtons::Ok,
                          PromptIcon::Information});
}

void FileCommands::RemoveCheckedFromList(int& removed) {
    removed += static_cast<int>(browser_.list->TakeCheckedRows().size());
    browser_.summary->SelectIcoSourceIco();
}

void FileCommands::DelFilefromListViewFile() {
    for (const std::string& path : browser_.list->TakeCheckedRows()) unlink(path.c_str());
    Ignore(browser_.FileViewFile.Refresh());
}

}  // namespace tessara
