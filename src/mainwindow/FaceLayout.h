#pragma once

#include <array>

namespace tessara {

/// A place and a size in twips.
struct Face {
    int left = 0, top = 0, width = 0, height = 0;

    int Right() const { return left + width; }
    int Bottom() const { return top + height; }
    bool operator==(const Face&) const = default;
};

/// Where everything on the main window stands. All lengths are twips, 15 to the pixel; the areas below the
/// toolbar are placed within `FrameS`, the panes, the strip's parts and the progress bars within their
/// frames.
struct FaceLayout {
    Face FrameS;
    Face TreeViewS, ImageComboPath, StatusBarSico;
    Face ListViewFile, StatusBarSfile;
    std::array<Face, 2> FrameRst, rastx1;
    Face Frametofile1, Picturefrmfile;
    std::array<Face, 2> ProgressBarS;
    std::array<Face, 3> FrameMOve, PictureBLKCHG;
    /// Widths of the first panel of StatusBarSico and of each panel of StatusBarSfile.
    int optionsPanelWidth = 0;
    int FilePanelWidth() const { return StatusBarSfile.width / 3; }
    /// The left edge of a button in the strip that keeps to its right end.
    int CommandLeft(int buttonWidth) const { return Frametofile1.width - 75 - buttonWidth; }

    /// The whole layout of a window of this inner size, below its menus. `newerStyle` is the answer of
    /// FindXP.
    void SetFaceS(int width, int height, bool newerStyle);
    /// Moves the ghost of a bar by the pointer's way, within the limits.
    void MoveGhost(int index, int x, int y);
    /// The ghost starts where its bar is.
    void ShowGhost(int index) { PictureBLKCHG[index] = GhostAt(index); }
    /// Drops a bar where its ghost is: everything beside it gives way.
    void Drop(int index);
    /// As if the bar were dragged that far.
    void Step(int index, int distance);

  private:
    Face GhostAt(int index) const;
    void DropTreeBar();
    void DropListBar();
    void DropExportBar();
    void ShrinkImportFrame(int ghostTop);
    void ChangeWidth(int delta, int mode);
    void PlaceColumn();
    void SetFrameHeight(int index, int height);
};

}  // namespace tessara
