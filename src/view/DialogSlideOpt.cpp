#include "view/DialogSlideOpt.h"

#include <QGroupBox>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "artwork/FramedCheckBox.h"
#include "core/Numbers.h"
#include "desktop/PathText.h"
#include "edit/dialogs/Controls.h"
#include "settings/Defaults.h"
#include "view/ViewerTexts.h"

namespace tessara {
namespace {

constexpr int kLongestDelay = 30000;  ///< milliseconds
constexpr int kSmallChange = 1000;
constexpr int kLargeChange = 2000;

constexpr const char* kOrders[] = {"Forward", "Reverse", "Random"};

/// A box and the option that it stands for.
struct Flag {
    const char* caption;
    std::uint8_t SlideOptions::*option;
};
constexpr Flag kFlags[] = {
    {"Auto Slide", &SlideOptions::SlideAuto},
    {"Resize", &SlideOptions::SlideResize},
    {"Full Screen", &SlideOptions::SlideFullScreen},
    {"Circularly", &SlideOptions::SlideCircular},
};

bool IsTypedText(const QKeyEvent& key) {
    const QString text = key.text();
    return !text.isEmpty() && text.front().isPrint() &&
           (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == Qt::NoModifier;
}

}  // namespace

DialogSlideOpt::DialogSlideOpt(Session& session, Prompts& prompts, QWidget* parent)
    : QDialog(parent), session_(session), options_(session.SlideOptions), prompts_(prompts) {
    setObjectName(QStringLiteral("DialogSlideOpt"));
    setWindowTitle(QStringLiteral("Slide Options"));
    if (parent) setWindowIcon(parent->window()->windowIcon());
    MakeControls();
    LayOut();
    ConnectControls();
    Form_Load();
}

void DialogSlideOpt::MakeControls() {
    for (std::size_t i = 0; i < Check1_.size(); ++i)
        Check1_[i] =
            Named(new FramedCheckBox(ShownText(kFlags[i].caption), this), QStringLiteral("Check1"), i);
    for (std::size_t i = 0; i < Option1_.size(); ++i)
        Option1_[i] = Named(new QRadioButton(ShownText(kOrders[i]), this), QStringLiteral("Option1"), i);
    HScroll1_ = Named(new ValueSlider(this), QStringLiteral("HScroll1"));
    HScroll1_->SetRange(0, kLongestDelay, kSmallChange, kLargeChange);
    HScroll1_->setMinimumWidth(250);
    Text1_ = Named(MakeValueBox(this), QStringLiteral("Text1"));
    Text1_->installEventFilter(this);
    Label1_ = Named(new QLabel(QStringLiteral("Delay (milliseconds):"), this), QStringLiteral("Label1"));
    Label1_->setBuddy(Text1_);
    Label2_ = Named(new QLabel(this), QStringLiteral("Label2"));
    // The dialog keeps its size while the number grows.
    Label2_->setMinimumWidth(fontMetrics().horizontalAdvance(ShownText(SecondsText(kLongestDelay))));
    for (QWidget* delay : {static_cast<QWidget*>(HScroll1_), static_cast<QWidget*>(Text1_)})
        delay->setAccessibleName(QStringLiteral("Delay in milliseconds"));
    OKButton_ = {MakeButton(QStringLiteral("OK"), Qt::Key_O, this),
                 MakeButton(QStringLiteral("Save as Default"), Qt::Key_S, this)};
    for (std::size_t i = 0; i < OKButton_.size(); ++i) Named(OKButton_[i], QStringLiteral("OKButton"), i);
    OKButton_[0]->setDefault(true);
}

void DialogSlideOpt::LayOut() {
    auto* const sequence = new QGroupBox(QStringLiteral("Sequence"), this);
    auto* const orders = new QVBoxLayout(sequence);
    for (QRadioButton* const option : Option1_) orders->addWidget(option);
    orders->addStretch();
    auto* const flags = new QVBoxLayout;
    flags->setSpacing(8);
    flags->addStretch();
    for (QCheckBox* const box : Check1_) flags->addWidget(box);
    flags->addStretch();

    auto* const delay = new QGroupBox(this);
    auto* const numbers = new QHBoxLayout;
    numbers->addWidget(Label1_);
    numbers->addWidget(Text1_);
    numbers->addWidget(Label2_, 1);
    auto* const slider = new QVBoxLayout(delay);
    slider->addLayout(numbers);
    slider->addWidget(HScroll1_);

    auto* const upper = new QHBoxLayout;
    upper->setSpacing(18);
    upper->addWidget(sequence, 1);
    upper->addLayout(flags, 1);
    auto* const left = new QVBoxLayout;
    left->setSpacing(12);
    left->addLayout(upper);
    left->addWidget(delay);
    LayOutWithButtons(this, left, OKButton_);
}

void DialogSlideOpt::ConnectControls() {
    for (QCheckBox* const box : Check1_)
        connect(box, &QCheckBox::toggled, this, &DialogSlideOpt::Check1_Click);
    for (std::size_t i = 0; i < Option1_.size(); ++i)
        connect(Option1_[i], &QRadioButton::toggled, this, [this, i](bool on) {
            if (on) Option1_Click(i);
        });
    connect(HScroll1_, &ValueSlider::Change, this, &DialogSlideOpt::HScroll1_Change);
    connect(HScroll1_, &ValueSlider::Scroll, this, &DialogSlideOpt::HScroll1_Change);
    connect(Text1_, &QLineEdit::textChanged, this, &DialogSlideOpt::Text1_Change);
    connect(OKButton_[0], &QPushButton::clicked, this, &QDialog::accept);
    connect(OKButton_[1], &QPushButton::clicked, this, [this] { SlideOptionsFile(session_, true); });
}

void DialogSlideOpt::Form_Load() {
    const QScopedValueRollback loading(Loading_, true);
    for (std::size_t i = 0; i < Check1_.size(); ++i) Check1_[i]->setChecked(options_.*kFlags[i].option == 1);
    if (options_.SlideOrder < Option1_.size()) Option1_[options_.SlideOrder]->setChecked(true);
    HScroll1_->setValue(options_.SlideDelay);
    Text1_->setText(QString::number(HScroll1_->value()));
    ShowSnd();
    EnableDelay();
    adjustSize();
    move(screen()->geometry().center() - rect().center());
}

void DialogSlideOpt::EnableDelay() {
    for (QWidget* const part : std::initializer_list<QWidget*>{HScroll1_, Text1_, Label1_, Label2_})
        part->setEnabled(options_.SlideAuto == 1);
}

void DialogSlideOpt::Check1_Click() {
    if (Loading_) return;
    for (std::size_t i = 0; i < Check1_.size(); ++i)
        options_.*kFlags[i].option = Check1_[i]->isChecked() ? 1 : 0;
    EnableDelay();
}

void DialogSlideOpt::HScroll1_Change() {
    if (Loading_) return;
    options_.SlideDelay = HScroll1_->value();
    if (!TextLock_) {
        const QScopedValueRollback lock(TextLock_, true);
        Text1_->setText(QString::number(HScroll1_->value()));
    }
    ShowSnd();
}

void DialogSlideOpt::ShowSnd() {
    Label2_->setText(ShownText(SecondsText(HScroll1_->value())));
}

void DialogSlideOpt::Text1_Change() {
    if (Loading_ || TextLock_) return;
    const QScopedValueRollback lock(TextLock_, true);
    const double number = LeadingNumber(BytesOfText(Text1_->text()));
    const double allowed = std::clamp<double>(number, 0, kLongestDelay);
    if (number > kLongestDelay || number <= 0) {
        prompts_.Beep();
        Text1_->setText(QString::number(allowed, 'f', 0));
        Text1_->selectAll();  // the next digit begins a new number
    }
    HScroll1_->setValue(RoundToEven(allowed));
    ShowSnd();
}

void DialogSlideOpt::Option1_Click(std::size_t Index) {
    if (!Loading_) options_.SlideOrder = static_cast<std::uint8_t>(Index);
}

// Only digits are typed into the box.
bool DialogSlideOpt::eventFilter(QObject* watched, QEvent* event) {
    if (watched != Text1_ || event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (!IsTypedText(key) || key.text().front().isDigit()) return false;
    prompts_.Beep();
    const QScopedValueRollback lock(TextLock_, true);
    ShowText(Text1_, QString::number(HScroll1_->value()));
    return true;
}

}  // namespace tessara
