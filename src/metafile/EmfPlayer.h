#pragma once

#include <functional>
#include <optional>
#include <span>

#include "core/ByteReader.h"
#include "core/rastx/codecs/Emf.h"
#include "metafile/DeviceContext.h"
#include "metafile/RecordBitmaps.h"

namespace tessara::metafile {

/// Plays the records of an enhanced metafile.
class EmfPlayer {
  public:
    /// `toPicture` takes pixels of the reference device to those of the canvas.
    EmfPlayer(Canvas& canvas, const DecodeOptions& options, const EmfHeader& header,
              const QTransform& toPicture);

    /// Whether the records came to their proper end.
    bool Play(Bytes file);

  private:
    /// A record at work. The reader stands behind the type and size.
    struct Record {
        std::uint32_t type;
        Bytes bytes;
        ByteReader reader;
        bool shortPoints;  ///< points are pairs of i16, not of i32
    };
    using Handler = void (EmfPlayer::*)(Record&);
    struct Row {
        std::uint32_t type;
        Handler handler;
        bool shortPoints = false;
    };
    static const std::span<const Row> kRows;
    static const Row kRowTable[];

    // Mapping and state (EmfState.cpp)
    void SetWindowExtent(Record&);
    void SetWindowOrigin(Record&);
    void SetViewportExtent(Record&);
    void SetViewportOrigin(Record&);
    void ScaleViewportExtent(Record&);
    void ScaleWindowExtent(Record&);
    void SetMapMode(Record&);
    void SetWorldTransform(Record&);
    void ModifyWorldTransform(Record&);
    void SetLayout(Record&);
    void SaveState(Record&);
    void RestoreState(Record&);
    void SetBrushOrigin(Record&);
    void SetBackgroundMode(Record&);
    void SetPolygonFill(Record&);
    void SetDrawingMode(Record&);
    void SetTextAlign(Record&);
    void SetTextColor(Record&);
    void SetBackgroundColor(Record&);
    void SetTextJustification(Record&);
    void SetArcDirection(Record&);
    void SetMiterLimit(Record&);
    void ExcludeClipRect(Record&);
    void IntersectClipRect(Record&);
    void OffsetClip(Record&);
    void SetMetaRegion(Record&);
    void SelectClipRegion(Record&);
    void BeginPath(Record&);
    void EndPath(Record&);
    void CloseFigure(Record&);
    void FillPath(Record&);
    void StrokeAndFillPath(Record&);
    void StrokePath(Record&);
    void FlattenPath(Record&);
    void WidenPath(Record&);
    void SelectClipPath(Record&);
    void AbortPath(Record&);

    // Objects (EmfObjects.cpp)
    void SelectObject(Record&);
    void DeleteObject(Record&);
    void CreatePen(Record&);
    void CreateExtendedPen(Record&);
    void CreateBrush(Record&);
    void CreatePatternBrush(Record&);
    void CreateFont(Record&);
    void CreatePalette(Record&);
    void SetPaletteEntries(Record&);
    void ResizePalette(Record&);

    // Lines and shapes (EmfShapes.cpp)
    void PolyBezier(Record&);
    void Polygon(Record&);
    void Polyline(Record&);
    void PolyBezierTo(Record&);
    void PolylineTo(Record&);
    void PolyPolyline(Record&);
    void PolyPolygon(Record&);
    void PolyDraw(Record&);
    void MoveTo(Record&);
    void LineTo(Record&);
    void SetPixel(Record&);
    void Ellipse(Record&);
    void Rectangle(Record&);
    void RoundRect(Record&);
    void Arc(Record& record) { DrawArc(record, ArcKind::Open); }
    void Chord(Record& record) { DrawArc(record, ArcKind::Chord); }
    void Pie(Record& record) { DrawArc(record, ArcKind::Pie); }
    void DrawArc(Record&, ArcKind kind);
    void ArcTo(Record&);
    void AngleArc(Record&);
    void FloodFill(Record&);
    void GradientFill(Record&);
    void FillRegion(Record&);
    void FrameRegion(Record&);
    void InvertRegion(Record&);
    void PaintRegion(Record&);

    // Bitmaps and text (EmfBitmaps.cpp, EmfText.cpp)
    void StretchDib(Record&);
    void SetDibToDevice(Record&);
    void BitBlt(Record& record) { BlockTransfer(record, false); }
    void StretchBlt(Record& record) { BlockTransfer(record, true); }
    void BlockTransfer(Record&, bool stretches);
    void MaskBlt(Record&);
    void ParallelogramBlt(Record&);
    void TransparentBlt(Record&);
    void AlphaBlend(Record&);
    void ExtendedTextOutWide(Record& record) { ExtendedTextOut(record, true); }
    void ExtendedTextOutNarrow(Record& record) { ExtendedTextOut(record, false); }
    void ExtendedTextOut(Record&, bool wide);
    void PolyTextOutWide(Record& record) { PolyTextOut(record, true); }
    void PolyTextOutNarrow(Record& record) { PolyTextOut(record, false); }
    void PolyTextOut(Record&, bool wide);
    void SmallTextOut(Record&);

    /// The part of the records for block transfers that they have in common.
    struct Transfer {
        QRectF target;
        std::uint32_t code = 0;
        QPointF sourceCorner;
        QTransform sourceTransform;
        QRgb background = 0;
        RecordBitmap bitmap;
        bool hasBitmap = false;
    };
    Transfer ReadTransfer(Record& record);
    QRectF ReadSourceBox(Record& record, const Transfer& transfer);

    Attributes& State() { return context_.State(); }
    QRgb ReadColor(Record& record) const;
    std::vector<QPointF> ReadPointList(Record& record, std::size_t count) const;
    std::vector<QPointF> ReadCountedPoints(Record& record) const;
    std::vector<std::vector<QPointF>> ReadPolygons(Record& record) const;
    RecordBitmap ReadBitmapPlace(Record& record, bool usageFollows = true) const;
    /// What the records of device independent bitmaps begin with.
    struct DibRecord {
        QPointF corner, sourceCorner, sourceSize;
        RecordBitmap bitmap;
        /// The part of the image that is meant, from its top.
        QRectF Source(int imageHeight) const;
    };
    DibRecord ReadDibRecord(Record& record) const;
    QImage Decode(const RecordBitmap& bitmap);
    void SelectStock(std::uint32_t number);
    void ReadTextObject(Record& record, bool wide, bool advanced);
    void DrawDecodedText(Bytes text, bool wide, Bytes advances, unsigned options, TextCall& call);

    Canvas& canvas_;
    DecodeOptions options_;
    DeviceContext context_;
    ObjectTable objects_;
};

/// A point of two 32-bit numbers, and a box of two points.
QPointF ReadPoint(ByteReader& reader);
QRectF ReadBox(ByteReader& reader);
/// Six floating point numbers; nothing where they are no transform to draw with.
std::optional<QTransform> ReadTransform(ByteReader& reader);
Region ReadRegion(Bytes data);

}  // namespace tessara::metafile
