#include "desktop/QtPrompts.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <deque>

#include "tests/Support.h"

namespace tessara {
namespace {

/// Does to the dialogs that open, one after the other, what a user would.
class User {
  public:
    using Act = std::function<void(QWidget*)>;

    explicit User(std::deque<Act> acts) : acts_(std::move(acts)) { Wait(); }
    ~User() { EXPECT_TRUE(acts_.empty()) << "a dialog did not open"; }

  private:
    void Wait() {
        QTimer::singleShot(0, &context_, [this] {
            QWidget* const dialog = QApplication::activeModalWidget();
            if (acts_.empty()) return;
            // An act may open the next dialog and not return before that is closed.
            Wait();
            if (!dialog) return;
            const Act act = std::move(acts_.front());
            acts_.pop_front();
            act(dialog);
        });
    }

    std::deque<Act> acts_;
    QObject context_;
};

User::Act Click(QMessageBox::StandardButton button) {
    return [button](QWidget* dialog) {
        auto* const box = qobject_cast<QMessageBox*>(dialog);
        ASSERT_TRUE(box);
        box->button(button)->click();
    };
}
void PressEscape(QWidget* dialog) {
    QTest::keyClick(dialog, Qt::Key_Escape);
}
User::Act Save(const std::string& name) {
    return [name](QWidget* dialog) {
        auto* const field = dialog->findChild<QLineEdit*>();
        field->setFocus();
        field->setText(QString::fromStdString(name));
        QMetaObject::invokeMethod(dialog, "accept");
    };
}

const std::vector<SaveFilter> kFilters = {
    {"GIF Files (*.gif)", "*.gif"}, {"Windows Bitmap (*.bmp)", "*.bmp"}, {"All Files (*.*)", "*.*"}};

/// Enter is still held down when the question comes up; then Escape is pressed.
void HoldEnterAndEscape(QWidget* dialog) {
    const auto send = [dialog](QEvent::Type type, bool repeats) {
        QKeyEvent event(type, Qt::Key_Return, {}, {}, repeats);
        event.setTimestamp(1000);
        QApplication::sendEvent(qobject_cast<QMessageBox*>(dialog)->defaultButton(), &event);
    };
    send(QEvent::KeyPress, true);
    send(QEvent::KeyRelease, false);
    send(QEvent::KeyPress, false);
    EXPECT_TRUE(dialog->isVisible());
    PressEscape(dialog);
}

TEST(QtPrompts, EachButtonIsItsAnswer) {
    struct Row {
        PromptButtons buttons;
        User::Act act;
        Answer answer;
    };
    const Row kRows[] = {
        {PromptButtons::Ok, Click(QMessageBox::Ok), Answer::Ok},
        {PromptButtons::Ok, PressEscape, Answer::Ok},
        {PromptButtons::YesNo, Click(QMessageBox::Yes), Answer::Yes},
        {PromptButtons::YesNo, Click(QMessageBox::No), Answer::No},
        {PromptButtons::YesNo, PressEscape, Answer::No},
        {PromptButtons::YesNo, HoldEnterAndEscape, Answer::No},
        {PromptButtons::RetryCancel, Click(QMessageBox::Retry), Answer::Retry},
        {PromptButtons::RetryCancel, Click(QMessageBox::Cancel), Answer::Cancel},
        {PromptButtons::RetryCancel, PressEscape, Answer::Cancel},
    };
    for (const Row& row : kRows) {
        const User user({row.act});
        EXPECT_EQ(QtPrompts().Ask({"?", row.buttons, PromptIcon::None}), row.answer);
    }
}

TEST(QtPrompts, TextsAreShownAsTheyStandUnderANormalPointer) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const User user({[](QWidget* dialog) {
        auto* const box = qobject_cast<QMessageBox*>(dialog);
        EXPECT_EQ(box->windowTitle(), QStringLiteral("Tessara Pro"));
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        EXPECT_EQ(box->text(), QStringLiteral("<b>a</b>.png\n\ngone"));
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
        box->accept();
    }});
    QtPrompts().Ask({"<b>a</b>.png\n\ngone", PromptButtons::Ok, PromptIcon::Warning});
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QApplication::restoreOverrideCursor();
}

TEST(QtPrompts, AWindowThatStaysOnTopDoesNotHideTheQuestion) {
    QWidget topmost(nullptr, Qt::Window | Qt::WindowStaysOnTopHint);
    QWidget active;
    topmost.resize(200, 100);
    topmost.show();
    active.show();
    const QWidget* owner = nullptr;
    QRect place;
    const User::Act look = [&](QWidget* dialog) {
        owner = dialog->parentWidget();
        place = dialog->frameGeometry();
        PressEscape(dialog);
    };
    const User user({look, look, look});
    QtPrompts().Ask({"?", PromptButtons::Ok, PromptIcon::None});
    EXPECT_EQ(owner, &topmost);
    EXPECT_FALSE(place.intersects(topmost.frameGeometry())) << "nor does the question hide it";
    topmost.resize(topmost.screen()->size());
    QtPrompts().Ask({"?", PromptButtons::Ok, PromptIcon::None});
    EXPECT_TRUE(topmost.screen()->geometry().contains(place));
    topmost.hide();
    QApplication::setActiveWindow(&active);
    QtPrompts().Ask({"?", PromptButtons::Ok, PromptIcon::None});
    EXPECT_EQ(owner, &active);
    // The dialog of a job, while the user works elsewhere.
    QDialog job;
    job.setModal(true);
    job.show();
    QApplication::setActiveWindow(nullptr);
    const User busyUser({look});
    QtPrompts().Ask({"?", PromptButtons::Ok, PromptIcon::None});
    EXPECT_EQ(owner, &job);
}

TEST(QtPrompts, ANameWithoutExtensionGetsThatOfTheFilter) {
    struct Row {
        const char* typed;
        std::size_t filter;
        const char* path;
    };
    const Row kRows[] = {
        {"/a.b/name", 0, "/a.b/name.gif"},
        {"/name", 1, "/name.bmp"},
        {"/name", 2, "/name"},
        {"/name.GIF", 0, "/name.GIF"},
        {"/name.dat", 0, "/name.dat"},
        {"/name.jpeg", 1, "/name.jpeg"},
        {"/name.v2", 0, "/name.v2.gif"},
        {"/trip.2020", 0, "/trip.2020.gif"},
        {"/name", 99, "/name"},
    };
    for (const Row& row : kRows) EXPECT_EQ(WithSuffix(row.typed, kFilters, row.filter), row.path);
}

TEST(QtPrompts, SavingAsksBeforeItReplacesAFile) {
    const test::TemporaryFolder folder;
    test::WriteWhole(folder.File("a.gif"), {});
    const std::string gone = folder.File("gone/a");
    const User user({Save("a"), Click(QMessageBox::No), Save(folder.File("gone/a")), Click(QMessageBox::Ok),
                     Save("a"), Click(QMessageBox::Yes)});
    EXPECT_EQ(QtPrompts().PickSaveFile({folder.Path(), "a", kFilters, 1}), folder.File("a.gif"));
}

TEST(QtPrompts, SavingStartsWithWhatWasAskedFor) {
    const test::TemporaryFolder folder;
    const User user({[&](QWidget* dialog) {
        auto* const files = qobject_cast<QFileDialog*>(dialog);
        EXPECT_EQ(files->directory().path().toStdString(), folder.Path());
        EXPECT_EQ(files->findChild<QLineEdit*>()->text(), QStringLiteral("picture"));
        EXPECT_EQ(files->selectedNameFilter(), QStringLiteral("Windows Bitmap (*.bmp)"));
        files->reject();
    }});
    EXPECT_EQ(QtPrompts().PickSaveFile({folder.Path(), folder.File("picture"), kFilters, 2}), "");
}

TEST(QtPrompts, AColourIsKeptWhereNoneIsChosen) {
    const auto choose = [](const QColor& color, QDialog::DialogCode code) {
        return [=](QWidget* dialog) {
            qobject_cast<QColorDialog*>(dialog)->setCurrentColor(color);
            qobject_cast<QDialog*>(dialog)->done(code);
        };
    };
    const User user({choose(QColor(1, 2, 3), QDialog::Accepted), choose(QColor(1, 2, 3), QDialog::Rejected)});
    EXPECT_EQ(QtPrompts().PickColor("Select Mask Color", RGB(9, 9, 9)), RGB(1, 2, 3));
    EXPECT_EQ(QtPrompts().PickColor("Select Mask Color", -1), -1);
}

}  // namespace
}  // namespace tessara
