// Reading PCX. The lines of the file are unpacked one at a time.

#include "core/rastx/codecs/Pcx.h"

#include <algorithm>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Partial.h"
#include "core/rastx/codecs/PcxHeader.h"
#include "core/rastx/codecs/PcxPalette.h"

namespace tessara {
namespace {

using namespace pcx;

constexpr std::size_t kLargePaletteSize = 769;
constexpr std::uint8_t kLargePaletteMark = 0x0c;
constexpr std::uint8_t kRunMark = 0xc0;
constexpr std::uint64_t kLongestRun = 63;

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
