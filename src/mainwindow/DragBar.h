#pragma once

#include <QWidget>

namespace tessara {

/// A bar between two areas that the user drags, or moves with the arrow keys; it only tells what they do.
class DragBar : public QWidget {
    Q_OBJECT
  public:
    DragBar(const QString& name, Qt::Orientation orientation, QWidget* parent);

  Q_SIGNALS:
    void MouseDown();
    /// Where the pointer is, from the bar's corner, in pixels.
    void MouseMove(int x, int y);
    void MouseUp();
    /// An arrow key moves the bar by so many pixels.
    void Step(int pixels);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    Qt::Orientation orientation_;
};

/// The dark ghost of a bar, shown while it is dragged.
class DragGhost : public QWidget {
    Q_OBJECT
  public:
    DragGhost(const QString& name, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace tessara
