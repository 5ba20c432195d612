#pragma once

#include <QAbstractScrollArea>
#include <QPointF>
#include <optional>

#include "core/rastx/Rastx.h"
#include "desktop/ViewGeometry.h"

namespace tessara {

/// The imaging pane on screen: shows the picture of its Rastx and lets the user drag out a rectangle.
/// Its accessible description tells the picture's size.
/// The middle button drags a picture that is larger than the view, the arrow keys scroll it. In any other the
/// keys do what the mouse does: the arrows move a mark, with Ctrl in longer steps, with Shift they drag the
/// rectangle, and Space clicks. Mouse events reach the pane through its viewport().
class RastxPane : public QAbstractScrollArea {
    Q_OBJECT
  public:
    /// `surroundings.changed` is taken by the pane itself.
    RastxPane(Rastx::Surroundings surroundings, QWidget* parent);

    /// The picture and all operations on it. Changes show with the next events, and at once after repaint().
    Rastx& rastx() { return rastx_; }
    const Rastx& rastx() const { return rastx_; }

    /// 2 shows the picture pixel for pixel with scroll bars; any other value shrinks one that is larger than
    /// the pane to fit, and never enlarges it.
    int ViewMode() const { return ViewMode_; }
    void SetViewMode(int mode);

  Q_SIGNALS:
    /// Positions are asked for with MouseX and MouseY, in picture pixels in both modes; beside the picture
    /// they are those of the nearest pixel.
    void ImageMouseDown();  ///< the left button, over the picture
    void ImageMouseMove();  ///< anywhere over the pane, or with the button held down
    void ImageMouseUp();    ///< follows each ImageMouseDown
    void ImageRightClick();
    void ImageDblClick();
    /// The picture is another one; not raised for changes of the rectangle.
    void ImageChanged();

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

  private:
    /// What was last computed for the screen, so that repainting costs no more than copying it there.
    struct ComputedPart {
        Picture picture;
        QRect part;  ///< of the whole picture as it is shown
        unsigned revision = 0;
    };
    /// What is drawn from: a picture whose corner lies at `corner` of the whole.
    struct DrawnFrom {
        const Picture& picture;
        QPoint corner;
    };

    double PixelRatio() const { return viewport()->devicePixelRatioF(); }
    QSize InPixels(const QSize& size) const;
    QSize PictureSize() const { return {rastx_.ImageWidth(), rastx_.ImageHeight()}; }
    QRect Selection() const;
    ViewGeometry Geometry() const;
    void RastxChanged();
    QString Description() const;

    DrawnFrom Source(const ViewGeometry& geometry);
    Result<Picture> Compute(const ViewGeometry& geometry, const QRect& part) const;
    void DrawFocus(QPainter& painter, int lineWidth) const;
    void DrawPicture(QPainter& painter, const ViewGeometry& geometry, const QRect& exposed);

    bool CanScroll() const;
    void UpdateScrollBars();
    void KeepMiddle();
    QPoint Scroll() const;
    void ScrollTo(const QPoint& scroll);
    void ScrollTowards(const QPoint& position);

    QPoint ViewPoint(const QPointF& position) const { return (position * PixelRatio()).toPoint(); }
    void MoveMouse(const QPointF& position);
    void BeginPress(const QPointF& position);
    void EndPress();
    void MoveMark(const QPoint& step, bool drags);
    void ClickMark();
    void HideMark();

    Rastx rastx_;
    int ViewMode_ = 0;
    unsigned revision_ = 0;
    ComputedPart computed_;
    QPointF middle_{0.5, 0.5};  ///< where the middle of the view lies in the picture, as parts of its sides
    bool placing_ = false;      ///< the scroll bars move by themselves
    bool pressed_ = false;      ///< ImageMouseDown was raised, ImageMouseUp is to follow
    std::optional<QPointF> mark_;  ///< where the keys have led, in the view; none while the mouse is used
    bool dragging_ = false;
    QPoint dragStart_;  ///< the point of the picture that the mouse holds
};

}  // namespace tessara
