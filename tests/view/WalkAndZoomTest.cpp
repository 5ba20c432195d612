#include <gtest/gtest.h>

#include "tests/view/RecordingStage.h"
#include "view/ZoomLevels.h"

namespace tessara {
namespace {

TEST(ListWalk, StaysWithinTheListAndTellsItsEnds) {
    struct Row {
        const char* name;
        int count, selected;
        std::vector<int> steps;  // as LastNext takes them
        int endsAt;
        const char* tools;  // previous and next; '.' where they stay as they were made
    };
    const Row kRows[] = {
        {"at the first", 3, 1, {}, 1, "-."},
        {"the only one", 1, 1, {}, 1, "--"},
        {"nothing selected", 3, 0, {}, 0, ".."},
        {"to the last", 3, 2, {1}, 3, "+-"},
        {"to the first", 3, 2, {0}, 1, "-+"},
        {"not before the first", 3, 1, {0}, 1, "-+"},
        {"not behind the last", 3, 3, {1}, 3, "+-"},
        {"from nowhere to the first", 3, 0, {1}, 1, "++"},
        {"from nowhere there is no way back", 3, 0, {0}, 0, "++"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        test::RecordingStage stage;
        stage.count = row.count;
        stage.walk.Start(row.selected);
        for (const int step : row.steps) stage.walk.LastNext(step);
        EXPECT_EQ(stage.walk.ListIndex, row.endsAt);
        EXPECT_EQ(stage.Tools().substr(0, 2), row.tools);
    }
}

TEST(ZoomLevels, GoesFrom5To300Percent) {
    ZoomLevels levels;
    std::vector<int> percents;
    while (levels.CanZoomOut()) levels.ZoomOut();
    levels.ZoomOut();
    EXPECT_EQ(levels.ZoomLevel(), -8);
    for (percents = {levels.Percent()}; levels.CanZoomIn(); percents.push_back(levels.Percent()))
        levels.ZoomIn();
    levels.ZoomIn();
    EXPECT_EQ(levels.ZoomLevel(), 3);
    EXPECT_EQ(percents, (std::vector<int>{5, 7, 10, 15, 20, 30, 50, 70, 100, 150, 200, 300}));
}

TEST(ZoomLevels, SizesAreRoundedWithTiesToEven) {
    struct Row {
        int level, side, scaled;
    };
    for (const Row& row : {Row{0, 6001, 6001}, Row{1, 5, 8}, Row{1, 3, 4}, Row{1, 1, 2}, Row{3, 333, 999},
                           Row{-1, 6000, 4200}, Row{-8, 250, 12}, Row{-8, 6000, 300}, Row{-8, 9, 0}}) {
        ZoomLevels levels;
        for (int i = 0; i < row.level; ++i) levels.ZoomIn();
        for (int i = 0; i > row.level; --i) levels.ZoomOut();
        EXPECT_EQ(levels.Scaled(row.side), row.scaled) << row.side << " at level " << row.level;
    }
}

}  // namespace
}  // namespace tessara
