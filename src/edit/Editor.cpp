#include "edit/Editor.h"

namespace tessara {

Picture Editor::CopyExportImage() const {
    if (!exportPane.CopyClip()) return {};
    Result<Picture> copied = clipboard.Take();
    return copied ? std::move(copied).Value() : Picture();
}

void Editor::StepBack() const {
    undo.UndoCommand("SAVE");
    undo.UndoCommand("UNDO");
}

void Editor::ExportImageChanged() const {
    session.ExportChanged = session.UndoPending = true;
    host.PutviewExport(1);
}

}  // namespace tessara
