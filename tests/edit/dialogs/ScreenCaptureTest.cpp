#include "edit/dialogs/ScreenCapture.h"

#include <gtest/gtest.h>

#include "tests/edit/RecordingEditHost.h"

namespace tessara {
namespace {

struct RecordingWindow final : CaptureWindow {
    QSize size;
    bool shown = false;
    bool keyPreview = false;
    int topmost = 0;
    Picture picture;

    void SetupCaptureWindow(const QSize& newSize) override { size = newSize; }
    void ShowTopmost() override { shown = true; }
    void MakeTopmost() override { ++topmost; }
    void SetKeyPreview(bool on) override { keyPreview = on; }
    void ShowPicture(const Picture& Picture1) override { picture = Picture1; }
    void Unload() override { shown = false; }
};

struct RecordingCaptureHost final : CaptureHost {
    Qt::WindowStates state = Qt::WindowMaximized;
    std::string button;  ///< its pictures in order: Hover, Normal
    bool valid = false;
    int picturesTaken = 0;

    Qt::WindowStates WindowState() const override { return state; }
    void SetWindowState(Qt::WindowStates states) override { state = states; }
    void SetCapturePicture(PictureState picture) override {
        button += picture == PictureState::Hover ? 'H' : 'N';
    }
    void Setvalid(bool on) override { valid = on; }
    void ImportPictureTaken() override { ++picturesTaken; }
};

/// Panes that hold "K" each before a desktop of six by four.
class ScreenCaptureTest : public testing::Test {
  protected:
    test::RecordedEditor edit_{test::Draw("K")};
    Session& session_ = edit_.session;
    ScriptedScreen screen_;
    ScriptedClock clock_;
    ScriptedPrompts prompts_;
    RecordingWindow window_;
    RecordingCaptureHost host_;
    Rastx import_;
    ScreenCapture capture_{{edit_.editor, import_, screen_, clock_, prompts_, host_, window_}};

    ScreenCaptureTest() {
        import_.SetImage(test::Draw("K"));
        screen_.desktop = test::Draw("M12345 6789RG BCMYWW RRGGBB");
        screen_.cursor = {2, 2};
        session_.CaptureWidth = session_.CaptureHeight = 2;
        session_.ImagePath = "/pictures/a.bmp";
    }
    void Start() {
        prompts_.answers.push_front(Answer::Ok);
        capture_.CaptureTool_Click();
        prompts_.answers.clear();
        prompts_.asked.clear();
    }
    void Tick(int ticks = 1) { clock_.Advance(50 * ticks); }
    /// Presses Ctrl in a running capture.
    void Take(std::deque<Answer> answers) {
        prompts_.answers = std::move(answers);
        screen_.controlKeyDown = true;
        Tick();
    }
    std::string Panes() const {
        return test::Sketch(import_.Image()) + "|" + test::Sketch(edit_.exportPane.Image());
    }
    bool Ended() { return !session_.CaptureMode && !capture_.TimerGrasp().Enabled() && !window_.shown; }
};

TEST_F(ScreenCaptureTest, StartsWithTheMainWindowMinimised) {
    Start();
    EXPECT_TRUE(session_.CaptureMode);
    EXPECT_TRUE(window_.shown);
    EXPECT_EQ(window_.size, QSize(2, 2));
    EXPECT_EQ(host_.state, Qt::WindowMaximized | Qt::WindowMinimized);
    EXPECT_EQ(session_.UndoPosition, 1);
    EXPECT_TRUE(session_.UndoPending);
    Tick(20);
    EXPECT_EQ(screen_.captures, 20) << "a second";
    EXPECT_EQ(window_.topmost, 20);
    EXPECT_EQ(test::Sketch(window_.picture), "78 CM");
}

TEST_F(ScreenCaptureTest, TheButtonStopsARunningCapture) {
    Start();
    Tick();
    capture_.CaptureTool_Click();
    EXPECT_TRUE(Ended());
    EXPECT_EQ(host_.button.back(), 'N');
    Tick(3);
    EXPECT_EQ(screen_.captures, 1);
    EXPECT_EQ(session_.UndoPosition, 1);
}

TEST_F(ScreenCaptureTest, TheThirdStartShowsNoHint) {
    for (const std::size_t hints : {1u, 2u, 2u}) {
        capture_.CaptureTool_Click();
        EXPECT_EQ(prompts_.asked.size(), hints);
        EXPECT_TRUE(window_.shown);
        capture_.CaptureTool_Click();
    }
    EXPECT_EQ(prompts_.asked[0].text, "Press Ctrl key to capture the picture selected!");
    EXPECT_EQ(prompts_.asked[0].icon, PromptIcon::Warning);
}

TEST_F(ScreenCaptureTest, TakesWhatLiesAroundThePointer) {
    struct Case {
        const char* where;
        QPoint pointer;
        int width, height;
        const char* taken;
    };
    const Case cases[] = {
        {"inside", {2, 2}, 2, 2, "78 CM"},
        {"the pixel under the pointer", {5, 1}, 1, 1, "G"},
        {"an odd size, half of it rounded to even", {3, 2}, 5, 3, "12345 789RG CMYWW"},
        {"the first corner", {0, 0}, 4, 4, "KKKK KKKK KKM1 KK67"},
        {"the last corner", {5, 3}, 4, 2, "YWWK GBBK"},
        {"larger than the screen", {3, 2}, 8, 4, "KM12345K K6789RGK KBCMYWWK KRRGGBBK"},
        {"sizes of 0 count as 1", {5, 1}, 0, 0, "G"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.where);
        screen_.cursor = row.pointer;
        session_.CaptureWidth = row.width;
        session_.CaptureHeight = row.height;
        session_.ImagePath = "/pictures/a.bmp";
        session_.ExportChanged = true;
        screen_.controlKeyDown = false;
        Start();
        Take({Answer::Yes, Answer::Yes});
        EXPECT_EQ(Panes(), std::string(row.taken) + "|" + row.taken);
        Rastx scratch;
        test::Must(scratch.LoadImage(edit_.folder.File("QuillonCapture.bmp")));
        EXPECT_EQ(test::Sketch(scratch.Image()), row.taken);
        EXPECT_EQ(session_.ImagePath, "");
        EXPECT_FALSE(session_.ExportChanged);
        EXPECT_TRUE(host_.valid);
        EXPECT_EQ(host_.state, Qt::WindowMaximized);
        EXPECT_EQ(host_.button.back(), 'N');
        EXPECT_TRUE(Ended());
    }
    EXPECT_EQ(host_.picturesTaken, static_cast<int>(std::size(cases)));
    EXPECT_EQ(edit_.host.calls.back(), "PutviewExport 2");
}

TEST_F(ScreenCaptureTest, TakesThePictureThatWasShown) {
    Start();
    Tick();
    screen_.desktop = test::Draw("K");
    prompts_.answers = {Answer::Yes};
    window_.Grasp();
    EXPECT_EQ(Panes(), "78 CM|78 CM");
}

TEST_F(ScreenCaptureTest, AScratchFileThatCannotBeWrittenIsNotNeeded) {
    session_.AppPath += "/missing";
    Start();
    Take({Answer::Yes});
    EXPECT_EQ(Panes(), "78 CM|78 CM");
}

TEST_F(ScreenCaptureTest, NoLeavesThePanesAndRestoresTheWindow) {
    Start();
    Take({Answer::No});
    ASSERT_EQ(prompts_.asked.size(), 1u);
    EXPECT_EQ(prompts_.asked[0].text, "Paste the image captured?");
    EXPECT_EQ(prompts_.beeps, 1);
    EXPECT_EQ(Panes(), "K|K");
    EXPECT_EQ(session_.ImagePath, "/pictures/a.bmp");
    EXPECT_EQ(host_.state, Qt::WindowMaximized);
    EXPECT_EQ(host_.button.back(), 'N');
    EXPECT_TRUE(Ended());
}

TEST_F(ScreenCaptureTest, AKeptExportPictureLeavesTheWindowMinimised) {
    session_.ExportChanged = true;
    Start();
    Take({Answer::Yes, Answer::No});
    ASSERT_EQ(prompts_.asked.size(), 2u);
    EXPECT_EQ(Panes(), "K|K");
    EXPECT_TRUE(session_.ExportChanged);
    EXPECT_EQ(session_.ImagePath, "/pictures/a.bmp");
    EXPECT_EQ(host_.state, Qt::WindowMaximized | Qt::WindowMinimized);
    EXPECT_TRUE(Ended());
}

TEST_F(ScreenCaptureTest, ControlCountsWhenItGoesDown) {
    struct Case {
        bool before;
        const char* ticks;  ///< d: the key is down
        std::size_t questions;
    };
    const Case cases[] = {
        {false, "---", 0}, {false, "--d", 1}, {false, "d", 1}, {true, "ddd", 0}, {true, "dd-d", 1},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.ticks);
        screen_.controlKeyDown = row.before;
        Start();
        for (const char* tick = row.ticks; *tick != 0; ++tick) {
            screen_.controlKeyDown = *tick == 'd';
            Tick();
        }
        EXPECT_EQ(prompts_.asked.size(), row.questions);
        capture_.EndCapture();
    }
}

TEST_F(ScreenCaptureTest, TheMainWindowsKeysCountWhileTheTimerIsOn) {
    capture_.Form_KeyDown(Qt::Key_Control);
    Start();
    capture_.Form_KeyDown(Qt::Key_Shift);
    EXPECT_TRUE(prompts_.asked.empty());
    EXPECT_TRUE(window_.keyPreview);
    capture_.Form_KeyDown(Qt::Key_Control);
    EXPECT_EQ(prompts_.asked.size(), 1u);
    EXPECT_FALSE(window_.keyPreview);
    capture_.Form_KeyDown(Qt::Key_Control);
    EXPECT_EQ(prompts_.asked.size(), 1u);
}

TEST_F(ScreenCaptureTest, TheButtonBlinks) {
    Start();
    Tick(18);
    EXPECT_EQ(host_.button, "HHHHNNNNHHHHHNNNNH");
}

TEST_F(ScreenCaptureTest, ClosingTheWindowEndsTheCapture) {
    Start();
    Tick();
    window_.Closed();
    EXPECT_TRUE(Ended());
    EXPECT_EQ(host_.state, Qt::WindowMaximized);
    EXPECT_EQ(Panes(), "K|K");
}

/// A screen whose user is asked for leave while events go on.
struct WaitingScreen final : Screen {
    ScriptedScreen behind;
    std::function<void()> meanwhile;

    Result<Picture> CaptureAll() override { return behind.CaptureAll(); }
    void BeginCapture() override {}
    Result<Picture> CaptureRectangle(const QRect& rectangle) override {
        if (const auto events = std::exchange(meanwhile, nullptr)) events();
        return behind.CaptureRectangle(rectangle);
    }
    QPoint CursorPosition() override { return behind.cursor; }
    bool ControlKeyDown() override { return behind.controlKeyDown; }
};

TEST_F(ScreenCaptureTest, NothingIsTakenWhileTheDesktopIsAsked) {
    WaitingScreen waiting;
    waiting.behind.desktop = screen_.desktop;
    ScreenCapture capture({edit_.editor, import_, waiting, clock_, prompts_, host_, window_});
    capture.CaptureTool_Click();
    waiting.meanwhile = [&] {
        waiting.behind.controlKeyDown = true;
        Tick();
        window_.Grasp();
        window_.Closed();
    };
    Tick();
    EXPECT_EQ(prompts_.asked.size(), 1u) << "the hint";
    EXPECT_EQ(waiting.behind.captures, 1);
    EXPECT_EQ(host_.state, Qt::WindowMaximized);
    EXPECT_FALSE(session_.CaptureMode);
}

}  // namespace
}  // namespace tessara
