#include "view/SlideShow.h"

#include <gtest/gtest.h>

#include "tests/view/RecordingStage.h"

namespace tessara {
namespace {

using Indexes = std::vector<int>;

class SlideShowTest : public testing::Test {
  protected:
    /// The number from which a random position below `count` comes out as `position`.
    static std::uint32_t Fraction(int position, int count) {
        return static_cast<std::uint32_t>(
            (std::uint64_t{1} << 32) * static_cast<unsigned>(position) / static_cast<unsigned>(count) + 1);
    }

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
        {"from the last one there is only one step", 0, 0, 4, 4, {4}, false, 4},
        {"reverse wraps", 1, 1, 3, 2, {1, 3, 2, 1, 3, 2}, true, 2},
        {"reverse ends on the first", 1, 0, 4, 3, {2, 1}, false, 1},
        {"one file, not circular", 0, 0, 1, 1, {1}, false, 1},
        {"one file, circular", 0, 1, 1, 1, {1, 1, 1, 1, 1, 1}, true, 0},
        {"one file, circular and reverse", 1, 1, 1, 1, {1, 1, 1, 1, 1, 1}, true, 2},
        {"nothing selected: forward starts at the top", 0, 1, 3, 0, {1, 2, 3, 1, 2, 3}, true, 0},
        {"random repeats and goes on", 2, 1, 4, 1, {3, 3, 1, 4, 2, 2}, true, 2},
        {"random ends by chance on the first", 2, 0, 4, 2, {3, 3, 1}, false, 1},
        {"an empty list", 0, 0, 0, 0, {0}, false, 1},
        {"a list without items, circular", 2, 1, 0, 0, {1, 1, 1, 1, 1, 1}, true, 1},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        session_.SlideOptions = {.SlideCircular = row.circular, .SlideDelay = 1000, .SlideOrder = row.order};
        random_.numbers.clear();
        if (row.count > 0)
            for (const int position : {2, 2, 0, 3, 1, 1})
                random_.numbers.push_back(Fraction(position, row.count));
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
    EXPECT_FALSE(stage_.fullScreen);
    show_.SlideShowNow();
    EXPECT_EQ(stage_.Tools(), "--.-.---.");
    EXPECT_EQ(stage_.fitted, 1);
    show_.StartSlide();
    EXPECT_EQ(stage_.Tools(), "++.+.+++.");
    EXPECT_EQ(stage_.slideToolTip, "Slide Show");
    // The step was circular and had prepared a place outside of the list.
    EXPECT_EQ(stage_.walk.ListIndex, 1);
}

TEST_F(SlideShowTest, ARandomStepLeavesTheButtonsAlone) {
    stage_.count = 3;
    session_.SlideOptions.SlideOrder = 2;
    show_.SlideShowNow();
    EXPECT_EQ(stage_.Tools(), ".........");
}

TEST_F(SlideShowTest, ComesByItselfOnlyWhenAutomatic) {
    struct Row {
        const char* name;
        SlideOptions options;
        int firstAt;  // milliseconds; 0 for never
        std::int32_t delayAfter;
    };
    const Row kRows[] = {
        {"the delay", {.SlideDelay = 300}, 300, 300},
        {"a delay of 0 becomes two seconds", {.SlideDelay = 0}, 2000, 2000},
        {"by click or key", {.SlideAuto = 0, .SlideDelay = 300}, 0, 300},
        {"by click or key, a delay of 0 stays", {.SlideAuto = 0, .SlideDelay = 0}, 0, 0},
    };
    stage_.count = 9;
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        session_.SlideOptions = row.options;
        stage_.loaded.clear();
        show_.StartSlide();
        clock_.Advance(row.firstAt > 0 ? row.firstAt - 1 : 100'000);
        EXPECT_EQ(stage_.loaded.size(), 0u);
        clock_.Advance(1);
        EXPECT_EQ(stage_.loaded.size(), row.firstAt > 0 ? 1u : 0u);
        EXPECT_EQ(session_.SlideOptions.SlideDelay, row.delayAfter);
        show_.StartSlide();
        clock_.Advance(100'000);
        EXPECT_EQ(stage_.loaded.size(), row.firstAt > 0 ? 1u : 0u) << "after the end";
    }
}

TEST_F(SlideShowTest, FullScreenIsAnOption) {
    session_.SlideOptions.SlideFullScreen = 1;
    show_.StartSlide();
    EXPECT_TRUE(stage_.fullScreen);
}

}  // namespace
}  // namespace tessara
