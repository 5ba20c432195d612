#include "core/rastx/codecs/Pcx.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Partial.h"

// PCX, after the ZSoft PCX File Format Technical Reference Manual. All numbers are little-endian.
//
//   0  u8       0x0a                                     65  u8   planes
//   1  u8       version, at most 5                       66  u16  bytes per line of a plane
//   2  u8       1 with run lengths, 0 without            68  u16  kind of palette, not to be relied on
//   3  u8       bits per pixel and plane                128  lines from top to bottom, plane after plane
//   4  u16 x4   left, top, right, bottom, inclusive          in each; 769 bytes before the end: 0x0c and
//  12  u16 x2   dots per inch, or the screen's size          the palette of 256 colours
//  16  u8 x48   palette of 16 colours, red green blue

namespace tessara {
namespace {

constexpr std::size_t kHeaderSize = 128;
constexpr std::size_t kLargePaletteSize = 769;
constexpr std::uint8_t kLargePaletteMark = 0x0c;
constexpr std::uint8_t kRunMark = 0xc0;
constexpr std::uint64_t kLongestRun = 63;

struct Header {
    std::uint8_t version = 0;
    bool runLengths = false;
    unsigned bits = 0;
    unsigned planes = 0;
    std::size_t width = 0;
    std::size_t height = 0;
    Resolution resolution;
    bool cgaScreen = false;  ///< made on a screen of 320 x 200
    std::array<std::uint8_t, 48> palette{};
    std::size_t planeBytes = 0;  ///< of one line

    bool StoresAlpha() const { return planes == 4 && bits == 8; }
    std::size_t LineBytes() const { return planeBytes * planes; }
    /// What a line of a plane needs; the file's own figure may be larger, and in odd files smaller.
    std::size_t NeededPlaneBytes() const { return (width * bits + 7) / 8; }
};

constexpr unsigned Combination(unsigned bits, unsigned planes) {
    return 10 * bits + planes;
}

bool IsKnownCombination(unsigned bits, unsigned planes) {
    constexpr unsigned kKnown[] = {11, 12, 13, 14, 21, 41, 81, 83, 84, 241, 321};
    return planes < 10 && std::ranges::find(kKnown, Combination(bits, planes)) != std::end(kKnown);
}

/// Dots per inch stand where older programs put the size of the screen, so only figures of nearly square
/// pixels are believed.
Resolution PlausibleResolution(double x, double y) {
    constexpr double kMost = 10000;
    const bool square = std::abs(x - y) <= 0.1 * std::max(x, y);
    return x >= 1 && y >= 1 && x <= kMost && y <= kMost && square ? Resolution{x, y} : Resolution{};
}

Result<Header> ReadHeader(Bytes file) {
    ByteReader reader(file);
    Header header;
    const std::uint8_t magic = reader.U8();
    header.version = reader.U8();
    const std::uint8_t encoding = reader.U8();
    header.bits = reader.U8();
    const int left = reader.U16Le();
    const int top = reader.U16Le();
    const int right = reader.U16Le();
    const int bottom = reader.U16Le();
    const std::uint16_t xDensity = reader.U16Le();
    const std::uint16_t yDensity = reader.U16Le();
    const Bytes palette = reader.Take(header.palette.size());
    reader.Skip(1);
    header.planes = reader.U8();
    header.planeBytes = reader.U16Le();
    reader.Seek(kHeaderSize);
    if (reader.Overrun()) return Damaged("the header is cut short");
    if (magic != 0x0a || header.version > 5 || encoding > 1) return Unsupported("no PCX picture");
    if (!IsKnownCombination(header.bits, header.planes)) return Unsupported("an unknown kind of pixels");
    if (right < left || bottom < top) return Damaged("the picture has no size");
    header.runLengths = encoding == 1;
    header.width = static_cast<std::size_t>(right - left + 1);
    header.height = static_cast<std::size_t>(bottom - top + 1);
    header.cgaScreen = (xDensity == 320 && yDensity == 200) || (header.width == 320 && header.height == 200);
    header.resolution = PlausibleResolution(xDensity, yDensity);
    std::ranges::copy(palette, header.palette.begin());
    // Lines that lack a little occur; a few bytes for thousands of pixels only cost memory.
    if (header.planeBytes < (header.NeededPlaneBytes() + 1) / 2) return Damaged("the lines are too short");
    return header;
}

/// The lines of the file one after the other. One reader serves the whole picture, because runs cross the
/// borders of planes and lines in many files.
class LineReader {
  public:
    LineReader(Bytes data, const Header& header)
        : reader_(data),
          runLengths_(header.runLengths),
          planeBytes_(header.planeBytes),
          neededBytes_(header.NeededPlaneBytes()),
          line_(header.LineBytes()),
          widened_(planeBytes_ < neededBytes_ ? neededBytes_ * header.planes : 0) {}

    /// Unpacks the next line; false when nothing of it is there. What a line lacks at the end of the file is
    /// 0.
    bool Next() {
        const std::size_t count = runLengths_ ? Unpack() : Copy();
        std::fill(line_.begin() + static_cast<std::ptrdiff_t>(count), line_.end(), std::uint8_t{0});
        if (!widened_.empty()) Widen();
        return count > 0;
    }
    /// The bytes of a plane that the picture's width needs.
    Bytes Plane(std::size_t plane) const {
        return widened_.empty() ? Bytes(line_).subspan(plane * planeBytes_, neededBytes_)
                                : Bytes(widened_).subspan(plane * neededBytes_, neededBytes_);
    }
    /// Bytes that the lines so far took.
    std::size_t Used() const { return reader_.Position(); }

  private:
    std::size_t Copy() {
        const Bytes taken = reader_.TakeUpTo(line_.size());
        std::ranges::copy(taken, line_.begin());
        return taken.size();
    }

    std::size_t Unpack() {
        std::size_t done = 0;
        while (done < line_.size()) {
            if (left_ == 0) {
                done += UnpackSingles(done);
                if (done == line_.size() || !StartRun()) break;
            }
            const std::size_t step = std::min(left_, line_.size() - done);
            std::ranges::fill(std::span(line_).subspan(done, step), value_);
            left_ -= step;
            done += step;
        }
        return done;
    }

    /// Photographs are mostly bytes that stand for themselves.
    std::size_t UnpackSingles(std::size_t done) {
        const Bytes rest = reader_.Rest();
        const std::size_t most = std::min(rest.size(), line_.size() - done);
        std::size_t count = 0;
        for (; count < most && (rest[count] & kRunMark) != kRunMark; ++count)
            line_[done + count] = rest[count];
        reader_.Skip(count);
        return count;
    }

    /// Some files store less of each plane than the width needs: the rest is 0.
    void Widen() {
        for (std::size_t from = 0, to = 0; from < line_.size(); from += planeBytes_, to += neededBytes_)
            std::ranges::copy(Slice(line_, from, planeBytes_),
                              widened_.begin() + static_cast<std::ptrdiff_t>(to));
    }

    /// A run of length 0 writes nothing and is passed over.
    bool StartRun() {
        while (left_ == 0 && !reader_.AtEnd()) {
            value_ = reader_.U8();
            left_ = 1;
            if ((value_ & kRunMark) == kRunMark) {
                left_ = reader_.AtEnd() ? 0 : value_ & ~kRunMark;
                value_ = reader_.U8();
            }
        }
        return left_ > 0;
    }

    ByteReader reader_;
    bool runLengths_;
    std::size_t planeBytes_;
    std::size_t neededBytes_;
    ByteVector line_;
    ByteVector widened_;
    std::size_t left_ = 0;  ///< of the current run
    std::uint8_t value_ = 0;
};

using Palette = std::array<Pixel, 256>;

/// The colours of the graphics adapters of 1984: intensity, red, green and blue as one bit each.
Pixel AdapterColor(unsigned index) {
    const std::uint8_t base = index & 8 ? 0x55 : 0;
    const auto channel = [&](unsigned bit) {
        return static_cast<std::uint8_t>(base + (index & bit ? 0xaa : 0));
    };
    if (index == 6) return {0x00, 0x55, 0xaa, 255};  // their screens show dark yellow as brown
    return {channel(1), channel(2), channel(4), 255};
}

Palette HeaderPalette(const Header& header) {
    Palette palette;
    RgbToPixels(header.palette, std::span(palette).first(16));
    return palette;
}

/// The four colours that a program for the CGA screen chose: the background in byte 16 of the file, the other
/// three by the bits of byte 19.
Palette CgaPalette(const Header& header) {
    const std::uint8_t choice = header.palette[3];
    const unsigned bright = choice & 0x20 ? 8 : 0;
    const bool cyan = choice & 0x40;
    const bool burst = choice & 0x80;
    Palette palette;
    palette[0] = AdapterColor(header.palette[0] >> 4);
    palette[1] = AdapterColor(bright + (cyan ? 3 : 2));
    palette[2] = AdapterColor(bright + (cyan && burst ? 5 : 4));
    palette[3] = AdapterColor(bright + (cyan ? 7 : 6));
    return palette;
}

/// Whether four colours of the header are meant for a picture of two bits. Programs for the CGA screen leave
/// there what they had in memory, and give the size of their screen as the dots per inch.
bool IsFourColorPalette(const Header& header, const Palette& palette) {
    for (unsigned i = 0; i < 4; ++i)
        for (unsigned k = i + 1; k < 4; ++k)
            if (palette[i] == palette[k]) return false;
    return !header.cgaScreen;
}

/// Most readers take one bit as black and white, because old programs left the colours of the screen in the
/// header. Two greys there are believed all the same: they are how an inverted picture says so.
Palette TwoColorPalette(const Palette& palette) {
    const auto grey = [](Pixel pixel) { return pixel.b == pixel.g && pixel.g == pixel.r; };
    if (grey(palette[0]) && grey(palette[1]) && palette[0] != palette[1]) return palette;
    return Palette{kBlack, kWhite};
}

/// Version 3 says that there is no palette, but other readers and writers go by what stands there.
Palette SmallPalette(const Header& header) {
    Palette palette = HeaderPalette(header);
    if (header.bits == 1 && header.planes == 1) return TwoColorPalette(palette);
    if (header.bits == 2) return IsFourColorPalette(header, palette) ? palette : CgaPalette(header);
    if (std::ranges::all_of(header.palette, [](std::uint8_t value) { return value == 0; }))
        for (unsigned i = 0; i < 16; ++i) palette[i] = AdapterColor(i);
    return palette;
}

/// Bytes of image data, counted by unpacking them all.
std::size_t MeasureLines(Bytes data, const Header& header) {
    LineReader reader(data, header);
    for (std::size_t y = 0; y < header.height && reader.Next(); ++y) {
    }
    return reader.Used();
}

/// The image data and its colours.
struct Source {
    Bytes data;
    Palette palette;
};

Source FindSource(const Header& header, Bytes file) {
    const Bytes data = Slice(file, kHeaderSize);
    if (header.bits != 8 || header.planes > 1) return {data, SmallPalette(header)};
    Source source{data, {}};
    for (unsigned i = 0; i < source.palette.size(); ++i)
        source.palette[i] = Grey(static_cast<std::uint8_t>(i));
    // The palette should be the last thing of the file; where something follows it, it stands behind the
    // data.
    std::size_t at = data.size() - std::min(data.size(), kLargePaletteSize);
    if (data.size() < kLargePaletteSize || data[at] != kLargePaletteMark) at = MeasureLines(data, header);
    const Bytes colors = Slice(data, at + 1, kLargePaletteSize - 1);
    if (colors.size() < kLargePaletteSize - 1 || data[at] != kLargePaletteMark) return source;
    source.data = data.first(at);
    // A palette of nothing but black is one that the writer forgot.
    if (std::ranges::any_of(colors, [](std::uint8_t value) { return value != 0; }))
        RgbToPixels(colors, source.palette);
    return source;
}

/// One bit of the index per plane, plane 0 the lowest.
void PlanarIndexes(const Header& header, const LineReader& reader, std::span<std::uint8_t> indexes) {
    std::ranges::fill(indexes, std::uint8_t{0});
    for (unsigned plane = 0; plane < header.planes; ++plane) {
        const Bytes bits = reader.Plane(plane);
        for (std::size_t x = 0; x < indexes.size(); ++x)
            indexes[x] |= static_cast<std::uint8_t>((bits[x / 8] >> (7 - x % 8) & 1) << plane);
    }
}

void BgrxToPixels(Bytes bgrx, std::span<Pixel> pixels) {
    for (std::size_t x = 0; x < pixels.size(); ++x)
        pixels[x] = {bgrx[4 * x], bgrx[4 * x + 1], bgrx[4 * x + 2], 255};
}

void LineToPixels(const Header& header, const LineReader& reader, const Palette& palette,
                  std::span<Pixel> row) {
    switch (Combination(header.bits, header.planes)) {
        case 83:
            PlanesToPixels(reader.Plane(0), reader.Plane(1), reader.Plane(2), {}, row);
            return;
        case 84:
            PlanesToPixels(reader.Plane(0), reader.Plane(1), reader.Plane(2), reader.Plane(3), row);
            return;
        case 241:
            BgrToPixels(reader.Plane(0), row);
            return;
        case 321:
            BgrxToPixels(reader.Plane(0), row);
            return;
        default:
            break;
    }
    if (header.bits == 8) return PaletteToPixels(reader.Plane(0), palette, row);
    ByteVector indexes(row.size());
    if (header.bits == 1)
        PlanarIndexes(header, reader, indexes);
    else
        UnpackBits(reader.Plane(0), static_cast<int>(header.bits), indexes);
    PaletteToPixels(indexes, palette, row);
}

void SettleAlpha(const AlphaCensus& census, Picture& picture) {
    if (census.AllFull()) return;
    if (!census.AllEmpty()) return picture.SetAlpha(Alpha::Straight);
    for (Pixel& pixel : picture.MutablePixels()) pixel.a = 255;
}

}  // namespace

bool RecognisePcx(Bytes file) {
    const auto header = ReadHeader(file);
    return header && header.Value().version != 1 &&
           header.Value().planeBytes >= header.Value().NeededPlaneBytes();
}

Result<Picture> DecodePcx(Bytes file, const DecodeOptions& options) {
    TRY_ASSIGN(const Header header, ReadHeader(file));
    const Source source = FindSource(header, file);
    const std::uint64_t possibleBytes =
        header.runLengths ? source.data.size() * kLongestRun : source.data.size();
    const std::uint64_t pixels = std::uint64_t{header.width} * header.height;
    TRY(CheckDataFor(pixels, (possibleBytes + header.LineBytes() - 1) / header.LineBytes() * header.width));
    TRY_ASSIGN(Picture picture,
               Picture::Create(static_cast<std::int64_t>(header.width),
                               static_cast<std::int64_t>(header.height), Alpha::None, options.limits));
    LineReader reader(source.data, header);
    AlphaCensus alpha;
    int y = 0;
    for (; y < picture.Height() && reader.Next(); ++y) {
        const auto row = picture.MutableRow(y);
        LineToPixels(header, reader, source.palette, row);
        if (header.StoresAlpha()) alpha.Add(row);
    }
    if (y == 0) return Damaged("the file holds no pixels");
    SettleAlpha(alpha, picture);
    picture.FillRows(y, picture.Height(), MissingPixel(picture));
    picture.SetResolution(header.resolution);
    return picture;
}

}  // namespace tessara
