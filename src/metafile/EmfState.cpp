// Records that set the mapping, the attributes, the clip and the path.

#include <bit>

#include "metafile/EmfPlayer.h"

namespace tessara::metafile {
namespace {

/// Numerator and denominator, x before y.
void Scale(QPointF& extent, ByteReader& reader) {
    const double xNumerator = reader.I32Le();
    const double xDenominator = reader.I32Le();
    const double yNumerator = reader.I32Le();
    const double yDenominator = reader.I32Le();
    ScaleExtent(extent, {xNumerator, yNumerator}, {xDenominator, yDenominator});
}

ClipMode ModeOf(std::uint32_t value) {
    return value >= 1 && value <= 5 ? static_cast<ClipMode>(value) : ClipMode::Copy;
}

}  // namespace

void EmfPlayer::SetWindowExtent(Record& record) {
    SetExtent(State().mapping.windowExtent, ReadPoint(record.reader));
}
void EmfPlayer::SetWindowOrigin(Record& record) {
    State().mapping.windowOrigin = ReadPoint(record.reader);
}
void EmfPlayer::SetViewportExtent(Record& record) {
    SetExtent(State().mapping.viewportExtent, ReadPoint(record.reader));
}
void EmfPlayer::SetViewportOrigin(Record& record) {
    State().mapping.viewportOrigin = ReadPoint(record.reader);
}
void EmfPlayer::ScaleViewportExtent(Record& record) {
    Scale(State().mapping.viewportExtent, record.reader);
}
void EmfPlayer::ScaleWindowExtent(Record& record) {
    Scale(State().mapping.windowExtent, record.reader);
}

void EmfPlayer::SetMapMode(Record& record) {
    const auto mode = static_cast<MapMode>(record.reader.U32Le());
    if (mode >= MapMode::Text && mode <= MapMode::Anisotropic) State().mapping.mode = mode;
}

void EmfPlayer::SetWorldTransform(Record& record) {
    if (const auto given = ReadTransform(record.reader)) State().mapping.world = *given;
}

void EmfPlayer::ModifyWorldTransform(Record& record) {
    enum Mode : std::uint32_t { kIdentity = 1, kLeftMultiply = 2, kRightMultiply = 3, kSet = 4 };
    const auto given = ReadTransform(record.reader);
    const std::uint32_t mode = record.reader.U32Le();
    if (!given && mode != kIdentity) return;
    const QTransform& world = State().mapping.world;
    QTransform changed = world;
    switch (mode) {
        case kIdentity:
            changed = {};
            break;
        case kLeftMultiply:
            changed = *given * world;
            break;
        case kRightMultiply:
            changed = world * *given;
            break;
        case kSet:
            changed = *given;
            break;
        default:
            break;
    }
    if (IsUsable(changed)) State().mapping.world = changed;
}

void EmfPlayer::SetLayout(Record& record) {
    State().mirrored = (record.reader.U32Le() & 1) != 0;
}
void EmfPlayer::SaveState(Record&) {
    context_.Save();
}
void EmfPlayer::RestoreState(Record& record) {
    context_.Restore(record.reader.I32Le());
}
void EmfPlayer::SetBrushOrigin(Record& record) {
    State().brushOrigin = ReadPoint(record.reader);
}
void EmfPlayer::SetBackgroundMode(Record& record) {
    State().opaqueBackground = record.reader.U32Le() != 1;
}
void EmfPlayer::SetPolygonFill(Record& record) {
    State().fillRule = record.reader.U32Le() == 2 ? Qt::WindingFill : Qt::OddEvenFill;
}
void EmfPlayer::SetDrawingMode(Record& record) {
    State().drawingMode = record.reader.U32Le();
}
void EmfPlayer::SetTextAlign(Record& record) {
    State().textAlign = record.reader.U32Le();
}
void EmfPlayer::SetTextColor(Record& record) {
    State().textColor = ReadColor(record);
}
void EmfPlayer::SetBackgroundColor(Record& record) {
    State().backgroundColor = ReadColor(record);
}

void EmfPlayer::SetTextJustification(Record& record) {
    const double extra = record.reader.I32Le();
    const double count = record.reader.I32Le();
    State().breakExtra = count > 0 ? extra / count : 0;
}

void EmfPlayer::SetArcDirection(Record& record) {
    State().clockwise = record.reader.U32Le() == 2;
}

void EmfPlayer::SetMiterLimit(Record& record) {
    // A whole number by the books, a floating point number from some programs: its bits make it huge.
    const std::uint32_t value = record.reader.U32Le();
    const double limit = value > 0xFFFFFF ? static_cast<double>(std::bit_cast<float>(value)) : value;
    if (limit >= 1 && limit <= 1000) State().miterLimit = limit;
}

void EmfPlayer::ExcludeClipRect(Record& record) {
    context_.ClipToBox(ReadBox(record.reader), ClipMode::Difference);
}
void EmfPlayer::IntersectClipRect(Record& record) {
    context_.ClipToBox(ReadBox(record.reader), ClipMode::And);
}
void EmfPlayer::OffsetClip(Record& record) {
    context_.OffsetClip(ReadPoint(record.reader));
}

void EmfPlayer::SetMetaRegion(Record&) {
    context_.MakeClipLimit();
}

void EmfPlayer::SelectClipRegion(Record& record) {
    const std::uint32_t size = record.reader.U32Le();
    const ClipMode mode = ModeOf(record.reader.U32Le());
    if (size == 0) {
        if (mode == ClipMode::Copy) context_.ResetClip();
        return;
    }
    context_.ClipToRegion(ReadRegion(record.reader.TakeUpTo(size)), mode, context_.ReferenceToPicture());
}

void EmfPlayer::BeginPath(Record&) {
    context_.BeginPath();
}
void EmfPlayer::EndPath(Record&) {
    context_.EndPath();
}
void EmfPlayer::CloseFigure(Record&) {
    context_.CloseFigure();
}
void EmfPlayer::FillPath(Record&) {
    context_.PaintPath(true, false);
}
void EmfPlayer::StrokeAndFillPath(Record&) {
    context_.PaintPath(true, true);
}
void EmfPlayer::StrokePath(Record&) {
    context_.PaintPath(false, true);
}
void EmfPlayer::FlattenPath(Record&) {
    context_.FlattenPath();
}
void EmfPlayer::WidenPath(Record&) {
    context_.WidenPath();
}
void EmfPlayer::SelectClipPath(Record& record) {
    context_.SelectClipPath(ModeOf(record.reader.U32Le()));
}
void EmfPlayer::AbortPath(Record&) {
    context_.AbortPath();
}

}  // namespace tessara::metafile
