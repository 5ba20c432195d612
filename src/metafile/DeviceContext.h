#pragma once

#include <QPointF>
#include <QTransform>
#include <optional>
#include <span>
#include <vector>

#include "metafile/Canvas.h"
#include "metafile/Geometry.h"
#include "metafile/Objects.h"
#include "metafile/Typeface.h"

namespace tessara::metafile {

enum class MapMode {
    Text = 1,
    LowMetric,
    HighMetric,
    LowEnglish,
    HighEnglish,
    Twips,
    Isotropic,
    Anisotropic,
};

/// How logical coordinates become those of the reference device.
struct Mapping {
    MapMode mode = MapMode::Text;
    QPointF windowOrigin;
    QPointF windowExtent{1, 1};
    QPointF viewportOrigin;
    QPointF viewportExtent{1, 1};
    QTransform world;

    /// The scales of the two axes; `pixelsPerMillimetre` serves the modes with a fixed unit.
    QPointF Scale(QPointF pixelsPerMillimetre) const;
    QTransform Page(QPointF pixelsPerMillimetre) const;
};

/// Sets an extent, which never becomes zero.
void SetExtent(QPointF& extent, QPointF given);
/// Multiplies an extent by a fraction for each axis; passed over where that makes no sense.
void ScaleExtent(QPointF& extent, QPointF numerator, QPointF denominator);

/// Bits of the text alignment.
enum TextAlign : unsigned {
    kUpdatePosition = 1,
    kRight = 2,
    kCenter = 6,
    kHorizontalBits = 6,
    kBottom = 8,
    kBaseLine = 24,
    kVerticalBits = 24,
};

/// Everything that SaveDC keeps.
struct Attributes {
    Mapping mapping;
    Pen pen;
    Brush brush;
    Font font;
    Palette palette;
    QRgb textColor = qRgb(0, 0, 0);
    QRgb backgroundColor = qRgb(255, 255, 255);
    bool opaqueBackground = true;
    unsigned drawingMode = 13;
    Qt::FillRule fillRule = Qt::OddEvenFill;
    unsigned textAlign = 0;
    double characterExtra = 0;
    double breakExtra = 0;  ///< for each blank
    QPointF position;
    QPointF brushOrigin;
    bool clockwise = false;
    double miterLimit = 10;
    bool mirrored = false;
    Clip clip;

    explicit Attributes(const Clip& everything) : clip(everything) {}
    /// Takes a pen, a brush, a font or a palette; passes over anything else.
    void Select(const Object& object);
};

struct TextCall {
    QString text;
    QPointF reference;
    std::vector<double> advances;  ///< of each unit of the text in logical units; empty: the font's own
    bool fillBox = false, clipToBox = false;
    QRectF box;
    bool advanced = false;  ///< the world transform shapes the characters too
};

struct BitmapCall {
    QImage image;                 ///< the part to draw
    QRectF target;                ///< in logical units; a negative size mirrors
    bool targetInPixels = false;  ///< the target is in pixels of the reference device
    RasterOperation operation = RasterOperation::CopySource();
};

/// Draws the part `source` of an image; sizes may be negative to mirror. What lies outside of the image is
/// left out.
BitmapCall PartOf(const QImage& image, QRectF source, const QRectF& target, RasterOperation operation);

/// An image of two colours in two others.
QImage Recolored(const QImage& blackAndWhite, QRgb black, QRgb white);

/// The drawing machine that both kinds of metafile are written for. Points are logical unless said otherwise.
class DeviceContext {
  public:
    /// `toPicture` takes pixels of the reference device to those of the picture.
    DeviceContext(Canvas& canvas, const QTransform& toPicture, QPointF pixelsPerMillimetre);

    Attributes& State() { return state_; }
    const Attributes& State() const { return state_; }
    Canvas& Surface() { return canvas_; }
    void Save();
    /// A negative level counts back from now, a positive one from the beginning.
    void Restore(int level);

    QTransform ToReference() const;
    QTransform ToPicture() const;
    const QTransform& ReferenceToPicture() const { return toPicture_; }

    // Lines and shapes. While a path is open they add to it and draw nothing.
    void MoveTo(QPointF point);
    void LineTo(QPointF point);
    void Polyline(std::span<const QPointF> points);
    void PolylineTo(std::span<const QPointF> points);
    void PolyBezierTo(std::span<const QPointF> points);
    void PolyBezier(std::span<const QPointF> points);
    void Polygon(std::span<const QPointF> points);
    /// Draws logical figures as one shape.
    void Lines(const QPainterPath& figures);
    void Shape(const QPainterPath& figures);
    void Rectangle(const QRectF& box);
    void RoundRect(const QRectF& box, double cornerWidth, double cornerHeight);
    void Ellipse(const QRectF& box);
    void Arc(const QRectF& box, QPointF start, QPointF end, ArcKind kind);
    /// An arc that a line from the current position leads to; it becomes the current position.
    void ArcTo(const QRectF& box, QPointF start, QPointF end);
    void AngleArc(QPointF center, double radius, double startAngle, double sweep);
    void SetPixel(QPointF point, QRgb color);
    void FloodFill(QPointF point, QRgb color, bool toBorder);
    void FillTriangle(const std::array<QPointF, 3>& corners, const std::array<QColor, 3>& colors);
    void GradientBox(QPointF from, QPointF to, QColor first, QColor last, bool vertical);

    // Regions, in logical units.
    void FillRegion(const Region& region, const Brush& brush);
    void FrameRegion(const Region& region, const Brush& brush, double width, double height);
    void InvertRegion(const Region& region);

    // Bitmaps.
    void FillPattern(const QRectF& box, RasterOperation operation);
    void DrawBitmap(const BitmapCall& call);
    void DrawTransparent(const QImage& image, const QRectF& target, double opacity);
    /// Maps the corners of the image to three points, the fourth follows.
    void DrawParallelogram(const QImage& image, const std::array<QPointF, 3>& corners);

    void DrawText(const TextCall& call);

    // Paths.
    void BeginPath();
    void EndPath() { pathOpen_ = false; }
    void AbortPath();
    void CloseFigure();
    /// The same where lines may also be drawn at once: then one leads back to their start.
    void CloseFigure(QPointF start);
    void PaintPath(bool fill, bool stroke);
    void FlattenPath();
    void WidenPath();
    void SelectClipPath(ClipMode mode);

    // Clipping.
    void ClipToBox(const QRectF& box, ClipMode mode);
    void ClipToRegion(const Region& region, ClipMode mode, const QTransform& toPicture);
    void OffsetClip(QPointF by);
    void ResetClip();
    void MakeClipLimit();

  private:
    enum class Edges { Straight, Round };
    /// How text lies in the picture.
    struct TextFrame {
        QPointF origin;    ///< of the base line's start
        QPointF along;     ///< a logical unit along the base line, in pixels of the picture
        QPointF emAcross;  ///< the width of an em
        QPointF emDown;    ///< the height of an em, downwards
    };
    /// The outline of a text from its origin on, and the way to its end.
    struct TextOutline {
        QPainterPath path;
        QPointF end;
    };

    void Paint(const QPainterPath& shape, bool fill, bool stroke);
    void FillShape(const QPainterPath& shape);
    /// With the fill rule of the state, but for a widened path: where its lines overlap is no hole.
    QPainterPath WithFillRule(QPainterPath shape) const;
    /// Moves a shape whose points are corners between pixels: the pen draws on the pixels behind them.
    QPainterPath PlacedForPen(const QPainterPath& shape) const;
    void StrokeShape(const QPainterPath& shape);
    void StrokeLine(const QPainterPath& line);
    void AddToPath(const QPainterPath& figures);
    /// Adds lines that begin at the current position and leave it at `end`.
    void DrawFromPosition(const QPainterPath& figures, QPointF end);
    /// Draws what `make` puts into a box, given in a space that `make` is told how to reach.
    template <typename Make>
    void DrawInBox(const QRectF& box, Edges edges, bool fill, const Make& make);
    QRectF InsetForPen(const QRectF& box, Edges edges) const;

    /// Pixels of the picture for a logical unit.
    double PenScale() const;
    double PenWidth() const;
    QPen PenForStroke() const;
    QBrush BrushFor(const Brush& brush) const;
    QPainterPath BoxInPicture(const QRectF& box) const;
    RasterOperation DrawingOperation() const { return RasterOperation::OfPen(state_.drawingMode); }
    QRegion RegionInPicture(const Region& region, const QTransform& toPicture) const;
    void FillPixels(const QRegion& region, const Brush& brush, RasterOperation operation);

    TextFrame FrameOf(const TextCall& call, const Typeface& face) const;
    TextOutline OutlineOf(const TextCall& call, const Typeface& face, const TextFrame& frame) const;
    TextOutline ShapedOutlineOf(const TextCall& call, const Typeface& face, const TextFrame& frame) const;
    void AddTextLines(QPainterPath& path, const Typeface& face, const TextFrame& frame, QPointF end) const;
    void FillBehindText(const Typeface& face, const TextFrame& frame, QPointF end);

    Canvas& canvas_;
    QTransform toPicture_;
    QPointF pixelsPerMillimetre_;
    Attributes state_;
    std::vector<Attributes> saved_;
    TypefaceCache typefaces_;

    QPainterPath path_;  ///< in pixels of the picture
    bool pathOpen_ = false;
    bool figureOpen_ = false;  ///< the next line goes on from the end of the path
};

}  // namespace tessara::metafile
