#include "settings/dialogs/Dialog1.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <set>

#include "settings/SettingsFile.h"
#include "tests/Support.h"

namespace tessara {
namespace {

using Names = std::vector<std::string>;

/// The options dialog over a settings file of a first run.
class Dialog1Test : public testing::Test, protected OptionsHost {
  protected:
    Dialog1Test() {
        session_.AppPath = folder_.Path();
        session_.formats.SetFormats();
        for (FormatRow& row : session_.formats.ExportFormats) row.Enabled = true;
        Getdefault(session_, *this, true);
        session_.Starting = false;
        Show();
        QApplication::setActiveWindow(&dialog_);
        calls_.clear();
    }
    void Show() {
        dialog_.Fill();
        dialog_.show();
    }

    std::string SelectedFile() const override { return selected_; }
    void EnterFolder(const std::string& folder) override { calls_.push_back("enter " + folder); }
    void SetmnFile() override { calls_.emplace_back("SetmnFile"); }
    void PrintNote() override { calls_.emplace_back("PrintNote"); }
    void RunHtmlHelp(const std::string& topic) override { calls_.push_back(topic); }
    void ShowDialogTrcol() override { ShowOther("trcol"); }
    void ShowDialogSlideOpt() override { ShowOther("slides"); }
    void ShowOther(const char* name) {
        EXPECT_FALSE(dialog_.isVisible());
        calls_.emplace_back(name);
        QTimer::singleShot(0, &dialog_, [this] {
            pageShownAgain_ = tabs_->currentIndex();
            dialog_.close();
        });
    }

    template <typename Control>
    Control* Get(const std::string& name) const {
        auto* const control = dialog_.findChild<Control*>(QString::fromStdString(name));
        if (!control) throw std::runtime_error(name);
        return control;
    }
    void Click(const std::string& name) const { Get<QAbstractButton>(name)->click(); }
    bool IsOn(const std::string& name) const { return Get<QAbstractButton>(name)->isChecked(); }
    void Type(const std::string& name, const std::string& text) const {
        Get<QLineEdit>(name)->setText(ShownText(text));
    }
    std::string TextOf(const std::string& name) const { return Get<QLineEdit>(name)->text().toStdString(); }
    Names TakeAsked() {
        Names texts;
        for (const Prompt& prompt : prompts_.asked) texts.push_back(prompt.text);
        prompts_.asked.clear();
        return texts;
    }
    ConvertOptions Stored() const {
        ConvertOptions options;
        test::Must(SettingsFile(folder_.File("ts40.cfg")).Read(options));
        return options;
    }

    test::TemporaryFolder folder_;
    Session session_;
    ScriptedPrompts prompts_;
    std::string selected_ = "/in/Photo.JPG";
    Names calls_;
    int pageShownAgain_ = -1;
    Dialog1 dialog_{session_, prompts_, *this, nullptr};
    QTabWidget* tabs_ = Get<QTabWidget>("TabStrip1");
};

TEST_F(Dialog1Test, WhatCannotBeUsedIsRefusedInOrder) {
    const std::string good = folder_.Path();
    const std::string bad = folder_.File("missing/folder");
    struct Case {
        const char* scope;
        std::string target, name, start;
        const char* button;
        const char* message;
        int page;
    };
    const Case cases[] = {
        {"OptionPic(0)", "", "", bad, "OKButton(1)", "No Target Folder selected!", 0},
        {"OptionPic(0)", bad, "", bad, "OKButton(1)", "No File Name selected!", 0},
        {"OptionPic(0)", bad, "a/b", bad, "OKButton(3)", "Target Folder invalid!", 0},
        {"OptionPic(1)", good, "a/b", bad, "OKButton(3)", "File Name invalid!", 0},
        {"OptionPic(2)", good, "", bad, "OKButton(1)", "Start Folder invalid!", 0},
        {"OptionPic(2)", good, "", bad, "OKButton(2)", "Start Folder invalid!", 1},
    };
    for (const Case& row : cases) {
        Click(row.scope);
        Type("TextOutFolder", row.target);
        Type("TextFile", row.name);
        Type("TextInFolder", row.start);
        Click(row.button);
        EXPECT_EQ(prompts_.asked.back().icon, PromptIcon::Warning);
        EXPECT_EQ(TakeAsked(), Names{row.message});
        EXPECT_EQ(tabs_->currentIndex(), row.page) << row.message;
        EXPECT_TRUE(dialog_.isVisible());
        EXPECT_EQ(TextOf("TextInFolder"), row.start);
    }
    EXPECT_EQ(Stored(), ConvertOptions::FirstRun(folder_.Path()));
}

TEST_F(Dialog1Test, OnlyTheJpegPageIsTakenHoweverTheDialogIsLeft) {
    struct Case {
        const char* name;
        bool fromConvert;
        const char* button;  ///< null closes the window
        bool taken;
    };
    for (const Case& row :
         {Case{"OK", false, "OKButton(3)", true}, Case{"closed", false, nullptr, false},
          Case{"Exit", true, "OKButton(3)", false}, Case{"Convert Now", true, "OKButton(0)", true}}) {
        SCOPED_TRACE(row.name);
        session_.ConvertOptions = ConvertOptions::FirstRun(folder_.Path());
        session_.OptionsFromConvert = row.fromConvert;
        session_.JpgQuality = 60;
        session_.ConvertConfirmed = true;
        Show();
        EXPECT_FALSE(session_.ConvertConfirmed);
        for (int page = 0; page < 4; ++page) {
            tabs_->setCurrentIndex(page);
            EXPECT_EQ(Get<QWidget>("OKButton(0)")->isVisible(), row.fromConvert);
            EXPECT_EQ(Get<QPushButton>("OKButton(3)")->text().toStdString(), row.fromConvert ? "Exit" : "OK");
            EXPECT_EQ(Get<QWidget>("CheckShow")->isVisible(), page == 0);
        }
        Click("OptionPic(2)");
        Get<QSlider>("HScroll1")->setValue(75);
        for (const char* control : {"Check2", "Check3", "CheckShow"}) Click(control);
        row.button ? Click(row.button) : static_cast<void>(dialog_.close());
        EXPECT_FALSE(dialog_.isVisible());
        EXPECT_EQ(session_.JpgQuality, 75);
        EXPECT_EQ(session_.JpgProgressive, IsOn("Check2"));
        EXPECT_EQ(session_.JpgGrayScale, IsOn("Check3"));
        EXPECT_EQ(session_.DontShowOptions, IsOn("CheckShow"));
        EXPECT_EQ(session_.ConvertConfirmed, row.taken);
        EXPECT_EQ(session_.ConvertOptions.ConvertScope, row.taken ? 2 : 1);
        EXPECT_EQ(Stored().ConvertScope, 1) << "in force for this run only";
    }
    EXPECT_EQ(Get<QLabel>("SkinLabel1")->text(), QStringLiteral("Image Quality (1-100): 75"));
}

TEST_F(Dialog1Test, DefaultsAreWrittenAndReadWithTheDialogOpen) {
    Type("TextOutFolder", folder_.File("new"));
    Type("TextInFolder", "/");
    for (const char* control : {"OptionOv(2)", "CheckIn(24)", "OKButton(2)"}) Click(control);
    EXPECT_EQ(TakeAsked(), Names{"Save as Default successfully!"});
    EXPECT_EQ(Stored().OverwriteMode, 2);
    EXPECT_EQ(FolderOf(Stored().TargetFolder), folder_.File("new"));
    EXPECT_FALSE(Stored().ImportOn[24]);
    EXPECT_TRUE(Stored().ExportOn[9]) << "what the dialog showed";

    calls_.clear();
    for (const char* control : {"OptionOv(1)", "CheckIn(24)", "CheckOut(9)", "OKButton(1)"}) Click(control);
    EXPECT_EQ(TakeAsked(), Names{"Load Default successfully!"});
    EXPECT_EQ(calls_, (Names{"enter /", "PrintNote"}));
    EXPECT_TRUE(IsOn("OptionOv(2)"));
    EXPECT_FALSE(IsOn("CheckIn(24)"));
    EXPECT_TRUE(IsOn("CheckOut(9)"));
    EXPECT_TRUE(session_.formats.ExportFormats[9].Enabled);
    EXPECT_TRUE(dialog_.isVisible());
}

TEST_F(Dialog1Test, FormatsFollowTheirBoxesAtOnce) {
    for (int i = 0; i < 10; ++i) EXPECT_TRUE(IsOn("CheckOut(" + std::to_string(i) + ")"));
    EXPECT_FALSE(session_.ConvertOptions.ExportOn[0]) << "the job of a first run writes two formats";
    Click("CheckOut(4)");
    EXPECT_FALSE(session_.formats.ExportFormats[4].Enabled);
    for (const bool on : {false, true}) {
        Click(on ? "Command2(0)" : "Command2(1)");
        for (const FormatRow& row : session_.formats.ImportFormats) EXPECT_EQ(row.Enabled, on) << row.Ext;
    }
    EXPECT_EQ(Get<QAbstractButton>("CheckIn(21)")->text(), QStringLiteral("TIFF"));
    EXPECT_EQ(Get<QAbstractButton>("CheckOut(5)")->text(), QStringLiteral("EMF"));
}

TEST_F(Dialog1Test, CaptureSizesStayWithinTheScreen) {
    const QSize screen = dialog_.screen()->size() * dialog_.screen()->devicePixelRatio();
    const int width = screen.width();
    const int side = std::min(screen.width(), screen.height());
    struct Case {
        const char* control;
        const char* text;
        int value;  ///< of a bar
        int captureWidth;
        int captureHeight;
    };
    const Case cases[] = {
        {"TextSize(0)", "100", 0, 100, 64},
        {"TextSize(1)", "-5", 0, 100, 0},
        {"TextSize(0)", "99999999999", 0, width, 0},
        {"VScrollSize(0)", nullptr, width - 7, 7, 0},
        {"TextSize(0)", "x", 0, 0, 0},
        {"TextSize(1)", "12", 0, 0, 12},
        {"Check1", nullptr, 0, 12, 12},
        {"TextSize(0)", "30", 0, 30, 30},
        {"VScrollSize(1)", nullptr, 0, side, side},
        {"TextSize(0)", "40", 0, 40, 40},
        {"Check1", nullptr, 0, 40, 40},
        {"TextSize(1)", "20", 0, 40, 20},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.control);
        if (row.text)
            Type(row.control, row.text);
        else if (row.control == std::string("Check1"))
            Click(row.control);
        else
            Get<QScrollBar>(row.control)->setValue(row.value);
        EXPECT_EQ(session_.CaptureWidth, row.captureWidth);
        EXPECT_EQ(session_.CaptureHeight, row.captureHeight);
        EXPECT_EQ(TextOf("TextSize(0)"), std::to_string(row.captureWidth));
        EXPECT_EQ(TextOf("TextSize(1)"), std::to_string(row.captureHeight));
        EXPECT_EQ(Get<QScrollBar>("VScrollSize(0)")->value(), width - row.captureWidth);
    }
    QTest::keyClick(Get<QLineEdit>("TextSize(0)"), Qt::Key_Up);
    EXPECT_EQ(session_.CaptureWidth, 41);
}

TEST_F(Dialog1Test, ASingleFileHasANameThatMayBeChanged) {
    EXPECT_FALSE(Get<QWidget>("TextFile")->isEnabled());
    EXPECT_EQ(session_.TargetName, "Photo");
    Click("OptionPic(0)");
    EXPECT_TRUE(Get<QWidget>("TextFile")->hasFocus());
    Type("TextFile", "Other");
    EXPECT_EQ(session_.TargetName, "Other");
    for (const char* name : {"\xff", ""}) {
        selected_ = name[0] ? "/in/" + std::string(name) + ".bmp" : "";
        Show();
        EXPECT_EQ(session_.TargetName, name) << "what is no text is kept as it is";
    }
}

TEST_F(Dialog1Test, TheListModeAppliesAtOnceAndIsMarkedAtTheEnd) {
    struct Case {
        const char* option;
        bool all;
        bool importOnly;
    };
    for (const Case& row : {Case{"OptionList(2)", false, true}, Case{"OptionList(0)", true, false},
                            Case{"OptionList(1)", false, false}}) {
        Click(row.option);
        EXPECT_EQ(session_.ConvertOptions.ListAllFiles, row.all);
        EXPECT_EQ(session_.ConvertOptions.ListImportOnly, row.importOnly);
        EXPECT_TRUE(calls_.empty());
        dialog_.close();
        EXPECT_EQ(std::exchange(calls_, {}), Names{"SetmnFile"});
        Show();
    }
    dialog_.close();
    EXPECT_TRUE(calls_.empty());
}

TEST_F(Dialog1Test, AnEditedStartFolderIsTestedWhenTheFocusLeavesIt) {
    tabs_->setCurrentIndex(1);
    const auto leave = [&] {
        Get<QWidget>("TextInFolder")->setFocus();
        Get<QWidget>("CheckIn(3)")->setFocus();
        QApplication::processEvents();
        EXPECT_TRUE(Get<QWidget>("CheckIn(3)")->hasFocus());
        return TakeAsked();
    };
    EXPECT_EQ(leave(), Names{});
    Type("TextInFolder", folder_.File("a/b"));
    prompts_.whileAsking = [this, clicked = false]() mutable {
        if (!std::exchange(clicked, true)) Click("OKButton(3)");
    };
    EXPECT_EQ(leave(), Names{"Start Folder invalid!"});
    EXPECT_TRUE(dialog_.isVisible());
    prompts_.folders = {"", folder_.Path(), "/out"};
    Click("ImageinFolder");
    EXPECT_EQ(TextOf("TextInFolder"), folder_.File("a/b"));
    Click("ImageinFolder");
    EXPECT_EQ(leave(), Names{});
    Click("ImageOutFolder");
    EXPECT_EQ(TextOf("TextOutFolder"), "/out");
    EXPECT_EQ(TextOf("TextInFolder"), folder_.Path());
    EXPECT_EQ(prompts_.foldersAskedFor.front(), "Select Start Folder | " + folder_.File("a/b"));
    EXPECT_EQ(prompts_.foldersAskedFor.back(), "Select Target Folder | " + folder_.Path());
}

TEST_F(Dialog1Test, TheLastTabsAreDialogsOfTheirOwn) {
    dialog_.close();
    struct Case {
        bool startFolderBad;
        int leaveFrom;
        int other;
        const char* call;
    };
    for (const Case& row : {Case{false, 3, 4, "trcol"}, Case{true, 1, 5, "slides"}}) {
        session_.StartFolderBad = row.startFolderBad;
        QTimer::singleShot(0, &dialog_, [&] {
            EXPECT_EQ(tabs_->currentIndex(), row.startFolderBad ? 1 : 0);
            tabs_->setCurrentIndex(row.leaveFrom);
            Type("TextFile", "typed");
            Get<QAbstractButton>("Check2")->setChecked(true);
            tabs_->setCurrentIndex(row.other);
        });
        dialog_.Loaddialog1();
        EXPECT_EQ(std::exchange(calls_, {}), Names{row.call});
        EXPECT_EQ(pageShownAgain_, row.leaveFrom);
        EXPECT_TRUE(session_.JpgProgressive);
        EXPECT_FALSE(session_.StartFolderBad);
        EXPECT_EQ(session_.TargetName, "Photo") << "the dialog was loaded again";
    }
}

TEST_F(Dialog1Test, TheKeyboardReachesEverythingInTheOrderOfTheEye) {
    session_.OptionsFromConvert = true;
    session_.ConvertOptions.ConvertScope = 0;
    Show();
    Get<QWidget>("CheckOut(8)")->setFocus();
    const Names order{"CheckOut(9)", "TextOutFolder", "ImageOutFolder", "OptionOv(0)", "ImageHelp",
                      "CheckShow",   "OKButton(0)",   "OKButton(1)",    "OKButton(2)", "OKButton(3)",
                      "TabStrip1",   "OptionPic(0)",  "TextFile",       "CheckOut(0)"};
    for (const std::string& name : order) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_TRUE(Get<QWidget>(name)->isAncestorOf(QApplication::focusWidget()) ||
                    Get<QWidget>(name)->hasFocus())
            << name << ", not " << QApplication::focusWidget()->objectName().toStdString();
    }
    std::multiset<QKeySequence> shortcuts;
    for (const auto* const button : dialog_.findChildren<QAbstractButton*>())
        shortcuts.insert(button->shortcut());
    EXPECT_EQ(shortcuts.size() - shortcuts.count({}), 7u);
    EXPECT_EQ(std::set(shortcuts.begin(), shortcuts.end()).size(), 8u)
        << "none twice, and that of the others";
    Click("ImageHelp");
    EXPECT_EQ(calls_, Names{"2-2.htm"});
}

}  // namespace
}  // namespace tessara
