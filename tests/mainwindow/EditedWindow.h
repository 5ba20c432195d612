#pragma once

#include <QApplication>
#include <algorithm>
#include <string>

#include "desktop/Named.h"
#include "mainwindow/MainForm.h"
#include "tests/Support.h"

namespace tessara::test {

/// The whole main window over given questions and a given clipboard, as it is after a start; its private
/// files are in a folder of their own.
class EditedWindow {
  public:
    EditedWindow(Prompts& prompts, Clipboard& clipboard)
        : form(session, desktop_.With(prompts, clipboard, desktop_.clock)) {
        session.AppPath = session.DesktopPath = session.DocumentsPath = folder.Path();
        desktop_.shell.drives = {{folder.Path(), folder.Path() + " [DISK]"}};
        if (!form.Form_Load()) throw std::runtime_error("the window would not start");
    }

    RastxPane& Pane(int index) { return form.rastx1(index); }
    const Picture& Import() { return Pane(0).rastx().Image(); }
    const Picture& Export() { return Pane(1).rastx().Image(); }
    /// Writes a PNG file among the private ones; its path. No picture makes an empty file.
    std::string Write(const std::string& name, const Picture& picture) {
        const Codec& png = *std::ranges::find(ExportFormatTable(), ".png", &ExportFormat::suffix)->codec;
        const std::string path = folder.File(name);
        WriteWhole(path, picture.Empty() ? ByteVector() : Encode(png, picture));
        return path;
    }
    /// Chooses an entry of the menus; one that is disabled does nothing.
    void Choose(std::string_view array, int index) {
        form.Menus().Item(std::string(array), index)->trigger();
    }
    /// What the dialogs' controls are found by, in them and in the window.
    template <typename Control>
    static Control& Find(const QObject& parent, const char* name, int index) {
        auto* const found = parent.findChild<Control*>(Indexed(name, index));
        if (found == nullptr) throw std::runtime_error(std::string("no control ") + name);
        return *found;
    }

    TemporaryFolder folder;
    Session session;

  private:
    ScriptedServices desktop_;

  public:
    MainForm form;
};

}  // namespace tessara::test
