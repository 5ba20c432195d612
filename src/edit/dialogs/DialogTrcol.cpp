#include "edit/dialogs/DialogTrcol.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QScreen>
#include <QVBoxLayout>

#include "edit/dialogs/Controls.h"

namespace tessara {
namespace {

constexpr int kNoteWidth = 400;

}  // namespace

DialogTrcol::DialogTrcol(Editor& editor, QWidget* parent)
    : QDialog(parent), editor_(editor), picker_(editor.session, editor.CopyExportImage()) {
    setObjectName(QStringLiteral("DialogTrcol"));
    setWindowTitle(QStringLiteral("Select transparent color"));
    if (parent) setWindowIcon(parent->window()->windowIcon());
    MakeControls();
    LayOut();
    connect(rastx1_, &RastxPane::ImageMouseDown, this, &DialogTrcol::rastx1_ImageMouseDown);
    connect(OKButton_, &QPushButton::clicked, this, &DialogTrcol::close);
    connect(ImageHelp_, &QToolButton::clicked, this, &DialogTrcol::ImageHelp_Click);
}

void DialogTrcol::MakeControls() {
    Label1_ =
        Named(new QLabel(QStringLiteral("Click the picture below to select the Transparent Color"), this),
              QStringLiteral("Label1"));
    rastx1_ = Named(new RastxPane({.carrier = &editor_.clipboard}, this), QStringLiteral("rastx1"));
    rastx1_->setAccessibleName(QStringLiteral("Picture"));
    rastx1_->viewport()->setCursor(Qt::CrossCursor);
    if (editor_.exportPane.CopyClip()) Ignore(rastx1_->rastx().PasteClip());
    Label3_ = Named(new QLabel(QStringLiteral("Transparent Color"), this), QStringLiteral("Label3"));
    Text1_ = Named(new QLineEdit(QStringLiteral(" Not Yet Selected"), this), QStringLiteral("Text1"));
    Text1_->setReadOnly(true);
    Text1_->setFocusPolicy(Qt::NoFocus);
    Text1_->setAccessibleName(Label3_->text());
    Label2_ = Named(
        new QLabel(
            QStringLiteral("Note: The Transparent Color is used for creating GIF files and any color you "
                           "select to be \"Transparent\" will be ignored by subsequent Effect or Filter "
                           "functions."),
            this),
        QStringLiteral("Label2"));
    Label2_->setWordWrap(true);
    Label2_->setFixedSize(kNoteWidth, Label2_->heightForWidth(kNoteWidth));
    OKButton_ = Named(MakeButton(QStringLiteral("OK"), Qt::Key_O, this), QStringLiteral("OKButton"));
    OKButton_->setDefault(true);
    ImageHelp_ = MakeHelpIcon(this);
}

void DialogTrcol::LayOut() {
    rastx1_->setFixedSize(PaneSize());
    auto* const swatch = new QHBoxLayout;
    swatch->setSpacing(10);
    swatch->addStretch();
    swatch->addWidget(Label3_);
    swatch->addWidget(Text1_);
    swatch->addStretch();

    auto* const whole = new QVBoxLayout(this);
    whole->setContentsMargins(14, 14, 14, 14);
    whole->setSpacing(12);
    whole->addWidget(Label1_, 0, Qt::AlignHCenter);
    whole->addWidget(rastx1_, 0, Qt::AlignHCenter);
    whole->addLayout(swatch);
    whole->addWidget(Label2_, 0, Qt::AlignHCenter);
    auto* const last = new QGridLayout;
    last->addWidget(OKButton_, 0, 0, Qt::AlignHCenter);
    last->addWidget(ImageHelp_->parentWidget(), 0, 0, Qt::AlignRight);
    whole->addLayout(last);
    whole->setSizeConstraint(QLayout::SetFixedSize);
}

QSize DialogTrcol::PaneSize() const {
    const QSize picture(editor_.exportPane.ImageWidth(), editor_.exportPane.ImageHeight());
    const int frame = 2 * rastx1_->frameWidth();
    const QSize room = screen()->availableSize() * 0.7;
    const QSize shown = (QSizeF(picture) / devicePixelRatioF()).toSize();
    const bool fits = shown == shown.boundedTo(room);
    return (fits ? shown : shown.scaled(room, Qt::KeepAspectRatio)) + QSize(frame, frame);
}

void DialogTrcol::rastx1_ImageMouseDown() {
    picker_.Pick(rastx1_->rastx().MouseX(), rastx1_->rastx().MouseY());
    const Pixel pixel = PixelFromColor(editor_.session.TransparentColor);
    QPalette palette = Text1_->palette();
    palette.setColor(QPalette::Base, QColor(pixel.r, pixel.g, pixel.b));
    Text1_->setPalette(palette);
    Text1_->clear();
    Text1_->setAccessibleDescription(palette.color(QPalette::Base).name());
}

void DialogTrcol::ImageHelp_Click() {
    editor_.host.RunHtmlHelp("2-1.htm#abouttr");
}

}  // namespace tessara
