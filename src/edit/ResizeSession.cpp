#include "edit/ResizeSession.h"

namespace tessara {

ResizeSession::ResizeSession(Editor& editor) : editor_(editor), PicTemp_(editor.CopyExportImage()) {}

void ResizeSession::Apply(const ResizeValues& values) {
    editor_.undo.UndoCommand("SAVE");
    DoResize(values);
    editor_.ExportImageChanged();
}

void ResizeSession::DoResize(const ResizeValues& values) {
    Rastx& pane = editor_.exportPane;
    editor_.host.BusyCursor(true);
    if (!PicTemp_.Empty()) editor_.clipboard.Put(PicTemp_);
    Ignore(pane.PasteClip());
    Ignore(pane.Resample(values.NewSize(0, pane.ImageWidth()), values.NewSize(1, pane.ImageHeight()), false));
    editor_.host.BusyCursor(false);
}

}  // namespace tessara
