#include <QProgressBar>
#include <QPushButton>

#include "core/SystemVersion.h"
#include "desktop/Twips.h"
#include "mainwindow/MainForm.h"

// Where everything in the window stands, and the bars by which the user moves it.

namespace tessara {
namespace {

constexpr int kButtonWidth = 1200;  ///< twips

int Pixels(int twips) {
    return qRound(twips / double(kTwipsPerPixel));
}

/// A length that became negative leaves the control as it is. What is within another face is rounded where it
/// stands in the window, so that edges that meet there do so to the pixel.
void Apply(QWidget* control, const Face& face, const Face& around = {}) {
    if (face.width < 0 || face.height < 0) return;
    const auto x = [&](int twips) { return Pixels(around.left + twips) - Pixels(around.left); };
    const auto y = [&](int twips) { return Pixels(around.top + twips) - Pixels(around.top); };
    control->setGeometry(x(face.left), y(face.top), x(face.Right()) - x(face.left),
                         y(face.Bottom()) - y(face.top));
}

}  // namespace

void MainForm::Form_Resize() {
    if (!session_.Starting) SetFaceS();
}

void MainForm::SetFaceS(bool fillTree) {
    faces_.SetFaceS(client_->width() * kTwipsPerPixel, client_->height() * kTwipsPerPixel,
                    IsXP(session_.DesktopPath));
    ApplyFaces();
    if (fillTree) tree_->ResetTreeViewS(false);
}

void MainForm::ApplyFaces() {
    toolbar_->Place(client_->width());
    Apply(FrameS_, faces_.FrameS);
    Apply(tree_, faces_.TreeViewS);
    Apply(box_, faces_.ImageComboPath);
    Apply(StatusBarSico_, faces_.StatusBarSico);
    Apply(list_, faces_.ListViewFile);
    Apply(StatusBarSfile_, faces_.StatusBarSfile);
    Apply(Frametofile1_, faces_.Frametofile1);
    Apply(Picturefrmfile_, faces_.Picturefrmfile, faces_.Frametofile1);
    for (int i : {0, 1}) {
        Apply(FrameRst_[i], faces_.FrameRst[i]);
        Apply(panes_[i], faces_.rastx1[i], faces_.FrameRst[i]);
        Apply(ProgressBarS_[i], faces_.ProgressBarS[i]);
    }
    for (int i : {0, 1, 2}) Apply(FrameMOve_[i], faces_.FrameMOve[i]);
    StatusBarSico_->SetPanelWidth(1, Pixels(faces_.optionsPanelWidth));
    for (int panel : {1, 2}) StatusBarSfile_->SetPanelWidth(panel, Pixels(faces_.FilePanelWidth()));
    PlaceStrip();
}

void MainForm::PlaceStrip() {
    Apply(LabelPict_, {150, 210, 2400, 225});
    Apply(LabelXY_, {2700, 225, 1380, 210});
    Apply(LabelWH_, {4200, 225, 1500, 210});
    for (QFrame* marker : Image2and3_) Apply(marker, {4200 - 90, 195, 30, 270});
    int right = 0;
    for (QPushButton* button : CommandCon_) {
        Apply(button, {faces_.CommandLeft(kButtonWidth) - right, 105, kButtonWidth, 345});
        right += kButtonWidth + 75;
    }
    ShowLabelsThatFit();
}

void MainForm::ConnectBar(int index) {
    connect(FrameMOve_[index], &DragBar::MouseDown, this, [this, index] { FrameMOve_MouseDown(index); });
    connect(FrameMOve_[index], &DragBar::MouseMove, this, [this, index](int x, int y) {
        FrameMOve_MouseMove(index, x * kTwipsPerPixel, y * kTwipsPerPixel);
    });
    connect(FrameMOve_[index], &DragBar::Step, this, [this, index](int pixels) {
        faces_.Step(index, pixels * kTwipsPerPixel);
        ApplyFaces();
    });
    connect(FrameMOve_[index], &DragBar::MouseUp, this, [this, index] { FrameMOve_MouseUp(index); });
}

void MainForm::FrameMOve_MouseDown(int Index) {
    faces_.ShowGhost(Index);
    Apply(PictureBLKCHG_[Index], faces_.PictureBLKCHG[Index]);
    PictureBLKCHG_[Index]->show();
    SplitterDrag_ = true;
}

void MainForm::FrameMOve_MouseMove(int Index, int X, int Y) {
    if (!SplitterDrag_) return;
    faces_.MoveGhost(Index, X, Y);
    Apply(PictureBLKCHG_[Index], faces_.PictureBLKCHG[Index]);
}

void MainForm::FrameMOve_MouseUp(int Index) {
    SplitterDrag_ = false;
    PictureBLKCHG_[Index]->hide();
    faces_.Drop(Index);
    ApplyFaces();
}

}  // namespace tessara
