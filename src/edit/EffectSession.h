#pragma once

#include <string>

#include "edit/Editor.h"
#include "edit/EffectParameters.h"

namespace tessara {

/// What the effect dialog does to the export pane and its history. Every run of the effect starts from the
/// picture that the pane held at first, whatever was applied or undone since.
class EffectSession {
  public:
    explicit EffectSession(Editor& editor) : editor_(editor) {}

    /// Takes the export picture, by way of the clipboard, as the one to start from.
    void PrepareScratchPictures();
    /// Shows the working picture in the pane, with `Restore` after putting it back to the first one. Nothing
    /// is done without `Show`.
    void FreshRstImage(bool Restore, bool Show);
    /// Runs the effect of EffectCode once.
    void UpdateEffects(const EffectChoice& choice);

    /// A live preview has taken its snapshot already.
    void Apply(const EffectChoice& choice, bool Dragging);
    void Undo() { editor_.StepBack(); }
    void SaveSnapshot() { editor_.undo.UndoCommand("SAVE"); }
    /// What comes before the Apply of a live preview. The first one, when nothing can be undone yet, takes a
    /// snapshot of the untouched picture.
    void PrepareDrag(bool undoEnabled);

    bool UndoEnabled() const { return editor_.session.UndoEnabled; }

  private:
    void RunOwnEffect(double Depth, bool keepTransparent);

    Editor& editor_;
    Picture Pic_Image_;      ///< as the dialog found it
    Picture Pic_TempImage_;  ///< the working copy
};

/// "Effects - Wave", "Filters - Stylize - Aqua ".
std::string EffectDialogTitle(const Session& session);

}  // namespace tessara
