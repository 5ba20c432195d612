#include <QCoreApplication>
#include <QFocusEvent>
#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <utility>

#include "core/PathNames.h"
#include "settings/dialogs/Dialog1.h"

namespace tessara {
namespace {

constexpr int kCurrentFileOnly = 0;

/// The whole number that a text begins with; 0 where there is none.
int NumberIn(const QString& text) {
    const std::string digits = text.trimmed().toStdString();
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error == std::errc::result_out_of_range)
        return digits[0] == '-' ? -1 : std::numeric_limits<int>::max();
    return number;
}

/// Keys that go to the bar beside a field, which needs no focus of its own then.
bool Steps(const QEvent& event) {
    if (event.type() != QEvent::KeyPress) return false;
    constexpr Qt::Key kKeys[] = {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown};
    return std::ranges::find(kKeys, static_cast<const QKeyEvent&>(event).key()) != std::end(kKeys);
}

}  // namespace

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
    for (std::size_t i = 0; i < TextSize_.size(); ++i)
        if (watched == TextSize_[i] && Steps(*event))
            return QCoreApplication::sendEvent(VScrollSize_[i], event);
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

void Dialog1::BrowseFolder(const char* title, PathEdit& field) {
    const std::string folder = prompts_.BrowseFolder(title, field.Bytes());
    if (!folder.empty()) field.SetBytes(folder);
}

void Dialog1::ImageinFolder_Click() {
    BrowseFolder("Select Start Folder", *TextInFolder_);
}

void Dialog1::ImageOutFolder_Click() {
    BrowseFolder("Select Target Folder", *TextOutFolder_);
}

void Dialog1::ImageHelp_Click() {
    host_.RunHtmlHelp("2-2.htm");
}

}  // namespace tessara
