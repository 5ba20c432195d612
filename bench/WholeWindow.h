#pragma once

#include <QApplication>
#include <QTemporaryDir>

#include "mainwindow/MainForm.h"
#include "mainwindow/RealServices.h"

namespace tessara::bench {

/// Answers every question alike; everything else is cancelled.
class SameAnswer final : public Prompts {
  public:
    Answer answer = Answer::Yes;

    Answer Ask(const Prompt&) override { return answer; }
    void Beep() override {}
    std::string BrowseFolder(const std::string&, const std::string&) override { return {}; }
    std::string PickSaveFile(const SaveRequest&) override { return {}; }
    ColorNumber PickColor(const std::string&, ColorNumber start) override { return start; }
};

/// The main window on the real desktop, with private files of its own that go with it.
struct WholeWindow {
    QTemporaryDir privateFiles;
    RealServices desktop;
    Session session = desktop.NewSession(privateFiles.path().toStdString());
    SameAnswer prompts;
    ScriptedHelpViewer help;
    MainForm form{session, desktop.With(prompts, help)};

    /// Selects a row of the file list, as a click does.
    void ShowRow(int row) {
        form.List().SelectRow(row);
        form.List().ListViewFile_Click();
        QApplication::processEvents();
    }
};

}  // namespace tessara::bench
