#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "browse/Browser.h"

namespace tessara::test {

/// A window that does nothing but remember. `calls` holds what happens to the panes, the history and other
/// windows, in order ("LoadPict /tmp/a.png"); the frame's state is kept as it stands after the last call.
class RecordingHost final : public BrowserHost {
  public:
    std::vector<std::string> calls;
    std::map<int, std::string> filePanels;
    std::vector<std::string> totals;  ///< all texts that panel 1 of them had
    std::string optionsPanel;
    std::string caption;
    std::string treeToolTip;
    bool busy = false;
    bool keyPreview = true;
    bool progressShown = false;
    std::vector<int> progress;  ///< each value that was set while the bar was shown
    int repaints = 0;
    std::map<std::pair<std::string, int>, bool> menus;
    std::map<int, bool> imageTools;

    int Count(const std::string& call) const { return static_cast<int>(std::ranges::count(calls, call)); }

    void LoadPict(std::string path) override { calls.push_back("LoadPict " + path); }
    void Setvalid(bool valid) override { calls.emplace_back(valid ? "Setvalid True" : "Setvalid False"); }
    void ClearPanes() override { calls.emplace_back("ClearPanes"); }
    void ClearSelection() override { calls.emplace_back("ClearSelection"); }
    void UndoRefresh(const std::string& command) override { calls.push_back("UndoRefresh " + command); }
    void StopCapture() override { calls.emplace_back("StopCapture"); }
    void OpenImportViewer() override { calls.emplace_back("OpenImportViewer"); }
    void OpenExportViewer() override { calls.emplace_back("OpenExportViewer"); }
    void StartSlideShow() override { calls.emplace_back("StartSlideShow"); }
    void SetmnFile() override { calls.emplace_back("SetmnFile"); }
    void PopMenu(const std::string& selector) override { calls.push_back("PopMenu " + selector); }

    void SetFilePanel(int panel, const std::string& text) override {
        filePanels[panel] = text;
        if (panel == 1) totals.push_back(text);
    }
    std::string FilePanel(int panel) const {
        const auto found = filePanels.find(panel);
        return found == filePanels.end() ? std::string() : found->second;
    }
    void SetOptionsPanel(const std::string& text) override { optionsPanel = text; }
    void SetCaption(const std::string& text) override { caption = text; }
    void SetTreeToolTip(const std::string& text) override { treeToolTip = text; }
    void BusyCursor(bool on) override { busy = on; }
    void ShowListProgress(int value, bool shown) override {
        progressShown = shown;
        if (shown) progress.push_back(value);
    }
    void Repaint() override { ++repaints; }
    void SetKeyPreview(bool on) override { keyPreview = on; }

    void SetMenuEnabled(const std::string& menu, int index, bool enabled) override {
        menus[{menu, index}] = enabled;
    }
    bool MenuEnabled(const std::string& menu, int index) const {
        const auto found = menus.find({menu, index});
        return found != menus.end() && found->second;
    }
    void SetImageTool(int index, bool enabled) override { imageTools[index] = enabled; }
};

/// A browser over scripted surroundings. The components that a test needs are made by the test.
struct RecordedBrowser {
    Session session;
    ScriptedPrompts prompts;
    ScriptedShell shell;
    RecordingHost host;
    Browser browser{session, prompts, shell, host, {}};

    /// With the formats of a first run, all of them switched on.
    RecordedBrowser() {
        session.formats.SetFormats();
        for (FormatRow& row : session.formats.ImportFormats) row.Enabled = true;
        for (FormatRow& row : session.formats.ExportFormats) row.Enabled = true;
    }
    // The browser refers to its neighbours.
    RecordedBrowser(const RecordedBrowser&) = delete;
    RecordedBrowser& operator=(const RecordedBrowser&) = delete;
};

}  // namespace tessara::test
