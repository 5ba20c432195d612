#include "desktop/RastxPane.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>
#include <cmath>
#include <utility>

#include "core/rastx/effects/Resample.h"
#include "desktop/PaneDrawing.h"
#include "desktop/PictureImage.h"
#include "desktop/SpokenRole.h"

namespace tessara {
namespace {

/// Of the board behind transparent pictures, at a scale factor of 1.
constexpr int kBoardCell = 8;
constexpr int kArrowStep = 48;

/// The position of a scroll bar as the place of the view's middle, and back.
double MiddleOf(const QScrollBar& bar) {
    return (bar.value() + 0.5 * bar.pageStep()) / (bar.maximum() + bar.pageStep());
}
int ValueFor(double middle, const QScrollBar& bar) {
    return qRound(middle * (bar.maximum() + bar.pageStep()) - 0.5 * bar.pageStep());
}

void Place(QScrollBar& bar, int length, int view, double middle) {
    bar.setPageStep(view);
    bar.setSingleStep(kArrowStep);
    bar.setRange(0, std::max(0, length - view));
    bar.setValue(ValueFor(middle, bar));
}

}  // namespace

RastxPane::RastxPane(Rastx::Surroundings surroundings, QWidget* parent)
    : QAbstractScrollArea(parent), rastx_([&] {
          surroundings.changed = [this] { RastxChanged(); };
          return Rastx(std::move(surroundings));
      }()) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    SetSpokenRole(this, QAccessible::Graphic);
    setAccessibleName(tr("Picture"));
    setAccessibleDescription(Description());
    viewport()->setBackgroundRole(QPalette::Mid);
    viewport()->setMouseTracking(true);
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, &RastxPane::KeepMiddle);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &RastxPane::KeepMiddle);
}

void RastxPane::SetViewMode(int mode) {
    ViewMode_ = mode;
    computed_ = {};
    UpdateScrollBars();
    viewport()->update();
}

void RastxPane::RastxChanged() {
    viewport()->update();
    if (revision_ == rastx_.Revision()) return;
    revision_ = rastx_.Revision();
    if (rastx_.ImageWidth() == 0) middle_ = {0.5, 0.5};
    UpdateScrollBars();
    setAccessibleDescription(Description());
    Q_EMIT ImageChanged();
}

QString RastxPane::Description() const {
    if (rastx_.ImageWidth() == 0) return tr("Empty");
    return tr("%1 x %2 pixels").arg(rastx_.ImageWidth()).arg(rastx_.ImageHeight());
}

bool RastxPane::event(QEvent* event) {
    // Another screen may have another scale factor, and then other pixels.
    if (event->type() == QEvent::ScreenChangeInternal) UpdateScrollBars();
    if (event->type() == QEvent::FocusIn) viewport()->update();
    if (event->type() == QEvent::FocusOut) HideMark();
    return QAbstractScrollArea::event(event);
}

void RastxPane::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    UpdateScrollBars();
}

// Showing.

QSize RastxPane::InPixels(const QSize& size) const {
    return {qRound(size.width() * PixelRatio()), qRound(size.height() * PixelRatio())};
}

QRect RastxPane::Selection() const {
    if (!rastx_.HasSelection()) return {};
    const QRect selection({rastx_.SelLeft(), rastx_.SelTop()}, QPoint(rastx_.SelRight(), rastx_.SelBottom()));
    // The picture may have changed under it.
    return selection & QRect(QPoint(), PictureSize());
}

ViewGeometry RastxPane::Geometry() const {
    const auto mode = ViewMode_ == 2 ? ViewGeometry::Mode::PixelForPixel : ViewGeometry::Mode::ShrinkToFit;
    return {PictureSize(), InPixels(viewport()->size()), mode, Scroll()};
}

void RastxPane::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    const double ratio = PixelRatio();
    const QRectF exposed(QPointF(event->rect().topLeft()) * ratio, QSizeF(event->rect().size()) * ratio);
    const ViewGeometry geometry = Geometry();
    painter.scale(1 / ratio, 1 / ratio);
    DrawPicture(painter, geometry, exposed.toAlignedRect() & geometry.Target());
    const int lineWidth = std::max(1, qRound(ratio));
    if (const QRect selection = Selection(); !selection.isEmpty())
        DrawBand(painter, geometry.ViewRectangle(selection), lineWidth);
    // The style's own mark would tint the picture.
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) DrawFocus(painter, 2 * lineWidth);
    if (mark_) DrawMark(painter, ViewPoint(*mark_), lineWidth);
}

/// Along what is seen of the pane: other parts of the window may lie on its edges.
void RastxPane::DrawFocus(QPainter& painter, int lineWidth) const {
    const QRect seen = viewport()->visibleRegion().boundingRect();
    const QPoint corner = ViewPoint(seen.topLeft());
    DrawFrame(painter, QRect(corner, InPixels(seen.size())),
              QPen(palette().color(QPalette::Highlight), lineWidth));
}

void RastxPane::DrawPicture(QPainter& painter, const ViewGeometry& geometry, const QRect& exposed) {
    if (exposed.isEmpty()) return;
    const auto [picture, corner] = Source(geometry);
    const QImage image = ImageOn(picture);
    const QRect part = exposed.translated(-geometry.Target().topLeft() - corner);
    if (picture.HasAlpha())
        painter.drawImage(exposed.topLeft(),
                          OnBoard(image, part, -corner, qRound(kBoardCell * PixelRatio()), palette()));
    else
        painter.drawImage(exposed.topLeft(), image, part);
}

RastxPane::DrawnFrom RastxPane::Source(const ViewGeometry& geometry) {
    if (!geometry.Shrunk() && !rastx_.ImagePutOff()) return {rastx_.Image(), {}};
    const QRect& target = geometry.Target();
    const QRect seen = geometry.Shrunk() ? target : target & QRect({}, InPixels(viewport()->size()));
    const QRect part = seen.translated(-target.topLeft());
    if (computed_.revision != rastx_.Revision() || computed_.part != part) {
        auto computed = Compute(geometry, part);
        computed_ = {computed ? std::move(computed).Value() : Picture(), part, rastx_.Revision()};
    }
    return {computed_.picture, part.topLeft()};
}

Result<Picture> RastxPane::Compute(const ViewGeometry& geometry, const QRect& part) const {
    if (!geometry.Shrunk()) return rastx_.ImagePart(part.x(), part.y(), part.width(), part.height());
    return Resample(rastx_.Image(), part.width(), part.height(), ResampleQuality::Fast, HardwareThreads());
}

// Scrolling.

QPoint RastxPane::Scroll() const {
    return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

bool RastxPane::CanScroll() const {
    return horizontalScrollBar()->maximum() > 0 || verticalScrollBar()->maximum() > 0;
}

void RastxPane::UpdateScrollBars() {
    const QSize picture = ViewMode_ == 2 ? PictureSize() : QSize();
    // Without scroll bars there is more room: they are needed only where that does not suffice either.
    const QSize largest = InPixels(maximumViewportSize());
    const bool fits = picture.width() <= largest.width() && picture.height() <= largest.height();
    // Bars that come or go with the next events change the view, which leads here again.
    const QSize view = fits ? largest : InPixels(viewport()->size());
    const QScopedValueRollback<bool> placing(placing_, true);
    Place(*horizontalScrollBar(), picture.width(), view.width(), middle_.x());
    Place(*verticalScrollBar(), picture.height(), view.height(), middle_.y());
}

void RastxPane::KeepMiddle() {
    if (!placing_) middle_ = {MiddleOf(*horizontalScrollBar()), MiddleOf(*verticalScrollBar())};
}

void RastxPane::ScrollTo(const QPoint& scroll) {
    horizontalScrollBar()->setValue(scroll.x());
    verticalScrollBar()->setValue(scroll.y());
}

// A rubber band may be drawn to what lies beyond the view's edges.
void RastxPane::ScrollTowards(const QPoint& position) {
    const QSize view = InPixels(viewport()->size());
    const auto beyond = [](int at, int length) { return at < 0 ? at : std::max(0, at - length + 1); };
    ScrollTo(Scroll() + QPoint(beyond(position.x(), view.width()), beyond(position.y(), view.height())));
}

// The mouse.

void RastxPane::MoveMouse(const QPointF& position) {
    const QPoint point = Geometry().PicturePoint(ViewPoint(position));
    rastx_.MoveMouse(point.x(), point.y());
}

void RastxPane::BeginPress(const QPointF& position) {
    MoveMouse(position);
    pressed_ = true;
    Q_EMIT ImageMouseDown();
}

void RastxPane::EndPress() {
    pressed_ = false;
    rastx_.EndSelect();
    Q_EMIT ImageMouseUp();
}

void RastxPane::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton && CanScroll()) {
        dragging_ = true;
        dragStart_ = Scroll() + ViewPoint(event->position());
        viewport()->setCursor(Qt::ClosedHandCursor);
    }
    if (event->button() != Qt::LeftButton || !Geometry().Target().contains(ViewPoint(event->position())))
        return;
    HideMark();
    BeginPress(event->position());
}

void RastxPane::mouseMoveEvent(QMouseEvent* event) {
    if (mark_) HideMark();
    if (dragging_) ScrollTo(dragStart_ - ViewPoint(event->position()));
    // The button may have come up while a dialog of a handler had the mouse.
    if (pressed_ && !event->buttons().testFlag(Qt::LeftButton)) EndPress();
    if (pressed_) ScrollTowards(ViewPoint(event->position()));
    MoveMouse(event->position());
    Q_EMIT ImageMouseMove();
}

void RastxPane::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton && std::exchange(dragging_, false)) viewport()->unsetCursor();
    if (event->button() != Qt::LeftButton || !pressed_) return;
    MoveMouse(event->position());
    EndPress();
}

void RastxPane::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    MoveMouse(event->position());
    Q_EMIT ImageDblClick();
}

void RastxPane::contextMenuEvent(QContextMenuEvent* event) {
    // The Menu key is for the window, which knows where to open a menu without the mouse.
    if (event->reason() == QContextMenuEvent::Keyboard) return event->ignore();
    if (!pressed_) Q_EMIT ImageRightClick();
    event->accept();
}

}  // namespace tessara
