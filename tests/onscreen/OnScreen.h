#pragma once

#include <gtest/gtest.h>

#include <QProcess>
#include <QTest>
#include <QTimer>

#include "desktop/ClipboardCarrier.h"
#include "desktop/QtPrompts.h"
#include "tests/mainwindow/EditedWindow.h"

namespace tessara::test {

/// The main window on a screen of the X server, with the desktop's own questions and clipboard; pointer, keys
/// and other programs are real ones.
class OnScreen : public testing::Test {
  protected:
    OnScreen();

    /// Whether it comes true while the window lives on.
    static bool Becomes(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 20000); }
    /// Runs another program to its end; what it has written.
    static QByteArray Run(const QString& program, const QStringList& arguments);
    /// A move of the pointer, in the screen's coordinates, and what else is to happen there ("click 1").
    static void Pointer(const QPoint& at, const QString& actions = {});
    static void Key(const char* name) { Run(QStringLiteral("xdotool"), {"key", QString::fromLatin1(name)}); }

    void Load(const Picture& picture);
    /// Chooses an entry of the menus with the pointer.
    void ChooseByPointer(std::string_view array, int index);

    /// What is done with the next modal window that comes up, which is then closed if it is still there.
    std::function<void(QWidget&)> visit_;
    /// Keeps a picture of the whole screen where the command line says, under that name.
    void Shoot(const QString& name);

    QtPrompts prompts_;
    ClipboardCarrier clipboard_{*QApplication::clipboard()};
    EditedWindow window_{prompts_, clipboard_};

  private:
    void VisitModalWindow();

    QTimer watch_;
    QWidget* visited_ = nullptr;
};

/// Where screenshots go; empty for none.
extern QString shotsFolder;

}  // namespace tessara::test
