#pragma once

#include <QAbstractButton>
#include <QTabWidget>
#include <QTimer>
#include <functional>
#include <string>
#include <utility>

#include "mainwindow/HelpWindow.h"
#include "tests/mainwindow/DrivenMainForm.h"

namespace tessara::test {

/// Opens everything that the program puts on screen, one window after the other.
class EveryWindow : public DrivenMainForm {
  protected:
    /// The window and what the test calls it: "Dialog1 List" is the options' page of that caption.
    using Visit = std::function<void(QWidget& window, const std::string& name)>;

    /// The main window, with a picture in its panes, and all others.
    void VisitAll(const Visit& visit) {
        MakePicture("photos/a.bmp", 64);
        ASSERT_TRUE(Load());
        ClickNode(disk_ + "/photos");
        ClickRow(0);
        visit(*form_, "MainForm");
        VisitDialogs(visit);
        VisitViewers(visit);
        VisitCapture(visit);
        VisitHelp(visit);
    }

  private:
    void VisitDialogs(const Visit& visit) {
        VisitModalOf("mnOptions", MainMenu::kHead, visit);
        VisitModal([&] { Control<QAbstractButton>("CommandCon(0)").click(); },
                   [&](QWidget& dialog, const std::string& name) {
                       if (name == "Dialog1 Convert") visit(dialog, name + " Now");
                   });
        session_.DontShowOptions = true;
        VisitModalOf("mTransform", 0, visit);
        VisitModalOf("mEffects", 2, visit);
        const auto ofEffect = [&visit](QWidget& dialog, const std::string& name) {
            visit(dialog, name + " " + dialog.windowTitle().toStdString());
        };
        for (const int effect : {7, 16}) VisitModalOf("mEffects", effect, ofEffect);
        for (const int filter : {0, 1, 2, 3}) VisitModalOf("mColor", filter, ofEffect);
        for (const int entry : {2, 3, 5, 9}) VisitModalOf("mHelp", entry, visit);
        VisitModal([&] { form_->ShowDialogTrcol(); }, visit);
        VisitModal([&] { form_->ShowDialogSlideOpt(); }, visit);
    }
    void VisitViewers(const Visit& visit) {
        for (const int viewer : {7, 8}) form_->Menus().Item("mFile", viewer)->trigger();
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window != form_.get() && window->isVisible())
                visit(*window, window->objectName().toStdString());
    }
    void VisitCapture(const Visit& visit) {
        form_->Imagetool_Click(kCaptureTool);
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == QLatin1String("FormIcoRealSize") && window->isVisible())
                visit(*window, "FormIcoRealSize");
        form_->Imagetool_Click(kCaptureTool);
    }
    void VisitHelp(const Visit& visit) {
        WriteWhole(folder_.File("1-1.htm"), AsBytes("<a href='1-1.htm'>A link</a>"));
        WriteWhole(
            folder_.File("contents.json"),
            AsBytes(R"({"contents": [{"title": "Chapter", "parts": [{"title": "Page", "page": "1-1.htm"}]}],
                              "index": {"Word": "1-1.htm"}})"));
        HelpWindow help(folder_.Path());
        help.DisplayContents("1-1.htm");
        visit(help, "HelpWindow Contents");
        help.DisplayIndex("1-1.htm");
        visit(help, "HelpWindow Index");
    }
    void VisitModalOf(const char* menu, int index, const Visit& visit) {
        VisitModal([&] { form_->Menus().Item(menu, index)->trigger(); }, visit);
    }
    /// Opens a modal dialog, visits it on each of its pages, and closes it.
    template <typename Open>
    void VisitModal(const Open& open, const Visit& visit) {
        bool visited = false;
        QTimer user;
        QObject::connect(&user, &QTimer::timeout, &user, [&] {
            QWidget* const dialog = QApplication::activeModalWidget();
            if (dialog == nullptr || !dialog->isVisible()) return;
            if (!std::exchange(visited, true)) VisitPages(*dialog, visit);
            dialog->close();
        });
        user.start();
        open();
        EXPECT_TRUE(visited) << "a dialog did not open";
    }
    static void VisitPages(QWidget& dialog, const Visit& visit) {
        const std::string name = dialog.objectName().toStdString();
        auto* const pages = dialog.findChild<QTabWidget*>();
        if (pages == nullptr) return visit(dialog, name);
        constexpr int kOwnPages = 4;  // of the options; the others are dialogs of their own
        for (int page = 0; page < kOwnPages; ++page) {
            pages->setCurrentIndex(page);
            visit(dialog, name + " " + pages->tabText(page).trimmed().toStdString());
        }
    }
};

}  // namespace tessara::test
