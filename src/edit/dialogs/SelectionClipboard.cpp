#include "edit/dialogs/SelectionClipboard.h"

#include "edit/WorkingImage.h"

namespace tessara {
namespace {

constexpr int kPasteButton = 7, kCaptureButton = 11;

/// Entries of the menu mEdit.
enum Entry { kCopy = 0, kPaste = 1, kWholeImport = 3, kCapture = 5, kEntireScreen = 6 };

}  // namespace

SelectionClipboard::SelectionClipboard(Editor& editor, Rastx& importPane, Prompts& prompts,
                                       SelectionHost& host)
    : editor_(editor),
      importPane_(importPane),
      prompts_(prompts),
      host_(host),
      gesture_(editor, importPane, host, editor.session.SelectionActive) {}

void SelectionClipboard::mEdit_Click(int Index) {
    if (Index != kCapture) editor_.host.StopCapture();
    switch (Index) {
        case kCopy:
            return CopyToClipboard();
        case kPaste:
            if (!Paste()) return;
            break;
        case kWholeImport:
            if (!CopyWholeImport()) return;
            break;
        case kCapture:
            editor_.host.Imagetool_Click(kCaptureButton);
            break;
        case kEntireScreen:
            CaptureEntireScreen();
            break;
    }
    ShowImportSize();
}

void SelectionClipboard::ShowImportSize() {
    host_.SetLabelPict(SizeLabel(importPane_));
    host_.SetImportToolTip(kSelectToolTip);
}

void SelectionClipboard::ForgetSelection() {
    importPane_.ClearSelect();
    host_.SetLabelXY({});
    host_.SetLabelWH({});
}

void SelectionClipboard::CopyToClipboard() {
    Ignore(editor_.exportPane.CopyClip());
    CheckPaste(true);
}

void SelectionClipboard::CheckPaste(bool clipboardHoldsBitmap) {
    editor_.host.SetMenuEnabled("mEdit", kPaste, clipboardHoldsBitmap);
    editor_.host.SetImageTool(kPasteButton, clipboardHoldsBitmap);
}

/// Without a bitmap the panes stay as they are, and everything else happens all the same.
bool SelectionClipboard::Paste() {
    if (!ConfirmDiscardExport(editor_.session.ExportChanged, prompts_)) return false;
    editor_.undo.UndoCommand("SAVE");
    ForgetSelection();
    Ignore(importPane_.PasteClip());
    Ignore(editor_.exportPane.PasteClip());
    editor_.host.PutviewExport(2);
    editor_.session.ImagePath.clear();
    host_.Setvalid(true);
    DisableListConversions();
    editor_.session.UndoPending = true;
    editor_.session.ExportChanged = false;
    return true;
}

bool SelectionClipboard::CopyWholeImport() {
    if (!ConfirmDiscardExport(editor_.session.ExportChanged, prompts_)) return false;
    editor_.undo.UndoCommand("SAVE");
    ForgetSelection();
    Ignore(importPane_.CopyClip());
    Ignore(editor_.exportPane.PasteClip());
    editor_.host.PutviewExport(1);
    DisableListConversions();
    editor_.session.ExportChanged = false;
    editor_.session.UndoPending = true;
    return true;
}

void SelectionClipboard::CaptureEntireScreen() {
    if (!ConfirmDiscardExport(editor_.session.ExportChanged, prompts_)) return;
    editor_.undo.UndoCommand("SAVE");
    // One look at the screen serves both panes: some desktops ask the user each time.
    if (importPane_.CaptureScreen()) {
        editor_.exportPane.SetImage(importPane_.Image());
        ForgetSelection();
        host_.Setvalid(true);
        editor_.host.PutviewExport(2);
    }
    editor_.session.UndoPending = true;
}

void SelectionClipboard::DisableListConversions() {
    for (const int index : {1, 2}) editor_.host.SetMenuEnabled("mTransform", index, false);
}

void SelectionClipboard::rastx1_ImageMouseDown(int Index) {
    if (Index == 0) gesture_.ImageMouseDown(viewer_);
}

void SelectionClipboard::rastx1_ImageMouseMove(int Index) {
    if (Index == 0) gesture_.ImageMouseMove();
}

void SelectionClipboard::rastx1_ImageMouseUp(int Index) {
    if (Index == 0) gesture_.ImageMouseUp();
}

void SelectionClipboard::rastx1_ImageRightClick(int Index) {
    host_.BringDialog2ToFront();
    if (Index == 1) host_.PopMenu("RST");
}

void SelectionClipboard::rastx1_ImageDblClick(int Index) {
    if (Index == 0)
        host_.OpenImportViewer();
    else
        host_.OpenExportViewer();
}

}  // namespace tessara
