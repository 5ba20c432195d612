#include <QGridLayout>

#include "edit/dialogs/Controls.h"
#include "edit/dialogs/Dialog2.h"

namespace tessara {

void Dialog2::MakeControls() {
    for (std::size_t i = 0; i < HScroll1_.size(); ++i) {
        HScroll1_[i] = Named(new ValueSlider(this), QStringLiteral("HScroll1"), i);
        HScroll1_[i]->setMinimumWidth(250);
        Text1_[i] = Named(MakeValueBox(this), QStringLiteral("Text1"), i);
        Label2_[i] = Named(new QFrame(this), QStringLiteral("Label2"), i);
        Label2_[i]->setFixedSize(14, 14);
        Label2_[i]->setFrameStyle(QFrame::Box | QFrame::Plain);
        Label2_[i]->setAutoFillBackground(true);
    }
    for (std::size_t i = 0; i < Label1_.size(); ++i)
        Label1_[i] = Named(new QLabel(this), QStringLiteral("Label1"), i);
    for (std::size_t i = 0; i < OKButton_.size(); ++i)
        OKButton_[i] = Named(new QPushButton(this), QStringLiteral("OKButton"), i);
    OKButton_[0]->setDefault(true);
    Check1_ = Named(new QCheckBox(this), QStringLiteral("Check1"));
    Check2_ = Named(new QCheckBox(this), QStringLiteral("Check2"));
    CheckDrag_ = Named(new QCheckBox(this), QStringLiteral("CheckDrag"));
    ImageHelp_ = MakeHelpIcon(this);
}

void Dialog2::SetTexts() {
    struct Button {
        QString text;
        QKeySequence key;
    };
    const Button buttons[] = {{QStringLiteral("Apply"), Qt::ALT | Qt::Key_A},
                              {QStringLiteral("Quit"), Qt::ALT | Qt::Key_Q},
                              {QStringLiteral("Undo"), Qt::ALT | Qt::Key_U}};
    for (std::size_t i = 0; i < OKButton_.size(); ++i) {
        OKButton_[i]->setText(buttons[i].text);
        OKButton_[i]->setShortcut(buttons[i].key);
    }
    Check1_->setShortcut(Qt::ALT | Qt::Key_M);
    Check2_->setText(QStringLiteral("For All Colors"));
    CheckDrag_->setShortcut(Qt::ALT | Qt::Key_D);
    CheckDrag_->setToolTip(QStringLiteral(
        "If your system can rapidly handle large computing and drawing tasks, please choose it."));
}

void Dialog2::LayOut() {
    auto* const sliders = new QGridLayout;
    sliders->setHorizontalSpacing(0);
    sliders->setVerticalSpacing(8);
    // Whatever is hidden, the dialog has the same width: so the gaps are columns of their own.
    enum Column { kCaption, kGap, kSlider, kSecondGap, kBox };
    sliders->setColumnMinimumWidth(kCaption, fontMetrics().horizontalAdvance(QStringLiteral("Luminance:")));
    sliders->setColumnMinimumWidth(kBox, Text1_[0]->width());
    for (const Column gap : {kGap, kSecondGap}) sliders->setColumnMinimumWidth(gap, 10);
    sliders->addWidget(Label1_[3], 0, kSlider, Qt::AlignHCenter);
    for (std::size_t i = 0; i < HScroll1_.size(); ++i) {
        const int row = static_cast<int>(i) + 1;
        sliders->addWidget(Label1_[i], row, kCaption);
        sliders->addWidget(Label2_[i], row, kCaption, Qt::AlignRight | Qt::AlignVCenter);
        sliders->addWidget(HScroll1_[i], row, kSlider);
        sliders->addWidget(Text1_[i], row, kBox);
    }
    auto* const left = new QVBoxLayout;
    left->addStretch();
    left->addLayout(sliders);
    left->addStretch();
    for (QCheckBox* const box : {Check1_, Check2_, CheckDrag_}) left->addWidget(box);

    auto* const buttons = new QVBoxLayout;
    buttons->setSpacing(8);
    for (QPushButton* const button : OKButton_) buttons->addWidget(button);
    buttons->addStretch();
    buttons->addWidget(ImageHelp_->parentWidget(), 0, Qt::AlignRight);

    auto* const whole = new QHBoxLayout(this);
    whole->setContentsMargins(14, 14, 14, 14);
    whole->setSpacing(18);
    whole->addLayout(left, 1);
    whole->addLayout(buttons);
    whole->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace tessara
