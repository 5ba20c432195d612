#pragma once

#include <QWidget>

#include "core/rastx/Rastx.h"

namespace tessara {

/// The imaging pane on screen: shows the picture of its Rastx and lets the user drag out a rectangle.
class RastxPane : public QWidget {
    Q_OBJECT
  public:
    /// `surroundings.changed` is taken by the pane itself.
    RastxPane(Rastx::Surroundings surroundings, QWidget* parent);

    /// The picture and all operations on it.
    Rastx& rastx() { return rastx_; }
    const Rastx& rastx() const { return rastx_; }

    /// 2 shows the picture pixel for pixel with scroll bars; any other value shrinks one that is larger than
    /// the pane to fit, and never enlarges it.
    int ViewMode() const { return ViewMode_; }
    void SetViewMode(int mode);

  Q_SIGNALS:
    /// Positions are asked for with MouseX and MouseY, in picture pixels in both modes.
    void ImageMouseDown();
    void ImageMouseMove();
    void ImageMouseUp();
    void ImageRightClick();
    void ImageDblClick();
    void ImageChanged();

  private:
    Rastx rastx_;
    int ViewMode_ = 0;
};

}  // namespace tessara
