#include "edit/dialogs/Dialog2.h"

#include <QScreen>
#include <QStyle>

#include "core/Numbers.h"
#include "desktop/PathText.h"
#include "edit/EffectCatalogue.h"
#include "edit/TransparentColor.h"
#include "edit/dialogs/Controls.h"
#include "edit/dialogs/DialogPlace.h"

namespace tessara {
namespace {

constexpr int kRotate = 107, kNoise = 117, kColorize = 200, kColorBalance = 204, kGamma = 205;

/// The codes whose boxes an Undo puts back to "0".
bool IsResetByUndo(int code) {
    return code <= 1 || code == kRotate || code == kColorize || code == kColorBalance || code == kGamma;
}

/// Where a widget is seen; nowhere without one.
QRect OnScreen(const QWidget* widget) {
    return widget ? QRect(widget->mapToGlobal(QPoint()), widget->size()) : QRect();
}

}  // namespace

Dialog2::Dialog2(const Surroundings& surroundings, QWidget* parent)
    : QDialog(parent), surroundings_(surroundings), effect_(surroundings.editor) {
    setObjectName(QStringLiteral("Dialog2"));
    if (parent) setWindowIcon(parent->window()->windowIcon());
    MakeControls();
    LayOut();
    ConnectControls();
}

void Dialog2::ConnectControls() {
    for (int i = 0; i < 3; ++i) {
        const auto at = static_cast<std::size_t>(i);
        connect(HScroll1_[at], &ValueSlider::Change, this, [this, i] { HScroll1_Change(i); });
        connect(HScroll1_[at], &ValueSlider::Scroll, this, [this, i] { HScroll1_Scroll(i); });
        HScroll1_[at]->TakeKeysOf(Text1_[at]);
        connect(Text1_[at], &QLineEdit::textChanged, this, [this, i] { Text1_Change(i); });
        connect(OKButton_[at], &QPushButton::clicked, this, [this, i] { OKButton_Click(i); });
    }
    connect(Check1_, &QCheckBox::toggled, this, &Dialog2::Check1_Click);
    connect(CheckDrag_, &QCheckBox::toggled, this, &Dialog2::CheckDrag_Click);
    connect(ImageHelp_, &QToolButton::clicked, this, &Dialog2::ImageHelp_Click);
}

void Dialog2::LoadDialog2() {
    Shape();
    MoveBesidePane();
    exec();
}

void Dialog2::Shape() {
    Loading_ = true;
    effect_.PrepareScratchPictures();
    setWindowTitle(ShownText(EffectDialogTitle(session())));
    Neutral();
    if (const EffectParameters* effect = FindEffectParameters(session().EffectCode)) ShapeSliders(*effect);
    CheckDrag_->setChecked(false);
    CheckDrag_->setText(ShownText(DragCaption(session().EffectCode)));
    Loading_ = false;
}

void Dialog2::Neutral() {
    for (std::size_t i = 0; i < HScroll1_.size(); ++i) {
        HScroll1_[i]->SetRange(0, 0, 1, kEffectLargeChange);
        Text1_[i]->setText(QStringLiteral("0"));
        for (QWidget* const control : RowOf(i)) control->hide();
    }
    Label1_[3]->hide();
    Check1_->setText(QStringLiteral("Transparent"));
    Check1_->setChecked(false);
    Check1_->hide();
    Check2_->hide();
    UpdateUndoButton();
}

std::array<QWidget*, 4> Dialog2::RowOf(std::size_t i) const {
    return {Label1_[i], Label2_[i], HScroll1_[i], Text1_[i]};
}

void Dialog2::ShapeSliders(const EffectParameters& effect) {
    const auto count = static_cast<std::size_t>(effect.SliderCount());
    const auto first = static_cast<std::size_t>(effect.FirstSlider());
    for (std::size_t i = 0; i < count; ++i) ShapeSlider(first + i, effect, ShownText(effect.captions[i]));
    Label1_[3]->setVisible(!ValueText(effect.valueForm, 0).empty());
    if (effect.code == kNoise) {
        Check1_->setText(QStringLiteral("Monochromatic"));
        Check1_->show();
    }
    if (effect.code == kColorBalance)
        for (const auto& [label, color] :
             {std::pair{Label2_[0], Qt::red}, {Label2_[1], Qt::green}, {Label2_[2], Qt::blue}}) {
            label->setPalette(QPalette(color));
            label->show();
        }
}

void Dialog2::ShapeSlider(std::size_t i, const EffectParameters& effect, const QString& caption) {
    const EffectSlider slider = effect.Slider();
    HScroll1_[i]->SetRange(slider.Min, slider.Max, slider.SmallChange, kEffectLargeChange);
    HScroll1_[i]->setValue(slider.Value);
    HScroll1_[i]->setAccessibleName(caption.trimmed());
    HScroll1_[i]->show();
    Label1_[i]->setText(caption);
    Label1_[i]->show();
    Text1_[i]->setAccessibleName(caption.trimmed());
    Text1_[i]->setVisible(effect.valueForm != ValueForm::Number && effect.valueForm != ValueForm::Percent);
    ChangeCaption(static_cast<int>(i));
}

void Dialog2::ChangeCaption(int Index) {
    const auto i = static_cast<std::size_t>(Index);
    const ValueForm form = ValueFormOf(session().EffectCode);
    if (form == ValueForm::Number || form == ValueForm::Percent) {
        Label1_[3]->setText(ShownText(ValueText(form, HScroll1_[1]->value())));
        return;
    }
    const int value = HScroll1_[i]->value();
    ShowText(Text1_[i], ShownText(SignedText(value)));
    // The layout keeps the label centred above the slider.
    if (form != ValueForm::Box) Label1_[3]->setText(ShownText(ValueText(form, value)));
}

void Dialog2::FocusApply(int Index) {
    OKButton_[0]->setFocus();
    // Or a slider could be moved by no more than one key.
    HScroll1_[static_cast<std::size_t>(Index)]->TakeKeysOf(OKButton_[0]);
}

void Dialog2::HScroll1_Change(int Index) {
    if (Loading_ || TextLock_) return;
    FocusApply(Index);
    ChangeCaption(Index);
    GradSliderPrg();
    Updating_ = false;
}

void Dialog2::HScroll1_Scroll(int Index) {
    ChangeCaption(Index);
    if (Loading_ || ScrollLock_) return;
    ScrollLock_ = true;
    FocusApply(Index);
    GradSliderPrg();
    Updating_ = false;
    HScroll1_[static_cast<std::size_t>(Index)]->repaint();
    ScrollLock_ = false;
}

void Dialog2::Text1_Change(int Index) {
    if (Loading_ || TextLock_) return;
    TextLock_ = true;
    ValueSlider& slider = *HScroll1_[static_cast<std::size_t>(Index)];
    QLineEdit& box = *Text1_[static_cast<std::size_t>(Index)];
    const double V = LeadingNumber(box.text().toStdString());
    if (V < slider.minimum() || V > slider.maximum()) {
        surroundings_.prompts.Beep();
        box.setText(QString::number(V <= slider.minimum() ? slider.minimum() : slider.maximum()));
    }
    slider.setValue(RoundToEven(LeadingNumber(box.text().toStdString())));
    if (box.isVisible()) box.setFocus();
    TextLock_ = false;
}

void Dialog2::OKButton_Click(int Index) {
    switch (Index) {
        case 0:
            ApplyEffect();
            break;
        case 1:
            close();
            break;
        case 2:
            UndoEffect();
            break;
    }
}

void Dialog2::ApplyEffect() {
    Updating_ = true;
    effect_.Apply(Choice(), Dragging_);
    UpdateUndoButton();
    repaint();
}

void Dialog2::UndoEffect() {
    effect_.Undo();
    TextLock_ = false;
    const int code = session().EffectCode;
    if (IsResetByUndo(code))
        for (QLineEdit* const box : Text1_) ShowText(box, QStringLiteral("0"));
    if (code == kGamma) Label1_[3]->setText(QStringLiteral("1 %"));
    if (code == kRotate) Label1_[3]->setText(QStringLiteral("Degree 0"));
    UpdateUndoButton();
}

void Dialog2::GradSliderPrg() {
    if (!CheckDrag_->isChecked()) return;
    Dragging_ = true;
    effect_.PrepareDrag(OKButton_[2]->isEnabled());
    UpdateUndoButton();
    OKButton_Click(0);
    Dragging_ = false;
}

EffectChoice Dialog2::Choice() const {
    EffectChoice choice{{}, RotationBackground(session()), Check1_->isChecked()};
    if (!TextLock_)
        for (std::size_t i = 0; i < HScroll1_.size(); ++i) choice.sliders[i] = HScroll1_[i]->value();
    return choice;
}

void Dialog2::CheckDrag_Click() {
    if (Loading_) return;
    effect_.SaveSnapshot();
    UpdateUndoButton();
}

void Dialog2::Check1_Click() {
    if (Loading_ || session().EffectCode == kNoise) return;
    if (!Check1_->isChecked()) {
        session().TransparentColor = -1;
        return;
    }
    if (surroundings_.ShowDialogTrcol) surroundings_.ShowDialogTrcol();
    if (session().TransparentColor == -1) Check1_->setChecked(false);
}

void Dialog2::ImageHelp_Click() {
    const Session& values = session();
    const std::string_view anchor = EffectHelpAnchor(values.EffectGroup, values.EffectMenuIndex);
    surroundings_.editor.host.RunHtmlHelp("2-1.htm#" + std::string(anchor));
}

void Dialog2::UpdateUndoButton() {
    OKButton_[2]->setEnabled(effect_.UndoEnabled());
}

void Dialog2::MoveBesidePane() {
    const QWidget* const pane = surroundings_.exportPane;
    adjustSize();
    const QSize frame(0, style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, this));
    const QScreen* const on = pane ? pane->screen() : screen();
    move(DialogPlace(on->availableGeometry(), OnScreen(pane), OnScreen(surroundings_.importPane),
                     size() + frame));
}

void Dialog2::done(int result) {
    session().EffectCode = -1;
    surroundings_.editor.host.BusyCursor(false);
    QDialog::done(result);
}

}  // namespace tessara
