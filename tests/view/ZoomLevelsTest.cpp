#include "view/ZoomLevels.h"

#include <gtest/gtest.h>

#include <vector>

namespace tessara {
namespace {

TEST(ZoomLevels, GoesFrom5To300Percent) {
    ZoomLevels levels;
    for (int i = 0; i < 20; ++i) levels.ZoomOut();
    std::vector<int> percents = {levels.Percent()};
    for (; levels.CanZoomIn(); percents.push_back(levels.Percent())) levels.ZoomIn();
    EXPECT_EQ(percents, (std::vector<int>{5, 7, 10, 15, 20, 30, 50, 70, 100, 150, 200, 300}));
}

TEST(ZoomLevels, SizesAreRoundedWithTiesToEven) {
    struct Row {
        int level, side, scaled;
    };
    for (const Row& row :
         {Row{0, 6001, 6001}, Row{1, 5, 8}, Row{1, 3, 4}, Row{-1, 6000, 4200}, Row{-8, 250, 12}}) {
        ZoomLevels levels;
        for (int i = 0; i < row.level; ++i) levels.ZoomIn();
        for (int i = 0; i > row.level; --i) levels.ZoomOut();
        EXPECT_EQ(levels.Scaled(row.side), row.scaled) << row.side << " at level " << row.level;
    }
}

}  // namespace
}  // namespace tessara
