#pragma once

#include "edit/EditHost.h"

namespace tessara {

/// What everything shares that changes the export picture.
struct Editor {
    Session& session;
    Rastx& exportPane;
    PictureCarrier& clipboard;
    UndoStore& undo;
    EditHost& host;

    /// The export picture by way of the clipboard; empty where there is none.
    Picture CopyExportImage() const;
    /// The Undo of toolbar and dialogs: the present picture is saved first, so that Redo reaches it.
    void StepBack() const;
    /// What every change of the export picture ends with.
    void ExportImageChanged() const;
};

}  // namespace tessara
