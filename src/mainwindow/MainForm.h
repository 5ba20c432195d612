#pragma once

#include <QElapsedTimer>
#include <QFrame>
#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <QPushButton>
#include <array>
#include <memory>

#include "artwork/TiledBack.h"
#include "browse/FileCommands.h"
#include "browse/FileList.h"
#include "browse/FolderTree.h"
#include "browse/PathBox.h"
#include "browse/SelectionSummary.h"
#include "desktop/RastxPane.h"
#include "edit/Editor.h"
#include "edit/WorkingImage.h"
#include "edit/dialogs/Dialog2.h"
#include "edit/dialogs/EffectCommands.h"
#include "edit/dialogs/FormIcoRealSize.h"
#include "edit/dialogs/ScreenCapture.h"
#include "edit/dialogs/SelectionClipboard.h"
#include "mainwindow/ConvertButtons.h"
#include "mainwindow/DesktopServices.h"
#include "mainwindow/DragBar.h"
#include "mainwindow/FaceLayout.h"
#include "mainwindow/MainMenu.h"
#include "mainwindow/PanelBar.h"
#include "mainwindow/TargetFolderButton.h"
#include "mainwindow/Toolbar.h"
#include "settings/dialogs/OptionsHost.h"
#include "view/Viewers.h"

namespace tessara {

/// The main window: owns the panes and every component of browsing and editing, places them, and is what each
/// of them knows of the others.
class MainForm final : public QMainWindow,
                       public BrowserHost,
                       public WorkingImageHost,
                       public EditHost,
                       public SelectionHost,
                       public CaptureHost,
                       public ViewHost,
                       public OptionsHost {
    Q_OBJECT
  public:
    MainForm(Session& session, const DesktopServices& services);
    ~MainForm() override;

    /// The load step: brings up everything and shows the window. False where the user would rather not.
    bool Form_Load();
    /// Places everything for the window's size; `fillTree` also reads the tree anew.
    void SetFaceS(bool fillTree = false);
    /// Turns off what needs a current picture or a selection.
    void SetObjFalse();

    RastxPane& rastx1(int index) { return *panes_[static_cast<std::size_t>(index)]; }
    MainMenu& Menus() { return *menus_; }
    FileList& List() { return *list_; }
    FolderTree& Tree() { return *tree_; }
    PathBox& Box() { return *box_; }

    // What browsing needs.
    void LoadPict(std::string path) override;
    void Setvalid(bool valid) override;
    void ClearPanes() override;
    void ClearSelection() override;
    void UndoRefresh(const std::string& command) override;
    void StopCapture() override;
    void OpenImportViewer() override;
    void OpenExportViewer() override;
    void StartSlideShow() override;
    void SetFilePanel(int panel, const std::string& text) override;
    void SetOptionsPanel(const std::string& text) override;
    void SetCaption(const std::string& text) override;
    void SetTreeToolTip(const std::string& text) override;
    void BusyCursor(bool on) override;
    void ShowListProgress(int value, bool shown) override;
    void Repaint() override;
    void SetKeyPreview(bool on) override;
    void SetMenuEnabled(const std::string& menu, int index, bool enabled) override;
    void SetImageTool(int index, bool enabled) override;
    void PopMenu(const std::string& selector) override;
    void SetmnFile() override;

    // What the panes' pictures need.
    void SetImageCommandsEnabled(bool enabled) override;
    void SetImportToolTip(const std::string& text) override;
    void SetLabelPict(const std::string& text) override;
    void ClearPositionLabels() override;
    void RefreshViewers(int which) override;
    ColorNumber BackColor() const override;

    // What editing needs.
    void PutviewExport(int which) override;
    void ShowProgress(int Max, bool On) override;
    void SetProgress(int value) override;
    void Imagetool_Click(int Index) override;
    void RunHtmlHelp(const std::string& topic) override;
    void SetLabelXY(const std::string& text) override;
    void SetLabelWH(const std::string& text) override;
    void BringDialog2ToFront() override;
    Qt::WindowStates WindowState() const override { return windowState(); }
    void SetWindowState(Qt::WindowStates states) override;
    void SetCapturePicture(PictureState picture) override;
    void ImportPictureTaken() override;

    // What the viewers need.
    int ItemCount() const override { return list_->RowCount(); }
    int SelectedItem() const override { return list_->SelectedRow() + 1; }
    std::string ItemKey(int item) const override { return list_->KeyOf(item - 1); }
    void MakeItemVisible(int item) override;
    void RemoveItem(int item) override;
    void FocusMainWindow() override { activateWindow(); }

    // What the options need.
    void EnterFolder(const std::string& folder) override;
    void PrintNote() override;
    std::string SelectedFile() const override;
    void ShowDialogTrcol() override;
    void ShowDialogSlideOpt() override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // The window's parts, from the lowest to the highest.
    void MakeFrames();
    Rastx::Surroundings PaneSurroundings() const;
    void MakePanes();
    void MakeBars();
    void ConnectBar(int index);
    // X and Y in twips.
    void FrameMOve_MouseDown(int Index);
    void FrameMOve_MouseMove(int Index, int X, int Y);
    void FrameMOve_MouseUp(int Index);
    void MakeStrip();
    void MakeBrowsing();
    void MakeEditing();
    void ConnectPanes();
    void ConnectMenus();
    void WatchMouse();
    void CheckPaste();
    void WatchMenuKey();
    void PopMenuAt(const QPoint& place, const std::string& selector);
    void NamePicture(RastxPane& pane) const;
    void Form_Paint();
    void Form_Resize();
    void ApplyFaces();
    void PlaceStrip();
    void ShowLabelsThatFit();

    // Commands.
    void MenuClick(const std::string& array, int index);
    void mTransform_Click(int Index);
    void mHelp_Click(int Index);
    void mnOptions_Click();
    /// Enters a folder, or a file's folder and shows the file.
    void GoToFile(const std::string& path);
    void Loaddialog1();
    void LoadDialog2();
    void Convert();

    // The load step and its counterpart.
    bool DisplayAccepted();
    void PlaceOnScreen();
    bool Form_Unload();

    Session& session_;
    DesktopServices services_;
    FaceLayout faces_;
    bool SplitterDrag_ = false;
    std::int64_t progressShownAt_ = 0;  ///< when the bar of the effects was painted last, in the clock's time
    bool keyPreview_ = true;            ///< keys reach the window before the control that has the focus

    std::unique_ptr<MainMenu> menus_;
    std::unique_ptr<Browser> browser_;
    std::unique_ptr<SelectionSummary> summary_;
    std::unique_ptr<FileCommands> fileCommands_;
    std::unique_ptr<WorkingImage> workingImage_;
    std::unique_ptr<UndoStore> undo_;
    std::unique_ptr<Editor> editor_;
    std::unique_ptr<EffectCommands> effects_;
    std::unique_ptr<SelectionClipboard> selection_;
    std::unique_ptr<ConvertButtons> convert_;
    std::unique_ptr<Viewers> viewers_;
    Help help_;
    FormIcoRealSize captureWindow_;
    std::unique_ptr<ScreenCapture> capture_;
    Dialog2* Dialog2_ = nullptr;  ///< while it is on screen

    QWidget* client_;  ///< what is below the menus
    Toolbar* toolbar_;
    QWidget* FrameS_;
    FolderTree* tree_ = nullptr;
    FileList* list_ = nullptr;
    PathBox* box_ = nullptr;
    PanelBar* StatusBarSico_ = nullptr;
    PanelBar* StatusBarSfile_ = nullptr;
    TargetFolderButton* targetFolder_ = nullptr;
    std::array<QWidget*, 2> FrameRst_{};
    std::array<RastxPane*, 2> panes_{};
    QWidget* Frametofile1_ = nullptr;
    TiledBack* Picturefrmfile_ = nullptr;
    QLabel *LabelPict_ = nullptr, *LabelXY_ = nullptr, *LabelWH_ = nullptr;
    std::array<QFrame*, 2> Image2and3_{};
    std::array<QPushButton*, 2> CommandCon_{};
    std::array<QProgressBar*, 2> ProgressBarS_{};
    QElapsedTimer listProgressDrawn_;
    std::array<DragBar*, 3> FrameMOve_{};
    std::array<DragGhost*, 3> PictureBLKCHG_{};
};

}  // namespace tessara
