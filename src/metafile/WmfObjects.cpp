// Records that create and select pens, brushes, fonts, regions and palettes.

#include <algorithm>
#include <cmath>

#include "metafile/CodePage.h"
#include "metafile/Player.h"
#include "metafile/WmfPlayer.h"

namespace tessara::metafile {

void WmfPlayer::CreatePen(ByteReader& reader) {
    Pen pen;
    pen.style = reader.U16Le();
    pen.width = std::abs(reader.I16Le());
    reader.Skip(2);
    pen.ink.color = ReadColor(reader);
    objects_.InsertInFirstFree(pen);
}

void WmfPlayer::CreateBrush(ByteReader& reader) {
    Brush brush;
    const unsigned style = reader.U16Le();
    brush.color = ReadColor(reader);
    brush.hatch = reader.U16Le();
    brush.kind = style == 1 ? Brush::Kind::None : style == 2 ? Brush::Kind::Hatch : Brush::Kind::Solid;
    objects_.InsertInFirstFree(brush);
}

void WmfPlayer::CreateFont(ByteReader& reader) {
    Font font;
    font.height = reader.I16Le();
    font.width = reader.I16Le();
    font.escapement = reader.I16Le() / 10.0;
    reader.Skip(2);
    font.weight = reader.I16Le();
    ReadFontStyle(reader, font);
    const Bytes name = reader.TakeUpTo(32);
    const auto end = std::ranges::find(name, std::uint8_t{0});
    font.face = DecodeText(name.first(static_cast<std::size_t>(end - name.begin())), font.charset).text;
    objects_.InsertInFirstFree(font);
}

void WmfPlayer::CreateDibPatternBrush(ByteReader& reader) {
    constexpr std::uint32_t kLongestHeader = 256;
    reader.Skip(2);
    RecordBitmap bitmap;
    bitmap.usage = static_cast<ColorUsage>(reader.U16Le());
    bitmap.header = reader.Rest();
    Brush brush;
    brush.kind = Brush::Kind::Pattern;
    const std::uint32_t headerSize = ByteReader(bitmap.header).U32Le();
    if (headerSize >= 12 && headerSize <= kLongestHeader) {
        brush.tile = DecodeBitmap(bitmap, State().palette, options_, canvas_.Budget());
    } else {
        const DeviceBitmap old = DecodeDeviceBitmap(bitmap.header, 10, canvas_.Budget());
        brush.tile = old.image;
        brush.monochrome = old.monochrome;
    }
    objects_.InsertInFirstFree(brush);
}

void WmfPlayer::CreatePatternBrush(ByteReader& reader) {
    constexpr std::size_t kBitsOffset = 32;  // behind a dead pointer and 18 bytes of nothing
    const DeviceBitmap bitmap = DecodeDeviceBitmap(reader.Rest(), kBitsOffset, canvas_.Budget());
    Brush brush;
    brush.kind = Brush::Kind::Pattern;
    brush.tile = bitmap.image;
    brush.monochrome = bitmap.monochrome;
    objects_.InsertInFirstFree(brush);
}

void WmfPlayer::CreateRegion(ByteReader& reader) {
    reader.Skip(10);
    const unsigned scans = reader.U16Le();
    reader.Skip(10);
    Region region;
    for (unsigned scan = 0; scan < scans && reader.Left() >= 6; ++scan) {
        const unsigned edges = reader.U16Le();
        const int top = reader.I16Le();
        const int bottom = reader.I16Le();
        for (unsigned i = 0; i + 1 < edges && reader.Left() >= 4; i += 2) {
            const int left = reader.I16Le();
            const int right = reader.I16Le();
            region.boxes.emplace_back(QPoint(left, top), QPoint(right - 1, bottom - 1));
        }
        if (!reader.Skip(2)) break;
    }
    objects_.InsertInFirstFree(region);
}

void WmfPlayer::CreatePalette(ByteReader& reader) {
    reader.Skip(2);
    const std::size_t count = reader.U16Le();
    objects_.InsertInFirstFree(Palette(ReadPaletteColors(reader, count)));
}

void WmfPlayer::CreatePlaceholder(ByteReader&) {
    objects_.InsertInFirstFree(Placeholder{});
}

void WmfPlayer::SelectPalette(ByteReader& reader) {
    Select(objects_.At(reader.U16Le()));
}

void WmfPlayer::SetPaletteEntries(ByteReader& reader) {
    const std::size_t start = reader.U16Le();
    const std::size_t count = reader.U16Le();
    State().palette.Change(start, ReadPaletteColors(reader, count));
}

void WmfPlayer::ResizePalette(ByteReader& reader) {
    State().palette.colors->resize(reader.U16Le());
}

void WmfPlayer::Select(const Object& object) {
    State().Select(object);
    if (const auto* region = std::get_if<Region>(&object))
        context_.ClipToRegion(*region, ClipMode::Copy, context_.ToPicture());
}

void WmfPlayer::SelectObject(ByteReader& reader) {
    Select(objects_.At(reader.U16Le()));
}
void WmfPlayer::DeleteObject(ByteReader& reader) {
    objects_.Delete(reader.U16Le());
}

const Region* WmfPlayer::FindRegion(std::size_t slot) const {
    return std::get_if<Region>(&objects_.At(slot));
}

}  // namespace tessara::metafile
