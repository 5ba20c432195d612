// Text.

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include "metafile/CodePage.h"
#include "metafile/DeviceContext.h"

namespace tessara::metafile {
namespace {

// In units of the work budget. A character that no usual font has is sought in all others.
constexpr double kPerGlyph = 3000;
constexpr double kPerNewGlyph = 1e6;
constexpr double kPerShapedUnit = 1e5;
/// Of one text's outline; far beyond any line, and memory is a multiple of it.
constexpr int kMostElements = 1'000'000;

/// Whether the shapes or the order of characters depend on one another, as in Arabic, Hebrew and the scripts
/// of India.
bool NeedsShaping(const QString& text) {
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        const char16_t unit = c.unicode();
        return (unit >= 0x0590 && unit < 0x0E00) || (unit >= 0x0F00 && unit < 0x10A0) ||
               (unit >= 0xFB1D && unit < 0xFE00) || (unit >= 0xFE70 && unit < 0xFEFF);
    });
}

/// Whether a unit belongs to the character that the unit before began.
bool Continues(QChar unit) {
    return unit.isLowSurrogate() || unit.category() == QChar::Mark_NonSpacing ||
           unit.category() == QChar::Mark_Enclosing;
}

double LengthOf(QPointF vector) {
    return std::hypot(vector.x(), vector.y());
}

QString WithSymbols(const QString& text, const Font& font) {
    if (!IsSymbolFont(font.face, font.charset)) return text;
    QString symbols;
    for (const QChar unit : text)
        symbols += QChar(static_cast<char16_t>(SymbolOf(font.face, unit.unicode())));
    return symbols;
}

}  // namespace

DeviceContext::TextFrame DeviceContext::FrameOf(const TextCall& call, const Typeface& face) const {
    const Font& font = state_.font;
    // Characters stay upright and unmirrored whatever the axes do.
    const QPointF page = state_.mapping.Scale(pixelsPerMillimetre_);
    const QTransform& world = state_.mapping.world;
    const QTransform turn =
        QTransform(world.m11(), world.m12(), world.m21(), world.m22(), 0, 0) *
        QTransform::fromScale(std::abs(page.x()), std::abs(page.y())) *
        QTransform(toPicture_.m11(), toPicture_.m12(), toPicture_.m21(), toPicture_.m22(), 0, 0);
    const double angle = font.escapement * std::numbers::pi / 180;
    const QPointF along = turn.map(QPointF(std::cos(angle), -std::sin(angle)));
    const QPointF down = turn.map(QPointF(std::sin(angle), std::cos(angle)));

    constexpr double kDefaultPixels = 16;  // 12 points
    double em = std::abs(font.height);
    if (font.height > 0) em /= std::max(0.1, face.Ascent() + face.Descent());
    if (font.height == 0) em = kDefaultPixels / std::max(1e-9, LengthOf(down));
    TextFrame frame;
    frame.origin = ToPicture().map(call.reference);
    frame.along = along;
    frame.emDown = down * em;
    frame.emAcross = along * em;
    if (font.width != 0) {
        frame.emAcross = along * (std::abs(font.width) / std::max(0.05, face.AverageWidth()));
    } else if (!call.advanced && LengthOf(along) > 0) {
        // Without a width of its own a font keeps its proportion, even where the axes differ.
        frame.emAcross = along / LengthOf(along) * LengthOf(frame.emDown);
    }
    return frame;
}

DeviceContext::TextOutline DeviceContext::ShapedOutlineOf(const TextCall& call, const Typeface& face,
                                                          const TextFrame& frame) const {
    if (!canvas_.Budget().Spend(kPerShapedUnit * static_cast<double>(call.text.size()))) return {};
    const Typeface::Glyphs glyphs = face.Shaped(call.text);
    QPointF end = frame.emAcross * glyphs.advance;
    QPointF across = frame.emAcross;
    if (!call.advances.empty() && glyphs.advance > 0) {
        end = frame.along * std::accumulate(call.advances.begin(), call.advances.end(), 0.0);
        across = end / glyphs.advance;
    }
    const QTransform place(across.x(), across.y(), frame.emDown.x(), frame.emDown.y(), 0, 0);
    return {place.map(glyphs.outline), end};
}

DeviceContext::TextOutline DeviceContext::OutlineOf(const TextCall& call, const Typeface& face,
                                                    const TextFrame& frame) const {
    if (NeedsShaping(call.text)) return ShapedOutlineOf(call, face, frame);
    TextOutline outline;
    outline.path.setFillRule(Qt::WindingFill);
    for (qsizetype i = 0; i < call.text.size();) {
        qsizetype next = i + 1;
        while (next < call.text.size() && Continues(call.text[next])) ++next;
        const QString character = call.text.mid(i, next - i);
        if (!canvas_.Budget().Spend(face.Knows(character) ? kPerGlyph : kPerNewGlyph)) break;
        if (outline.path.elementCount() > kMostElements) break;
        const Typeface::Glyphs& glyphs = face.Character(character);
        const QTransform place(frame.emAcross.x(), frame.emAcross.y(), frame.emDown.x(), frame.emDown.y(),
                               outline.end.x(), outline.end.y());
        outline.path.addPath(place.map(glyphs.outline));
        QPointF advance = frame.emAcross * glyphs.advance + frame.along * state_.characterExtra;
        if (character == QLatin1String(" ")) advance += frame.along * state_.breakExtra;
        if (!call.advances.empty()) {
            double units = 0;
            for (qsizetype k = i; k < next && k < static_cast<qsizetype>(call.advances.size()); ++k)
                units += call.advances[static_cast<std::size_t>(k)];
            advance = frame.along * units;
        }
        outline.end += advance;
        i = next;
    }
    return outline;
}

void DeviceContext::AddTextLines(QPainterPath& path, const Typeface& face, const TextFrame& frame,
                                 QPointF end) const {
    const auto add = [&](double position) {
        const QPointF top = frame.emDown * position;
        const QPointF thickness = frame.emDown * face.LineWidth();
        path.addPolygon(QPolygonF({top, top + thickness, top + thickness + end, top + end, top}));
    };
    if (state_.font.underline) add(face.UnderlinePosition());
    if (state_.font.strikeOut) add(face.StrikeOutPosition());
}

void DeviceContext::FillBehindText(const Typeface& face, const TextFrame& frame, QPointF end) {
    const QPointF top = frame.origin - frame.emDown * face.Ascent();
    const QPointF bottom = frame.origin + frame.emDown * face.Descent();
    const QPolygonF cell({top, top + end, bottom + end, bottom, top});
    QPainterPath path;
    const bool upright = std::abs(frame.emDown.x()) < 1e-6;
    upright ? path.addRect(SnapToPixels(cell.boundingRect())) : path.addPolygon(cell);
    canvas_.Fill(path, QColor(state_.backgroundColor), RasterOperation::CopyPattern());
}

void DeviceContext::DrawText(const TextCall& original) {
    TextCall call = original;
    call.text = WithSymbols(original.text, state_.font);
    if (call.fillBox)
        canvas_.Fill(BoxInPicture(call.box), QColor(state_.backgroundColor), RasterOperation::CopyPattern());
    if (call.text.isEmpty()) return;
    const bool update = (state_.textAlign & kUpdatePosition) != 0;
    if (update) call.reference = state_.position;

    const Typeface* found = typefaces_.Find(state_.font, canvas_.Budget());
    if (!found) return;
    const Typeface& face = *found;
    TextFrame frame = FrameOf(call, face);
    if (!IsUsable(frame.origin) || !IsUsable(frame.emAcross) || !IsUsable(frame.emDown)) return;
    TextOutline outline = OutlineOf(call, face, frame);
    const unsigned horizontal = state_.textAlign & kHorizontalBits;
    const unsigned vertical = state_.textAlign & kVerticalBits;
    if (horizontal == kRight) frame.origin -= outline.end;
    if (horizontal == kCenter) frame.origin -= outline.end / 2;
    if (vertical == 0) frame.origin += frame.emDown * face.Ascent();
    if (vertical == kBottom) frame.origin -= frame.emDown * face.Descent();
    AddTextLines(outline.path, face, frame, outline.end);
    if (!IsUsable(outline.end)) return;
    const QPainterPath path = outline.path.translated(frame.origin);

    if (update && horizontal != kCenter) {
        const QTransform toLogical = ToPicture().inverted();
        const QPointF moved = toLogical.map(ToPicture().map(call.reference) +
                                            (horizontal == kRight ? -outline.end : outline.end));
        state_.position = moved;
    }
    if (pathOpen_) return AddToPath(path);
    const Clip before = state_.clip;
    if (call.clipToBox) ClipToBox(call.box, ClipMode::And);
    if (state_.opaqueBackground) FillBehindText(face, frame, outline.end);
    canvas_.Fill(path, QColor(state_.textColor), RasterOperation::CopyPattern());
    if (call.clipToBox) {
        state_.clip = before;
        canvas_.SetClip(before);
    }
}

}  // namespace tessara::metafile
