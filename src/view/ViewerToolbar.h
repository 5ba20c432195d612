#pragma once

#include <QLabel>

#include "artwork/ToolStrip.h"

namespace tessara {

/// The toolbar of the image viewer, `FrameToolBar1`: the strip `PictureToolBack` with the buttons of
/// ViewerTool and, towards its right end, the labels that tell what is shown.
class ViewerToolbar final : public QWidget {
    Q_OBJECT
  public:
    explicit ViewerToolbar(QWidget* parent);

    ToolStrip* PictureToolBack() const { return PictureToolBack_; }
    QLabel* LabelPict() const { return LabelPict_; }
    QLabel* LabelZoom() const { return LabelZoom_; }
    QLabel* LabelXY() const { return LabelXY_; }
    QLabel* LabelWH() const { return LabelWH_; }

    /// Along the top of a window on a screen of that width. The frame's own edges stay out of sight.
    void Place(int screenWidth);
    /// Places the labels for the window's inner width and for numbers up to those of the picture.
    void SetCaption(int innerWidth, const QSize& picture);

  private:
    void AddTools();
    QLabel* AddLabel(const QString& name);

    ToolStrip* PictureToolBack_;
    QLabel *LabelPict_, *LabelZoom_, *LabelXY_, *LabelWH_;
    QWidget *Image2_, *Image3_;
};

}  // namespace tessara
