#pragma once

#include <QWidget>
#include <string>

#include "desktop/RastxPane.h"
#include "view/ListWalk.h"
#include "view/SlideShow.h"
#include "view/ViewHost.h"
#include "view/ViewerToolbar.h"
#include "view/ZoomLevels.h"

namespace tessara {

/// The image viewer: a window that shows the files of the list one at a time, at a zoom of its own, and is
/// the stage of the slide show. One that is made has loaded and shows the present file.
class FormviewImport final : public QWidget, private ViewerStage, private SelectionLabels {
    Q_OBJECT
  public:
    explicit FormviewImport(const ViewSurroundings& surroundings);

    /// The pane, whose index is always 0.
    RastxPane& rastx1(int) { return *rastx1_; }
    ViewerToolbar& FrameToolBar1() { return *FrameToolBar1_; }
    ImageTool* Imagetool(int Index) const { return FrameToolBar1_->PictureToolBack()->Imagetool(Index); }
    int ListIndex() const { return walk_.ListIndex; }

    void SetImageTool(int index, bool enabled) override;
    void Imagetool_Click(int Index);
    /// Places everything, loads the present picture and shows the window.
    void SetupForm();
    /// Fits the pane to the window.
    void SetupRastx();
    void SetBackPict() { FrameToolBar1_->PictureToolBack()->SetBackPict(); }
    /// Places the labels.
    void SetCaption();

    /// Loads a file; an empty path takes the picture of the main window's import pane. The picture at 100 %
    /// rests on the clipboard from then on, and what else comes to lie there is what Zoom shows.
    void LoadPict(const std::string& path);
    /// Shows the import pane's picture, and goes to its item in the list.
    void TakeImportPicture();
    /// Moves ListIndex back (0) or on (1).
    void LastNext(int which) { walk_.LastNext(which); }
    void Loadfile00() override;
    /// By the index of the button: kZoomOut or kZoomIn.
    void Zoom(int index);

    /// Starts the slide show, or stops it.
    void StartSlide() { slides_.StartSlide(); }
    void SlideShowNow() { slides_.SlideShowNow(); }

  Q_SIGNALS:
    void ExportViewerWanted();
    /// The window has closed; whoever owns it may delete it later.
    void Unloaded();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void ConnectPane();
    void PasteImportPicture();
    void TellPicture(const std::string& path);
    void ForgetSelection();
    void Form_Load();
    void Form_Resize();
    void Form_Unload();

    // What the walk and the slide show need.
    int ItemCount() const override { return host_.ItemCount(); }
    void SetSlideToolTip(const std::string& text) override;
    void ShowFullScreen() override;
    void FitSlide() override;

    void ShowNormal();
    void DeleteFile();
    void ShowSlideOptions();
    void AdvanceSlides();
    void ShowZoom(int percent);

    // The labels of both windows tell of the selection.
    void SetLabelXY(const std::string& text) override;
    void SetLabelWH(const std::string& text) override;
    void SetImportToolTip(const std::string& text) override;

    ViewSurroundings surroundings_;
    Session& session_;
    ViewHost& host_;
    ViewerToolbar* FrameToolBar1_;
    RastxPane* rastx1_;
    SelectionGesture selection_;
    ListWalk walk_{*this};
    SlideShow slides_;
    ZoomLevels zoom_;
    bool keyPressed_ = false;  ///< in this window; a key that opened it comes up in it too
    int ImageWidth100_ = 0;
    int ImageHeight100_ = 0;
};

}  // namespace tessara
