// Records that create and select pens, brushes, fonts and palettes.

#include <algorithm>

#include "metafile/EmfPlayer.h"
#include "metafile/Player.h"

namespace tessara::metafile {
namespace {

constexpr std::uint32_t kStock = 0x80000000;

Brush::Kind KindOf(std::uint32_t style) {
    switch (style) {
        case 1:
            return Brush::Kind::None;
        case 2:
            return Brush::Kind::Hatch;
        case 3:
        case 5:
        case 6:
            return Brush::Kind::Pattern;
        default:
            return Brush::Kind::Solid;
    }
}

QString ReadFace(ByteReader& reader) {
    QString face;
    for (int i = 0; i < 32; ++i) {
        const char16_t unit = reader.U16Le();
        if (unit == 0) break;
        face += QChar(unit);
    }
    return face;
}

Brush SolidBrush(QRgb color) {
    Brush brush;
    brush.color = color;
    return brush;
}

}  // namespace

void EmfPlayer::SelectStock(std::uint32_t number) {
    struct StockBrush {
        std::uint32_t number;
        int grey;
    };
    constexpr StockBrush kBrushes[] = {{0, 0xFF}, {1, 0xC0}, {2, 0x80}, {3, 0x40}, {4, 0}, {18, 0xFF}};
    constexpr StockBrush kPens[] = {{6, 0xFF}, {7, 0}, {19, 0}};
    enum { kNoBrush = 5, kNoPen = 8, kFirstFont = 10, kDefaultPalette = 15, kLastFont = 17 };
    const auto* brush = std::ranges::find(kBrushes, number, &StockBrush::number);
    if (brush != std::end(kBrushes)) State().brush = SolidBrush(qRgb(brush->grey, brush->grey, brush->grey));
    const auto* pen = std::ranges::find(kPens, number, &StockBrush::number);
    if (pen != std::end(kPens)) {
        State().pen = Pen();
        State().pen.ink.color = qRgb(pen->grey, pen->grey, pen->grey);
    }
    if (number == kNoBrush) State().brush.kind = Brush::Kind::None;
    if (number == kNoPen) State().pen.style = Pen::kNone;
    if (number == kDefaultPalette) State().palette = Palette();
    if (number >= kFirstFont && number <= kLastFont && number != kDefaultPalette) State().font = Font();
}

void EmfPlayer::SelectObject(Record& record) {
    const std::uint32_t number = record.reader.U32Le();
    if ((number & kStock) != 0) return SelectStock(number & ~kStock);
    State().Select(objects_.At(number));
}

void EmfPlayer::DeleteObject(Record& record) {
    objects_.Delete(record.reader.U32Le());
}

void EmfPlayer::CreatePen(Record& record) {
    const std::uint32_t slot = record.reader.U32Le();
    Pen pen;
    pen.style = record.reader.U32Le();
    pen.width = std::abs(static_cast<double>(record.reader.I32Le()));
    record.reader.Skip(4);
    pen.ink.color = ReadColor(record);
    objects_.Set(slot, pen);
}

void EmfPlayer::CreateExtendedPen(Record& record) {
    constexpr unsigned kGeometric = 0x10000;
    ByteReader& reader = record.reader;
    const std::uint32_t slot = reader.U32Le();
    const RecordBitmap bitmap = ReadBitmapPlace(record, false);
    Pen pen;
    pen.extended = true;
    pen.style = reader.U32Le();
    const double width = reader.U32Le();
    pen.width = (pen.style & kGeometric) != 0 ? width : 0;
    pen.ink.kind = KindOf(reader.U32Le());
    pen.ink.color = ReadColor(record);
    pen.ink.hatch = reader.U32Le();
    if (pen.ink.kind == Brush::Kind::Pattern) pen.ink.tile = Decode(bitmap);
    const unsigned cap = (pen.style >> 8) & 15;
    const unsigned join = (pen.style >> 12) & 15;
    pen.cap = cap == 1 ? Pen::Cap::Square : cap == 2 ? Pen::Cap::Flat : Pen::Cap::Round;
    pen.join = join == 1 ? Pen::Join::Bevel : join == 2 ? Pen::Join::Miter : Pen::Join::Round;
    const std::size_t count = std::min<std::size_t>(reader.U32Le(), 16);
    for (std::size_t i = 0; i < count && reader.Left() >= 4; ++i) pen.dashes.push_back(reader.U32Le());
    objects_.Set(slot, pen);
}

void EmfPlayer::CreateBrush(Record& record) {
    const std::uint32_t slot = record.reader.U32Le();
    Brush brush;
    brush.kind = KindOf(record.reader.U32Le());
    brush.color = ReadColor(record);
    brush.hatch = record.reader.U32Le();
    objects_.Set(slot, brush);
}

void EmfPlayer::CreatePatternBrush(Record& record) {
    constexpr std::uint32_t kMonochrome = 93;
    const std::uint32_t slot = record.reader.U32Le();
    Brush brush;
    brush.kind = Brush::Kind::Pattern;
    brush.tile = Decode(ReadBitmapPlace(record));
    brush.monochrome = record.type == kMonochrome;
    objects_.Set(slot, brush);
}

void EmfPlayer::CreateFont(Record& record) {
    ByteReader& reader = record.reader;
    const std::uint32_t slot = reader.U32Le();
    Font font;
    font.height = reader.I32Le();
    font.width = reader.I32Le();
    font.escapement = reader.I32Le() / 10.0;
    reader.Skip(4);
    font.weight = reader.I32Le();
    ReadFontStyle(reader, font);
    font.face = ReadFace(reader);
    objects_.Set(slot, font);
}

void EmfPlayer::CreatePalette(Record& record) {
    const std::uint32_t slot = record.reader.U32Le();
    record.reader.Skip(2);
    const std::size_t count = record.reader.U16Le();
    objects_.Set(slot, Palette(ReadPaletteColors(record.reader, count)));
}

void EmfPlayer::SetPaletteEntries(Record& record) {
    Object* object = objects_.Find(record.reader.U32Le());
    auto* palette = object ? std::get_if<Palette>(object) : nullptr;
    if (!palette) return;
    const std::size_t start = record.reader.U32Le();
    const std::size_t count = record.reader.U32Le();
    palette->Change(start, ReadPaletteColors(record.reader, count));
}

void EmfPlayer::ResizePalette(Record& record) {
    Object* object = objects_.Find(record.reader.U32Le());
    auto* palette = object ? std::get_if<Palette>(object) : nullptr;
    if (palette) palette->colors->resize(std::min<std::size_t>(record.reader.U32Le(), 65536));
}

}  // namespace tessara::metafile
