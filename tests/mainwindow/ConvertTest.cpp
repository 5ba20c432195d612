#include <gtest/gtest.h>

#include <QDir>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "browse/SelectionSummary.h"
#include "desktop/PathText.h"
#include "mainwindow/ConvertButtons.h"
#include "mainwindow/Dialogprogress.h"
#include "mainwindow/ListedFiles.h"
#include "tests/Support.h"
#include "tests/browse/RecordingHost.h"

namespace tessara {
namespace {

/// A list of three small files, and the dialog of a job over them.
class ConvertTest : public testing::Test, protected test::RecordedBrowser {
  protected:
    ConvertTest() {
        const ByteVector bitmap = test::Encode(*ExportFormatTable()[0].codec, test::Draw("RG"));
        for (const char* name : {"a.bmp", "b.bmp", "c.bmp"}) test::WriteWhole(folder_.File(name), bitmap);
        test::Must(browser.FileViewFile.SetPath(folder_.Path()));
        session.ConvertOptions.TargetFolder = FolderField(folder_.Path());
        session.ConvertOptions.ConvertScope = 2;
        session.ConvertOptions.ExportOn[3] = true;
        session.ExportChanged = true;
    }

    QProgressBar* Bar(int index) const {
        return dialog_.findChild<QProgressBar*>(QStringLiteral("ProgressBar(%1)").arg(index));
    }
    std::string Counts() const {
        const auto text = [&](int index) {
            return dialog_.findChild<QLabel*>(QStringLiteral("Label1(%1)").arg(index))->text().toStdString();
        };
        return text(0) + " " + text(1);
    }
    QPushButton* Button() const { return dialog_.findChild<QPushButton*>(QStringLiteral("CancelButton")); }
    int Written() const {
        return static_cast<int>(QDir(ShownText(folder_.Path())).entryList({QStringLiteral("*.png")}).size());
    }

    std::function<void()> WhenDone = [] {};
    test::TemporaryFolder folder_;
    FileList list_{browser, nullptr};
    SelectionSummary summary_{browser};
    ListedFiles listed_{list_};
    Rastx pane_;
    Dialogprogress dialog_{{.session = session,
                            .exportPane = pane_,
                            .list = listed_,
                            .prompts = prompts,
                            .BusyCursor = [this](bool on) { host.BusyCursor(on); },
                            .SelectIcoSourceIco =
                                [this] {
                                    summary_.SelectIcoSourceIco();
                                    WhenDone();
                                }},
                           nullptr};
};

TEST_F(ConvertTest, AJobShowsItsCountsUntilItIsDismissed) {
    list_.SetChecked(0, true);
    list_.SetChecked(1, true);
    summary_.SelectIcoSourceIco();
    bool seen = false;
    WhenDone = [&] {
        QTimer::singleShot(0, &dialog_, [&] {
            seen = dialog_.isVisible() && session.Converting;
            Button()->click();
        });
    };
    dialog_.LoadDialogprogress();
    EXPECT_TRUE(seen);
    EXPECT_FALSE(dialog_.isVisible());
    EXPECT_FALSE(session.Converting);
    EXPECT_EQ(Written(), 3);
    EXPECT_EQ(Counts(), "3 files converted! 3 files created!");
    EXPECT_EQ(Bar(0)->maximum(), 2);
    EXPECT_EQ(Bar(0)->value(), 2) << "the bar ends where it is full";
    EXPECT_EQ(Button()->text(), QStringLiteral("Done"));
    EXPECT_FALSE(session.ExportChanged);
    EXPECT_FALSE(host.busy);
    EXPECT_EQ(session.SelectedCount, 3) << "what was converted is checked, and counted";
}

TEST_F(ConvertTest, CancelAndClosingEndARunningJob) {
    for (const bool byButton : {true, false}) {
        QTimer::singleShot(0, &dialog_, [&] {
            EXPECT_EQ(Button()->text(), QStringLiteral("Cancel"));
            byButton ? Button()->click() : static_cast<void>(dialog_.close());
            EXPECT_TRUE(dialog_.isVisible());
        });
        dialog_.RunJob();
        EXPECT_EQ(Written(), 0);
        EXPECT_EQ(Counts(), "0 files converted! 0 files created!");
        dialog_.close();
        EXPECT_FALSE(dialog_.isVisible());
        Button()->setText(QStringLiteral("Cancel"));
    }
}

TEST_F(ConvertTest, AKeyThatIsStillHeldDownDoesNotCancel) {
    QTimer::singleShot(0, &dialog_, [this] {
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, {}, {}, true);
        QApplication::sendEvent(Button(), &held);
    });
    dialog_.RunJob();
    EXPECT_EQ(Written(), 3);
}

TEST(CountBar, ShowsTheRealWorkWhateverItsRangeIs) {
    CountBar bar;
    bar.setTextVisible(false);
    const auto picture = [&bar](int max, int work, int count) {
        bar.SetMax(max, work);
        bar.ShowCount(count);
        EXPECT_EQ(bar.maximum(), max);
        return bar.grab().toImage();
    };
    const QImage empty = picture(4, 4, 0), half = picture(4, 4, 2), full = picture(4, 4, 4);
    EXPECT_NE(empty, half);
    EXPECT_NE(half, full);
    EXPECT_EQ(picture(0, 4, 2), half);
    EXPECT_EQ(picture(1, 4, 4), full);
    EXPECT_EQ(picture(0, 0, 0), empty) << "nothing to do is not as if it were busy";
}

TEST_F(ConvertTest, ARefusedTargetIsAskedForWithItsType) {
    test::WriteWhole(folder_.File("a.png"), AsBytes("old"));
    session.ConvertOptions.ConvertScope = 0;
    list_.SelectRow(0);
    pane_.SetImage(test::Draw("R"));
    prompts.answers = {Answer::No};
    prompts.files = {folder_.File("other.png")};
    dialog_.RunJob();
    EXPECT_EQ(prompts.asked[0].text,
              "File " + folder_.File("a.png") + " already exists.\n\nDo you want to replace it?");
    EXPECT_EQ(prompts.asked[0].buttons, PromptButtons::YesNo);
    EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Warning);
    ASSERT_EQ(prompts.saveRequests.size(), 1u);
    EXPECT_EQ(prompts.saveRequests[0].filterIndex, 3);
    EXPECT_EQ(prompts.saveRequests[0].filters[2].name, "PNG Files (*.png)");
    EXPECT_EQ(prompts.saveRequests[0].filters[2].pattern, "*.png");
    EXPECT_EQ(prompts.saveRequests[0].name, folder_.File("a"));
    EXPECT_EQ(Written(), 2);
}

TEST_F(ConvertTest, TheSessionsValuesReachTheJob) {
    session.ConvertOptions.ConvertScope = 0;
    session.ConvertOptions.ExportOn = {false, true, true};
    session.ImagePath = "/gone/Shown.bmp";
    pane_.SetImage(test::PhotoLike(64, 64));
    const auto sizeOf = [&](const std::string& name) { return test::ReadWhole(folder_.File(name)).size(); };
    dialog_.RunJob();
    const std::size_t size = sizeOf("shown.jpg");
    session.TargetName = "good";
    session.JpgQuality = 95;
    session.JpgGrayScale = true;
    session.TransparentColor = 0;
    dialog_.RunJob();
    EXPECT_EQ(session.TargetName, "");
    EXPECT_EQ(session.TransparentColor, RGB(255, 255, 255));
    EXPECT_GT(sizeOf("good.jpg"), size);
    Rastx grey;
    test::Must(grey.LoadImage(folder_.File("good.jpg")));
    EXPECT_EQ(grey.Image().At(5, 40).r, grey.Image().At(5, 40).b);
    session.TargetName = "progressive";
    session.JpgProgressive = true;
    dialog_.RunJob();
    EXPECT_NE(sizeOf("progressive.jpg"), sizeOf("good.jpg"));
}

TEST(ConvertButtons, OptionsComeFirstAndDecide) {
    struct Case {
        const char* name;
        bool imageValid;
        bool dontShow;
        Answer answer;
        bool confirmed;
        const char* steps;
    };
    const Case cases[] = {
        {"confirmed", true, false, Answer::Cancel, true, "options from convert, convert, "},
        {"left", true, false, Answer::Cancel, false, "options from convert, "},
        {"not shown", true, true, Answer::Cancel, false, "convert, "},
        {"no file", false, false, Answer::No, true, ""},
        {"no file, options all the same", false, false, Answer::Yes, true, "options, "},
        {"no file, nothing to show", false, true, Answer::Yes, true, ""},
    };
    for (const Case& row : cases) {
        Session session;
        ScriptedPrompts prompts;
        std::string steps;
        session.ImageValid = row.imageValid;
        session.DontShowOptions = row.dontShow;
        prompts.answers = {row.answer};
        const ConvertButtons buttons({session, prompts,
                                      [&] {
                                          steps += session.OptionsFromConvert ? "options from convert, "
                                                                              : "options, ";
                                          session.ConvertConfirmed = row.confirmed;
                                      },
                                      [&] { steps += "convert, "; }, [&] { steps += "reload, "; }});
        buttons.CommandCon_Click(0);
        EXPECT_EQ(steps, row.steps) << row.name;
        EXPECT_EQ(prompts.asked.size(), row.imageValid ? 0u : 1u) << row.name;
        for (const Prompt& question : prompts.asked) {
            EXPECT_EQ(question.text, "No graphics file selected.\n\nContinue any way?");
            EXPECT_EQ(question.icon, PromptIcon::Information);
        }
        buttons.CommandCon_Click(1);
        EXPECT_EQ(steps, row.steps + std::string("reload, ")) << row.name;
    }
}

TEST(ProgressPlace, IsLowOnTheScreenButNotAboveThePanes) {
    struct Case {
        int height;
        int frameTop;
        int top;
    };
    const QRect screen(0, 0, 1920, 1080);
    for (const Case& row : {Case{200, 300, 820}, {200, 850, 850}, {200, 1000, 880}, {1200, 300, 0}})
        EXPECT_EQ(ProgressTop(screen, row.height, row.frameTop), row.top) << row.frameTop;
}

}  // namespace
}  // namespace tessara
