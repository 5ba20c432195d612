#pragma once

#include <string>

namespace tessara {

/// What the options dialog needs of the window around it.
class OptionsHost {
  public:
    virtual ~OptionsHost() = default;
    /// The key of the file list's selected row; empty where there is none.
    virtual std::string SelectedFile() const = 0;
    /// Enters a folder as the start does: path box, tree and list.
    virtual void EnterFolder(const std::string& folder) = 0;
    virtual void SetmnFile() = 0;
    virtual void PrintNote() = 0;
    virtual void FileViewFile_PathChange() = 0;
    virtual void RunHtmlHelp(const std::string& topic) = 0;
    /// The dialogs that stand for the last two tabs; both return when they are closed.
    virtual void ShowDialogTrcol() = 0;
    virtual void ShowDialogSlideOpt() = 0;
};

}  // namespace tessara
