#include "mainwindow/MainForm.h"

#include <QKeyEvent>

#include "browse/PathWalk.h"
#include "desktop/Named.h"
#include "desktop/PathText.h"
#include "edit/dialogs/DialogResize.h"

namespace tessara {
namespace {

constexpr QSize kSmallestWindow(600, 340);

}  // namespace

MainForm::MainForm(Session& session, const DesktopServices& services)
    : session_(session),
      services_(services),
      help_(session, services.help),
      client_(new QWidget(this)),
      toolbar_(new Toolbar(session, client_)),
      FrameS_(new QWidget(client_)) {
    setObjectName(QStringLiteral("MainForm"));
    setMinimumSize(kSmallestWindow);
    setCentralWidget(client_);
    setAcceptDrops(true);
    FrameS_->setObjectName(QStringLiteral("FrameS"));
    connect(toolbar_, &Toolbar::Imagetool_Click, this, &MainForm::Imagetool_Click);
    menus_ = std::make_unique<MainMenu>(
        *menuBar(), [this](const std::string& array, int index) { MenuClick(array, index); });
    browser_ = std::make_unique<Browser>(Browser{session_, services_.prompts, services_.shell, *this, {}});
    MakeFrames();
    summary_ = std::make_unique<SelectionSummary>(*browser_);
    fileCommands_ = std::make_unique<FileCommands>(*browser_);
    MakeEditing();
    ConnectPanes();
    ConnectMenus();
    WatchMouse();
}

MainForm::~MainForm() = default;

void MainForm::MakeEditing() {
    Rastx& importPane = rastx1(0).rastx();
    Rastx& exportPane = rastx1(1).rastx();
    workingImage_ =
        std::make_unique<WorkingImage>(session_, importPane, exportPane, services_.clipboard, *this);
    undo_ = std::make_unique<UndoStore>(session_, exportPane, *this);
    editor_ = std::make_unique<Editor>(Editor{session_, exportPane, services_.clipboard, *undo_, *this});
    effects_ = std::make_unique<EffectCommands>(EffectCommands::Surroundings{
        *editor_, services_.prompts, services_.random, [this] { LoadDialog2(); },
        [this] {
            DialogResize({*editor_, &rastx1(1), list_->y()}, this).LoaddialogResize();
        }});
    selection_ = std::make_unique<SelectionClipboard>(*editor_, importPane, services_.prompts, *this);
    convert_ = std::make_unique<ConvertButtons>(
        ConvertButtons::Surroundings{session_, services_.prompts, [this] { Loaddialog1(); },
                                     [this] { Convert(); }, [this] { workingImage_->Reload(); }});
    viewers_ = std::make_unique<Viewers>(ViewSurroundings{*editor_, importPane, *selection_, *this,
                                                          services_.prompts, services_.clock,
                                                          services_.random, *this});
    capture_ = std::make_unique<ScreenCapture>(ScreenCapture::Surroundings{
        *editor_, importPane, services_.screen, services_.clock, services_.prompts, *this, captureWindow_});
}

void MainForm::ConnectPanes() {
    for (int i : {0, 1}) {
        SelectionClipboard& selection = *selection_;
        const auto connectTo = [&](auto signal, auto handler) {
            connect(panes_[i], signal, this, [&selection, handler, i] { (selection.*handler)(i); });
        };
        connectTo(&RastxPane::ImageMouseDown, &SelectionClipboard::rastx1_ImageMouseDown);
        connectTo(&RastxPane::ImageMouseMove, &SelectionClipboard::rastx1_ImageMouseMove);
        connectTo(&RastxPane::ImageMouseUp, &SelectionClipboard::rastx1_ImageMouseUp);
        connectTo(&RastxPane::ImageRightClick, &SelectionClipboard::rastx1_ImageRightClick);
        connectTo(&RastxPane::ImageDblClick, &SelectionClipboard::rastx1_ImageDblClick);
    }
}

void MainForm::ConnectMenus() {
    WatchMenuKey();
    connect(menus_->Menu("mnFile"), &QMenu::aboutToShow, this, &MainForm::SetmnFile);
    connect(menus_->Menu("mnEdit"), &QMenu::aboutToShow, this, &MainForm::CheckPaste);
    connect(toolbar_, &Toolbar::SlidesToFront, viewers_.get(), &Viewers::SlidesToFront);
    services_.clipboard.Changed = [this] { CheckPaste(); };
}

void MainForm::WatchMouse() {
    // Where the pointer leaves the toolbar for: a move there ends the hover.
    for (QWidget* area : std::initializer_list<QWidget*>{this, client_, FrameS_, Frametofile1_,
                                                         Picturefrmfile_, list_->ListViewFile()->viewport(),
                                                         panes_[0]->viewport(), panes_[1]->viewport()}) {
        area->setMouseTracking(true);
        area->installEventFilter(this);
    }
}

void MainForm::MakeFrames() {
    // What is made first lies below what comes later: the frames of the panes and the strip reach under the
    // bars.
    MakePanes();
    MakeStrip();
    MakeBars();
    MakeBrowsing();
    for (int i : {0, 1, 2}) PictureBLKCHG_[i] = new DragGhost(Indexed("PictureBLKCHG", i), FrameS_);
}

void MainForm::MakeBrowsing() {
    tree_ = new FolderTree(*browser_, FrameS_);
    box_ = new PathBox(*browser_, FrameS_);
    list_ = new FileList(*browser_, FrameS_);
    StatusBarSico_ = new PanelBar(QStringLiteral("StatusBarSico"), QStringLiteral("Statusico"), 2, FrameS_);
    targetFolder_ = new TargetFolderButton(services_.links, StatusBarSico_);
    StatusBarSico_->SetEndControl(targetFolder_);
    StatusBarSfile_ =
        new PanelBar(QStringLiteral("StatusBarSfile"), QStringLiteral("Statusfile"), 3, FrameS_);
    // As a reader goes: folders, their path, the files, then what is done with them.
    QWidget* previous = tree_->TreeViewS();
    for (QWidget* next :
         std::initializer_list<QWidget*>{box_->ImageComboPath(), list_->ListViewFile(), panes_[0],
                                         CommandCon_[1], CommandCon_[0], panes_[1], targetFolder_}) {
        setTabOrder(previous, next);
        previous = next;
    }
    // The bars come last, behind the toolbar.
    previous = toolbar_->Imagetool(static_cast<int>(ToolButtons().size()) - 1);
    for (QWidget* bar : FrameMOve_) {
        setTabOrder(previous, bar);
        previous = bar;
    }
}

Rastx::Surroundings MainForm::PaneSurroundings() const {
    return {.carrier = &services_.clipboard,
            .captureScreen = [this] { return services_.screen.CaptureAll(); },
            .randomSeed = [this] { return session_.EffectSeed; }};
}

void MainForm::MakePanes() {
    for (int i : {0, 1}) {
        FrameRst_[i] = Named(new QWidget(FrameS_), "FrameRst", i);
        panes_[i] = Named(new RastxPane(PaneSurroundings(), FrameRst_[i]), "rastx1", i);
    }
    panes_[0]->setAccessibleName(QStringLiteral("Import image"));
    panes_[1]->setAccessibleName(QStringLiteral("Export image"));
    for (RastxPane* pane : panes_)
        connect(pane, &RastxPane::ImageChanged, this, [this, pane] { NamePicture(*pane); });
}

/// A screen reader tells the file's name before the picture's size.
void MainForm::NamePicture(RastxPane& pane) const {
    if (session_.ImagePath.empty() || pane.rastx().ImageWidth() == 0) return;
    std::string name = session_.ImagePath;
    GetPath(name);
    pane.setAccessibleDescription(ShownText(name) + QLatin1String(", ") + pane.accessibleDescription());
}

void MainForm::MakeBars() {
    constexpr const char* kBars[] = {"Right edge of the folders", "Lower edge of the files",
                                     "Upper edge of the export image"};
    constexpr const char* kProgress[] = {"Files read", "Effect"};
    for (int i : {0, 1, 2}) {
        FrameMOve_[i] = new DragBar(Indexed("FrameMOve", i), i == 0 ? Qt::Vertical : Qt::Horizontal, FrameS_);
        FrameMOve_[i]->setAccessibleName(QString::fromLatin1(kBars[i]));
        ConnectBar(i);
    }
    for (int i : {0, 1}) {
        ProgressBarS_[i] = Named(new QProgressBar(FrameMOve_[i + 1]), "ProgressBarS", i);
        ProgressBarS_[i]->setAccessibleName(QString::fromLatin1(kProgress[i]));
        ProgressBarS_[i]->setTextVisible(false);
        ProgressBarS_[i]->setRange(1, 110);
        ProgressBarS_[i]->hide();
    }
}

void MainForm::MakeStrip() {
    Frametofile1_ = Named(new QWidget(FrameS_), "Frametofile1");
    Picturefrmfile_ = Named(new TiledBack(Frametofile1_), "Picturefrmfile");
    LabelPict_ = Named(new QLabel(Frametofile1_), "LabelPict");
    LabelXY_ = Named(new QLabel(Frametofile1_), "LabelXY");
    LabelWH_ = Named(new QLabel(Frametofile1_), "LabelWH");
    for (int i : {0, 1}) {
        Image2and3_[i] = new QFrame(Frametofile1_);
        Image2and3_[i]->setObjectName(QStringLiteral("Image%1").arg(i + 2));
        Image2and3_[i]->setFrameStyle(static_cast<int>(QFrame::VLine) | QFrame::Sunken);
    }
    const char* const kCaptions[] = {"Con&vert", "&Reload"};
    for (int i : {0, 1}) {
        CommandCon_[i] =
            Named(new QPushButton(QString::fromLatin1(kCaptions[i]), Frametofile1_), "CommandCon", i);
        connect(CommandCon_[i], &QPushButton::clicked, this, [this, i] { convert_->CommandCon_Click(i); });
    }
}

bool MainForm::eventFilter(QObject* watched, QEvent* event) {
    if (watched == client_ && event->type() == QEvent::Resize) Form_Resize();
    if (event->type() == QEvent::MouseMove) toolbar_->ToolbarMouseLeft();
    if (event->type() == QEvent::MouseButtonPress && (watched == Frametofile1_ || watched == Picturefrmfile_))
        PopMenu("CONVERT");
    return QMainWindow::eventFilter(watched, event);
}

void MainForm::keyPressEvent(QKeyEvent* event) {
    if (keyPreview_) capture_->Form_KeyDown(event->key());
    QMainWindow::keyPressEvent(event);
}

void MainForm::Form_Paint() {
    CheckPaste();  // the strip at the top paints itself
}

void MainForm::paintEvent(QPaintEvent* event) {
    Form_Paint();
    QMainWindow::paintEvent(event);
}

}  // namespace tessara
