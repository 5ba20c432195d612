#include <QAbstractButton>
#include <QAccessible>
#include <QGroupBox>
#include <QMenuBar>
#include <QTabBar>
#include <QTimer>
#include <map>

#include "mainwindow/HelpWindow.h"
#include "tests/mainwindow/DrivenMainForm.h"

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

QString SpokenName(QWidget& widget) {
    const QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(&widget);
    return spoken == nullptr ? QString() : spoken->text(QAccessible::Name);
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

/// Everything that the program puts on screen, asked the same questions.
class ReachabilityTest : public test::DrivenMainForm {
  protected:
    Names faults_;
    int windows_ = 0;

    void Examine(QWidget& window) {
        ++windows_;
        int reachable = 0;
        QWidgetList controls = window.findChildren<QWidget*>();
        for (QWidget* control : controls) {
            if (control->window() != &window || !IsReachable(*control)) continue;
            ++reachable;
            if (SpokenName(*control).isEmpty()) faults_.push_back("no name: " + PlaceOf(*control));
        }
        if (reachable == 0) faults_.push_back("nothing to reach in " + PlaceOf(window));
        std::map<QKeySequence, int> uses;
        for (const QKeySequence& letter : LettersOf(window))
            if (++uses[letter] == 2)
                faults_.push_back(letter.toString().toStdString() + " twice in " + PlaceOf(window));
    }
    /// Opens a modal dialog, examines it on each of its pages, and closes it.
    template <typename Open>
    void ExamineModal(const Open& open) {
        const int before = windows_;
        QTimer user;
        QObject::connect(&user, &QTimer::timeout, &user, [this] {
            QWidget* const dialog = QApplication::activeModalWidget();
            if (dialog == nullptr || !dialog->isVisible()) return;
            auto* const pages = dialog->findChild<QTabWidget*>();
            constexpr int kOwnPages = 4;  // of the options; the others are dialogs of their own
            for (int page = 0; page < (pages == nullptr ? 1 : kOwnPages); ++page) {
                if (pages != nullptr) pages->setCurrentIndex(page);
                Examine(*dialog);
            }
            dialog->close();
        });
        user.start();
        open();
        EXPECT_GT(windows_, before) << "a dialog did not open";
    }
    void ExamineModalOf(const char* menu, int index) {
        ExamineModal([&] { form_->Menus().Item(menu, index)->trigger(); });
    }
};

TEST_F(ReachabilityTest, EveryControlHasANameAndEveryLetterOneMeaning) {
    MakePicture("photos/a.bmp", 64);
    ASSERT_TRUE(Load());
    ClickNode(disk_ + "/photos");
    ClickRow(0);
    Examine(*form_);
    // Two heads of the menu bar are designed with the same letter, which then goes from one to the other.
    EXPECT_EQ(faults_, Names{"Alt+T twice in " + PlaceOf(*form_)});
    faults_.clear();

    ExamineModalOf("mnOptions", MainMenu::kHead);
    ExamineModal([&] { ClickAt(Control("CommandCon(0)"), {5, 5}); });
    session_.DontShowOptions = true;
    ExamineModalOf("mTransform", 0);
    for (const int effect : {2, 7, 16}) ExamineModalOf("mEffects", effect);
    for (const int filter : {0, 1, 2, 3}) ExamineModalOf("mColor", filter);
    for (const int entry : {2, 3, 5, 9}) ExamineModalOf("mHelp", entry);
    ExamineModal([&] { form_->ShowDialogTrcol(); });
    ExamineModal([&] { form_->ShowDialogSlideOpt(); });
    for (const int viewer : {7, 8}) form_->Menus().Item("mFile", viewer)->trigger();
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window != form_.get() && window->isVisible()) Examine(*window);
    EXPECT_EQ(faults_, Names{});
}

TEST_F(ReachabilityTest, TabGoesThroughTheWindowAsTheEyeDoes) {
    MakePicture("photos/a.bmp", 3);
    ASSERT_TRUE(Load());
    ClickNode(disk_ + "/photos");
    ClickRow(0);
    Tree().setFocus();
    for (const char* name : {"ImageComboPath", "ListViewFile", "rastx1(0)", "CommandCon(1)", "CommandCon(0)",
                             "rastx1(1)", "Imagetool(0)"}) {
        Press(Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), &Control(name))
            << name << ", not " << PlaceOf(*QApplication::focusWidget());
    }
}

}  // namespace
}  // namespace tessara
