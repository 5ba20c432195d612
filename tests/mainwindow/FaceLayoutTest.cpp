#include "mainwindow/FaceLayout.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tessara {
namespace {

constexpr int kWidth = 1920 * 15, kHeight = 1000 * 15;

FaceLayout Laid(int width = kWidth, int height = kHeight, bool newerStyle = false) {
    FaceLayout faces;
    faces.SetFaceS(width, height, newerStyle);
    return faces;
}

FaceLayout Dropped(FaceLayout faces, int index, int x, int y) {
    faces.ShowGhost(index);
    faces.MoveGhost(index, x, y);
    faces.Drop(index);
    return faces;
}

/// Each area ends where the next begins, but for the overlaps of the design.
void ExpectWholeColumn(const FaceLayout& faces) {
    EXPECT_EQ(faces.StatusBarSfile.top, faces.ListViewFile.Bottom() - 15);
    EXPECT_EQ(faces.FrameMOve[1].top, faces.StatusBarSfile.Bottom() - 60);
    EXPECT_EQ(faces.FrameRst[0].top, faces.FrameMOve[1].Bottom() - 150);
    EXPECT_EQ(faces.Frametofile1.top, faces.FrameRst[0].Bottom() - 75);
    EXPECT_EQ(faces.FrameMOve[2].top, faces.Frametofile1.Bottom() - 90);
    EXPECT_EQ(faces.FrameRst[1].top, faces.FrameMOve[2].Bottom() - 150);
    for (int i : {0, 1}) {
        EXPECT_EQ(faces.rastx1[i].height, faces.FrameRst[i].height - 180);
        EXPECT_EQ(faces.rastx1[i].width, faces.FrameRst[i].width - 15);
        EXPECT_GE(faces.FrameRst[i].height, 285);
    }
    EXPECT_EQ(faces.FrameMOve[0].left, faces.TreeViewS.Right());
    EXPECT_EQ(faces.ListViewFile.left, faces.FrameMOve[0].Right() - 15);
}

TEST(FaceLayout, TheColumnFillsTheWindowDownToTheStatusBar) {
    for (const auto& [width, height] :
         {std::pair(kWidth, kHeight), {1366 * 15, 700 * 15}, {720 * 15, 480 * 15}}) {
        SCOPED_TRACE(width);
        const FaceLayout faces = Laid(width, height);
        ExpectWholeColumn(faces);
        // Thirds are whole numbers.
        EXPECT_NEAR(faces.FrameRst[1].Bottom(), faces.StatusBarSico.top, 2);
        EXPECT_EQ(faces.FrameS.top + faces.StatusBarSico.Bottom(), height - 30);
        EXPECT_EQ(faces.TreeViewS.width, 2850);
        EXPECT_EQ(faces.ImageComboPath.top, faces.TreeViewS.Bottom());
        EXPECT_EQ(faces.ListViewFile.Right(), faces.FrameS.width - 60);
    }
    EXPECT_EQ(Laid(kWidth, kHeight, true).FrameS.height, Laid().FrameS.height - 180);
}

TEST(FaceLayout, TheTreeBarTradesWidthWithEverythingBesideIt) {
    const FaceLayout before = Laid();
    const FaceLayout after = Dropped(before, 0, 1500, 0);
    EXPECT_EQ(after.TreeViewS.width, before.TreeViewS.width + 1470);
    EXPECT_EQ(after.optionsPanelWidth, before.optionsPanelWidth + 1470);
    for (const auto& [was, is] : {std::pair(before.ListViewFile, after.ListViewFile),
                                  {before.StatusBarSfile, after.StatusBarSfile},
                                  {before.FrameRst[1], after.FrameRst[1]},
                                  {before.Frametofile1, after.Frametofile1}}) {
        EXPECT_EQ(is.left, was.left + 1470);
        EXPECT_EQ(is.Right(), was.Right());
    }
    EXPECT_EQ(after.ProgressBarS[0].width, after.FrameMOve[1].width + 450);
    ExpectWholeColumn(after);
    // The drop takes 30 off, also where the ghost is at its limit.
    EXPECT_EQ(Dropped(before, 0, -9000, 0).FrameMOve[0].left, 120);
    EXPECT_EQ(Dropped(before, 0, 90000, 0).FrameMOve[0].left, before.FrameS.width - 375 - 30);
}

TEST(FaceLayout, HorizontalBarsKeepTheirLimits) {
    const FaceLayout before = Laid();
    struct Row {
        const char* name;
        int index, way;
        int list, import, export_;  // heights; -1 where what is left over
    };
    const int height = before.ListViewFile.height;
    const Row kRows[] = {
        {"list bar up", 1, -600, height - 720, height + 720, height},
        {"list bar down", 1, 600, height + 480, height - 480, height},
        {"list bar to the top", 1, -90000, 450, 2 * height - 450, height},
        {"list bar where the import frame gets too low", 1, height - 100, height + height - 220, 375, -1},
        {"export bar up", 2, -600, height, height - 720, height + 720},
        {"export bar down", 2, 600, height, height + 480, height - 480},
        {"export bar to the top", 2, -90000, -1, 375, -1},
        {"export bar to the bottom", 2, 90000, height, 2 * height - 375, 375},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        const FaceLayout after = Dropped(before, row.index, 0, row.way);
        ExpectWholeColumn(after);
        EXPECT_TRUE(row.list < 0 || after.ListViewFile.height == row.list) << after.ListViewFile.height;
        EXPECT_EQ(after.FrameRst[0].height, row.import);
        EXPECT_TRUE(row.export_ < 0 || after.FrameRst[1].height == row.export_) << after.FrameRst[1].height;
        EXPECT_GE(after.ListViewFile.height, 450);
        EXPECT_NEAR(after.FrameRst[1].Bottom(), before.FrameRst[1].Bottom(), 2);
    }
}

TEST(FaceLayout, AStepIsADropThatFarAway) {
    const FaceLayout before = Laid();
    for (const int way : {150, -150, 90000, -90000}) {
        FaceLayout stepped[] = {before, before, before};
        for (const int index : {0, 1, 2}) stepped[index].Step(index, way);
        EXPECT_EQ(stepped[0].FrameMOve, Dropped(before, 0, way + 30, 0).FrameMOve);
        EXPECT_EQ(stepped[1].FrameMOve, Dropped(before, 1, 0, way + 120).FrameMOve);
        EXPECT_EQ(stepped[2].FrameMOve, Dropped(before, 2, 0, way + 120).FrameMOve);
    }
}

TEST(FaceLayout, AnySeriesOfDropsKeepsTheColumnWhole) {
    FaceLayout faces = Laid(1366 * 15, 700 * 15);
    unsigned random = 7;
    for (int i = 0; i < 500; ++i) {
        random = random * 1664525u + 1013904223u;
        const int index = static_cast<int>(random >> 8) % 3;
        const int way = static_cast<int>(random >> 12) % 16000 - 8000;
        faces = Dropped(faces, index, way, way);
        SCOPED_TRACE(testing::Message() << i << ": bar " << index << " by " << way);
        ExpectWholeColumn(faces);
        EXPECT_LE(faces.FrameRst[1].Bottom(), faces.StatusBarSico.top + 2);
        if (HasFailure()) return;
    }
}

}  // namespace
}  // namespace tessara
