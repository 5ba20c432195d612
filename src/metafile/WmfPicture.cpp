// The picture of a Windows metafile: its extent, and what it may carry instead of its own records.

#include <cmath>
#include <optional>

#include "metafile/Player.h"
#include "metafile/WmfPlayer.h"

namespace tessara::metafile {
namespace {

constexpr double kDotsPerInch = 96;
/// What older programs count in where nothing is said.
constexpr double kTwipsPerInch = 1440;

/// The window that a file sets before it draws.
std::optional<QRectF> FindWindow(Bytes records) {
    std::optional<QPointF> origin;
    std::optional<QPointF> extent;
    WmfRecords walk(records);
    while (const auto record = walk.Next()) {
        ByteReader reader(record->parameters);
        const double y = reader.I16Le();
        const QPointF value(reader.I16Le(), y);
        if (record->function == wmf::kSetWindowOrigin && !origin) origin = value;
        if (record->function == wmf::kSetWindowExtent && !extent && value.x() != 0 && y != 0) extent = value;
        if (origin && extent) break;
    }
    if (!extent) return std::nullopt;
    return QRectF(origin.value_or(QPointF()), QSizeF(extent->x(), extent->y()));
}

/// Where a file without any window draws, in its own units.
QRectF MeasureDrawing(Bytes records, const DecodeOptions& options) {
    Canvas canvas = Canvas::Measuring();
    const QRectF unit(0, 0, 1, 1);
    WmfPlayer(canvas, options, unit, unit).Play(records);
    return canvas.TouchedArea();
}

struct Extent {
    QRectF window;  ///< in logical units; either axis may run backwards
    double pixelsPerUnit;
};

/// Large numbers are fine units of paper, small ones are pixels.
double GuessedScale(const QRectF& window) {
    constexpr double kMostPixels = 2000;
    const bool pixels = std::max(std::abs(window.width()), std::abs(window.height())) < kMostPixels;
    return pixels ? 1 : kDotsPerInch / kTwipsPerInch;
}

Extent FindExtent(const WmfHeader& header, const DecodeOptions& options) {
    if (header.placement) {
        const WmfPlacement& place = *header.placement;
        const QRectF window(QPointF(place.left, place.top), QPointF(place.right, place.bottom));
        const double inch = place.unitsPerInch > 0 ? place.unitsPerInch : kTwipsPerInch;
        if (window.width() != 0 && window.height() != 0) return {window, kDotsPerInch / inch};
    }
    const QRectF window = FindWindow(header.records).value_or(QRectF());
    if (!window.isNull()) return {window, GuessedScale(window)};
    const QRectF drawing = MeasureDrawing(header.records, options);
    return {drawing, GuessedScale(drawing)};
}

/// An enhanced metafile of the same drawing, which some programs hide in the comments of this one in pieces:
/// u32 "WMFC", type 1, version, u16 checksum, u32 flags, pieces, bytes of this piece, bytes to come, bytes in
/// all.
ByteVector FindEnhancedVersion(Bytes records) {
    constexpr unsigned kComment = 15;
    constexpr std::size_t kPieceHeader = 34;
    ByteVector whole;
    std::uint32_t total = 0;
    WmfRecords walk(records);
    while (const auto record = walk.Next()) {
        ByteReader reader(record->parameters);
        if (record->function != wmf::kEscape || reader.U16Le() != kComment) continue;
        const Bytes piece = reader.TakeUpTo(reader.U16Le());
        if (!HasSignature(piece, "WMFC") || piece.size() < kPieceHeader) continue;
        ByteReader fields(piece);
        fields.Seek(22);
        const std::uint32_t size = fields.U32Le();
        fields.Skip(4);
        total = fields.U32Le();
        const Bytes data = fields.TakeUpTo(size);
        whole.insert(whole.end(), data.begin(), data.end());
    }
    return whole.size() == total ? whole : ByteVector();
}

bool DrawEnhancedVersion(Canvas& canvas, Bytes records, const DecodeOptions& options) {
    const ByteVector enhanced = FindEnhancedVersion(records);
    return !enhanced.empty() && options.nestingLeft > 0 && PlayEmfOn(canvas, enhanced, options.Nested());
}

void DrawRecords(Canvas& canvas, Bytes records, const QRectF& window, const DecodeOptions& options) {
    WmfPlayer(canvas, options, window, QRectF(canvas.Area())).Play(records);
}

}  // namespace

Result<Picture> PlayWmf(Bytes file, const DecodeOptions& options) {
    TRY_ASSIGN(const WmfHeader header, ReadWmfHeader(file));
    const Extent extent = FindExtent(header, options);
    if (extent.window.width() == 0 || extent.window.height() == 0)
        return Damaged("the metafile draws nothing");
    const QSize size =
        PictureSize(std::abs(extent.window.width()) * extent.pixelsPerUnit,
                    std::abs(extent.window.height()) * extent.pixelsPerUnit, file.size(), options.limits);
    TRY_ASSIGN(Picture picture,
               Picture::Create(size.width(), size.height(), kWhite, Alpha::None, options.limits));
    {
        Canvas canvas(picture);
        if (!DrawEnhancedVersion(canvas, header.records, options))
            DrawRecords(canvas, header.records, extent.window, options);
    }
    picture.SetResolution({kDotsPerInch, kDotsPerInch});
    return picture;
}

bool PlayWmfOn(Canvas& canvas, Bytes file, const DecodeOptions& options) {
    const auto header = ReadWmfHeader(file);
    if (!header) return false;
    const QRectF window = FindExtent(header.Value(), options).window;
    if (window.width() == 0 || window.height() == 0) return false;
    DrawRecords(canvas, header.Value().records, window, options);
    return canvas.Touched();
}

}  // namespace tessara::metafile
