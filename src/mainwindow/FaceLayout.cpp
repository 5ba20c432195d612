#include "mainwindow/FaceLayout.h"

#include <algorithm>

#include "desktop/Twips.h"

namespace tessara {
namespace {

// The design counts with a whole window: the heights of its title bar and menu are lengths of the design too.
constexpr int kTitleAndMenu = 690;
constexpr int kTreeLeft = 60;
constexpr int kTreeWidth = 2850;
constexpr int kFrameLeast = 300;   ///< a pane's frame that would get lower than this gives up its height...
constexpr int kFrameLowest = 375;  ///< ...down to this
constexpr int kListLowest = 450;
constexpr int kGhostInset = 45;  ///< of the ghost of a horizontal bar
constexpr int kDropOffset[] = {30, 120, 120};

}  // namespace

void FaceLayout::SetFaceS(int width, int height, bool newerStyle) {
    FrameS = {0, 25 * kTwipsPerPixel, width - 15, height + kTitleAndMenu - 630 - (newerStyle ? 180 : 0)};

    TreeViewS = {kTreeLeft, 30, kTreeWidth, FrameS.height - 1095};
    ImageComboPath = {kTreeLeft, TreeViewS.Bottom(), kTreeWidth, 285};
    StatusBarSico = {kTreeLeft, FrameS.height - 735, FrameS.width - 60, 270};
    optionsPanelWidth = kTreeWidth;
    FrameMOve[0] = {TreeViewS.Right(), TreeViewS.top - 90, 90,
                    ImageComboPath.height + TreeViewS.height + 150};

    const int listLeft = TreeViewS.Right() + FrameMOve[0].width - 15;
    ListViewFile = {listLeft, TreeViewS.top - 15, FrameS.width - listLeft - 60, (FrameS.height - 1395) / 3};
    StatusBarSfile = {listLeft + 30, 0, ListViewFile.width - 45, 270};
    FrameMOve[1] = {listLeft + 15, 0, ListViewFile.width - 15, 180};
    FrameMOve[2] = {listLeft + 15, 0, FrameMOve[1].width - 30, 180};
    Frametofile1 = {listLeft + 15, 0, FrameMOve[1].width - 30, 555};
    Picturefrmfile = {30, 30, width, Frametofile1.height - 60};
    for (int i : {0, 1}) {
        FrameRst[i] = {listLeft + 15, 0, FrameMOve[1].width + 45, ListViewFile.height};
        rastx1[i] = {-60, 135, FrameRst[i].width - 15, FrameRst[i].height - 180};
        ProgressBarS[i] = {0, 75, FrameMOve[1].width + 450, 90};
    }
    PlaceColumn();
    for (int i : {0, 1, 2}) ShowGhost(i);
}

void FaceLayout::PlaceColumn() {
    StatusBarSfile.top = ListViewFile.Bottom() - 15;
    FrameMOve[1].top = ListViewFile.Bottom() + StatusBarSfile.height - 120 + 45;
    FrameRst[0].top = FrameMOve[1].Bottom() - 150;
    Frametofile1.top = FrameRst[0].Bottom() - 75;
    FrameMOve[2].top = Frametofile1.Bottom() - 90;
    FrameRst[1].top = FrameMOve[2].Bottom() - 150;
}

Face FaceLayout::GhostAt(int index) const {
    const Face& bar = FrameMOve[index];
    if (index == 0) return {bar.left, TreeViewS.top + 15, 30, bar.height - 105};
    return {FrameMOve[1].left + 25, bar.top + kGhostInset, FrameMOve[1].width - 45, 30};
}

void FaceLayout::MoveGhost(int index, int x, int y) {
    Face& ghost = PictureBLKCHG[index];
    const Face& bar = FrameMOve[index];
    // In a window that is too small for its limits the lower one counts.
    const auto within = [](int at, int lowest, int highest) {
        return std::max(lowest, std::min(at, highest));
    };
    if (index == 0) ghost.left = within(bar.left + x, 150, FrameS.width - 375);
    if (index == 1) ghost.top = within(bar.top + y, 600, FrameRst[0].Bottom() - 75);
    if (index == 2) ghost.top = within(bar.top + y, FrameRst[0].top + 75, FrameRst[1].Bottom() - 75);
}

void FaceLayout::Drop(int index) {
    Face& ghost = PictureBLKCHG[index];
    (index == 0 ? ghost.left : ghost.top) -= kDropOffset[index];
    if (index == 0) DropTreeBar();
    if (index == 1) DropListBar();
    if (index == 2) DropExportBar();
    for (int i : {0, 1, 2}) ShowGhost(i);
}

void FaceLayout::Step(int index, int distance) {
    ShowGhost(index);
    const int way = distance + kDropOffset[index];
    MoveGhost(index, way, way);
    Drop(index);
}

void FaceLayout::DropTreeBar() {
    const int delta = PictureBLKCHG[0].left - FrameMOve[0].left;
    for (int* width : {&TreeViewS.width, &ImageComboPath.width, &optionsPanelWidth, &FrameMOve[0].left})
        *width += delta;
    for (Face* face : {&ListViewFile, &StatusBarSfile, &FrameMOve[1], &FrameMOve[2], &FrameRst[0],
                       &FrameRst[1], &Frametofile1}) {
        face->left += delta;
        face->width -= delta;
    }
    for (int i : {0, 1}) {
        rastx1[i].width -= delta;
        ProgressBarS[i].width = FrameMOve[1].width + 450;
    }
}

void FaceLayout::SetFrameHeight(int index, int height) {
    rastx1[index].height += height - FrameRst[index].height;
    FrameRst[index].height = height;
}

void FaceLayout::DropListBar() {
    int up = FrameMOve[1].top - PictureBLKCHG[1].top;
    if (-up > FrameRst[0].height - kFrameLeast) return ShrinkImportFrame(PictureBLKCHG[1].top);
    up = std::min(up, ListViewFile.height - kListLowest);
    ListViewFile.height -= up;
    ChangeWidth(up, 1);
}

void FaceLayout::ShrinkImportFrame(int ghostTop) {
    const int stack = Frametofile1.height + FrameMOve[2].height + FrameMOve[1].height + 225;
    ghostTop = std::min(ghostTop, StatusBarSico.top - stack);
    const int exportTop = FrameRst[1].top;
    ListViewFile.height += ghostTop - FrameMOve[1].top;
    SetFrameHeight(0, kFrameLowest);
    PlaceColumn();
    SetFrameHeight(1, FrameRst[1].height - (FrameRst[1].top - exportTop));
}

void FaceLayout::DropExportBar() {
    int up = FrameMOve[2].top - PictureBLKCHG[2].top;
    if (-up > FrameRst[1].height - kFrameLeast) up = kFrameLowest - FrameRst[1].height;
    if (up <= FrameRst[0].height - kFrameLeast) return ChangeWidth(up, 2);
    // The import frame is at its lowest: the list gives what is missing, as far as it may.
    const int given = FrameRst[0].height - kFrameLowest;
    const int wanted = std::min(up - given, ListViewFile.height - kListLowest);
    ListViewFile.height -= wanted;
    SetFrameHeight(0, kFrameLowest);
    SetFrameHeight(1, FrameRst[1].height + given + wanted);
    PlaceColumn();
}

void FaceLayout::ChangeWidth(int delta, int mode) {
    SetFrameHeight(0, FrameRst[0].height + (mode == 1 ? delta : -delta));
    if (mode == 2) SetFrameHeight(1, FrameRst[1].height + delta);
    PlaceColumn();
}

}  // namespace tessara
