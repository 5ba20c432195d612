#include "edit/EffectSession.h"

#include <utility>

#include "edit/OwnEffects.h"

namespace tessara {

void EffectSession::PrepareScratchPictures() {
    Pic_TempImage_ = Picture();
    Pic_Image_ = editor_.CopyExportImage();
}

void EffectSession::FreshRstImage(bool Restore, bool Show) {
    if (!Show) return;
    if (Restore) Pic_TempImage_ = Pic_Image_;
    if (Pic_TempImage_.Empty()) return;
    editor_.clipboard.Put(Pic_TempImage_);
    editor_.exportPane.ClearImage();
    Ignore(editor_.exportPane.PasteClip());
    editor_.host.PutviewExport(1);
}

void EffectSession::UpdateEffects(const EffectChoice& choice) {
    FreshRstImage(true, true);
    const int height = editor_.exportPane.ImageHeight();
    editor_.host.ShowProgress(height, true);
    const EffectParameters* effect = FindEffectParameters(editor_.session.EffectCode);
    if (effect && effect->IsOwnEffect()) {
        RunOwnEffect(choice.sliders[1] / effect->divisor, choice.Check1);
        FreshRstImage(false, true);
    } else if (effect) {
        editor_.host.BusyCursor(true);
        RunPaneEffect(*effect, choice, editor_.exportPane);
        editor_.host.BusyCursor(false);
    }
    editor_.host.ShowProgress(height, false);
}

void EffectSession::RunOwnEffect(double Depth, bool keepTransparent) {
    EditHost& host = editor_.host;
    host.BusyCursor(true);
    // Own effects know colours alone.
    const Picture source = Pic_Image_.FlattenedOnWhite();
    Picture target = source;
    OwnEffects effects(source, target,
                       {.keepTransparent = keepTransparent,
                        .TransparentColor = editor_.session.TransparentColor,
                        .progressMax = [&](int max) { host.ShowProgress(max, true); },
                        .progress = [&](int value) { host.SetProgress(value); }});
    bool computed = true;
    effects.ApplyOwnEffect(editor_.session.EffectCode, Depth, [&] {
        computed = false;
        FreshRstImage(true, true);
    });
    if (computed) Pic_TempImage_ = std::move(target);
    host.BusyCursor(false);
}

void EffectSession::Apply(const EffectChoice& choice, bool Dragging) {
    if (!Dragging) SaveSnapshot();
    UpdateEffects(choice);
    editor_.ExportImageChanged();
}

void EffectSession::PrepareDrag(bool undoEnabled) {
    if (undoEnabled) {
        Ignore(editor_.exportPane.LoadImage(editor_.undo.SnapshotPath(editor_.session.UndoPosition - 1)));
    } else {
        editor_.session.UndoPending = true;
        SaveSnapshot();
    }
}

std::string EffectDialogTitle(const Session& session) {
    if (session.EffectGroup == "Effects") return "Effects - " + session.EffectCaption;
    return "Filters - " + session.EffectGroup + " - " + session.EffectCaption;
}

}  // namespace tessara
