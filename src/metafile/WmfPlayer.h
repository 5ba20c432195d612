#pragma once

#include "core/ByteReader.h"
#include "core/rastx/codecs/Wmf.h"
#include "metafile/DeviceContext.h"
#include "metafile/RecordBitmaps.h"

namespace tessara::metafile {

/// Plays the records of a Windows metafile.
class WmfPlayer {
  public:
    /// `window` is the logical rectangle that fills `viewport`, in pixels of the canvas.
    WmfPlayer(Canvas& canvas, const DecodeOptions& options, const QRectF& window, const QRectF& viewport);

    void Play(Bytes records);

  private:
    using Handler = void (WmfPlayer::*)(ByteReader&);
    struct Row {
        std::uint16_t function;
        Handler handler;
    };
    static const Row kRows[];

    // State, mapping and clip (WmfState.cpp)
    void SaveState(ByteReader&);
    void RestoreState(ByteReader&);
    void SetBackgroundMode(ByteReader&);
    void SetMapMode(ByteReader&);
    void SetDrawingMode(ByteReader&);
    void SetPolygonFill(ByteReader&);
    void SetCharacterExtra(ByteReader&);
    void SetTextAlign(ByteReader&);
    void SetLayout(ByteReader&);
    void SetBackgroundColor(ByteReader&);
    void SetTextColor(ByteReader&);
    void SetTextJustification(ByteReader&);

    void SetWindowOrigin(ByteReader&);
    void SetWindowExtent(ByteReader&);
    void SetViewportOrigin(ByteReader&);
    void SetViewportExtent(ByteReader&);
    void OffsetWindowOrigin(ByteReader&);
    void OffsetViewportOrigin(ByteReader&);
    void ScaleWindowExtent(ByteReader&);
    void ScaleViewportExtent(ByteReader&);

    void OffsetClip(ByteReader&);
    void ExcludeClipRect(ByteReader&);
    void IntersectClipRect(ByteReader&);
    void SelectClipRegion(ByteReader&);

    // Objects (WmfObjects.cpp)
    void CreatePen(ByteReader&);
    void CreateBrush(ByteReader&);
    void CreateFont(ByteReader&);
    void CreateDibPatternBrush(ByteReader&);
    void CreatePatternBrush(ByteReader&);
    void CreateRegion(ByteReader&);
    void CreatePalette(ByteReader&);
    void SelectPalette(ByteReader&);
    void SetPaletteEntries(ByteReader&);
    void ResizePalette(ByteReader&);
    void CreatePlaceholder(ByteReader&);
    void SelectObject(ByteReader&);
    void DeleteObject(ByteReader&);

    // Lines and shapes (WmfShapes.cpp)
    void MoveTo(ByteReader&);
    void LineTo(ByteReader&);
    void Rectangle(ByteReader&);
    void RoundRect(ByteReader&);
    void Ellipse(ByteReader&);
    void DrawArc(ByteReader&, ArcKind kind);
    void Arc(ByteReader& reader) { DrawArc(reader, ArcKind::Open); }
    void Pie(ByteReader& reader) { DrawArc(reader, ArcKind::Pie); }
    void Chord(ByteReader& reader) { DrawArc(reader, ArcKind::Chord); }
    void Polygon(ByteReader&);
    void Polyline(ByteReader&);
    void PolyPolygon(ByteReader&);
    void SetPixel(ByteReader&);
    void FloodFill(ByteReader&);
    void ExtendedFloodFill(ByteReader&);
    void InvertRegion(ByteReader&);
    void PaintRegion(ByteReader&);
    void FillRegion(ByteReader&);
    void FrameRegion(ByteReader&);

    // Text and bitmaps (WmfText.cpp, WmfBitmaps.cpp)
    void TextOut(ByteReader&);
    void ExtendedTextOut(ByteReader&);
    void PatternBlt(ByteReader&);
    void StretchDib(ByteReader&);
    void SetDibToDevice(ByteReader&);
    void DibStretchBlt(ByteReader& reader) { StretchBitmap(reader, true, false); }
    void DibBitBlt(ByteReader& reader) { StretchBitmap(reader, false, false); }
    void StretchBlt(ByteReader& reader) { StretchBitmap(reader, true, true); }
    void BitBlt(ByteReader& reader) { StretchBitmap(reader, false, true); }
    void StretchBitmap(ByteReader&, bool stretches, bool deviceDependent);

    /// Coordinates lie in records as y before x, boxes as bottom, right, top, left.
    static QPointF ReadYX(ByteReader&);
    static QRectF ReadBox(ByteReader&);
    /// Height and width, then top and left.
    static QRectF ReadTarget(ByteReader&);
    /// Points of polygons lie as x before y.
    static std::vector<QPointF> ReadPoints(ByteReader&, std::size_t count);

    Attributes& State() { return context_.State(); }
    QRgb ReadColor(ByteReader& reader) const;
    /// Where the file's own viewport lies, as it would be without the picture's.
    QRectF FileViewport() const;
    void SetFileViewport(const QRectF& viewport);
    void Select(const Object& object);
    const Region* FindRegion(std::size_t slot) const;
    void DrawText(Bytes text, TextCall call, ByteReader* advances);
    QImage SourceOf(ByteReader& reader, bool deviceDependent);

    Canvas& canvas_;
    DecodeOptions options_;
    QRectF viewport_;
    QRectF baseViewport_;  ///< the file's viewport that stands for the whole picture
    DeviceContext context_;
    ObjectTable objects_;
    bool withoutBitmap_ = false;  ///< the record at hand is a blit without a source
};

}  // namespace tessara::metafile
