#include "settings/dialogs/Dialog1.h"

#include <QScreen>
#include <QStyle>
#include <algorithm>
#include <utility>

#include "core/PathNames.h"
#include "core/Paths.h"

namespace tessara {
namespace {

enum Button { kConvertNow, kLoadDefault, kSaveAsDefault, kLeave };

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

}  // namespace

Dialog1::Dialog1(Session& session, Prompts& prompts, OptionsHost& host, QWidget* parent)
    : QDialog(parent), session_(session), prompts_(prompts), host_(host) {
    setObjectName(QStringLiteral("Dialog1"));
    setWindowTitle(QStringLiteral("Options"));
    MakeControls();
    LayOut();
    Connect();
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

/// A dialog that grows does not leave the screen.
void Dialog1::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    const QRect area = screen()->availableGeometry();
    const int highest = area.bottom() + 1 - frameGeometry().height();
    if (isVisible() && y() > highest) move(x(), std::max(area.top(), highest));
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

/// Once: a click on a button takes the focus from a field, which refuses first, and only then is a click.
bool Dialog1::Refuse(const std::string& message) {
    if (std::exchange(refusing_, true)) return false;
    prompts_.Ask({message, PromptButtons::Ok, PromptIcon::Warning});
    refusing_ = false;
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

}  // namespace tessara
