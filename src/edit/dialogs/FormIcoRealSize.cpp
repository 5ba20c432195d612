#include "edit/dialogs/FormIcoRealSize.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <cmath>

#include "desktop/PictureImage.h"
#include "desktop/SpokenRole.h"
#include "desktop/Twips.h"

namespace tessara {
namespace {

constexpr int kLeastWidth = 1200;  ///< below it the title bar is too short to hold the window by...
constexpr int kSmallWidth = 1350;  ///< ...and the window gets this one
constexpr int kEdge = 45;
constexpr int kTitleAndEdges = 300;

QSize PixelsOf(const QSize& twips) {
    return {twips.width() / kTwipsPerPixel, twips.height() / kTwipsPerPixel};
}

}  // namespace

CaptureLayout::CaptureLayout(const QSize& picture)
    : window(picture * kTwipsPerPixel + QSize(300, 600)), Picture1(QPoint(), picture * kTwipsPerPixel) {
    if (window.width() < kLeastWidth) window.setWidth(kSmallWidth);
    inside = window - QSize(2 * kEdge, kTitleAndEdges);
    Picture1.moveTo((window.width() - Picture1.width()) / 2 - kEdge,
                    (window.height() - Picture1.height() - kTitleAndEdges) / 2);
}

/// A picture, pixel for pixel in those of the screen.
class FormIcoRealSize::LivePicture final : public QWidget {
  public:
    explicit LivePicture(QWidget* parent) : QWidget(parent) {}
    void Show(const Picture& picture) {
        picture_ = picture;
        update();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.scale(1 / devicePixelRatioF(), 1 / devicePixelRatioF());
        painter.drawImage(0, 0, ImageOn(picture_));
    }

  private:
    Picture picture_;
};

// Not a dialog and without an owner: such windows would be minimised together with the main window.
FormIcoRealSize::FormIcoRealSize()
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                           Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint),
      Picture1_(new LivePicture(this)),
      Image1_(new QLabel(this)) {
    SetSpokenRole(this, QAccessible::Window);
    SetSpokenRole(Picture1_, QAccessible::Graphic);
    setObjectName(QStringLiteral("FormIcoRealSize"));
    Picture1_->setObjectName(QStringLiteral("Picture1"));
    Picture1_->setAccessibleName(tr("What lies under the pointer"));
    Image1_->setObjectName(QStringLiteral("Image1"));
    Image1_->setPixmap(
        ArtworkPixmap("capture", {16, 16}, PictureState::Normal, devicePixelRatioF(), palette()));
    setAttribute(Qt::WA_QuitOnClose, false);
}

void FormIcoRealSize::SetupCaptureWindow(const QSize& size) {
    const double ratio = devicePixelRatioF();
    const QSize picture(static_cast<int>(std::ceil(size.width() / ratio)),
                        static_cast<int>(std::ceil(size.height() / ratio)));
    const CaptureLayout layout(picture);
    Image1_->hide();
    setFixedSize(PixelsOf(layout.inside));
    const QSize room = screen()->geometry().size() - PixelsOf(layout.window);
    move(screen()->geometry().topLeft() + QPoint(room.width() / 2, room.height() / 2));
    setWindowTitle(QStringLiteral("%1 x %2").arg(size.width()).arg(size.height()));
    Picture1_->setGeometry(QRect(layout.Picture1.topLeft() / kTwipsPerPixel, picture));
    Picture1_->show();
}

void FormIcoRealSize::ShowTopmost() {
    show();
    // Where the keyboard can only be read by the active window, that is this one.
    activateWindow();
}

void FormIcoRealSize::ShowPicture(const Picture& Picture1) {
    Picture1_->Show(Picture1);
}

void FormIcoRealSize::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Control && !event->isAutoRepeat() && KeyPreview_ && Grasp)
        Grasp();
    else
        QWidget::keyPressEvent(event);
}

void FormIcoRealSize::closeEvent(QCloseEvent* event) {
    event->accept();
    if (Closed) Closed();
}

}  // namespace tessara
