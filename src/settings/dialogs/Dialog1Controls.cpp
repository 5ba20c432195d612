#include <QGridLayout>
#include <QScreen>
#include <QVBoxLayout>

#include "artwork/Artwork.h"
#include "core/Text.h"
#include "core/rastx/Codec.h"
#include "desktop/Named.h"
#include "settings/dialogs/Dialog1.h"

namespace tessara {
namespace {

constexpr int kFormatColumns = 5;
constexpr int kGap = 14;

/// Between rows, in pixels. On a small screen they stand closer, so that the dialog still fits.
int RowGap(const QWidget& dialog) {
    constexpr int kSmallScreen = 480, kSmallGap = 4;
    return dialog.screen()->availableSize().height() < kSmallScreen ? kSmallGap : kGap;
}

/// As high as the page that is shown needs; the toolkit's own is as high as the highest. As wide as the
/// widest.
class FittingTabs final : public QTabWidget {
  public:
    using QTabWidget::QTabWidget;
    QSize sizeHint() const override {
        return {QTabWidget::sizeHint().width(), QTabWidget::minimumSizeHint().height()};
    }
};

/// Makes a control array, one control for each caption.
template <typename Control, std::size_t count, typename Captions>
void MakeArray(std::array<Control*, count>& controls, const char* name, const Captions& captions,
               QWidget* parent) {
    for (std::size_t i = 0; i < count; ++i)
        controls[i] = Named(new Control(ShownText(captions[i]), parent), name, i);
}

/// The extensions of a format table, in capitals.
template <typename Table>
std::vector<std::string> Extensions(const Table& table) {
    std::vector<std::string> extensions;
    for (const auto& row : table) extensions.push_back(UpperCase(row.label));
    return extensions;
}

QToolButton* MakePicture(const char* name, const char* drawing, const char* meaning, QWidget* parent) {
    auto* const picture = Named(new QToolButton(parent), name);
    picture->setIcon(Artwork(drawing));
    picture->setToolTip(ShownText(meaning));
    picture->setAccessibleName(ShownText(meaning));
    return picture;
}

QLabel* MakeLabel(const char* text, QWidget* buddy) {
    auto* const label = new QLabel(ShownText(text), buddy->parentWidget());
    label->setBuddy(buddy);
    return label;
}

/// The dialog is as wide without it.
void KeepRoomOf(QWidget* control) {
    QSizePolicy policy = control->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    control->setSizePolicy(policy);
}

template <typename Controls>
void AddInColumns(QGridLayout* grid, const Controls& controls) {
    for (int i = 0; i < static_cast<int>(controls.size()); ++i)
        grid->addWidget(controls[static_cast<std::size_t>(i)], i / kFormatColumns, i % kFormatColumns);
    for (int column = 0; column < kFormatColumns; ++column) grid->setColumnStretch(column, 1);
}

template <typename Controls>
QHBoxLayout* InARow(const Controls& controls) {
    auto* const row = new QHBoxLayout;
    row->setSpacing(kGap);
    for (QWidget* const control : controls) row->addWidget(control);
    row->addStretch();
    return row;
}

QHBoxLayout* FolderRow(QLabel* label, QLineEdit* field, QToolButton* browse) {
    auto* const row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(field, 1);
    row->addWidget(browse);
    return row;
}

}  // namespace

/// In the order in which the Tab key walks through them.
void Dialog1::MakeControls() {
    TabStrip1_ = Named(new FittingTabs(this), "TabStrip1");
    MakeConvertControls();
    MakeListControls();
    MakeCaptureControls();
    MakeJpgControls();
    MakeButtons();
}

void Dialog1::MakeConvertControls() {
    Frame4_ = Named(new QGroupBox(QStringLiteral("Convert"), this), "Frame4");
    MakeArray(OptionPic_, "OptionPic", std::array{"Current File Only", "Selected Files", "All Graphics"},
              Frame4_);
    TextFile_ = Named(new PathEdit(Frame4_), "TextFile");
    Frame2_ = Named(new QGroupBox(QStringLiteral("Export to"), this), "Frame2");
    MakeArray(CheckOut_, "CheckOut", Extensions(ExportFormatTable()), Frame2_);
    TextOutFolder_ = Named(new PathEdit(Frame2_), "TextOutFolder");
    ImageOutFolder_ = MakePicture("ImageOutFolder", "folder-open", "Select Target Folder", Frame2_);
    MakeArray(OptionOv_, "OptionOv", std::array{"Ask", "Replace", "Skip"}, Frame2_);
    for (QRadioButton* const option : OptionOv_)
        option->setAccessibleDescription(QStringLiteral("Existing files"));
}

void Dialog1::MakeListControls() {
    Frame3_ = Named(new QGroupBox(QStringLiteral("List"), this), "Frame3");
    MakeArray(OptionList_, "OptionList", std::array{"All Files", "All Graphics", "Graphics for Import"},
              Frame3_);
    TextInFolder_ = Named(new PathEdit(Frame3_), "TextInFolder");
    ImageinFolder_ = MakePicture("ImageinFolder", "folder-open", "Select Start Folder", Frame3_);
    Frame1_ = Named(new QGroupBox(QStringLiteral("Import formats"), this), "Frame1");
    MakeArray(CheckIn_, "CheckIn", Extensions(ImportFormatTable()), Frame1_);
    MakeArray(Command2_, "Command2", std::array{"Select All", "Cancel All"}, Frame1_);
}

void Dialog1::MakeCaptureControls() {
    FrameCapture_ = Named(new QWidget(this), "FrameCapture");
    for (std::size_t i = 0; i < TextSize_.size(); ++i) {
        TextSize_[i] = Named(new QLineEdit(FrameCapture_), "TextSize", i);
        TextSize_[i]->installEventFilter(this);
        VScrollSize_[i] = Named(new QScrollBar(Qt::Vertical, FrameCapture_), "VScrollSize", i);
        VScrollSize_[i]->setAccessibleName(i == 0 ? QStringLiteral("Width") : QStringLiteral("Height"));
    }
    Check1_ = Named(new FramedCheckBox(QStringLiteral("Square"), FrameCapture_), "Check1");
}

void Dialog1::MakeJpgControls() {
    FrameJpg_ = Named(new QWidget(this), "FrameJpg");
    SkinLabel1_ = Named(new QLabel(FrameJpg_), "SkinLabel1");
    HScroll1_ = Named(new QSlider(Qt::Horizontal, FrameJpg_), "HScroll1");
    HScroll1_->setRange(1, 100);
    HScroll1_->setPageStep(10);
    HScroll1_->setAccessibleName(QStringLiteral("Image Quality"));
    Check2_ = Named(new FramedCheckBox(QStringLiteral("Progressive encoding"), FrameJpg_), "Check2");
    Check3_ = Named(new FramedCheckBox(QStringLiteral("Save as grayscale image"), FrameJpg_), "Check3");
}

void Dialog1::MakeButtons() {
    PictureHelp_ = Named(new QWidget(this), "PictureHelp");
    ImageHelp_ = MakePicture("ImageHelp", "help", "Help", PictureHelp_);
    ImageHelp_->setAutoRaise(true);
    ImageHelp_->setCursor(Qt::PointingHandCursor);
    CheckShow_ = Named(new FramedCheckBox(QStringLiteral("Don't show next time"), this), "CheckShow");
    MakeArray(OKButton_, "OKButton", std::array{"Convert Now", "Load Default", "Save as Default", "OK"},
              this);
    for (QWidget* const control : {static_cast<QWidget*>(CheckShow_), PictureHelp_}) KeepRoomOf(control);
}

void Dialog1::LayOut() {
    TabStrip1_->addTab(ConvertPage(), QStringLiteral("Convert "));
    TabStrip1_->addTab(ListPage(), QStringLiteral("List    "));
    TabStrip1_->addTab(FrameCapture_, QStringLiteral("Capture "));
    TabStrip1_->addTab(FrameJpg_, QStringLiteral("JPG     "));
    TabStrip1_->addTab(new QWidget(this), QStringLiteral("Transparent"));
    TabStrip1_->addTab(new QWidget(this), QStringLiteral("Slide Show"));
    LayOutCapture();
    LayOutJpg();

    auto* const layout = new QVBoxLayout(this);
    layout->setSpacing(RowGap(*this));
    layout->addWidget(TabStrip1_);
    layout->addLayout(ButtonRow());
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QWidget* Dialog1::ConvertPage() {
    auto* const page = new QWidget(this);
    auto* const layout = new QVBoxLayout(page);
    layout->setSpacing(RowGap(*this));
    layout->addWidget(Frame4_);
    layout->addWidget(Frame2_);

    auto* const sources = new QGridLayout(Frame4_);
    for (int i = 0; i < 3; ++i) sources->addWidget(OptionPic_[static_cast<std::size_t>(i)], i, 0);
    sources->addWidget(MakeLabel("File Name", TextFile_), 0, 1);
    sources->addWidget(TextFile_, 0, 2);
    sources->setHorizontalSpacing(kGap);

    auto* const formats = new QGridLayout;
    AddInColumns(formats, CheckOut_);
    auto* const targets = new QVBoxLayout(Frame2_);
    targets->setSpacing(RowGap(*this));
    targets->addLayout(formats);
    targets->addLayout(
        FolderRow(MakeLabel("Target Folder", TextOutFolder_), TextOutFolder_, ImageOutFolder_));
    auto* const overwrite = InARow(OptionOv_);
    overwrite->insertWidget(0, new QLabel(QStringLiteral("Existing files"), Frame2_));
    targets->addLayout(overwrite);
    TextOutFolder_->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    return page;
}

QWidget* Dialog1::ListPage() {
    auto* const page = new QWidget(this);
    auto* const layout = new QVBoxLayout(page);
    layout->setSpacing(RowGap(*this));
    layout->addWidget(Frame3_);
    layout->addWidget(Frame1_);

    auto* const list = new QVBoxLayout(Frame3_);
    list->setSpacing(RowGap(*this));
    list->addLayout(InARow(OptionList_));
    list->addLayout(FolderRow(MakeLabel("Start Folder", TextInFolder_), TextInFolder_, ImageinFolder_));

    auto* const formats = new QGridLayout;
    AddInColumns(formats, CheckIn_);
    auto* const imports = new QVBoxLayout(Frame1_);
    imports->setSpacing(RowGap(*this));
    imports->addLayout(formats);
    imports->addLayout(InARow(Command2_));
    return page;
}

void Dialog1::LayOutCapture() {
    auto* const grid = new QGridLayout(FrameCapture_);
    grid->setHorizontalSpacing(kGap);
    constexpr const char* kSides[] = {"Width", "Height"};
    for (int i = 0; i < 2; ++i) {
        const auto index = static_cast<std::size_t>(i);
        grid->addWidget(MakeLabel(kSides[i], TextSize_[index]), i, 0);
        auto* const side = new QHBoxLayout;
        side->setSpacing(kGap / 2);
        side->addWidget(TextSize_[index]);
        side->addWidget(VScrollSize_[index]);
        side->addWidget(new QLabel(QStringLiteral("pixels"), FrameCapture_));
        grid->addLayout(side, i, 1);
        TextSize_[index]->setAlignment(Qt::AlignRight);
        TextSize_[index]->setFixedWidth(fontMetrics().averageCharWidth() * 12);
        VScrollSize_[index]->setFixedHeight(TextSize_[index]->sizeHint().height() * 2);
    }
    grid->addWidget(Check1_, 2, 1);
    grid->setColumnStretch(2, 1);
    grid->setRowStretch(3, 1);
}

void Dialog1::LayOutJpg() {
    auto* const column = new QVBoxLayout(FrameJpg_);
    column->setSpacing(kGap);
    for (QWidget* const control : std::initializer_list<QWidget*>{SkinLabel1_, HScroll1_, Check2_, Check3_})
        column->addWidget(control);
    column->addStretch();
}

/// The texts have no letters of their own to underline.
void Dialog1::SetShortcuts() {
    const std::pair<QAbstractButton*, Qt::Key> kLetters[] = {
        {OKButton_[0], Qt::Key_N}, {OKButton_[1], Qt::Key_L},
        {OKButton_[2], Qt::Key_S}, {OKButton_[3], session_.OptionsFromConvert ? Qt::Key_X : Qt::Key_O},
        {CheckShow_, Qt::Key_D},   {Command2_[0], Qt::Key_A},
        {Command2_[1], Qt::Key_C},
    };
    for (const auto& [button, letter] : kLetters) button->setShortcut(Qt::ALT | letter);
}

QLayout* Dialog1::ButtonRow() {
    auto* const help = new QHBoxLayout(PictureHelp_);
    help->setContentsMargins(0, 0, 0, 0);
    help->addWidget(ImageHelp_);
    auto* const row = new QHBoxLayout;
    row->addWidget(PictureHelp_);
    row->addWidget(CheckShow_);
    row->addSpacing(2 * kGap);
    row->addStretch();
    for (QPushButton* const button : OKButton_) row->addWidget(button);
    return row;
}

}  // namespace tessara
