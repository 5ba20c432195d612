#include <QAccessible>
#include <QGroupBox>
#include <QMenuBar>
#include <QTabBar>
#include <map>

#include "tests/mainwindow/EveryWindow.h"
#include "tests/mainwindow/SpokenTree.h"

namespace tessara {
namespace {

using test::Names;

/// A control or what is nearest to it and has a name of its own.
std::string PlaceOf(const QWidget& widget) {
    const QWidget* named = &widget;
    while (named->objectName().isEmpty() && named->parentWidget() != nullptr) named = named->parentWidget();
    return named->window()->objectName().toStdString() + "/" + named->objectName().toStdString() + " (" +
           widget.metaObject()->className() + ")";
}

bool IsReachable(const QWidget& widget) {
    return widget.isVisible() && widget.isEnabled() && (widget.focusPolicy() & Qt::TabFocus) != 0 &&
           widget.focusProxy() == nullptr && !qobject_cast<const QTabBar*>(&widget);
}

/// The role and the name; empty for a control without a name.
std::string SpokenName(QWidget& widget) {
    const QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(&widget);
    const std::string name = spoken == nullptr ? "" : spoken->text(QAccessible::Name).toStdString();
    return name.empty() ? name : test::RoleName(*spoken) + " " + name;
}

/// The letters that act at once with Alt, each once for every control that takes it.
std::vector<QKeySequence> LettersOf(const QWidget& window) {
    std::vector<QKeySequence> letters;
    const auto add = [&letters](const QKeySequence& letter) {
        if (!letter.isEmpty()) letters.push_back(letter);
    };
    for (const auto* button : window.findChildren<QAbstractButton*>())
        if (button->isVisible()) add(button->shortcut());
    for (const auto* label : window.findChildren<QLabel*>())
        if (label->isVisible() && label->buddy() != nullptr) add(QKeySequence::mnemonic(label->text()));
    for (const auto* box : window.findChildren<QGroupBox*>())
        if (box->isVisible()) add(QKeySequence::mnemonic(box->title()));
    for (const auto* tabs : window.findChildren<QTabBar*>())
        for (int i = 0; i < tabs->count(); ++i) add(QKeySequence::mnemonic(tabs->tabText(i)));
    if (const auto* bar = window.findChild<QMenuBar*>())
        for (const QAction* head : bar->actions()) add(QKeySequence::mnemonic(head->text()));
    return letters;
}

class ReachabilityTest : public test::EveryWindow {
  protected:
    Names faults_;

    void LoadWithPicture() {
        MakePicture("photos/a.bmp", 3);
        ASSERT_TRUE(Load());
        ClickNode(disk_ + "/photos");
        ClickRow(0);
    }
    void Examine(QWidget& window) {
        std::map<std::string, int> spoken;
        for (QWidget* control : window.findChildren<QWidget*>()) {
            if (control->window() != &window || !IsReachable(*control)) continue;
            const std::string name = SpokenName(*control);
            if (name.empty()) faults_.push_back("no name: " + PlaceOf(*control));
            if (++spoken[name] == 2) faults_.push_back(name + " twice in " + PlaceOf(window));
        }
        // Where nothing can be done but to look.
        const bool onlyShows = window.objectName() == QLatin1String("FormIcoRealSize");
        if (spoken.empty() && !onlyShows) faults_.push_back("nothing to reach in " + PlaceOf(window));
        std::map<QKeySequence, int> uses;
        for (const QKeySequence& letter : LettersOf(window))
            if (++uses[letter] == 2)
                faults_.push_back(letter.toString().toStdString() + " twice in " + PlaceOf(window));
    }
};

TEST_F(ReachabilityTest, EveryControlHasANameOfItsOwnAndEveryLetterOneMeaning) {
    VisitAll([this](QWidget& window, const std::string&) { Examine(window); });
    // Two heads of the menu bar are designed with the same letter, which then goes from one to the other.
    EXPECT_EQ(faults_, Names{"Alt+T twice in " + PlaceOf(*form_)});
}

TEST_F(ReachabilityTest, TabGoesThroughTheWindowAsTheEyeDoesAndToTheBarsInTheEnd) {
    LoadWithPicture();
    Control("Imagetool(12)").setFocus();
    for (const char* name : {"FrameMOve(0)", "FrameMOve(1)", "FrameMOve(2)"}) {
        Press(Qt::Key_Tab);
        ASSERT_EQ(QApplication::focusWidget(), &Control(name));
        const QPoint before = Control(name).pos();
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Up}) Press(key);
        EXPECT_EQ((Control(name).pos() - before).manhattanLength(), 10) << name;
    }
    Press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &Tree());
    for (const char* name : {"ImageComboPath", "ListViewFile", "rastx1(0)", "CommandCon(1)", "CommandCon(0)",
                             "rastx1(1)", "Imagetool(0)"}) {
        Press(Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), &Control(name))
            << name << ", not " << PlaceOf(*QApplication::focusWidget());
    }
}

TEST_F(ReachabilityTest, TheMenuKeyOpensTheMenuOfWhatHasTheFocus) {
    LoadWithPicture();
    struct Row {
        const char* control;
        const char* menu;
    };
    constexpr Row kRows[] = {{"TreeViewS", "mnFolder"}, {"ListViewFile", "mnFile"},
                             {"rastx1(1)", "mnEdit"},   {"CommandCon(0)", "mnTransform"},
                             {"rastx1(0)", nullptr},    {"FrameMOve(0)", nullptr}};
    for (const Row& row : kRows) {
        QWidget& control = Control(row.control);
        control.setFocus();
        QTest::keyClick(form_->windowHandle(), Qt::Key_F10, Qt::ShiftModifier);
        QWidget* const menu = QApplication::activePopupWidget();
        ASSERT_EQ(menu != nullptr, row.menu != nullptr) << row.control;
        if (menu == nullptr) continue;
        EXPECT_EQ(menu->objectName().toStdString(), row.menu);
        const QRect place(control.mapToGlobal(QPoint()), control.size());
        EXPECT_TRUE(menu->geometry().intersects(place.adjusted(-30, -30, 30, 30))) << row.control;
        menu->close();
        EXPECT_TRUE(control.hasFocus()) << row.control;
    }
}

}  // namespace
}  // namespace tessara
