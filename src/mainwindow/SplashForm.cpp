#include "mainwindow/SplashForm.h"

#include <QCoreApplication>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

#include "artwork/Artwork.h"
#include "settings/Product.h"

namespace tessara {
namespace {

constexpr QSize kSize(480, 308);
constexpr QSize kArtwork(480, 208);
constexpr int kMargin = 24;

// The form has colours of its own: those of the drawing, whose stones are laid in this mortar.
constexpr QColor kMortar(0x12, 0x2f, 0x37);
constexpr QColor kLettering(0xf2, 0xe8, 0xd2);

}  // namespace

SplashForm::SplashForm() : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint) {
    setObjectName(QStringLiteral("SplashForm"));
    setFixedSize(kSize);
    setCursor(Qt::WaitCursor);
    QLabel* name = AddLabel(2.6, 1);
    name->setText(QLatin1String(kProductName));
    LabelVersion_ = AddLabel(1.2, 0.8f);
    LabelVersion_->setObjectName(QStringLiteral("LabelVersion"));
    LabelBuild_ = AddLabel(1, 0.6f);
    LabelBuild_->setObjectName(QStringLiteral("LabelBuild"));
    PlaceLabels(name);
}

QLabel* SplashForm::AddLabel(double fontScale, float brightness) {
    auto* label = new QLabel(this);
    QFont larger = font();
    larger.setPointSizeF(larger.pointSizeF() * fontScale);
    label->setFont(larger);
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, Mixed(kMortar, kLettering, brightness));
    label->setPalette(colors);
    return label;
}

/// The name, and at the right below it the version over the build.
void SplashForm::PlaceLabels(QLabel* name) {
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addStretch();
    texts->addWidget(LabelVersion_, 0, Qt::AlignRight);
    texts->addWidget(LabelBuild_, 0, Qt::AlignRight);
    texts->addStretch();
    auto* line = new QHBoxLayout;
    line->addWidget(name, 1, Qt::AlignVCenter);
    line->addLayout(texts);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kArtwork.height(), kMargin, kMargin / 2);
    layout->addLayout(line);
}

void SplashForm::ShowAtOnce() {
    const QRect area = screen()->geometry();
    move(area.center() - rect().center());
    show();
    activateWindow();  // for the keys
    repaint();
    QCoreApplication::processEvents();  // a window system shows it only after an answer
}

void SplashForm::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), kMortar);
    painter.drawPixmap(
        0, 0, ArtworkPixmap("splash", kArtwork, PictureState::Normal, devicePixelRatioF(), palette()));
}

void SplashForm::mousePressEvent(QMouseEvent*) {
    close();
}

void SplashForm::keyPressEvent(QKeyEvent*) {
    close();
}

}  // namespace tessara
