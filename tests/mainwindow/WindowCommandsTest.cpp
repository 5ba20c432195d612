#include <QAbstractButton>
#include <QTabWidget>
#include <QTimer>

#include "browse/FolderNaming.h"
#include "tests/mainwindow/DrivenMainForm.h"

namespace tessara {
namespace {

using test::Names;

/// What the toolbar, the menus and their pop-ups set going.
class WindowCommandsTest : public test::DrivenMainForm {
  protected:
    using Widths = std::pair<int, int>;

    void Open() {
        MakePicture("photos/a.bmp", 3);
        MakePicture("photos/b.bmp", 5);
        test::WriteWhole(disk_ + "/photos/t.txt", {});
        ASSERT_TRUE(Load());
        ClickNode(disk_ + "/photos");
        ClickRow(0);
    }
    void Tool(int index) const {
        const std::string name = "Imagetool(" + std::to_string(index) + ")";
        QTest::mouseClick(&Control(name.c_str()), Qt::LeftButton);
    }
    std::string Checks() const {
        std::string checks;
        for (int row = 0; row < form_->List().RowCount(); ++row)
            checks += form_->List().IsChecked(row) ? 'x' : '.';
        return checks;
    }
};

TEST_F(WindowCommandsTest, EachToolDoesWhatItsTipSays) {
    Open();
    Tool(3);
    EXPECT_EQ(Checks(), "xx");
    Tool(4);
    EXPECT_EQ(Checks(), "..");
    form_->Menus().Item("mEffects", 0)->trigger();
    EXPECT_EQ(PaneWidths(), Widths(3, 1));
    Tool(8);
    EXPECT_EQ(PaneWidths(), Widths(3, 3));
    Tool(9);
    EXPECT_EQ(PaneWidths(), Widths(3, 1));
    form_->Menus().Item("mTransform", 4)->trigger();
    EXPECT_EQ(PaneWidths(), Widths(3, 3));
    desktop_.clipboard.Put(test::PhotoLike(7, 1));
    Tool(7);
    EXPECT_EQ(PaneWidths(), Widths(7, 7));
    Tool(10);
    EXPECT_EQ(desktop_.help.topics, Names{"2-1.htm"});
    for (const bool starts : {true, false}) {
        Tool(11);
        EXPECT_EQ(session_.CaptureMode, starts);
    }
    Tool(12);
    EXPECT_TRUE(session_.SlideRunning);
    Tool(0);
    EXPECT_EQ(Rows(), Names{});
    std::filesystem::create_directory(disk_ + "/new");
    Tool(1);
    EXPECT_NE(form_->Tree().NodeOf(disk_ + "/new"), nullptr);
    Tool(2);
    EXPECT_TRUE(form_->Tree().Naming().IsNaming());
}

TEST_F(WindowCommandsTest, TheListModeAloneIsMarkedWhereverItWasChosen) {
    Open();
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, &user, [] {
        QWidget* const options = QApplication::activeModalWidget();
        if (options == nullptr) return;
        options->findChild<QAbstractButton*>(QStringLiteral("OptionList(0)"))->click();
        options->findChild<QAbstractButton*>(QStringLiteral("OKButton(3)"))->click();
    });
    user.start();
    const Names graphics{"a.bmp", "b.bmp"}, all{"a.bmp", "b.bmp", "t.txt"};
    struct Case {
        const char* menu;
        int entry;
        const char* marks;
        Names rows;
    };
    for (const Case& row : {Case{"mFile", 12, "..x", graphics},
                            {"mnOptions", MainMenu::kHead, "x..", all},
                            {"mFile", 11, ".x.", graphics},
                            {"mFile", 10, "x..", all}}) {
        form_->Menus().Item(row.menu, row.entry)->trigger();
        Q_EMIT form_->Menus().Menu("mnFile")->aboutToShow();
        std::string marks;
        for (const int entry : {10, 11, 12})
            marks += form_->Menus().Item("mFile", entry)->isChecked() ? 'x' : '.';
        EXPECT_EQ(marks, row.marks);
        EXPECT_EQ(Rows(), row.rows);
    }
}

TEST_F(WindowCommandsTest, BranchesOfTheMenuPopUp) {
    Open();
    const auto popped = [&](const std::function<void()>& open) {
        open();
        QWidget* const popUp = QApplication::activePopupWidget();
        if (popUp == nullptr) return std::string();
        popUp->close();
        return popUp->objectName().toStdString();
    };
    struct Case {
        const char* selector;
        const char* menu;
    };
    for (const Case& row : {Case{"File", "mnFile"},
                            {"TreeViewS", "mnFolder"},
                            {"rst", "mnEdit"},
                            {"Convert", "mnTransform"},
                            {"other", ""}})
        EXPECT_EQ(popped([&] { form_->PopMenu(row.selector); }), row.menu);
    EXPECT_EQ(popped([&] { ClickAt(Control("Frametofile1"), {300, 3}); }), "mnTransform");
    form_->List().ClearRows();
    EXPECT_EQ(popped([&] { form_->PopMenu("File"); }), "");
}

}  // namespace
}  // namespace tessara
