#pragma once

#include "tests/edit/RecordingEditHost.h"
#include "view/ViewHost.h"

namespace tessara::test {

/// A main window with a list of files that does nothing but remember.
class RecordingViewHost final : public ViewHost, public SelectionHost {
  public:
    std::vector<std::string> keys;
    int selected = 0;
    int madeVisible = 0;  ///< the item
    std::string labelXY, labelWH;
    int focused = 0;

    int ItemCount() const override { return static_cast<int>(keys.size()); }
    int SelectedItem() const override { return selected; }
    std::string ItemKey(int item) const override { return keys.at(static_cast<std::size_t>(item - 1)); }
    void MakeItemVisible(int item) override { madeVisible = item; }
    void RemoveItem(int item) override { keys.erase(keys.begin() + item - 1); }
    ColorNumber BackColor() const override { return RGB(0, 255, 0); }
    void FocusMainWindow() override { ++focused; }

    void SetLabelXY(const std::string& text) override { labelXY = text; }
    void SetLabelWH(const std::string& text) override { labelWH = text; }
    void SetImportToolTip(const std::string&) override {}
    void SetLabelPict(const std::string&) override {}
    void Setvalid(bool) override {}
    void BringDialog2ToFront() override {}
    void PopMenu(const std::string&) override {}
    void OpenImportViewer() override {}
    void OpenExportViewer() override {}
};

/// What viewers need, over an editor with a small export picture, "RGB".
struct RecordedViewing : RecordedEditor {
    ScriptedPrompts prompts;
    ScriptedClock clock;
    ScriptedRandom random;
    RecordingViewHost window;
    Rastx importPane{{.carrier = &clipboard}};
    SelectionClipboard selection{editor, importPane, prompts, window};
    ViewSurroundings surroundings{editor, importPane, selection, window, prompts, clock, random, window};

    RecordedViewing() : RecordedEditor(Draw("RGB")) {}

    /// Adds a file to the list: a picture in one colour.
    void AddFile(const std::string& name, int width, int height, Pixel color = kBlack) {
        Rastx file;
        file.SetImage(Must(Picture::Create(width, height, color, Alpha::None)));
        window.keys.push_back(folder.File(name));
        Must(file.SaveBmp(window.keys.back()));
    }
    /// The list's item, from 1, is what the main window shows.
    void Select(int item) {
        window.selected = item;
        session.ImagePath = window.ItemKey(item);
    }
};

}  // namespace tessara::test
