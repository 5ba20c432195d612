#pragma once

#include "desktop/ConfirmDiscardExport.h"
#include "edit/SelectionGesture.h"

namespace tessara {

/// What the clipboard commands and the panes' events need of the window, beside EditHost.
class SelectionHost : public SelectionLabels {
  public:
    virtual void Setvalid(bool valid) = 0;
    virtual void SetLabelPict(const std::string& text) = 0;
    /// Where the effect dialog is on screen.
    virtual void BringDialog2ToFront() = 0;
    virtual void PopMenu(const std::string& selector) = 0;
    virtual void OpenImportViewer() = 0;
    virtual void OpenExportViewer() = 0;
};

/// The menu of copying and pasting, and what the mouse does on the two panes. Index 0 is the import pane, 1
/// the export pane.
class SelectionClipboard {
  public:
    SelectionClipboard(Editor& editor, Rastx& importPane, Prompts& prompts, SelectionHost& host);

    void mEdit_Click(int Index);
    /// Takes the import pane's rectangle away, and what the labels tell of it.
    void ForgetSelection();
    /// LabelPict and the import pane's tooltip, for a picture that has just come into both panes.
    void ShowImportSize();
    /// Paste is possible while the clipboard holds a bitmap: to be asked at each paint and before the menu.
    void CheckPaste(bool clipboardHoldsBitmap);

    void rastx1_ImageMouseDown(int Index);
    void rastx1_ImageMouseMove(int Index);
    void rastx1_ImageMouseUp(int Index);
    void rastx1_ImageRightClick(int Index);
    void rastx1_ImageDblClick(int Index);

    SelectionGesture& ImportGesture() { return gesture_; }
    /// The gesture of the import viewer while it is open, else null.
    void SetViewerGesture(SelectionGesture* viewer) { viewer_ = viewer; }

  private:
    void CopyToClipboard();
    bool Paste();
    bool CopyWholeImport();
    void CaptureEntireScreen();
    /// The panes hold a picture without a file behind it.
    void DisableListConversions();

    Editor& editor_;
    Rastx& importPane_;
    Prompts& prompts_;
    SelectionHost& host_;
    SelectionGesture gesture_;
    SelectionGesture* viewer_ = nullptr;
};

}  // namespace tessara
