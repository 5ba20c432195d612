#include "artwork/ToolStrip.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace tessara {
namespace {

constexpr QSize kPicture(16, 16);
constexpr int kTop = 3;
constexpr int kPlateMargin = 2;
constexpr qreal kPlateRadius = 3;

/// A soft plate under the pointer, a deeper one while pressed; a frame for the keyboard's focus.
void PaintPlate(QPainter& painter, const ImageTool& tool) {
    QColor plate = ArtworkAccent(tool.palette());
    const QRectF area = QRectF(tool.Plate()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(tool.hasFocus() ? QPen(plate, 1) : QPen(Qt::NoPen));
    plate.setAlphaF(tool.isDown() ? 0.34f : tool.Picture() == PictureState::Hover ? 0.17f : 0.0f);
    painter.setBrush(plate);
    painter.drawRoundedRect(area, kPlateRadius, kPlateRadius);
}

}  // namespace

ImageTool::ImageTool(std::string_view drawing, QWidget* parent) : QAbstractButton(parent), drawing_(drawing) {
    setFocusPolicy(Qt::TabFocus);  // a click leaves the focus where the user works
    setMouseTracking(true);
    connect(this, &QAbstractButton::pressed, this, [this] { parentWidget()->update(Plate()); });
    connect(this, &QAbstractButton::released, this, [this] { parentWidget()->update(Plate()); });
}

void ImageTool::SetPicture(PictureState picture) {
    picture_ = picture;
    parentWidget()->update(Plate());
}

QRect ImageTool::Plate() const {
    return geometry().adjusted(-kPlateMargin, -kPlateMargin, kPlateMargin, kPlateMargin);
}

void ImageTool::paintEvent(QPaintEvent*) {
    QPainter(this).drawPixmap(0, 0,
                              ArtworkPixmap(drawing_, size(), picture_, devicePixelRatioF(), palette()));
}

bool ImageTool::event(QEvent* event) {
    if (event->type() == QEvent::MouseMove && !isEnabled()) {
        event->ignore();  // a disabled button would keep it to itself
        return false;
    }
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        parentWidget()->update(Plate());
    return QAbstractButton::event(event);
}

ToolStrip::ToolStrip(const ImageListScheme& scheme, QWidget* parent) : TiledBack(parent), scheme_(scheme) {
    setMouseTracking(true);
}

void ToolStrip::AddTool(std::string_view drawing, const QString& tooltip, int left) {
    const int index = ToolCount();
    auto* tool = new ImageTool(drawing, this);
    tool->setObjectName(QStringLiteral("Imagetool(%1)").arg(index));
    tool->setToolTip(tooltip);
    tool->setAccessibleName(tooltip);
    tool->setGeometry(QRect(QPoint(left, kTop), kPicture));
    connect(tool, &QAbstractButton::clicked, this, [this, index] { Q_EMIT Imagetool_Click(index); });
    tools_.push_back(tool);
}

void ToolStrip::SetImageTool(int index, bool enabled) {
    Imagetool(index)->setEnabled(enabled);
    Imagetool(index)->SetPicture(enabled ? PictureState::Normal : PictureState::Disabled);
}

int ToolStrip::PictureNumber(int Index) const {
    switch (Imagetool(Index)->Picture()) {
        case PictureState::Hover:
            return Index + scheme_.hover;
        case PictureState::Disabled:
            return Index + scheme_.disabled;
        default:
            return Index + scheme_.normal;
    }
}

void ToolStrip::Imagetool_MouseMove(int Index) {
    if (Index == HoverIndex_ || hoverPaused()) return;
    SetPictureIfEnabled(HoverIndex_, PictureState::Normal);
    SetPictureIfEnabled(Index, PictureState::Hover);
    HoverIndex_ = Index;
}

void ToolStrip::EndHover() {
    Imagetool_MouseMove(-1);
}

void ToolStrip::SetPictureIfEnabled(int Index, PictureState picture) {
    if (Index >= 0 && Imagetool(Index)->isEnabled()) Imagetool(Index)->SetPicture(picture);
}

void ToolStrip::paintEvent(QPaintEvent* event) {
    TiledBack::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const ImageTool* tool : tools_) PaintPlate(painter, *tool);
}

// The buttons leave their moves to the strip, the disabled ones too.
void ToolStrip::mouseMoveEvent(QMouseEvent* event) {
    const auto found =
        std::ranges::find_if(tools_, [point = event->position().toPoint()](const ImageTool* tool) {
            return tool->geometry().contains(point);
        });
    if (found == tools_.end())
        Q_EMIT BackMouseMove();
    else
        Imagetool_MouseMove(static_cast<int>(found - tools_.begin()));
}

void ToolStrip::leaveEvent(QEvent*) {
    EndHover();
}

}  // namespace tessara
