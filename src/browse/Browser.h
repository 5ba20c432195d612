#pragma once

#include <string>

#include "browse/Enumerators.h"
#include "desktop/Prompts.h"
#include "desktop/Shell.h"
#include "settings/Session.h"

namespace tessara {

class FolderTree;
class FileList;
class PathBox;
class SelectionSummary;

/// What browsing needs of the window around it. MainForm has it for real, tests have a recording one.
class BrowserHost {
  public:
    virtual ~BrowserHost() = default;

    // The panes and their history.
    virtual void LoadPict(std::string path) = 0;
    virtual void Setvalid(bool valid) = 0;
    /// ClearImage on both panes.
    virtual void ClearPanes() = 0;
    /// ClearSelect on the import pane; the flag of its mouse handler is cleared too.
    virtual void ClearSelection() = 0;
    virtual void UndoRefresh(const std::string& command) = 0;
    virtual void StopCapture() = 0;
    virtual void OpenImportViewer() = 0;
    virtual void OpenExportViewer() = 0;
    /// Opens the import viewer and lets it show one file after the other.
    virtual void StartSlideShow() = 0;

    // The frame. Panels count from 1, as their keys do.
    virtual void SetFilePanel(int panel, const std::string& text) = 0;  ///< StatusBarSfile
    virtual void SetOptionsPanel(const std::string& text) = 0;          ///< panel 1 of StatusBarSico
    virtual void SetCaption(const std::string& text) = 0;
    virtual void SetTreeToolTip(const std::string& text) = 0;
    virtual void BusyCursor(bool on) = 0;
    /// ProgressBarS(0), from 1 to 110; `shown` False hides it.
    virtual void ShowListProgress(int value, bool shown) = 0;
    virtual void Repaint() = 0;
    virtual void SetKeyPreview(bool on) = 0;

    // Menus and toolbar: `menu` is the name of the control array ("mFile"), or of a menu head with index -1.
    virtual void SetMenuEnabled(const std::string& menu, int index, bool enabled) = 0;
    virtual void SetImageTool(int index, bool enabled) = 0;
    virtual void PopMenu(const std::string& selector) = 0;
    /// Marks the list mode in the file menu.
    virtual void SetmnFile() = 0;
};

/// What the browsing components share. Each is made with a reference to it and enters itself.
struct Browser {
    Session& session;
    Prompts& prompts;
    Shell& shell;
    BrowserHost& host;

    FileEnumerator FileViewFile;
    FolderTree* tree = nullptr;
    FileList* list = nullptr;
    PathBox* box = nullptr;
    SelectionSummary* summary = nullptr;
};

}  // namespace tessara
