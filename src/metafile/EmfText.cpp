// Records that draw text.

#include <algorithm>
#include <array>

#include "metafile/CodePage.h"
#include "metafile/EmfPlayer.h"

namespace tessara::metafile {
namespace {

constexpr std::size_t kBoundsBytes = 16;
constexpr std::uint32_t kAdvancedMode = 2;

enum TextOption : unsigned {
    kFillBox = 0x2,
    kClipToBox = 0x4,
    kGlyphIndexes = 0x10,
    kNoBox = 0x100,
    kNarrow = 0x200,
    kAdvancePairs = 0x2000,
};

/// The places of the ASCII characters in the fonts that came with the system are the same. Glyphs of other
/// fonts cannot be told without the font.
QString TextOfGlyphs(const QString& glyphs, const QString& face) {
    static constexpr std::array kFaces{"Arial",  "Times New Roman", "Courier New", "Verdana",
                                       "Tahoma", "Georgia",         "Trebuchet MS"};
    constexpr int kFirst = 3, kLast = 97, kToCharacter = 29;
    const bool known = std::ranges::any_of(kFaces, [&](const char* name) {
        return face.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    });
    if (!known) return {};
    QString text;
    for (const QChar glyph : glyphs) {
        const int index = glyph.unicode();
        text += index >= kFirst && index <= kLast ? QChar(index + kToCharacter) : QChar(u' ');
    }
    return text;
}

QString ReadWideText(Bytes bytes) {
    ByteReader reader(bytes);
    QString text;
    while (reader.Left() >= 2) text += QChar(char16_t{reader.U16Le()});
    return text;
}

}  // namespace

void EmfPlayer::DrawDecodedText(Bytes text, bool wide, Bytes advances, unsigned options, TextCall& call) {
    // Many strings of a record can be the same bytes.
    constexpr double kPerByte = 50;
    if (!canvas_.Budget().Spend(kPerByte * static_cast<double>(text.size()))) return;
    std::vector<int> bytesOfUnit;
    if (wide) {
        call.text = ReadWideText(text);
        bytesOfUnit.assign(static_cast<std::size_t>(call.text.size()), 1);
    } else {
        DecodedText decoded = DecodeText(text, State().font.charset);
        call.text = decoded.text;
        bytesOfUnit = std::move(decoded.bytesOfUnit);
    }
    ByteReader reader(advances);
    const std::size_t perAdvance = (options & kAdvancePairs) != 0 ? 8 : 4;
    if (advances.size() >= perAdvance * (wide ? text.size() / 2 : text.size())) {
        for (const int units : bytesOfUnit) {
            double advance = 0;
            for (int i = 0; i < units; ++i) {
                advance += reader.I32Le();
                reader.Skip(perAdvance - 4);
            }
            call.advances.push_back(advance);
        }
    }
    if ((options & kGlyphIndexes) != 0) call.text = TextOfGlyphs(call.text, State().font.face);
    context_.DrawText(call);
}

void EmfPlayer::ReadTextObject(Record& record, bool wide, bool advanced) {
    ByteReader& reader = record.reader;
    TextCall call;
    call.advanced = advanced;
    call.reference = ReadPoint(reader);
    const std::uint64_t count = reader.U32Le();
    const std::uint32_t textOffset = reader.U32Le();
    const std::uint32_t options = reader.U32Le();
    // The books let the box be missing where an option says so; most programs write it all the same.
    const bool hasBox = (options & kNoBox) == 0;
    const QRectF box = hasBox || textOffset >= reader.Position() + 20 ? ReadBox(reader) : QRectF();
    if (hasBox) {
        call.box = box;
        call.fillBox = (options & kFillBox) != 0;
        call.clipToBox = (options & kClipToBox) != 0;
    }
    const std::uint32_t advanceOffset = reader.U32Le();
    const Bytes text = Slice(record.bytes, textOffset, count * (wide ? 2 : 1));
    const std::uint64_t advanceBytes = count * ((options & kAdvancePairs) != 0 ? 8 : 4);
    const Bytes advances = advanceOffset > 0 ? Slice(record.bytes, advanceOffset, advanceBytes) : Bytes{};
    DrawDecodedText(text, wide, advances, options, call);
}

void EmfPlayer::ExtendedTextOut(Record& record, bool wide) {
    record.reader.Skip(kBoundsBytes);
    const bool advanced = record.reader.U32Le() == kAdvancedMode;
    record.reader.Skip(8);
    ReadTextObject(record, wide, advanced);
}

void EmfPlayer::PolyTextOut(Record& record, bool wide) {
    record.reader.Skip(kBoundsBytes);
    const bool advanced = record.reader.U32Le() == kAdvancedMode;
    record.reader.Skip(8);
    const std::uint32_t strings = record.reader.U32Le();
    constexpr std::size_t kTextObjectBytes = 36;
    for (std::uint32_t i = 0; i < strings && record.reader.Left() >= kTextObjectBytes; ++i)
        ReadTextObject(record, wide, advanced);
}

void EmfPlayer::SmallTextOut(Record& record) {
    ByteReader& reader = record.reader;
    TextCall call;
    call.reference = ReadPoint(reader);
    const std::uint64_t count = reader.U32Le();
    const std::uint32_t options = reader.U32Le();
    call.advanced = reader.U32Le() == kAdvancedMode;
    reader.Skip(8);
    if ((options & kNoBox) == 0) {
        call.box = ReadBox(reader);
        call.fillBox = (options & kFillBox) != 0;
        call.clipToBox = (options & kClipToBox) != 0;
    }
    const bool wide = (options & kNarrow) == 0;
    DrawDecodedText(reader.TakeUpTo(count * (wide ? 2 : 1)), wide, {}, options, call);
}

}  // namespace tessara::metafile
