#include <sys/resource.h>
#include <unistd.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <csignal>
#include <map>

#include "desktop/PathText.h"
#include "tests/mainwindow/DrivenMainForm.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;
using test::Names;

/// From a folder that is on screen to a finished job, through the dialogs that a user goes through.
class WindowJobTest : public test::DrivenMainForm {
  protected:
    const std::string target_ = disk_ + "/out";
    Names counts_;  ///< of each job

    /// Three files of different widths, the second of which is shown.
    void Open() {
        fs::create_directories(target_);
        MakePicture("photos/a.bmp", 3);
        MakePicture("photos/b.BMP", 5);
        MakePicture("photos/c.bmp", 7);
        ASSERT_TRUE(Load());
        ClickNode(disk_ + "/photos");
        ClickRow(1);
    }
    /// Converts to PNG: `button` is of the options' first page and may be null.
    void Convert(Qt::Key key, const char* button, int overwriteMode, const std::string& target) {
        QTimer user;
        QObject::connect(&user, &QTimer::timeout, &user, [&] {
            QWidget* const dialog = QApplication::activeModalWidget();
            if (dialog == nullptr) return;
            const auto press = [dialog](const QString& name) {
                dialog->findChild<QAbstractButton*>(name)->click();
            };
            if (dialog->objectName() == QStringLiteral("Dialogprogress")) return Leave(*dialog, counts_);
            if (button != nullptr) press(QString::fromLatin1(button));
            for (int i = 0; i < 10; ++i)
                dialog->findChild<QAbstractButton*>(QStringLiteral("CheckOut(%1)").arg(i))
                    ->setChecked(i == 3);
            press(QStringLiteral("OptionOv(%1)").arg(overwriteMode));
            dialog->findChild<QLineEdit*>(QStringLiteral("TextOutFolder"))->setText(ShownText(target));
            QTest::keyClick(dialog, Qt::Key_Return);
        });
        user.start();
        // Without a window manager nobody gives the focus back after a dialog.
        QApplication::setActiveWindow(form_.get());
        if (key != Qt::Key(0))
            Press(key);
        else
            ClickAt(Control("CommandCon(0)"), {5, 5});
    }
    void Convert(Qt::Key key, int overwriteMode) { Convert(key, nullptr, overwriteMode, target_); }

    /// Enter leaves a job that is done.
    static void Leave(QWidget& dialog, Names& counts) {
        if (dialog.findChild<QPushButton*>()->text() != QStringLiteral("Done")) return;
        const auto count = [&dialog](int index) {
            return dialog.findChild<QLabel*>(QStringLiteral("Label1(%1)").arg(index))->text().toStdString();
        };
        counts.push_back(count(0) + " " + count(1));
        QTest::keyClick(&dialog, Qt::Key_Return);
    }
    /// Clicks into the check box of a row.
    void Mark(int row) const {
        const QTreeWidgetItem* const item = List().topLevelItem(row);
        ClickAt(*List().viewport(), List().visualItemRect(item).topLeft() + QPoint(10, 9));
    }
    void WriteOld(const std::string& name) const { test::WriteWhole(target_ + "/" + name, AsBytes("old")); }
    /// The width of each target, 0 for what is no picture; they are removed.
    std::map<std::string, int> TakeTargets() const {
        std::map<std::string, int> widths;
        for (const auto& entry : fs::directory_iterator(target_)) {
            Rastx pane;
            Ignore(pane.LoadImage(entry.path().string()));
            widths[entry.path().filename().string()] = pane.ImageWidth();
        }
        for (const auto& [name, width] : widths) fs::remove(target_ + "/" + name);
        return widths;
    }
    Names FilesOnDisk() const {
        Names names;
        for (const auto& entry : fs::recursive_directory_iterator(disk_))
            if (!entry.path().string().starts_with(app_)) names.push_back(entry.path().string());
        std::ranges::sort(names);
        return names;
    }
};

using Widths = std::map<std::string, int>;

TEST_F(WindowJobTest, KeysAndOptionsChooseWhatIsConverted) {
    struct Case {
        const char* what;
        Qt::Key key;  ///< 0 for the button
        const char* option;
        Widths written;
        const char* counts;
    };
    const Widths one = {{"b.png", 5}}, two = {{"a.png", 3}, {"c.png", 7}},
                 all = {{"a.png", 3}, {"b.png", 5}, {"c.png", 7}};
    const Case cases[] = {
        {"F2", Qt::Key_F2, nullptr, one, "1 file converted! 1 file created!"},
        {"F3, none marked", Qt::Key_F3, nullptr, one, "1 file converted! 1 file created!"},
        {"F3", Qt::Key_F3, nullptr, two, "2 files converted! 2 files created!"},
        {"button, current file", Qt::Key(0), "OptionPic(0)", one, "1 file converted! 1 file created!"},
        {"button, selected files", Qt::Key(0), "OptionPic(1)", two, "2 files converted! 2 files created!"},
        {"F4, but the options say otherwise", Qt::Key_F4, "OptionPic(0)", one,
         "1 file converted! 1 file created!"},
        {"F4", Qt::Key_F4, nullptr, all, "3 files converted! 3 files created!"},
        {"button, all graphics", Qt::Key(0), "OptionPic(2)", all, "3 files converted! 3 files created!"},
    };
    Open();
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        form_->Menus().Item("mFile", 1)->trigger();
        if (row.written == two) {
            for (const int file : {0, 2}) Mark(file);
        }
        // A job leaves its last picture in the export pane: the current file is loaded anew.
        ClickRow(0);
        ClickRow(1);
        Convert(row.key, row.option, 0, target_);
        EXPECT_EQ(TakeTargets(), row.written);
        EXPECT_EQ(counts_.back(), row.counts);
        EXPECT_EQ(form_->List().IsChecked(0), row.written.contains("a.png"));
    }
    EXPECT_EQ(counts_.size(), std::size(cases));
    EXPECT_TRUE(desktop_.prompts.asked.empty());
}

TEST_F(WindowJobTest, ExistingTargetsAreAskedForReplacedOrSkipped) {
    struct Case {
        int overwriteMode;
        Widths left;
        const char* counts;
    };
    const Case cases[] = {
        {0, {{"a.png", 3}, {"b.png", 0}, {"c.png", 0}, {"d.png", 5}}, "2 files converted! 2 files created!"},
        {1, {{"a.png", 3}, {"b.png", 5}, {"c.png", 7}}, "3 files converted! 3 files created!"},
        {2, {{"a.png", 0}, {"b.png", 0}, {"c.png", 0}}, "0 files converted! 0 files created!"},
    };
    Open();
    for (const Case& row : cases) {
        SCOPED_TRACE(row.overwriteMode);
        for (const char* name : {"a.png", "b.png", "c.png"}) WriteOld(name);
        desktop_.prompts.asked.clear();
        desktop_.prompts.answers = {Answer::Yes, Answer::No, Answer::No};
        desktop_.prompts.files = {target_ + "/d.png", ""};
        Convert(Qt::Key_F4, row.overwriteMode);
        EXPECT_EQ(TakeTargets(), row.left);
        EXPECT_EQ(counts_.back(), row.counts);
        EXPECT_EQ(desktop_.prompts.asked.size(), row.overwriteMode == 0 ? 3u : 0u);
    }
}

TEST_F(WindowJobTest, TwoSourcesOfOneTargetAreAnExistingFileToEachOther) {
    Open();
    MakePicture("photos/a.tga", 9);
    form_->List().FileViewFile_PathChange();
    ClickRow(0);
    Convert(Qt::Key_F4, 1);
    EXPECT_EQ(TakeTargets(), (Widths{{"a.png", 9}, {"b.png", 5}, {"c.png", 7}}));
    EXPECT_EQ(counts_.back(), "4 files converted! 4 files created!");
    Convert(Qt::Key_F4, 2);
    EXPECT_EQ(TakeTargets(), (Widths{{"a.png", 3}, {"b.png", 5}, {"c.png", 7}}));
    EXPECT_EQ(counts_.back(), "3 files converted! 3 files created!");
}

TEST_F(WindowJobTest, WhatCannotBeReadOrWrittenHarmsNothing) {
    Open();
    test::WriteWhole(disk_ + "/photos/b.BMP", AsBytes("no picture any more"));
    WriteOld("c.png");
    Convert(Qt::Key_F4, 1);
    EXPECT_EQ(TakeTargets(), (Widths{{"a.png", 3}, {"b.png", 3}, {"c.png", 7}}));

    // The options make the folder to try it, and take it away again.
    Convert(Qt::Key_F4, nullptr, 1, disk_ + "/gone");
    EXPECT_FALSE(fs::exists(disk_ + "/gone"));

    WriteOld("a.png");
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const rlimit full{10, old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &full);
    Convert(Qt::Key_F4, 1);
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(TakeTargets(), (Widths{{"a.png", 0}})) << "what was there, and nothing beside it";
    EXPECT_EQ(counts_, Names(3, "3 files converted! 3 files created!"));
    EXPECT_TRUE(desktop_.prompts.asked.empty());
}

TEST_F(WindowJobTest, AFolderThatMayNotBeWrittenKeepsItsFiles) {
    if (geteuid() == 0) GTEST_SKIP() << "root may write everywhere";
    Open();
    WriteOld("a.png");
    fs::permissions(target_, fs::perms::owner_read | fs::perms::owner_exec);
    Convert(Qt::Key_F4, 1);
    fs::permissions(target_, fs::perms::owner_all);
    EXPECT_EQ(TakeTargets(), (Widths{{"a.png", 0}}));
}

TEST_F(WindowJobTest, TheFolderOfTheLastFileIsOfferedUntilTheNextJobOrList) {
    Open();
    const QWidget& offer = Control("TargetFolderButton");
    EXPECT_FALSE(offer.isVisible());
    const std::string start = "file://" + disk_;

    Convert(Qt::Key_F4, 1);
    ClickAt(offer, offer.rect().center());
    QApplication::setActiveWindow(form_.get());
    QTest::keyClick(form_->windowHandle(), Qt::Key_N, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return desktop_.links.opened.size() == 2; }))
        << "a key's click takes a moment";
    EXPECT_EQ(desktop_.links.opened, Names(2, start + "/out/"));

    Convert(Qt::Key_F4, 2);
    EXPECT_FALSE(offer.isVisible()) << "nothing was written";

    desktop_.prompts.answers = {Answer::No};
    desktop_.prompts.files = {disk_ + "/photos/old/d.png"};
    Convert(Qt::Key_F2, 0);
    ClickAt(offer, offer.rect().center());
    EXPECT_EQ(desktop_.links.opened.back(), start + "/photos/old/") << "chosen for that file";

    ClickNode(disk_);
    EXPECT_FALSE(offer.isVisible());
}

TEST_F(WindowJobTest, OnlyMarkedFilesOfTheListLeaveTheDisk) {
    Open();
    MakePicture("photos/old/a.bmp", 3);
    Names expected = FilesOnDisk();
    for (const int file : {0, 1}) Mark(file);
    desktop_.prompts.answers = {Answer::No};
    QTest::keyClick(form_->windowHandle(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(FilesOnDisk(), expected);
    desktop_.prompts.answers = {Answer::Yes};
    QTest::keyClick(form_->windowHandle(), Qt::Key_X, Qt::ControlModifier);
    for (const char* name : {"a.bmp", "b.BMP"}) std::erase(expected, disk_ + "/photos/" + name);
    EXPECT_EQ(FilesOnDisk(), expected);
    EXPECT_EQ(Asked(), Names(2, "Delete the files selected?"));
    EXPECT_EQ(Rows(), Names{"c.bmp"});
}

TEST_F(WindowJobTest, AMarkedFileThatTheViewerTakesOutOfTheListIsCountedNoMore) {
    Open();
    for (const int file : {0, 1}) Mark(file);
    form_->RemoveItem(1);
    EXPECT_EQ(session_.SelectedCount, 1);
    EXPECT_TRUE(Panel(1).starts_with("Total 2 Files")) << Panel(1);
}

}  // namespace
}  // namespace tessara
