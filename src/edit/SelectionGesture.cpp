#include "edit/SelectionGesture.h"

namespace tessara {
namespace {

/// How far opposite edges must be apart, at least: a click that slips is no selection.
constexpr int kLeastDistance = 3;

constexpr int kCopyButton = 6;

}  // namespace

SelectionGesture::Edges SelectionGesture::CurrentEdges() const {
    return {pane_.SelLeft(), pane_.SelTop(), pane_.SelRight(), pane_.SelBottom()};
}

void SelectionGesture::ImageMouseDown(SelectionGesture* other) {
    if (active_) pane_.ClearSelect();
    if (other && other->active_) {
        other->pane_.ClearSelect();
        other->active_ = false;
    }
    pane_.BeginSelect();
    labels_.SetLabelXY(std::to_string(pane_.MouseX()) + "," + std::to_string(pane_.MouseY()));
    remembered_ = CurrentEdges();
}

void SelectionGesture::ImageMouseMove() {
    ShowSize();
}

void SelectionGesture::ShowSize() {
    const auto [left, top, right, bottom] = CurrentEdges();
    const bool spans = right != left && bottom != top;
    labels_.SetLabelWH(spans ? std::to_string(right - left + 1) + " x " + std::to_string(bottom - top + 1)
                             : std::string());
}

void SelectionGesture::ImageMouseUp() {
    const Edges edges = CurrentEdges();
    const auto [left, top, right, bottom] = edges;
    if (edges == remembered_ || bottom - top < kLeastDistance || right - left < kLeastDistance) {
        // A click would leave a speck on the picture.
        pane_.ClearSelect();
        active_ = false;
        return;
    }
    remembered_ = edges;
    active_ = true;
    labels_.SetLabelXY(std::to_string(left) + "," + std::to_string(top));
    ShowSize();
    Crop();
}

void SelectionGesture::Crop() {
    Ignore(pane_.CopySelection());
    labels_.SetImportToolTip("Import Image... Double-Click to open a new window");
    editor_.undo.UndoCommand("SAVE");
    Ignore(editor_.exportPane.PasteClip());
    editor_.host.SetMenuEnabled("mEdit", 0, true);
    editor_.host.SetImageTool(kCopyButton, true);
    editor_.ExportImageChanged();
}

}  // namespace tessara
