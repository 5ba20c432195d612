#pragma once

#include <QWidget>

namespace tessara {

/// A bar between two areas that the user drags; it only tells what the mouse does.
class DragBar : public QWidget {
    Q_OBJECT
  public:
    DragBar(const QString& name, Qt::Orientation orientation, QWidget* parent);

  Q_SIGNALS:
    void MouseDown();
    /// Where the pointer is, from the bar's corner, in pixels.
    void MouseMove(int x, int y);
    void MouseUp();

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
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
