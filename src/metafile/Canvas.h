#pragma once

#include <QBrush>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <array>
#include <functional>
#include <memory>
#include <optional>

#include "core/rastx/Picture.h"
#include "metafile/Clip.h"
#include "metafile/RasterOperation.h"
#include "metafile/WorkBudget.h"

namespace tessara::metafile {

/// The pixels that a metafile is drawn on; all coordinates are pixels of the picture. A copy is drawn with
/// soft edges. Other raster operations hit whole pixels: a mask and the picture that follows it must meet.
class Canvas {
  public:
    /// Draws on the pixels of `picture`, which must outlive the canvas.
    explicit Canvas(Picture& picture);
    /// Draws nothing and only finds out where it would, for a file that does not tell its extent.
    static Canvas Measuring() { return Canvas(); }

    QRect Area() const { return area_; }
    Clip Unclipped() const { return Clip(area_); }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    /// Limits what follows, until the next call.
    void SetClip(const Clip& clip);

    void Fill(const QPainterPath& path, const QBrush& brush, RasterOperation operation);
    /// The pen's width and dashes are in pixels.
    void Stroke(const QPainterPath& path, const QPen& pen, RasterOperation operation);
    /// Draws an image so that its corners come to lie where `toDevice` takes those of its rectangle.
    void DrawImage(const QImage& image, const QTransform& toDevice, double opacity = 1);
    /// Combines an image with the pixels and a pattern.
    void CombineImage(const QImage& image, const QTransform& toDevice, const QBrush& pattern,
                      RasterOperation operation);
    void FillTriangle(const std::array<QPointF, 3>& corners, const std::array<QColor, 3>& colors);
    /// Fills from a pixel on: as far as its own colour goes, or up to the colour of a border.
    void FloodFill(QPoint start, const QBrush& brush, std::optional<QRgb> border);

    /// Whether anything was drawn so far, and where.
    bool Touched() const { return !touched_.isNull(); }
    QRectF TouchedArea() const { return touched_; }
    WorkBudget& Budget() { return budget_; }

  private:
    using Draw = std::function<void(QPainter&)>;

    Canvas();

    /// Notes where is drawn; gives the pixels that are to be changed, none if measuring.
    QRect Touch(const QRectF& bounds);
    /// The neighbourhood of the picture in which coordinates are exact enough and harmless.
    QRectF Surroundings(double margin) const;
    void FillWithin(const QRect& pixels, const QPainterPath& path, const QBrush& brush,
                    RasterOperation operation);
    void DrawUpright(const QImage& image, const QTransform& toDevice, const QRect& pixels);
    /// Draws on transparent pixels of the size of `pixels`, with coordinates of the picture.
    QImage Layer(const QRect& pixels, const Draw& draw) const;
    void Combine(const QRect& pixels, const QImage& pattern, const QImage& source, const QImage& coverage,
                 RasterOperation operation);

    QImage image_;
    std::unique_ptr<QPainter> painter_;
    QRect area_;
    Clip clip_;
    QRect clipBounds_;
    bool measuring_ = false;
    QRectF touched_;
    WorkBudget budget_;
};

}  // namespace tessara::metafile
