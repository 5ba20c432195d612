#pragma once

#include <random>

#include "edit/dialogs/DialogResize.h"
#include "tests/edit/RecordingEditHost.h"
#include "tests/mainwindow/EditedWindow.h"

namespace tessara::test {

/// A user who does anything at all to the pictures, one action after the other, in the whole window. Beside
/// it runs a second history that is given only what the rules say each action does to the first; after each
/// action the two must be the same in counters, flags, buttons, files and pictures.
class RandomEdits {
  public:
    explicit RandomEdits(unsigned seed);
    void Step();
    /// What has been done so far.
    const std::string& Log() const { return log_; }

  private:
    /// From `least` to `most`.
    int Pick(int least, int most) { return std::uniform_int_distribution(least, most)(random_); }
    bool Chance(int percent) { return Pick(1, 100) <= percent; }
    void Did(const std::string& action) { log_ += action + "; "; }

    // Actions.
    void ChooseEffect();
    void WorkInDialog2(Dialog2& dialog);
    void MoveSlider(Dialog2& dialog);
    void WorkInDialogResize(DialogResize& dialog);
    void Undo();
    void Redo();
    void Crop();
    void Paste();
    void CopyWholeImport();
    void Copy();
    void Reload();
    void Open();
    void PickTransparentColor();
    template <typename Dialog>
    void WhenShown(void (RandomEdits::*work)(Dialog&));

    // What the rules say of them.
    void Save() { expected_.undo.UndoCommand("SAVE"); }
    void Changed();
    void Loaded();
    /// Whether unsaved changes, where there are any, are given up; what the user will say.
    bool WillDiscard();
    void Check();
    void CheckFiles();

    std::mt19937 random_;
    std::string log_;
    ScriptedPrompts prompts_;
    ScriptedClipboard clipboard_;
    EditedWindow window_{prompts_, clipboard_};
    RecordedEditor expected_{Picture()};
    /// The export pane was put back to the import pane's picture, of which the history is told nothing.
    bool behindTheHistory_ = false;
    bool boxesLead_ = false;  ///< sliders follow a text, which never runs an effect
};

}  // namespace tessara::test
