#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "edit/Editor.h"
#include "tests/Support.h"

namespace tessara::test {

/// A window that does nothing but remember. `calls` holds what happens to other windows, in order
/// ("PutviewExport 1"); the rest is kept as it stands after the last call.
class RecordingEditHost final : public EditHost {
  public:
    std::vector<std::string> calls;
    bool busy = false;
    std::map<int, bool> imageTools;
    std::map<std::pair<std::string, int>, bool> menus;
    int progressMax = 0;  ///< 0 while the bar is hidden
    std::vector<int> progress;

    void BusyCursor(bool on) override { busy = on; }
    void SetImageTool(int index, bool enabled) override { imageTools[index] = enabled; }
    void PutviewExport(int which) override { calls.push_back("PutviewExport " + std::to_string(which)); }
    void ShowProgress(int Max, bool On) override { progressMax = On ? Max : 0; }
    void SetProgress(int value) override { progress.push_back(value); }
    void StopCapture() override { calls.emplace_back("StopCapture"); }
    void Imagetool_Click(int index) override { calls.push_back("Imagetool_Click " + std::to_string(index)); }
    void SetMenuEnabled(const std::string& menu, int index, bool enabled) override {
        menus[{menu, index}] = enabled;
    }
    void RunHtmlHelp(const std::string& topic) override { calls.push_back("RunHtmlHelp " + topic); }
};

/// An export pane with its history in a folder of its own, as after the load of a picture.
struct RecordedEditor {
    TemporaryFolder folder;
    Session session;
    MemoryCarrier clipboard;
    RecordingEditHost host;
    Rastx exportPane{{.carrier = &clipboard}};
    UndoStore undo{session, exportPane, host};
    Editor editor{session, exportPane, clipboard, undo, host};

    explicit RecordedEditor(const Picture& picture) {
        session.AppPath = folder.Path();
        undo.UndoRefresh("KILL");
        session.Starting = false;
        session.UndoPending = true;
        exportPane.SetImage(picture);
    }
    // The editor refers to its neighbours.
    RecordedEditor(const RecordedEditor&) = delete;
    RecordedEditor& operator=(const RecordedEditor&) = delete;
};

}  // namespace tessara::test
