#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace tessara {

/// Where a picture lies in a view of it. Lengths in the view are the screen's own pixels, so that pictures
/// stay sharp at any scale factor.
class ViewGeometry {
  public:
    enum class Mode { ShrinkToFit, PixelForPixel };

    /// `scroll` is how much of a picture larger than the view lies before its left and upper edge.
    ViewGeometry(const QSize& picture, const QSize& view, Mode mode, const QPoint& scroll = {});

    /// The whole picture's place in the view, centred where it is smaller; empty without a picture.
    QRect Target() const { return target_; }
    bool Shrunk() const { return target_.size() != picture_; }

    /// The picture's pixel at a point of the view; the nearest one where the point lies beside the picture.
    /// The first and the last pixel shown are the picture's first and last, so that a shrunk picture can be
    /// selected up to its edges.
    QPoint PicturePoint(const QPoint& viewPoint) const;
    /// The reverse, of a rectangle with its last column and row.
    QRect ViewRectangle(const QRect& pictureRectangle) const;

  private:
    QSize picture_;
    QRect target_;
};

}  // namespace tessara
