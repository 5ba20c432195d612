// Records that set the mapping, the attributes and the clip.

#include "metafile/WmfPlayer.h"

namespace tessara::metafile {
namespace {

/// Denominator and numerator, y before x.
void Scale(QPointF& extent, ByteReader& reader) {
    const double yDenominator = reader.I16Le();
    const double yNumerator = reader.I16Le();
    const double xDenominator = reader.I16Le();
    const double xNumerator = reader.I16Le();
    ScaleExtent(extent, {xNumerator, yNumerator}, {xDenominator, yDenominator});
}

}  // namespace

void WmfPlayer::SaveState(ByteReader&) {
    context_.Save();
}
void WmfPlayer::RestoreState(ByteReader& reader) {
    context_.Restore(reader.I16Le());
}
void WmfPlayer::SetBackgroundMode(ByteReader& reader) {
    State().opaqueBackground = reader.U16Le() != 1;
}
void WmfPlayer::SetDrawingMode(ByteReader& reader) {
    State().drawingMode = reader.U16Le();
}
void WmfPlayer::SetPolygonFill(ByteReader& reader) {
    State().fillRule = reader.U16Le() == 2 ? Qt::WindingFill : Qt::OddEvenFill;
}
void WmfPlayer::SetCharacterExtra(ByteReader& reader) {
    State().characterExtra = reader.I16Le();
}
void WmfPlayer::SetTextAlign(ByteReader& reader) {
    State().textAlign = reader.U16Le();
}
void WmfPlayer::SetLayout(ByteReader& reader) {
    State().mirrored = (reader.U16Le() & 1) != 0;
}
void WmfPlayer::SetBackgroundColor(ByteReader& reader) {
    State().backgroundColor = ReadColor(reader);
}
void WmfPlayer::SetTextColor(ByteReader& reader) {
    State().textColor = ReadColor(reader);
}
void WmfPlayer::SetTextJustification(ByteReader& reader) {
    const int count = reader.I16Le();
    const double extra = reader.I16Le();
    State().breakExtra = count > 0 ? extra / count : 0;
}

// Many files never set a mode but count on their window; the text mode is therefore no different.
void WmfPlayer::SetMapMode(ByteReader& reader) {
    const auto mode = static_cast<MapMode>(reader.U16Le());
    const bool known = mode >= MapMode::Text && mode <= MapMode::Anisotropic;
    State().mapping.mode = !known || mode == MapMode::Text ? MapMode::Anisotropic : mode;
}

void WmfPlayer::SetWindowOrigin(ByteReader& reader) {
    State().mapping.windowOrigin = ReadYX(reader);
}
void WmfPlayer::SetWindowExtent(ByteReader& reader) {
    SetExtent(State().mapping.windowExtent, ReadYX(reader));
}
void WmfPlayer::OffsetWindowOrigin(ByteReader& reader) {
    State().mapping.windowOrigin += ReadYX(reader);
}

// A viewport is in pixels of a screen that nobody knows. What the file sets before it draws is taken for the
// whole picture; later changes are relative to that.
QRectF WmfPlayer::FileViewport() const {
    const Mapping& mapping = context_.State().mapping;
    const double x = baseViewport_.width() / viewport_.width();
    const double y = baseViewport_.height() / viewport_.height();
    return {baseViewport_.x() + (mapping.viewportOrigin.x() - viewport_.x()) * x,
            baseViewport_.y() + (mapping.viewportOrigin.y() - viewport_.y()) * y,
            mapping.viewportExtent.x() * x, mapping.viewportExtent.y() * y};
}

void WmfPlayer::SetFileViewport(const QRectF& viewport) {
    if (viewport.width() == 0 || viewport.height() == 0) return;
    if (!canvas_.Touched()) {
        baseViewport_ = viewport;
        return;
    }
    const double x = viewport_.width() / baseViewport_.width();
    const double y = viewport_.height() / baseViewport_.height();
    Mapping& mapping = State().mapping;
    mapping.viewportOrigin = {viewport_.x() + (viewport.x() - baseViewport_.x()) * x,
                              viewport_.y() + (viewport.y() - baseViewport_.y()) * y};
    mapping.viewportExtent = {viewport.width() * x, viewport.height() * y};
}

void WmfPlayer::SetViewportOrigin(ByteReader& reader) {
    QRectF viewport = FileViewport();
    viewport.moveTopLeft(ReadYX(reader));
    SetFileViewport(viewport);
}
void WmfPlayer::SetViewportExtent(ByteReader& reader) {
    const QPointF extent = ReadYX(reader);
    SetFileViewport({FileViewport().topLeft(), QSizeF(extent.x(), extent.y())});
}
void WmfPlayer::OffsetViewportOrigin(ByteReader& reader) {
    SetFileViewport(FileViewport().translated(ReadYX(reader)));
}

void WmfPlayer::ScaleWindowExtent(ByteReader& reader) {
    Scale(State().mapping.windowExtent, reader);
}
void WmfPlayer::ScaleViewportExtent(ByteReader& reader) {
    const QRectF viewport = FileViewport();
    QPointF extent(viewport.width(), viewport.height());
    Scale(extent, reader);
    SetFileViewport({viewport.topLeft(), QSizeF(extent.x(), extent.y())});
}

void WmfPlayer::OffsetClip(ByteReader& reader) {
    context_.OffsetClip(ReadYX(reader));
}
void WmfPlayer::ExcludeClipRect(ByteReader& reader) {
    context_.ClipToBox(ReadBox(reader), ClipMode::Difference);
}
void WmfPlayer::IntersectClipRect(ByteReader& reader) {
    context_.ClipToBox(ReadBox(reader), ClipMode::And);
}

void WmfPlayer::SelectClipRegion(ByteReader& reader) {
    if (const Region* region = FindRegion(reader.U16Le()))
        return context_.ClipToRegion(*region, ClipMode::Copy, context_.ToPicture());
    context_.ResetClip();
}

}  // namespace tessara::metafile
