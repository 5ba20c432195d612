#include "edit/dialogs/EffectCommands.h"

#include <algorithm>

#include "edit/EffectParameters.h"
#include "edit/TransparentColor.h"

namespace tessara {

void EffectCommands::Click(std::string_view array, int Index) {
    Editor& editor = surroundings_.editor;
    editor.host.StopCapture();
    const EffectEntry* entry = FindEffectEntry(array, Index);
    if (!entry) return;

    Session& session = editor.session;
    session.EffectCaption = EffectCaptionOf(entry->caption);
    session.EffectCode = -1;
    session.EffectGroup = std::ranges::find(EffectMenus(), array, &EffectMenu::array)->group;
    session.EffectMenuIndex = Index;
    session.EffectSeed = surroundings_.random.Next();
    switch (entry->kind) {
        case EffectKind::None:
            break;
        case EffectKind::Direct:
            RunDirect(*entry);
            break;
        case EffectKind::AskColor:
            RunWithColor(*entry);
            break;
        case EffectKind::Dialog:
            session.EffectCode = entry->code;
            surroundings_.LoadDialog2();
            break;
        case EffectKind::Resize:
            surroundings_.LoaddialogResize();
            break;
        case EffectKind::Undo:
            editor.host.Imagetool_Click(8);
            break;
        case EffectKind::Redo:
            editor.host.Imagetool_Click(9);
            break;
    }
}

void EffectCommands::RunDirect(const EffectEntry& entry) {
    Editor& editor = surroundings_.editor;
    editor.undo.UndoCommand("SAVE");
    editor.host.BusyCursor(true);
    const double number[] = {double(entry.argument)};
    Ignore(
        RunOperation(editor.exportPane, entry.operation, number, RotationBackground(editor.session), false));
    editor.host.BusyCursor(false);
    editor.ExportImageChanged();
}

void EffectCommands::RunWithColor(const EffectEntry& entry) {
    Editor& editor = surroundings_.editor;
    editor.undo.UndoCommand("SAVE");
    // A dialog that was cancelled reports the colour that it started with, and that one is used.
    const ColorNumber color =
        surroundings_.prompts.PickColor("Select Mask Color", editor.session.TransparentColor);
    Ignore(RunOperation(editor.exportPane, entry.operation, {}, color, false));
    editor.ExportImageChanged();
}

}  // namespace tessara
