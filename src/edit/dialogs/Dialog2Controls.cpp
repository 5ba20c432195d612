#include <QGridLayout>

#include "artwork/FramedCheckBox.h"
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
    OKButton_ = {MakeButton(QStringLiteral("Apply"), Qt::Key_A, this),
                 MakeButton(QStringLiteral("Quit"), Qt::Key_Q, this),
                 MakeButton(QStringLiteral("Undo"), Qt::Key_U, this)};
    for (std::size_t i = 0; i < OKButton_.size(); ++i) Named(OKButton_[i], QStringLiteral("OKButton"), i);
    OKButton_[0]->setDefault(true);
    Check1_ = Named(new FramedCheckBox(this), QStringLiteral("Check1"));
    Check2_ = Named(new FramedCheckBox(QStringLiteral("For All Colors"), this), QStringLiteral("Check2"));
    CheckDrag_ = Named(new FramedCheckBox(this), QStringLiteral("CheckDrag"));
    CheckDrag_->setToolTip(QStringLiteral(
        "If your system can rapidly handle large computing and drawing tasks, please choose it."));
    ImageHelp_ = MakeHelpIcon(this);
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

    QBoxLayout* const buttons = LayOutWithButtons(this, left, OKButton_);
    buttons->addWidget(ImageHelp_->parentWidget(), 0, Qt::AlignRight);
}

}  // namespace tessara
