// The picture of an enhanced metafile: its extent, and what it may carry instead of its own records.

#include <algorithm>
#include <cmath>

#include "metafile/EmfPlayer.h"
#include "metafile/EmfPlus.h"
#include "metafile/Player.h"

namespace tessara::metafile {
namespace {

constexpr double kDotsPerInch = 96;

QRectF FrameInPixels(const EmfHeader& header) {
    const double x = header.pixelsPerMillimetreX / 100;
    const double y = header.pixelsPerMillimetreY / 100;
    const EmfBox& frame = header.frame;
    return {QPointF(frame.left * x, frame.top * y), QPointF(frame.right * x, frame.bottom * y)};
}

QRectF BoundsInPixels(const EmfHeader& header) {
    const EmfBox& bounds = header.bounds;
    return {QPointF(bounds.left, bounds.top), QPointF(bounds.right + 1.0, bounds.bottom + 1.0)};
}

QRectF MeasureDrawing(Bytes file, const EmfHeader& header, const DecodeOptions& options) {
    Canvas canvas = Canvas::Measuring();
    EmfPlayer(canvas, options, header, QTransform()).Play(file);
    return canvas.TouchedArea();
}

/// Whether a drawing sticks far out of its frame. Pens and soft shadows stick out a little.
bool IsCutBy(const QRectF& bounds, const QRectF& frame) {
    constexpr double kTolerance = 0.25;
    const double x = kTolerance * frame.width();
    const double y = kTolerance * frame.height();
    return !frame.adjusted(-x, -y, x, y).contains(bounds);
}

struct Extent {
    QRectF area;  ///< in pixels of the reference device
    QSizeF size;  ///< of the picture in its own pixels
};

/// The physical size at 96 dots per inch, for that does not depend on the author's screen. Where there is
/// none, or it cannot be right, a pixel of the reference device is one of the picture.
Extent FindExtent(Bytes file, const EmfHeader& header, const DecodeOptions& options) {
    const QRectF frame = FrameInPixels(header);
    const QRectF bounds = BoundsInPixels(header);
    if (!frame.isValid()) {
        const QRectF area = bounds.isValid() ? bounds : MeasureDrawing(file, header, options);
        return {area, area.size()};
    }
    if (bounds.isValid() && IsCutBy(bounds, frame)) return {bounds, bounds.size()};
    const double width = static_cast<double>(header.frame.right) - header.frame.left;
    const double height = static_cast<double>(header.frame.bottom) - header.frame.top;
    return {frame, QSizeF(width, height) * (kDotsPerInch / 2540)};
}

/// Maps a side of the frame to one of the picture. A frame counts in hundredths of a millimetre, which are no
/// whole pixels: one that is a fraction of a pixel off was meant to fit.
struct SideMapping {
    double scale, offset;

    SideMapping(double start, double length, double pixels) {
        constexpr double kRounding = 0.1;
        const bool fits = std::abs(length - pixels) < kRounding;
        scale = fits ? 1 : pixels / length;
        offset =
            fits && std::abs(start - std::round(start)) < kRounding ? -std::round(start) : -start * scale;
    }
};

QTransform ToPicture(const QRectF& area, const QRectF& target) {
    const SideMapping x(area.x(), area.width(), target.width());
    const SideMapping y(area.y(), area.height(), target.height());
    return {x.scale, 0, 0, y.scale, x.offset, y.offset};
}

/// For a file whose own records draw nothing: what its comments carry.
Result<Picture> ShowComments(const EmfComments& comments, Picture blank, const DecodeOptions& options) {
    if (!comments.windowsMetafile.empty() && options.nestingLeft > 0) {
        Canvas canvas(blank);
        if (PlayWmfOn(canvas, comments.windowsMetafile, options.Nested())) return blank;
    }
    if (!comments.plusImage.empty()) {
        TRY_ASSIGN(const Picture image, DecodePlusImage(comments.plusImage, options));
        return image.FlattenedOnWhite();
    }
    if (comments.plusOnly) return Unsupported("the drawing is held in EMF+ records alone");
    return blank;
}

}  // namespace

Result<Picture> PlayEmf(Bytes file, const DecodeOptions& options) {
    TRY_ASSIGN(const EmfHeader header, ReadEmfHeader(file));
    const Extent extent = FindExtent(file, header, options);
    const EmfComments comments = ReadEmfComments(file);
    const bool sized = extent.area.width() > 0 && extent.area.height() > 0;
    if (!sized && comments.plusImage.empty()) return Damaged("the metafile draws nothing");
    const QSize size = PictureSize(extent.size.width(), extent.size.height(), file.size(), options.limits);
    TRY_ASSIGN(Picture picture,
               Picture::Create(size.width(), size.height(), kWhite, Alpha::None, options.limits));
    bool complete = false;
    bool drawn = false;
    if (sized) {
        Canvas canvas(picture);
        EmfPlayer player(canvas, options, header, ToPicture(extent.area, canvas.Area()));
        complete = player.Play(file);
        drawn = canvas.Touched();
    }
    picture.SetResolution({kDotsPerInch, kDotsPerInch});
    if (drawn) return picture;
    TRY_ASSIGN(picture, ShowComments(comments, std::move(picture), options));
    if (!complete && comments.plusImage.empty()) return Damaged("the metafile ends before it draws anything");
    return picture;
}

bool PlayEmfOn(Canvas& canvas, Bytes file, const DecodeOptions& options) {
    const auto header = ReadEmfHeader(file);
    if (!header) return false;
    const QRectF area = FindExtent(file, header.Value(), options).area;
    if (area.width() <= 0 || area.height() <= 0) return false;
    EmfPlayer(canvas, options, header.Value(), ToPicture(area, canvas.Area())).Play(file);
    return canvas.Touched();
}

}  // namespace tessara::metafile
