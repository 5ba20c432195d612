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
        for (FormatRow& row : session_.formats.ImportFormats) row.Enabled = true;
        for (FormatRow& row : session_.formats.ExportFormats) row.Enabled = true;
        Getdefault(session_, *this, true);
        session_.Starting = false;
        calls_.clear();
        dialog_.Fill();
        dialog_.show();
        QApplication::setActiveWindow(&dialog_);
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
        WhenShown([this] { OnReturn(); });
    }
    virtual void OnReturn() {
        shownAgain_ = Get<QTabWidget>("TabStrip1")->currentIndex();
        dialog_.close();
    }
    template <typename Action>
    void WhenShown(Action action) {
        QTimer::singleShot(0, &dialog_, action);
    }

    template <typename Control>
    Control* Get(const char* name) const {
        auto* const control = dialog_.findChild<Control*>(QString::fromLatin1(name));
        if (!control) throw std::runtime_error(name);
        return control;
    }
    void Click(const char* name) const { Get<QAbstractButton>(name)->click(); }
    bool IsOn(const char* name) const { return Get<QAbstractButton>(name)->isChecked(); }
    void Type(const char* name, const std::string& text) const {
        Get<QLineEdit>(name)->setText(ShownText(text));
    }
    std::string TextOf(const char* name) const { return Get<QLineEdit>(name)->text().toStdString(); }
    Names Asked() {
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
    int shownAgain_ = -1;
    Dialog1 dialog_{session_, prompts_, *this, nullptr};
};

TEST_F(Dialog1Test, WhatCannotBeUsedIsRefusedInOrder) {
    struct Case {
        const char* scope;
        std::string target;
        std::string name;
        std::string start;
        const char* button;
        const char* message;
        int tab;
    };
    const std::string good = folder_.Path();
    const std::string nowhere = folder_.File("missing/folder");
    const Case cases[] = {
        {"OptionPic(0)", "", "", nowhere, "OKButton(1)", "No Target Folder selected!", 0},
        {"OptionPic(0)", nowhere, "", nowhere, "OKButton(1)", "No File Name selected!", 0},
        {"OptionPic(0)", nowhere, "a/b", nowhere, "OKButton(3)", "Target Folder invalid!", 0},
        {"OptionPic(1)", good, "a/b", nowhere, "OKButton(3)", "File Name invalid!", 0},
        {"OptionPic(2)", good, "", nowhere, "OKButton(1)", "Start Folder invalid!", 0},
        {"OptionPic(2)", good, "", nowhere, "OKButton(2)", "Start Folder invalid!", 1},
    };
    for (const Case& row : cases) {
        Get<QTabWidget>("TabStrip1")->setCurrentIndex(0);
        Click(row.scope);
        Type("TextOutFolder", row.target);
        Type("TextFile", row.name);
        Type("TextInFolder", row.start);
        Click(row.button);
        EXPECT_EQ(prompts_.asked.back().icon, PromptIcon::Warning);
        EXPECT_EQ(Asked(), Names{row.message});
        EXPECT_EQ(Get<QTabWidget>("TabStrip1")->currentIndex(), row.tab) << row.message;
        EXPECT_TRUE(dialog_.isVisible());
        EXPECT_EQ(TextOf("TextInFolder"), row.start);
    }
    EXPECT_EQ(Stored(), ConvertOptions::FirstRun(folder_.Path()));
    EXPECT_FALSE(std::filesystem::exists(nowhere));
}

TEST_F(Dialog1Test, OnlyTheJpegPageIsTakenHoweverTheDialogIsLeft) {
    struct Case {
        const char* name;
        bool fromConvert;
        const char* button;  ///< null closes the window
        bool taken;
    };
    const Case cases[] = {
        {"OK", false, "OKButton(3)", true},     {"closed", false, nullptr, false},
        {"Exit", true, "OKButton(3)", false},   {"Convert Now", true, "OKButton(0)", true},
        {"closed again", true, nullptr, false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        session_.ConvertOptions = ConvertOptions::FirstRun(folder_.Path());
        session_.OptionsFromConvert = row.fromConvert;
        session_.JpgQuality = 60;
        session_.ConvertConfirmed = true;
        dialog_.Fill();
        dialog_.show();
        EXPECT_FALSE(session_.ConvertConfirmed);
        Click("OptionPic(2)");
        Get<QSlider>("HScroll1")->setValue(75);
        row.button ? Click(row.button) : static_cast<void>(dialog_.close());
        EXPECT_FALSE(dialog_.isVisible());
        EXPECT_EQ(session_.JpgQuality, 75);
        EXPECT_EQ(session_.ConvertConfirmed, row.taken);
        EXPECT_EQ(session_.ConvertOptions.ConvertScope, row.taken ? 2 : 1);
        EXPECT_EQ(Stored().ConvertScope, 1) << "in force for this run only";
    }
    EXPECT_EQ(Get<QLabel>("SkinLabel1")->text(), QStringLiteral("Image Quality (1-100): 75"));
}

TEST_F(Dialog1Test, DefaultsAreWrittenAndReadWithTheDialogOpen) {
    Type("TextOutFolder", folder_.File("new"));
    Type("TextInFolder", "/");
    Click("OptionOv(2)");
    Click("CheckIn(24)");
    Click("OKButton(2)");
    EXPECT_EQ(Asked(), Names{"Save as Default successfully!"});
    EXPECT_EQ(Stored().OverwriteMode, 2);
    EXPECT_EQ(FolderOf(Stored().TargetFolder), folder_.File("new"));
    EXPECT_FALSE(Stored().ImportOn[24]);
    EXPECT_TRUE(Stored().ExportOn[9]) << "what the dialog showed";

    Click("OptionOv(1)");
    Click("CheckIn(24)");
    Click("CheckOut(9)");
    calls_.clear();
    Click("OKButton(1)");
    EXPECT_EQ(Asked(), Names{"Load Default successfully!"});
    EXPECT_EQ(calls_, (Names{"enter /", "PrintNote"}));
    EXPECT_TRUE(IsOn("OptionOv(2)"));
    EXPECT_FALSE(IsOn("CheckIn(24)"));
    EXPECT_TRUE(IsOn("CheckOut(9)"));
    EXPECT_TRUE(session_.formats.ExportFormats[9].Enabled);
    EXPECT_TRUE(dialog_.isVisible());
}

TEST_F(Dialog1Test, ButtonsDependOnWhereTheDialogWasOpenedFrom) {
    for (const bool fromConvert : {true, false}) {
        session_.OptionsFromConvert = fromConvert;
        for (int tab = 0; tab < 4; ++tab) {
            dialog_.Fill();
            Get<QTabWidget>("TabStrip1")->setCurrentIndex(tab);
            EXPECT_EQ(Get<QWidget>("OKButton(0)")->isVisible(), fromConvert);
            EXPECT_EQ(Get<QPushButton>("OKButton(3)")->text().toStdString(), fromConvert ? "Exit" : "OK");
            EXPECT_TRUE(Get<QWidget>("OKButton(2)")->isVisible());
            EXPECT_EQ(Get<QWidget>("CheckShow")->isVisible(), tab == 0);
            EXPECT_EQ(Get<QWidget>("Command2(0)")->isVisible(), tab == 1);
        }
    }
}

TEST_F(Dialog1Test, FormatsFollowTheirBoxesAtOnce) {
    for (int i = 0; i < 10; ++i) EXPECT_TRUE(IsOn(("CheckOut(" + std::to_string(i) + ")").c_str()));
    EXPECT_FALSE(session_.ConvertOptions.ExportOn[0]) << "the job of a first run writes two formats";
    Click("CheckOut(4)");
    EXPECT_FALSE(session_.formats.ExportFormats[4].Enabled);
    Click("Command2(1)");
    for (const FormatRow& row : session_.formats.ImportFormats) EXPECT_FALSE(row.Enabled) << row.Ext;
    Click("CheckIn(8)");
    EXPECT_TRUE(session_.formats.ImportFormats[8].Enabled);
    Click("Command2(0)");
    for (const FormatRow& row : session_.formats.ImportFormats) EXPECT_TRUE(row.Enabled) << row.Ext;
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
        int value;  ///< of a bar; -1 where a text is typed
        int captureWidth;
        int captureHeight;
    };
    const Case cases[] = {
        {"TextSize(0)", "100", -1, 100, 64},
        {"TextSize(1)", "-5", -1, 100, 0},
        {"TextSize(0)", "99999999999", -1, width, 0},
        {"VScrollSize(0)", "", width - 7, 7, 0},
        {"TextSize(0)", "x", -1, 0, 0},
        {"TextSize(1)", "12", -1, 0, 12},
        {"Check1", "", -1, 12, 12},
        {"TextSize(0)", "30", -1, 30, 30},
        {"VScrollSize(1)", "", 0, side, side},
        {"TextSize(0)", "40", -1, 40, 40},
        {"Check1", "", -1, 40, 40},
        {"TextSize(1)", "20", -1, 40, 20},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.control + std::string(" ") + row.text);
        const std::string control = row.control;
        if (control == "Check1")
            Click(row.control);
        else if (row.value >= 0)
            Get<QScrollBar>(row.control)->setValue(row.value);
        else
            Type(row.control, row.text);
        EXPECT_EQ(session_.CaptureWidth, row.captureWidth);
        EXPECT_EQ(session_.CaptureHeight, row.captureHeight);
        EXPECT_EQ(TextOf("TextSize(0)"), std::to_string(row.captureWidth));
        EXPECT_EQ(TextOf("TextSize(1)"), std::to_string(row.captureHeight));
        EXPECT_EQ(Get<QScrollBar>("VScrollSize(0)")->value(), width - row.captureWidth);
    }
}

TEST_F(Dialog1Test, ASingleFileHasANameThatMayBeChanged) {
    EXPECT_FALSE(Get<QWidget>("TextFile")->isEnabled());
    EXPECT_EQ(session_.TargetName, "Photo");
    Click("OptionPic(0)");
    EXPECT_TRUE(Get<QWidget>("TextFile")->isEnabled());
    Type("TextFile", "Other");
    EXPECT_EQ(session_.TargetName, "Other");
    selected_ = "/in/\xff.bmp";
    dialog_.Fill();
    Click("OptionPic(2)");
    Click("OptionPic(0)");
    EXPECT_EQ(session_.TargetName, "\xff") << "what is no text is kept as it is";
    selected_.clear();
    dialog_.Fill();
    EXPECT_EQ(session_.TargetName, "");
}

TEST_F(Dialog1Test, TheListModeAppliesAtOnceAndIsMarkedAtTheEnd) {
    struct Case {
        const char* option;
        bool all;
        bool importOnly;
    };
    for (const Case& row : {Case{"OptionList(2)", false, true},
                            {"OptionList(0)", true, false},
                            {"OptionList(1)", false, false}}) {
        Click(row.option);
        EXPECT_EQ(session_.ConvertOptions.ListAllFiles, row.all);
        EXPECT_EQ(session_.ConvertOptions.ListImportOnly, row.importOnly);
        EXPECT_TRUE(calls_.empty());
        dialog_.close();
        EXPECT_EQ(calls_, Names{"SetmnFile"});
        calls_.clear();
        dialog_.Fill();
        dialog_.show();
    }
    dialog_.close();
    EXPECT_TRUE(calls_.empty());
}

TEST_F(Dialog1Test, AnEditedStartFolderIsTestedWhenTheFocusLeavesIt) {
    Get<QTabWidget>("TabStrip1")->setCurrentIndex(1);
    const auto leave = [&] {
        Get<QWidget>("TextInFolder")->setFocus();
        Get<QWidget>("CheckIn(3)")->setFocus();
        QApplication::processEvents();
        EXPECT_TRUE(Get<QWidget>("CheckIn(3)")->hasFocus());
        return Asked();
    };
    EXPECT_EQ(leave(), Names{});
    Type("TextInFolder", folder_.File("a/b"));
    EXPECT_EQ(leave(), Names{"Start Folder invalid!"});
    prompts_.folders = {"", folder_.Path()};
    Click("ImageinFolder");
    EXPECT_EQ(TextOf("TextInFolder"), folder_.File("a/b"));
    Click("ImageinFolder");
    EXPECT_EQ(leave(), Names{});
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
        calls_.clear();
        WhenShown([&] {
            auto* const tabs = Get<QTabWidget>("TabStrip1");
            EXPECT_EQ(tabs->currentIndex(), row.startFolderBad ? 1 : 0);
            tabs->setCurrentIndex(row.leaveFrom);
            Type("TextFile", "typed");
            Get<QAbstractButton>("Check2")->setChecked(true);
            tabs->setCurrentIndex(row.other);
        });
        dialog_.Loaddialog1();
        EXPECT_EQ(calls_, Names{row.call});
        EXPECT_EQ(shownAgain_, row.leaveFrom);
        EXPECT_TRUE(session_.JpgProgressive);
        EXPECT_FALSE(session_.StartFolderBad);
        EXPECT_EQ(session_.TargetName, "Photo") << "the dialog was loaded again";
    }
}

TEST_F(Dialog1Test, TheKeyboardReachesEverythingInTheOrderOfTheEye) {
    session_.OptionsFromConvert = true;
    session_.ConvertOptions.ConvertScope = 0;
    dialog_.Fill();
    Get<QWidget>("TextFile")->setFocus();
    Names order;
    for (int i = 0; i < 19; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        order.push_back(QApplication::focusWidget()->objectName().toStdString());
    }
    EXPECT_EQ(order, (Names{"CheckOut(0)", "CheckOut(1)", "CheckOut(2)", "CheckOut(3)", "CheckOut(4)",
                            "CheckOut(5)", "CheckOut(6)", "CheckOut(7)", "CheckOut(8)", "CheckOut(9)",
                            "TextOutFolder", "ImageOutFolder", "OptionOv(0)", "ImageHelp", "CheckShow",
                            "OKButton(0)", "OKButton(1)", "OKButton(2)", "OKButton(3)"}));
    std::set<QKeySequence> shortcuts;
    std::size_t count = 0;
    for (const QAbstractButton* const button : dialog_.findChildren<QAbstractButton*>()) {
        if (button->shortcut().isEmpty()) continue;
        ++count;
        shortcuts.insert(button->shortcut());
    }
    EXPECT_EQ(shortcuts.size(), count);
    EXPECT_GE(count, 7u);
    Click("ImageHelp");
    EXPECT_EQ(calls_, Names{"2-2.htm"});
}

}  // namespace
}  // namespace tessara
