#include "settings/dialogs/Dialog1.h"

#include <QFocusEvent>
#include <QScreen>
#include <QStyle>
#include <charconv>
#include <utility>

#include "core/PathNames.h"
#include "core/Paths.h"

namespace tessara {
namespace {

enum Button { kConvertNow, kLoadDefault, kSaveAsDefault, kLeave };
constexpr int kCurrentFileOnly = 0;

/// The index of the option that is on; -1 for none.
template <typename Options>
int ChosenOf(const Options& options) {
    for (std::size_t i = 0; i < options.size(); ++i)
        if (options[i]->isChecked()) return static_cast<int>(i);
    return -1;
}

template <typename Options>
void Choose(const Options& options, int index) {
    if (index >= 0 && index < static_cast<int>(options.size()))
        options[static_cast<std::size_t>(index)]->setChecked(true);
}

template <typename Checks, typename Flags>
void ReadChecks(const Checks& checks, Flags& flags) {
    for (std::size_t i = 0; i < checks.size(); ++i) flags[i] = checks[i]->isChecked();
}
template <typename Checks, typename Flags>
void ShowChecks(const Checks& checks, const Flags& flags) {
    for (std::size_t i = 0; i < checks.size(); ++i) checks[i]->setChecked(flags[i]);
}

/// The whole number that a text begins with; 0 where there is none.
int NumberIn(const QString& text) {
    const std::string digits = text.trimmed().toStdString();
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error == std::errc::result_out_of_range)
        return digits[0] == '-' ? -1 : std::numeric_limits<int>::max();
    return number;
}

}  // namespace

Dialog1::Dialog1(Session& session, Prompts& prompts, OptionsHost& host, QWidget* parent)
    : QDialog(parent), session_(session), prompts_(prompts), host_(host) {
    setObjectName(QStringLiteral("Dialog1"));
    setWindowTitle(QStringLiteral("Options"));
    MakeControls();
    LayOut();
    Connect();
}

/// Controls tell only what the user does: not while they are being filled.
void Dialog1::Connect() {
    const auto each = [this](const auto& controls, auto signal, auto handler) {
        for (std::size_t i = 0; i < controls.size(); ++i)
            connect(controls[i], signal, this, [this, handler, i] {
                if (!Loading_) (this->*handler)(static_cast<int>(i));
            });
    };
    const auto one = [this](auto* control, auto signal, auto handler) {
        connect(control, signal, this, [this, handler] {
            if (!Loading_) (this->*handler)();
        });
    };
    each(OKButton_, &QPushButton::clicked, &Dialog1::OKButton_Click);
    each(CheckIn_, &QCheckBox::toggled, &Dialog1::CheckIn_Click);
    each(CheckOut_, &QCheckBox::toggled, &Dialog1::CheckOut_Click);
    each(Command2_, &QPushButton::clicked, &Dialog1::Command2_Click);
    each(OptionList_, &QRadioButton::toggled, &Dialog1::OptionList_Click);
    each(OptionPic_, &QRadioButton::toggled, &Dialog1::OptionPic_Click);
    each(TextSize_, &QLineEdit::textChanged, &Dialog1::TextSize_Change);
    each(VScrollSize_, &QScrollBar::valueChanged, &Dialog1::VScrollSize_Change);
    one(TabStrip1_, &QTabWidget::currentChanged, &Dialog1::TabStrip1_Click);
    one(CheckShow_, &QCheckBox::toggled, &Dialog1::CheckShow_Click);
    one(Check1_, &QCheckBox::toggled, &Dialog1::Check1_Click);
    one(HScroll1_, &QSlider::valueChanged, &Dialog1::HScroll1_Change);
    one(HScroll1_, &QSlider::sliderMoved, &Dialog1::HScroll1_Scroll);
    one(TextFile_, &QLineEdit::textChanged, &Dialog1::TextFile_Change);
    one(TextInFolder_, &QLineEdit::textChanged, &Dialog1::TextInFolder_Change);
    one(ImageinFolder_, &QToolButton::clicked, &Dialog1::ImageinFolder_Click);
    one(ImageOutFolder_, &QToolButton::clicked, &Dialog1::ImageOutFolder_Click);
    one(ImageHelp_, &QToolButton::clicked, &Dialog1::ImageHelp_Click);
    TextInFolder_->installEventFilter(this);
}

void Dialog1::Loaddialog1() {
    lastPage_ = FirstTab();
    do {
        otherDialog_ = -1;
        Fill();
        move(QStyle::alignedRect(layoutDirection(), Qt::AlignCenter, size(), screen()->geometry()).topLeft());
        exec();
        if (otherDialog_ == kTransparentTab) host_.ShowDialogTrcol();
        if (otherDialog_ == kSlideTab) host_.ShowDialogSlideOpt();
    } while (otherDialog_ >= 0);
}

int Dialog1::FirstTab() const {
    return session_.CaptureMode || session_.StartFolderBad ? kListTab : kConvertTab;
}

void Dialog1::Fill() {
    Loading_ = true;
    optionsBefore_ = session_.ConvertOptions;
    session_.ConvertConfirmed = false;
    CheckShow_->setChecked(session_.DontShowOptions);
    std::string folder;
    std::string baseName;
    std::string extension;
    GetFileWeb(host_.SelectedFile(), folder, baseName, extension);
    session_.TargetName = baseName;
    TextFile_->SetBytes(baseName);
    SaveGefault00();
    for (std::size_t i = 0; i < CheckOut_.size(); ++i)
        CheckOut_[i]->setChecked(session_.formats.ExportFormats[i].Enabled);
    FillProcessValues();
    TabStrip1_->setCurrentIndex(lastPage_);
    Loading_ = false;
    TabStrip1_Click();
}

/// Of the values that live as long as the process.
void Dialog1::FillProcessValues() {
    const QSize pixels = screen()->size() * screen()->devicePixelRatio();
    capture_.largest = {pixels.width(), pixels.height()};
    capture_.square = Check1_->isChecked();
    for (std::size_t i = 0; i < VScrollSize_.size(); ++i) VScrollSize_[i]->setRange(0, capture_.largest[i]);
    capture_.Set(0, session_.CaptureWidth);
    capture_.Set(1, session_.CaptureHeight);
    TakeCaptureSides();
    HScroll1_->setValue(session_.JpgQuality);
    HScroll1_Change();
    Check2_->setChecked(session_.JpgProgressive);
    Check3_->setChecked(session_.JpgGrayScale);
}

void Dialog1::SaveGefault00() {
    const bool wasLoading = std::exchange(Loading_, true);
    const OptionsControls controls = ControlsOf(session_.ConvertOptions, session_.AppPath);
    Choose(OptionList_, controls.OptionList);
    ShowChecks(CheckIn_, controls.CheckIn);
    Choose(OptionPic_, controls.OptionPic);
    ShowChecks(CheckOut_, controls.CheckOut);
    TextOutFolder_->SetBytes(controls.TextOutFolder);
    TextInFolder_->SetBytes(controls.TextInFolder);
    Choose(OptionOv_, controls.OptionOv);
    EnableTextFile();
    Loading_ = wasLoading;
}

OptionsControls Dialog1::Controls() const {
    OptionsControls controls;
    controls.OptionList = ChosenOf(OptionList_);
    ReadChecks(CheckIn_, controls.CheckIn);
    controls.OptionPic = ChosenOf(OptionPic_);
    ReadChecks(CheckOut_, controls.CheckOut);
    controls.TextOutFolder = TextOutFolder_->Bytes();
    controls.TextInFolder = TextInFolder_->Bytes();
    controls.OptionOv = ChosenOf(OptionOv_);
    return controls;
}

void Dialog1::TabStrip1_Click() {
    const int tab = TabStrip1_->currentIndex();
    if (tab == kTransparentTab || tab == kSlideTab) {
        otherDialog_ = tab;
        reject();
        return;
    }
    lastPage_ = tab;
    DispTessaraObj(tab == kConvertTab);
    FitToPage();
}

/// What stands beside the first page alone, and the row of buttons.
void Dialog1::DispTessaraObj(bool show) {
    CheckShow_->setVisible(show);
    PictureHelp_->setVisible(show);
    OKButton_[kConvertNow]->setVisible(session_.OptionsFromConvert);
    OKButton_[kLeave]->setText(session_.OptionsFromConvert ? QStringLiteral("Exit") : QStringLiteral("OK"));
    OKButton_[session_.OptionsFromConvert ? kConvertNow : kLeave]->setDefault(true);
    SetShortcuts();
}

/// The dialog is as high as the page that it shows.
void Dialog1::FitToPage() {
    for (int i = 0; i < TabStrip1_->count(); ++i) {
        const bool shown = i == TabStrip1_->currentIndex();
        TabStrip1_->widget(i)->setSizePolicy(QSizePolicy::Preferred,
                                             shown ? QSizePolicy::Preferred : QSizePolicy::Ignored);
    }
    adjustSize();
}

void Dialog1::OKButton_Click(int Index) {
    if (Index == kLeave && session_.OptionsFromConvert) {
        reject();
        return;
    }
    if (!FieldsAreValid(Index)) return;
    switch (Index) {
        case kLoadDefault:
            Getdefault(session_, host_, true, [this] { SaveGefault00(); });
            prompts_.Ask({"Load Default successfully!", PromptButtons::Ok, PromptIcon::Information});
            return;
        case kSaveAsDefault:
            Savedefault(true);
            prompts_.Ask({"Save as Default successfully!", PromptButtons::Ok, PromptIcon::Information});
            return;
        default:
            Savedefault(false);
            accept();
            session_.ConvertConfirmed = true;
    }
}

bool Dialog1::FieldsAreValid(int Index) {
    const std::string& appPath = session_.AppPath;
    if (TextOutFolder_->text().isEmpty()) return Refuse("No Target Folder selected!");
    if (TextFile_->isEnabled() && TextFile_->text().isEmpty()) return Refuse("No File Name selected!");
    if (!CheckPathNameValid(appPath, TextOutFolder_->Bytes(), PathNameKind::P))
        return Refuse("Target Folder invalid!");
    if (!CheckPathNameValid(appPath, TextFile_->Bytes(), PathNameKind::F))
        return Refuse("File Name invalid!");
    if (CheckPathNameValid(appPath, TextInFolder_->Bytes(), PathNameKind::P)) return true;
    if (Index == kSaveAsDefault) TabStrip1_->setCurrentIndex(kListTab);
    return Refuse("Start Folder invalid!");
}

bool Dialog1::Refuse(const std::string& message) {
    prompts_.Ask({message, PromptButtons::Ok, PromptIcon::Warning});
    return false;
}

void Dialog1::Savedefault(bool writeFile) {
    bool changed = false;
    tessara::Savedefault(session_, host_, Controls(), optionsBefore_, writeFile, changed);
}

void Dialog1::done(int result) {
    Form_Unload();
    QDialog::done(result);
}

/// However the dialog is left, its JPEG page is taken.
void Dialog1::Form_Unload() {
    session_.ConvertConfirmed = false;
    session_.StartFolderBad = false;
    session_.JpgQuality = HScroll1_->value();
    session_.JpgProgressive = Check2_->isChecked();
    session_.JpgGrayScale = Check3_->isChecked();
    if (std::exchange(ListSettingsEdited_, false)) host_.SetmnFile();
}

void Dialog1::CheckIn_Click(int Index) {
    const auto i = static_cast<std::size_t>(Index);
    session_.formats.ImportFormats[i].Enabled = CheckIn_[i]->isChecked();
}

void Dialog1::CheckOut_Click(int Index) {
    const auto i = static_cast<std::size_t>(Index);
    session_.formats.ExportFormats[i].Enabled = CheckOut_[i]->isChecked();
}

void Dialog1::CheckShow_Click() {
    session_.DontShowOptions = CheckShow_->isChecked();
}

void Dialog1::Command2_Click(int Index) {
    constexpr int kSelectAll = 0;
    for (QCheckBox* const check : CheckIn_) check->setChecked(Index == kSelectAll);
    CheckIn_[0]->setFocus();
}

void Dialog1::OptionList_Click(int) {
    session_.ConvertOptions.ListAllFiles = OptionList_[0]->isChecked();
    session_.ConvertOptions.ListImportOnly = OptionList_[2]->isChecked();
    ListSettingsEdited_ = true;
}

void Dialog1::OptionPic_Click(int) {
    EnableTextFile();
    if (TextFile_->isEnabled()) TextFile_->setFocus();
}

/// Only a single file is given a name.
void Dialog1::EnableTextFile() {
    TextFile_->setEnabled(OptionPic_[kCurrentFileOnly]->isChecked());
}

void Dialog1::TextFile_Change() {
    session_.TargetName = TextFile_->Bytes();
}

void Dialog1::TextInFolder_Change() {
    ListSettingsEdited_ = true;
}

void Dialog1::TextInFolder_LostFocus() {
    if (ListSettingsEdited_ && isVisible() &&
        !CheckPathNameValid(session_.AppPath, TextInFolder_->Bytes(), PathNameKind::P))
        Refuse("Start Folder invalid!");
}

bool Dialog1::eventFilter(QObject* watched, QEvent* event) {
    if (watched != TextInFolder_ || event->type() != QEvent::FocusOut) return false;
    // Another window or a menu does not take the user to another control. A message has to wait until the
    // focus is there.
    const Qt::FocusReason reason = static_cast<const QFocusEvent&>(*event).reason();
    if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
        QMetaObject::invokeMethod(this, &Dialog1::TextInFolder_LostFocus, Qt::QueuedConnection);
    return false;
}

void Dialog1::TextSize_Change(int Index) {
    if (TextLock_) return;
    LastSizeIndex_ = static_cast<std::size_t>(Index);
    capture_.Set(LastSizeIndex_, NumberIn(TextSize_[LastSizeIndex_]->text()));
    TakeCaptureSides();
}

void Dialog1::VScrollSize_Change(int Index) {
    if (TextLock_) return;
    const auto i = static_cast<std::size_t>(Index);
    capture_.Set(i, capture_.largest[i] - VScrollSize_[i]->value());
    TakeCaptureSides();
}

void Dialog1::Check1_Click() {
    capture_.square = Check1_->isChecked();
    capture_.Set(LastSizeIndex_, capture_.size[LastSizeIndex_]);
    TakeCaptureSides();
}

/// While a text is typed it stays as long as it tells the size.
void Dialog1::TakeCaptureSides() {
    const bool wasLocked = std::exchange(TextLock_, true);
    for (std::size_t i = 0; i < TextSize_.size(); ++i) {
        const QString size = QString::number(capture_.size[i]);
        const QString shown = TextSize_[i]->text();
        if (TextSize_[i]->hasFocus() ? NumberIn(shown) != capture_.size[i] : shown != size)
            TextSize_[i]->setText(size);
        VScrollSize_[i]->setValue(capture_.largest[i] - capture_.size[i]);
    }
    session_.CaptureWidth = capture_.size[0];
    session_.CaptureHeight = capture_.size[1];
    TextLock_ = wasLocked;
}

void Dialog1::HScroll1_Change() {
    SkinLabel1_->setText(QStringLiteral("Image Quality (1-100): %1").arg(HScroll1_->value()));
}

void Dialog1::ImageinFolder_Click() {
    const std::string folder = prompts_.PickFolder("Select Start Folder");
    if (!folder.empty()) TextInFolder_->SetBytes(folder);
}

void Dialog1::ImageOutFolder_Click() {
    const std::string folder = prompts_.PickFolder("Select Target Folder");
    if (!folder.empty()) TextOutFolder_->SetBytes(folder);
}

void Dialog1::ImageHelp_Click() {
    host_.RunHtmlHelp("2-2.htm");
}

}  // namespace tessara
