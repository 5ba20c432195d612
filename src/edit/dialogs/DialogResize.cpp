#include "edit/dialogs/DialogResize.h"

#include <QGridLayout>
#include <QScreen>

#include "artwork/FramedCheckBox.h"
#include "desktop/PathText.h"
#include "desktop/Twips.h"
#include "edit/dialogs/Controls.h"

namespace tessara {
namespace {

int TwipsPerPixel(const QWidget& widget) {
    return kTwipsPerInch / widget.logicalDpiY();
}

}  // namespace

DialogResize::DialogResize(const Surroundings& surroundings, QWidget* parent)
    : QDialog(parent), surroundings_(surroundings), resize_(surroundings.editor) {
    setObjectName(QStringLiteral("DialogResize"));
    setWindowTitle(QStringLiteral("Resize image"));
    if (parent) setWindowIcon(parent->window()->windowIcon());
    MakeControls();
    LayOut();
    ConnectControls();
}

void DialogResize::MakeControls() {
    const QString sides[] = {QStringLiteral("Width"), QStringLiteral("Height")};
    const QString units[] = {QStringLiteral("Pixel"), QStringLiteral("Percent")};
    for (std::size_t i = 0; i < HScroll1_.size(); ++i) {
        HScroll1_[i] = Named(new ValueSlider(this), QStringLiteral("HScroll1"), i);
        HScroll1_[i]->setMinimumWidth(250);
        HScroll1_[i]->setAccessibleName(sides[i]);
        Text1_[i] = Named(MakeValueBox(this), QStringLiteral("Text1"), i);
        Text1_[i]->setAccessibleName(sides[i]);
        Label1_[i] = Named(new QLabel(sides[i], this), QStringLiteral("Label1"), i);
        Label2_[i] = Named(new QLabel(this), QStringLiteral("Label2"), i);
        Option1_[i] = Named(new QRadioButton(units[i], this), QStringLiteral("Option1"), i);
    }
    Check1_ =
        Named(new FramedCheckBox(QStringLiteral("Constrain Proportions"), this), QStringLiteral("Check1"));
    OKButton_ = {MakeButton(QStringLiteral("Apply"), Qt::Key_A, this),
                 MakeButton(QStringLiteral("Undo"), Qt::Key_U, this),
                 MakeButton(QStringLiteral("Quit"), Qt::Key_Q, this)};
    for (std::size_t i = 0; i < OKButton_.size(); ++i) Named(OKButton_[i], QStringLiteral("OKButton"), i);
    OKButton_[0]->setDefault(true);
}

void DialogResize::LayOut() {
    auto* const sliders = new QGridLayout;
    sliders->setHorizontalSpacing(10);
    sliders->setVerticalSpacing(8);
    for (std::size_t i = 0; i < HScroll1_.size(); ++i) {
        const int row = static_cast<int>(i);
        sliders->addWidget(Label1_[i], row, 0);
        sliders->addWidget(HScroll1_[i], row, 1);
        sliders->addWidget(Text1_[i], row, 2);
        sliders->addWidget(Label2_[i], row, 3);
    }
    sliders->setColumnMinimumWidth(3, fontMetrics().horizontalAdvance(QStringLiteral("Percent ")));
    auto* const units = new QHBoxLayout;
    units->setSpacing(18);
    for (QRadioButton* const option : Option1_) units->addWidget(option);
    units->addStretch();
    units->addWidget(Check1_);

    auto* const left = new QVBoxLayout;
    left->addLayout(sliders);
    left->addStretch();
    left->addLayout(units);
    LayOutWithButtons(this, left, OKButton_);
}

void DialogResize::ConnectControls() {
    for (int i = 0; i < 2; ++i) {
        const auto at = static_cast<std::size_t>(i);
        connect(HScroll1_[at], &ValueSlider::Change, this, [this, i] { ChangeHScroll(i); });
        connect(HScroll1_[at], &ValueSlider::Scroll, this, [this, i] { ChangeHScroll(i); });
        connect(Text1_[at], &QLineEdit::textChanged, this, [this, i] { Text1_Change(i); });
        connect(Text1_[at], &QLineEdit::editingFinished, this, [this] { FinishTexts(); });
        connect(Option1_[at], &QRadioButton::clicked, this, [this, i] { Option1_Click(i); });
    }
    for (int i = 0; i < 3; ++i)
        connect(OKButton_[static_cast<std::size_t>(i)], &QPushButton::clicked, this,
                [this, i] { OKButton_Click(i); });
    connect(Check1_, &QCheckBox::toggled, this, [this](bool on) { values_.SetConstrainProportions(on); });
}

void DialogResize::LoaddialogResize() {
    surroundings_.editor.host.BusyCursor(true);
    Shape();
    surroundings_.editor.host.BusyCursor(false);
    MoveToItsPlace();
    exec();
}

void DialogResize::Shape() {
    Loading_ = true;
    const Rastx& pane = surroundings_.editor.exportPane;
    values_ = ResizeValues(pane.ImageWidth(), pane.ImageHeight(), ExportPaneHeight());
    SetStartData();
    Loading_ = false;
}

void DialogResize::SetStartData() {
    Option1_[0]->setChecked(true);
    ShowValues();
    Check1_->setChecked(true);
}

void DialogResize::ShowValues() {
    for (int i = 0; i < 2; ++i) {
        const auto at = static_cast<std::size_t>(i);
        HScroll1_[at]->SetRange(0, values_.Max(), 1, values_.LargeChange());
        HScroll1_[at]->setValue(values_.Value(i));
        ShowText(Text1_[at], ShownText(values_.Text(i)));
        Label2_[at]->setText(values_.Percent() ? QStringLiteral("Percent") : QStringLiteral("Pixels"));
    }
}

void DialogResize::ChangeHScroll(int Index) {
    if (Loading_ || Switching_) return;
    values_.ChangeHScroll(Index, HScroll1_[static_cast<std::size_t>(Index)]->value());
    ShowValues();
}

void DialogResize::Text1_Change(int Index) {
    if (Loading_ || Switching_) return;
    values_.Text1_Change(Index, BytesOfText(Text1_[static_cast<std::size_t>(Index)]->text()));
    ShowValues();
}

void DialogResize::FinishTexts() {
    for (const int i : {0, 1}) values_.FinishText(i);
    ShowValues();
}

void DialogResize::Option1_Click(int Index) {
    if (Loading_ || values_.Percent() == (Index == 1)) return;
    Switching_ = true;
    values_.Option1_Click(Index);
    ShowValues();
    Switching_ = false;
}

void DialogResize::OKButton_Click(int Index) {
    switch (Index) {
        case 0:
            FinishTexts();
            resize_.Apply(values_);
            break;
        case 1:
            resize_.Undo();
            break;
        case 2:
            close();
            break;
    }
}

int DialogResize::ExportPaneHeight() const {
    const QWidget* const pane = surroundings_.exportPane;
    return pane ? pane->height() * TwipsPerPixel(*pane) : 0;
}

void DialogResize::MoveToItsPlace() {
    adjustSize();
    const QRect on = screen()->availableGeometry();
    const int Top = surroundings_.ListViewFileTop * kTwipsPerPixel + 375;
    move(on.x() + (on.width() - width()) / 2, on.y() + Top / TwipsPerPixel(*this));
}

}  // namespace tessara
