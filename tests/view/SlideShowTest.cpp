#include "view/SlideShow.h"

#include <gtest/gtest.h>

#include "tests/view/RecordingStage.h"

namespace tessara {
namespace {

using Indexes = std::vector<int>;

TEST(ListWalk, StaysWithinTheListAndTellsItsEnds) {
    struct Row {
        int count, selected;
        std::vector<int> steps;  // as LastNext takes them
        int endsAt;
        const char* tools;  // previous and next
    };
    for (const Row& row : {Row{3, 1, {}, 1, "-+"}, Row{1, 1, {}, 1, "--"}, Row{3, 0, {}, 0, "++"},
                           Row{3, 2, {1}, 3, "+-"}, Row{3, 2, {0}, 1, "-+"}, Row{3, 1, {0}, 1, "-+"},
                           Row{3, 3, {1}, 3, "+-"}, Row{3, 0, {1}, 1, "++"}, Row{3, 0, {0}, 0, "++"}}) {
        test::RecordingStage stage;
        stage.count = row.count;
        stage.walk.GoTo(row.selected);
        for (const int step : row.steps) stage.walk.LastNext(step);
        EXPECT_EQ(stage.walk.ListIndex, row.endsAt);
        EXPECT_EQ(stage.Tools().substr(0, 2), row.tools) << "from " << row.selected;
    }
}

class SlideShowTest : public testing::Test {
  protected:
    /// The number from which a random position below 4 comes out as `position`.
    static std::uint32_t Quarter(int position) { return static_cast<std::uint32_t>(position) << 30; }

    Session session_;
    ScriptedClock clock_;
    ScriptedRandom random_;
    test::RecordingStage stage_;
    SlideShow show_{session_, stage_.walk, stage_, clock_, random_};
};

TEST_F(SlideShowTest, GoesThroughTheListInTheChosenOrder) {
    struct Row {
        const char* name;
        std::uint8_t order, circular;
        int count, start;
        Indexes loaded;  // one per second, for six seconds
        bool runs;
        int endsAt;
    };
    const Row kRows[] = {
        {"forward wraps", 0, 1, 3, 2, {3, 1, 2, 3, 1, 2}, true, 2},
        {"forward ends on the last", 0, 0, 4, 1, {2, 3, 4}, false, 4},
        {"reverse wraps", 1, 1, 3, 2, {1, 3, 2, 1, 3, 2}, true, 2},
        {"reverse ends on the first", 1, 0, 4, 3, {2, 1}, false, 1},
        {"one file, not circular", 0, 0, 1, 1, {1}, false, 1},
        {"one file, circular", 0, 1, 1, 1, {1, 1, 1, 1, 1, 1}, true, 0},
        {"nothing selected: forward starts at the top", 0, 1, 3, 0, {1, 2, 3, 1, 2, 3}, true, 0},
        {"random repeats and goes on", 2, 1, 4, 1, {3, 3, 1, 4, 2, 2}, true, 2},
        {"random ends by chance on the first", 2, 0, 4, 2, {3, 3, 1}, false, 1},
        {"an empty list", 0, 0, 0, 0, {0}, false, 1},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        session_.SlideOptions = {.SlideCircular = row.circular, .SlideDelay = 1000, .SlideOrder = row.order};
        random_.numbers.clear();
        for (const int position : {2, 2, 0, 3, 1, 1}) random_.numbers.push_back(Quarter(position));
        stage_.count = row.count;
        stage_.walk.ListIndex = row.start;
        stage_.loaded.clear();
        show_.StartSlide();
        clock_.Advance(6000);
        EXPECT_EQ(stage_.loaded, row.loaded);
        EXPECT_EQ(session_.SlideRunning, row.runs);
        EXPECT_EQ(stage_.walk.ListIndex, row.endsAt);
        if (session_.SlideRunning) show_.StartSlide();
    }
}

TEST_F(SlideShowTest, TakesTheButtonsAwayWhileItRuns) {
    stage_.count = 3;
    stage_.walk.ListIndex = 2;
    show_.StartSlide();
    EXPECT_EQ(stage_.Tools(), "--.-.---.");
    EXPECT_EQ(stage_.slideToolTip, "Stop Slide Show");
    show_.SlideShowNow();
    EXPECT_EQ(stage_.Tools(), "--.-.---.");
    show_.StartSlide();
    EXPECT_EQ(stage_.Tools(), "++.+.+++.");
    EXPECT_EQ(stage_.slideToolTip, "Slide Show");
    // The step was circular and had prepared a place outside of the list.
    EXPECT_EQ(stage_.walk.ListIndex, 1);
}

TEST_F(SlideShowTest, ComesByItselfOnlyWhenAutomatic) {
    struct Row {
        std::uint8_t automatic;
        std::int32_t delay;
        std::size_t stepsBy2000;  // milliseconds
        std::int32_t delayAfter;
    };
    stage_.count = 9;
    for (const Row& row : {Row{1, 900, 2, 900}, Row{1, 0, 1, 2000}, Row{0, 900, 0, 900}, Row{0, 0, 0, 0}}) {
        session_.SlideOptions = {.SlideAuto = row.automatic, .SlideDelay = row.delay};
        stage_.loaded.clear();
        show_.StartSlide();
        clock_.Advance(2000);
        EXPECT_EQ(stage_.loaded.size(), row.stepsBy2000) << row.delay;
        EXPECT_EQ(session_.SlideOptions.SlideDelay, row.delayAfter);
        show_.StartSlide();
        clock_.Advance(100'000);
        EXPECT_EQ(stage_.loaded.size(), row.stepsBy2000) << "after the end";
    }
}

}  // namespace
}  // namespace tessara
