#include "core/rastx/codecs/UtahRle.h"

#include <algorithm>
#include <array>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"

// A Utah Raster Toolkit image, all little-endian:
//
//   0   52 CC
//   2   i16  x, y of the lower left corner
//   6   u16  width, height
//   10  u8   flags; colour channels; bits per sample, 8; channels of the colour map; log2 of its length
//   15  background, a byte per channel, filled up to an even offset
//       colour map, a word per entry, channel by channel, the value in the high byte
//       comments, u16 length and as many bytes, filled up to an even count
//       opcodes that fill one channel of one row after the other, from the bottom row up
//
// Source: Peterson, Bogart, Thomas: The Utah Raster Toolkit, "RLE(5)".

namespace tessara {
namespace {

constexpr std::string_view kSignature = "\x52\xCC";

enum Flag : std::uint8_t { kClearFirst = 1, kNoBackground = 2, kHasAlpha = 4, kHasComments = 8 };

struct UtahHeader {
    int width = 0;
    int height = 0;
    std::uint8_t flags = 0;
    int channels = 0;
    std::array<std::uint8_t, 3> background{};
    std::vector<std::array<std::uint8_t, 3>> map;  ///< what each sample of the three channels stands for

    bool Has(Flag flag) const { return (flags & flag) != 0; }
};

void ParseBackground(ByteReader& reader, UtahHeader& header) {
    if (header.Has(kNoBackground)) {
        reader.Skip(1);
        return;
    }
    for (int channel = 0; channel < header.channels; ++channel) {
        const std::uint8_t value = reader.U8();
        if (channel < 3) header.background[static_cast<std::size_t>(channel)] = value;
    }
    if (header.channels % 2 == 0) reader.Skip(1);
}

/// A map with fewer channels than three serves the others with its last one.
void ParseMap(ByteReader& reader, std::size_t mapChannels, std::size_t length, UtahHeader& header) {
    if (mapChannels == 0) return;
    header.map.resize(length);
    for (std::size_t channel = 0; channel < mapChannels; ++channel)
        for (auto& entry : header.map) {
            const auto value = static_cast<std::uint8_t>(reader.U16Le() >> 8);
            for (std::size_t served = channel; served < 3; ++served) entry[served] = value;
        }
}

Result<UtahHeader> ParseHeader(ByteReader& reader) {
    UtahHeader header;
    reader.Skip(kSignature.size() + 4);
    header.width = reader.U16Le();
    header.height = reader.U16Le();
    header.flags = reader.U8();
    header.channels = reader.U8();
    const int bits = reader.U8();
    const std::size_t mapChannels = reader.U8();
    const int mapBits = reader.U8();
    if (reader.Overrun()) return Damaged("the header is cut");
    if (bits != 8) return Unsupported("only samples of 8 bits are read");
    if (header.channels == 0) return Unsupported("the image holds nothing but a colour map");
    if (mapChannels > 3 || mapBits > 16) return Damaged("the colour map has no legal size");
    ParseBackground(reader, header);
    const std::size_t mapLength = std::size_t{1} << mapBits;
    if (mapChannels * mapLength * 2 > reader.Left()) return Damaged("the colour map is cut");
    ParseMap(reader, mapChannels, mapLength, header);
    if (header.Has(kHasComments)) {
        const std::uint64_t length = reader.U16Le();
        reader.Skip(length + length % 2);
    }
    if (reader.Overrun()) return Damaged("the header is cut");
    return header;
}

/// Runs the opcodes. The samples of the first three channels and of alpha go straight to their places in the
/// pixels, a single channel to that of red.
class OpcodeRunner {
  public:
    OpcodeRunner(ByteReader reader, const UtahHeader& header, Picture& picture)
        : reader_(reader), header_(header), pixels_(picture.MutablePixels()) {}

    void Run() {
        while (!ended_ && y_ < header_.height && reader_.Left() >= 2 && !reader_.Overrun()) RunOne();
    }

    /// Rows that are whole, from the bottom up. Many files lack the last opcode.
    int WholeRows() const {
        const bool endsInLastRow = !reader_.Overrun() && y_ == header_.height - 1;
        return ended_ || endsInLastRow ? header_.height
                                       : static_cast<int>(std::min<std::int64_t>(y_, header_.height));
    }

  private:
    enum Opcode : std::uint8_t {
        kSkipLines = 1,
        kSetColor = 2,
        kSkipPixels = 3,
        kByteData = 5,
        kRunData = 6,
        kEndOfImage = 7,
    };
    static constexpr std::uint8_t kLongForm = 0x40;
    static constexpr std::uint8_t kAlphaChannel = 255;
    using Member = std::uint8_t Pixel::*;

    void RunOne() {
        const std::uint8_t code = reader_.U8();
        const std::uint8_t shortDatum = reader_.U8();
        const std::uint8_t opcode = code & 0x3f;
        if (opcode == kSetColor) return SetChannel(shortDatum);
        if (opcode == kEndOfImage) {
            ended_ = true;
            return;
        }
        const std::size_t datum = (code & kLongForm) != 0 ? reader_.U16Le() : shortDatum;
        switch (opcode) {
            case kSkipLines:
                x_ = 0;
                y_ += static_cast<std::int64_t>(datum);
                break;
            case kSkipPixels:
                x_ += datum;
                break;
            case kByteData:
                PutBytes(datum + 1);
                break;
            case kRunData:
                PutRun(datum + 1);
                break;
            default:
                reader_.Skip(UINT64_MAX);  // nothing behind an unknown opcode can be trusted
        }
    }

    void SetChannel(std::uint8_t channel) {
        constexpr Member kMembers[] = {&Pixel::r, &Pixel::g, &Pixel::b};
        x_ = 0;
        if (channel == kAlphaChannel)
            member_ = header_.Has(kHasAlpha) ? &Pixel::a : nullptr;
        else
            member_ = channel < std::min(header_.channels, 3) ? kMembers[channel] : nullptr;
    }

    void PutBytes(std::size_t count) {
        const Bytes values = reader_.TakeUpTo(count);
        reader_.Skip(count - values.size() + count % 2);
        const std::span<Pixel> run = Advance(count);
        for (std::size_t i = 0; i < std::min(run.size(), values.size()); ++i) run[i].*member_ = values[i];
    }

    void PutRun(std::size_t count) {
        const auto value = static_cast<std::uint8_t>(reader_.U16Le());
        for (Pixel& pixel : Advance(count)) pixel.*member_ = value;
    }

    /// Moves on by `count` pixels and gives those of them that are to be written.
    std::span<Pixel> Advance(std::size_t count) {
        const auto width = static_cast<std::size_t>(header_.width);
        const std::size_t begin = std::min(x_, width);
        x_ += count;
        if (!member_) return {};
        const std::size_t row = static_cast<std::size_t>(header_.height - 1 - y_) * width;
        return pixels_.subspan(row + begin, std::min(x_, width) - begin);
    }

    ByteReader reader_;
    const UtahHeader& header_;
    std::span<Pixel> pixels_;
    Member member_ = &Pixel::r;
    std::size_t x_ = 0;
    std::int64_t y_ = 0;
    bool ended_ = false;
};

/// Samples to colours: grey to all channels, and each through its map.
void ApplyMap(const UtahHeader& header, std::span<Pixel> pixels) {
    const auto mapped = [&](std::uint8_t value, std::size_t channel) {
        return value < header.map.size() ? header.map[value][channel] : value;
    };
    const bool grey = header.channels < 3;
    for (Pixel& pixel : pixels) {
        if (grey) pixel.g = pixel.b = pixel.r;
        if (!header.map.empty())
            pixel = {mapped(pixel.b, 2), mapped(pixel.g, 1), mapped(pixel.r, 0), pixel.a};
    }
}

/// The format does not say whether colours are multiplied by alpha. Where one exceeds its alpha they cannot
/// be; otherwise they nearly always are.
void SettleAlpha(Picture& picture) {
    const std::span<Pixel> pixels = picture.MutablePixels();
    if (std::ranges::all_of(pixels, [](Pixel pixel) { return pixel.a == 0; })) {
        for (Pixel& pixel : pixels) pixel.a = 255;
        picture.SetAlpha(Alpha::None);
        return;
    }
    const bool straight = std::ranges::any_of(pixels, [](Pixel pixel) {
        return std::max({pixel.r, pixel.g, pixel.b}) > pixel.a;
    });
    if (!straight) Unpremultiply(pixels);
    picture.DropUnusedAlpha();
}

/// Blank lines and pixels cost next to nothing in this format, but real pictures hold something.
Result<void> CheckAgainstData(const UtahHeader& header, std::uint64_t bytes) {
    constexpr std::uint64_t kLargePicture = std::uint64_t{16} << 20;
    constexpr std::uint64_t kPixelsPerByte = 16384;
    const std::uint64_t pixels =
        static_cast<std::uint64_t>(header.width) * static_cast<std::uint64_t>(header.height);
    if (pixels > kLargePicture && pixels > bytes * kPixelsPerByte)
        return Damaged("the image is far larger than its file");
    return {};
}

}  // namespace

bool RecogniseUtahRle(Bytes file) {
    return HasSignature(file, kSignature);
}

Result<Picture> DecodeUtahRle(Bytes file, const DecodeOptions& options) {
    if (!RecogniseUtahRle(file)) return Unsupported("not a Utah Raster Toolkit image");
    ByteReader reader(file);
    TRY_ASSIGN(const UtahHeader header, ParseHeader(reader));
    TRY(options.limits.Check(header.width, header.height));
    TRY(CheckAgainstData(header, reader.Left()));
    Pixel start{0, 0, 0, static_cast<std::uint8_t>(header.Has(kHasAlpha) ? 0 : 255)};
    if (header.Has(kClearFirst) && !header.Has(kNoBackground))
        start = {header.background[2], header.background[1], header.background[0], start.a};
    TRY_ASSIGN(Picture picture,
               Picture::Create(header.width, header.height, start,
                               header.Has(kHasAlpha) ? Alpha::Straight : Alpha::None, options.limits));
    OpcodeRunner runner(reader, header, picture);
    runner.Run();
    if (runner.WholeRows() == 0) return Damaged("not one row of the image is whole");
    ApplyMap(header, picture.MutablePixels());
    if (header.Has(kHasAlpha)) SettleAlpha(picture);
    picture.FillRows(0, header.height - runner.WholeRows(), picture.HasAlpha() ? kTransparent : kWhite);
    return picture;
}

}  // namespace tessara
