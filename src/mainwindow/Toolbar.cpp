#include "mainwindow/Toolbar.h"

#include "desktop/PathText.h"
#include "desktop/Twips.h"
#include "mainwindow/MenuTable.h"

namespace tessara {
namespace {

constexpr ImageListScheme kPictures = {1, 16, 31};

}  // namespace

Toolbar::Toolbar(const Session& session, QWidget* parent)
    : QWidget(parent), session_(session), PictureToolBack_(new ToolStrip(kPictures, this)) {
    setObjectName(QStringLiteral("FrameToolBar1"));
    PictureToolBack_->setObjectName(QStringLiteral("PictureToolBack"));
    PictureToolBack_->hoverPaused = [this] { return session_.CaptureMode; };
    for (const ToolButton& button : ToolButtons())
        PictureToolBack_->AddTool(button.icon, ShownText(button.tooltip), button.left / kTwipsPerPixel);
    connect(PictureToolBack_, &ToolStrip::Imagetool_Click, this, &Toolbar::Imagetool_Click);
    connect(PictureToolBack_, &ToolStrip::BackMouseMove, this, &Toolbar::ToolbarMouseLeft);
}

void Toolbar::Place(int windowWidth) {
    const int width = windowWidth + 100;
    setGeometry(-10, -6, width, 33);
    PictureToolBack_->setGeometry(-45 / kTwipsPerPixel, 8, width, 330 / kTwipsPerPixel);
}

void Toolbar::ToolbarMouseLeft() {
    if (session_.Converting) Q_EMIT ProgressToFront();
    if (session_.SlideRunning) Q_EMIT SlidesToFront();
    PictureToolBack_->EndHover();
}

}  // namespace tessara
