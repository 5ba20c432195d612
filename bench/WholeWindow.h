#pragma once

#include <QApplication>
#include <QClipboard>
#include <QTemporaryDir>
#include <memory>

#include "desktop/ClipboardCarrier.h"
#include "desktop/DesktopScreen.h"
#include "desktop/DesktopShell.h"
#include "mainwindow/MainForm.h"

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
    DesktopShell shell;
    Session session = OwnSession();
    SameAnswer prompts;
    ClipboardCarrier clipboard{*QApplication::clipboard()};
    std::unique_ptr<Screen> screen = MakeScreen();
    SystemClock clock;
    SystemRandom random;
    DesktopLinkOpener links;
    ScriptedHelpViewer help;
    MainForm form{session, {prompts, shell, clipboard, *screen, clock, random, links, help}};

    /// Selects a row of the file list, as a click does.
    void ShowRow(int row) {
        form.List().SelectRow(row);
        form.List().ListViewFile_Click();
        QApplication::processEvents();
    }

  private:
    Session OwnSession() {
        Session made;
        made.AppPath = privateFiles.path().toStdString();
        made.DesktopPath = shell.SpecialFolderPath(SpecialFolder::Desktop);
        made.DocumentsPath = shell.SpecialFolderPath(SpecialFolder::Documents);
        return made;
    }
};

}  // namespace tessara::bench
