// Reading PNG. The compressed stream is inflated piece by piece; only rows are held beside the picture.

#include "core/rastx/codecs/Png.h"

#include <isa-l/igzip_lib.h>
#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/ColorProfile.h"
#include "core/rastx/Exif.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/PngFilter.h"
#include "core/rastx/codecs/PngFormat.h"

namespace tessara {
namespace {

using namespace png;

struct Header {
    std::int64_t width = 0, height = 0;
    int depth = 0;
    std::uint8_t colorType = 0;
    bool interlaced = false;

    int BitsPerPixel() const { return depth * ChannelsOf(colorType); }
    std::size_t BytesPerPixel() const { return static_cast<std::size_t>(std::max(1, BitsPerPixel() / 8)); }
    std::size_t RowSize(std::int64_t pixels) const {
        return static_cast<std::size_t>((pixels * BitsPerPixel() + 7) / 8);
    }
};

struct Chunk {
    std::string_view type;
    Bytes data;
    bool intact = false;  ///< its CRC is right
};

/// Everything that is said before the pixels.
struct Description {
    Header header;
    std::vector<Pixel> palette;
    Bytes transparency;
    double gamma = 0;  ///< of the samples; 0 where nothing is said
    bool isSrgb = false;
    Bytes compressedProfile;
    Metadata metadata;
};

/// The next chunk, as far as the file holds it. At the end its type is empty.
Chunk ReadChunk(ByteReader& reader) {
    const std::uint32_t length = reader.U32Be();
    const Bytes start = reader.Rest();
    const Bytes type = reader.Take(4);
    if (type.empty()) return {};
    Chunk chunk{{reinterpret_cast<const char*>(type.data()), type.size()}, reader.TakeUpTo(length)};
    const std::uint32_t crc = reader.U32Be();
    // Pixels are not held to their checksum: what inflates is shown.
    if (chunk.type != "IDAT")
        chunk.intact =
            chunk.data.size() == length && libdeflate_crc32(0, start.data(), chunk.data.size() + 4) == crc;
    return chunk;
}

Result<Header> ReadHeader(const Chunk& chunk, std::size_t fileSize, const Limits& limits) {
    ByteReader reader(chunk.data);
    Header header{reader.U32Be(), reader.U32Be(), reader.U8(), reader.U8(), false};
    const std::uint8_t compression = reader.U8();
    const std::uint8_t filters = reader.U8();
    const std::uint8_t interlace = reader.U8();
    if (chunk.type != "IHDR" || !chunk.intact || reader.Overrun()) return Damaged("the header is damaged");
    const int depth = header.depth;
    const bool small = depth == 1 || depth == 2 || depth == 4;
    bool known = false;
    switch (header.colorType) {
        case kGrey:
            known = small || depth == 8 || depth == 16;
            break;
        case kPalette:
            known = small || depth == 8;
            break;
        case kRgb:
        case kGreyAlpha:
        case kRgbAlpha:
            known = depth == 8 || depth == 16;
            break;
    }
    if (!known || compression != 0 || filters != 0 || interlace > 1)
        return Unsupported("an unknown form of PNG");
    header.interlaced = interlace == 1;
    TRY(limits.Check(header.width, header.height));
    // Deflate shrinks to a thousandth at best; of a file that is cut short a sixteenth should be there.
    constexpr std::uint64_t kMostGrowth = 1032 * 16;
    const std::uint64_t inflated = header.RowSize(header.width) * static_cast<std::uint64_t>(header.height);
    if (inflated / kMostGrowth > fileSize) return Damaged("the file is too short for its picture");
    return header;
}

void ReadPalette(Bytes data, Description& description) {
    description.palette.resize(std::min<std::size_t>(data.size() / 3, 256));
    RgbToPixels(data, description.palette);
}

void ReadResolution(Bytes data, Description& description) {
    ByteReader reader(data);
    const double x = reader.U32Be();
    const double y = reader.U32Be();
    constexpr int kMetre = 1;
    if (reader.U8() == kMetre) description.metadata.resolution = {x / kInchesPerMetre, y / kInchesPerMetre};
}

void ReadExifChunk(Bytes data, Description& description) {
    // The picture is shown as it is stored, so its EXIF block must not turn it elsewhere.
    if (ByteVector block = UprightExif(data); !block.empty())
        description.metadata.exif = std::make_shared<const ByteVector>(std::move(block));
}

/// The name of a profile ends with a zero, one byte for the method follows.
Bytes ProfileIn(Bytes data) {
    const auto end = std::find(data.begin(), data.end(), std::uint8_t{0});
    return Slice(data, static_cast<std::uint64_t>(end - data.begin()) + 2);
}

void ReadAncillary(const Chunk& chunk, Description& description) {
    if (chunk.type == "PLTE") ReadPalette(chunk.data, description);
    if (!chunk.intact) return;
    if (chunk.type == "tRNS") description.transparency = chunk.data;
    if (chunk.type == "gAMA") description.gamma = ByteReader(chunk.data).U32Be() / 100'000.0;
    if (chunk.type == "sRGB") description.isSrgb = true;
    if (chunk.type == "iCCP") description.compressedProfile = ProfileIn(chunk.data);
    if (chunk.type == "pHYs") ReadResolution(chunk.data, description);
    if (chunk.type == "eXIf") ReadExifChunk(chunk.data, description);
}

/// Inflates a zlib stream that comes in pieces.
class Inflater {
  public:
    explicit Inflater(std::function<Bytes()> nextPiece)
        : nextPiece_(std::move(nextPiece)), state_(std::make_unique<inflate_state>()) {
        isal_inflate_init(state_.get());
        state_->crc_flag = ISAL_ZLIB;
    }

    /// Fills `out`; gives less only at the end of the stream or of what can be inflated of it.
    std::size_t Read(std::span<std::uint8_t> out) {
        std::size_t done = 0;
        while (done < out.size() && !ended_) {
            const auto wanted =
                static_cast<std::uint32_t>(std::min<std::size_t>(out.size() - done, 1u << 30));
            const std::size_t got = Step(out.subspan(done, wanted));
            done += got;
            if (got == 0 && state_->avail_in == 0) Feed();
        }
        return done;
    }

  private:
    std::size_t Step(std::span<std::uint8_t> out) {
        state_->next_out = out.data();
        state_->avail_out = static_cast<std::uint32_t>(out.size());
        const int status = isal_inflate(state_.get());
        const std::size_t got = out.size() - state_->avail_out;
        if (status != ISAL_DECOMP_OK && status != ISAL_END_INPUT) ended_ = true;
        // All output has been given, not only made.
        if (state_->block_state == ISAL_BLOCK_FINISH) ended_ = true;
        return got;
    }

    void Feed() {
        const Bytes piece = nextPiece_();
        if (piece.empty()) ended_ = true;
        state_->next_in = const_cast<std::uint8_t*>(piece.data());
        state_->avail_in = static_cast<std::uint32_t>(piece.size());
    }

    std::function<Bytes()> nextPiece_;
    std::unique_ptr<inflate_state> state_;
    bool ended_ = false;
};

ByteVector InflateProfile(Bytes compressed) {
    constexpr std::size_t kLargest = std::size_t{16} << 20;
    constexpr std::size_t kStep = std::size_t{256} << 10;
    Inflater inflater([rest = compressed]() mutable { return std::exchange(rest, Bytes()); });
    ByteVector profile;
    for (std::size_t got = kStep; got == kStep && profile.size() < kLargest;) {
        profile.resize(profile.size() + kStep);
        got = inflater.Read(std::span(profile).last(kStep));
        profile.resize(profile.size() - kStep + got);
    }
    return profile;
}

/// The pixel data of a file: filtered rows one behind the other.
class RowSource {
  public:
    RowSource(ByteReader chunks, Bytes firstPiece, std::size_t longestRow)
        : inflater_([chunks, piece = firstPiece]() mutable {
              while (piece.empty()) {
                  const Chunk chunk = ReadChunk(chunks);
                  if (chunk.type != "IDAT") break;
                  piece = chunk.data;
              }
              return std::exchange(piece, Bytes());
          }),
          buffer_(std::max(longestRow + 1, kBufferSize)) {}

    /// The next `size` bytes, empty where the data end before.
    Bytes Take(std::size_t size) {
        if (end_ - begin_ < size) {
            std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
                      buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
            end_ -= begin_;
            begin_ = 0;
            end_ += inflater_.Read(std::span(buffer_).subspan(end_));
        }
        if (end_ - begin_ < size) return {};
        begin_ += size;
        return Bytes(buffer_).subspan(begin_ - size, size);
    }

  private:
    // Of each piece the inflater sets the last 32 KB aside for what refers to them.
    static constexpr std::size_t kBufferSize = std::size_t{256} << 10;

    Inflater inflater_;
    std::vector<std::uint8_t> buffer_;
    std::size_t begin_ = 0, end_ = 0;
};

/// Turns rows of samples into pixels.
class RowConverter {
  public:
    explicit RowConverter(const Description& description);
    void Convert(Bytes row, std::span<Pixel> pixels);
    bool HasAlpha() const {
        return (header_.colorType & kGreyAlpha) != 0 || !description_.transparency.empty();
    }

  private:
    void MakeGamma();
    void MakePalette();
    void ConvertColors(Bytes samples, std::span<Pixel> pixels);
    void ApplyKey(Bytes row, std::span<Pixel> pixels) const;
    void Correct(std::span<Pixel> pixels) const;
    /// By palette, or by the levels of grey where there is none.
    bool Indexed() const { return header_.depth <= 8 && (header_.colorType & ~kPalette) == 0 && Single(); }
    bool Single() const { return ChannelsOf(header_.colorType) == 1; }

    const Description& description_;
    const Header& header_;
    std::optional<ColorProfile> profile_;
    std::vector<std::uint8_t> gamma_;  ///< empty, or what each of 256 or 65536 levels becomes
    std::vector<Pixel> palette_;
    std::vector<std::uint8_t> samples_;
};

RowConverter::RowConverter(const Description& description)
    : description_(description), header_(description.header) {
    const bool grey = header_.colorType == kGrey || header_.colorType == kGreyAlpha;
    if (!description.isSrgb && !description.compressedProfile.empty())
        profile_ = ColorProfile::Open(InflateProfile(description.compressedProfile),
                                      grey ? SampleColors::Grey : SampleColors::Rgb);
    else if (!description.isSrgb)
        MakeGamma();
    samples_.resize(static_cast<std::size_t>(header_.width * ChannelsOf(header_.colorType)));
    if (Indexed()) MakePalette();
}

/// A table for samples of another gamma than that of sRGB, which is 1/2.2 in this respect.
void RowConverter::MakeGamma() {
    constexpr double kSlack = 0.05;  // what is hardly visible is not worth the rounding
    if (description_.gamma <= 0) return;
    const double exponent = 1 / (description_.gamma * 2.2);
    if (std::abs(exponent - 1) < kSlack) return;
    gamma_.resize(header_.depth == 16 ? 65536 : 256);
    const double last = static_cast<double>(gamma_.size() - 1);
    for (std::size_t i = 0; i < gamma_.size(); ++i)
        gamma_[i] =
            static_cast<std::uint8_t>(std::lround(255 * std::pow(static_cast<double>(i) / last, exponent)));
}

void RowConverter::MakePalette() {
    ByteReader transparency(description_.transparency);
    if (header_.colorType == kPalette) {
        palette_ = description_.palette;
        for (Pixel& color : palette_)
            if (!transparency.AtEnd()) color.a = transparency.U8();
    } else {
        const unsigned last = (1u << header_.depth) - 1;
        for (unsigned level = 0; level <= last; ++level) palette_.push_back(Grey(ScaleTo8Bits(level, last)));
        const std::uint16_t key = transparency.U16Be();
        if (!transparency.Overrun() && key <= last) palette_[key].a = 0;
    }
    Correct(palette_);
}

void RowConverter::Correct(std::span<Pixel> pixels) const {
    if (profile_) profile_->ConvertPixels(pixels);
    if (gamma_.size() != 256) return;
    for (Pixel& pixel : pixels) pixel = {gamma_[pixel.b], gamma_[pixel.g], gamma_[pixel.r], pixel.a};
}

/// Samples of 16 bits to 8; alpha knows no gamma.
void NarrowSamples(Bytes row, std::span<std::uint8_t> samples, std::span<const std::uint8_t> gamma,
                   std::size_t channels, bool alpha) {
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto value = static_cast<std::uint32_t>(row[2 * i] << 8 | row[2 * i + 1]);
        const bool colored = !gamma.empty() && !(alpha && i % channels == channels - 1);
        samples[i] = colored ? gamma[value] : Narrow16(value);
    }
}

void RowConverter::Convert(Bytes row, std::span<Pixel> pixels) {
    const std::span samples =
        std::span(samples_).first(pixels.size() * static_cast<std::size_t>(ChannelsOf(header_.colorType)));
    if (Indexed()) {
        UnpackBits(row, header_.depth, samples);
        PaletteToPixels(samples, palette_, pixels);
        return;
    }
    if (header_.depth == 16) {
        NarrowSamples(row, samples, gamma_.size() > 256 ? gamma_ : std::vector<std::uint8_t>(),
                      static_cast<std::size_t>(ChannelsOf(header_.colorType)),
                      header_.colorType & kGreyAlpha);
        ConvertColors(samples, pixels);
    } else {
        ConvertColors(row, pixels);
    }
    if (!description_.transparency.empty()) ApplyKey(row, pixels);
    Correct(pixels);
}

void RowConverter::ConvertColors(Bytes samples, std::span<Pixel> pixels) {
    switch (header_.colorType) {
        case kGrey:
            return GreyToPixels(samples, pixels);
        case kGreyAlpha:
            return GreyAlphaToPixels(samples, pixels);
        case kRgb:
            return RgbToPixels(samples, pixels);
        default:
            return RgbaToPixels(samples, pixels);
    }
}

/// The one colour that is transparent, compared in the file's own depth.
void RowConverter::ApplyKey(Bytes row, std::span<Pixel> pixels) const {
    if ((header_.colorType & kGreyAlpha) != 0) return;
    const std::size_t sampleSize = header_.depth == 16 ? 2 : 1;
    const std::size_t size = header_.BytesPerPixel();
    std::array<std::uint8_t, 6> key{};
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t from = sampleSize == 2 ? i : 2 * i + 1;
        if (from >= description_.transparency.size()) return;
        key[i] = description_.transparency[from];
    }
    for (std::size_t x = 0; x < pixels.size(); ++x)
        if (std::equal(key.begin(), key.begin() + static_cast<std::ptrdiff_t>(size),
                       row.begin() + static_cast<std::ptrdiff_t>(x * size)))
            pixels[x].a = 0;
}

/// The pixels of one pass of an interlaced picture, and the block that each stands for until later passes
/// come.
struct Pass {
    int firstX, firstY, stepX, stepY, blockWidth, blockHeight;

    std::int64_t Columns(std::int64_t width) const { return (width - firstX + stepX - 1) / stepX; }
    std::int64_t Rows(std::int64_t height) const { return (height - firstY + stepY - 1) / stepY; }
};
constexpr Pass kAdam7[] = {
    {0, 0, 8, 8, 8, 8}, {4, 0, 8, 8, 4, 8}, {0, 4, 4, 8, 4, 4}, {2, 0, 4, 4, 2, 4},
    {0, 2, 2, 4, 2, 2}, {1, 0, 2, 2, 1, 2}, {0, 1, 1, 2, 1, 1},
};

class PictureReader {
  public:
    PictureReader(const Header& header, RowSource& source, RowConverter& converter, Picture& picture)
        : header_(header),
          source_(source),
          converter_(converter),
          picture_(picture),
          prior_(header.RowSize(header.width)),
          current_(header.RowSize(header.width)) {}

    /// Rows that hold something, from the top.
    int ReadAll() { return header_.interlaced ? ReadPasses() : ReadRows(); }

  private:
    bool ReadRow(std::span<Pixel> pixels) {
        const std::size_t size = header_.RowSize(static_cast<std::int64_t>(pixels.size()));
        const Bytes stored = source_.Take(size + 1);
        if (stored.empty() ||
            !Unfilter(stored[0], stored.subspan(1), prior_, header_.BytesPerPixel(), current_))
            return false;
        converter_.Convert(current_.View().first(size), pixels);
        std::swap(prior_, current_);
        return true;
    }

    int ReadRows() {
        const std::span<Pixel> pixels = picture_.MutablePixels();
        const auto width = static_cast<std::size_t>(picture_.Width());
        int y = 0;
        while (y < picture_.Height() && ReadRow(pixels.subspan(static_cast<std::size_t>(y) * width, width)))
            ++y;
        return y;
    }

    int ReadPasses() {
        std::vector<Pixel> row(static_cast<std::size_t>(header_.width));
        int rows = 0;
        for (const Pass& pass : kAdam7) {
            const std::int64_t columns = pass.Columns(header_.width);
            if (columns <= 0) continue;
            prior_.Clear();
            for (std::int64_t i = 0; i < pass.Rows(header_.height); ++i) {
                const std::span pixels = std::span(row).first(static_cast<std::size_t>(columns));
                if (!ReadRow(pixels)) return rows;
                const int y = pass.firstY + static_cast<int>(i) * pass.stepY;
                Scatter(pass, y, pixels);
                rows = std::max(rows, std::min(picture_.Height(), y + pass.blockHeight));
            }
        }
        return rows;
    }

    void Scatter(const Pass& pass, int y, std::span<const Pixel> row) {
        const int end = std::min(picture_.Height(), y + pass.blockHeight);
        for (int line = y; line < end; ++line) {
            const std::span<Pixel> target = picture_.MutableRow(line);
            std::size_t x = static_cast<std::size_t>(pass.firstX);
            for (const Pixel pixel : row) {
                const std::size_t count =
                    std::min(static_cast<std::size_t>(pass.blockWidth), target.size() - x);
                std::fill_n(target.begin() + static_cast<std::ptrdiff_t>(x), count, pixel);
                x += static_cast<std::size_t>(pass.stepX);
            }
        }
    }

    const Header& header_;
    RowSource& source_;
    RowConverter& converter_;
    Picture& picture_;
    PaddedRow prior_, current_;
};

}  // namespace

bool RecognisePng(Bytes file) {
    return HasSignature(file, kSignature);
}

Result<Picture> DecodePng(Bytes file, const DecodeOptions& options) {
    if (!RecognisePng(file)) return Damaged("not a PNG file");
    ByteReader reader(file.subspan(kSignature.size()));
    Description description;
    TRY_ASSIGN(description.header, ReadHeader(ReadChunk(reader), file.size(), options.limits));
    Chunk chunk = ReadChunk(reader);
    for (; !chunk.type.empty() && chunk.type != "IDAT"; chunk = ReadChunk(reader))
        ReadAncillary(chunk, description);
    const Header& header = description.header;
    if (header.colorType == kPalette && description.palette.empty()) return Damaged("the palette is missing");

    RowConverter converter(description);
    const Alpha alpha = converter.HasAlpha() ? Alpha::Straight : Alpha::None;
    TRY_ASSIGN(Picture picture, Picture::Create(header.width, header.height, alpha, options.limits));
    RowSource source(reader, chunk.data, header.RowSize(header.width));
    const int rows = PictureReader(header, source, converter, picture).ReadAll();
    if (rows == 0) return Damaged("the file holds no row of its picture");
    picture.FillRows(rows, picture.Height(), alpha == Alpha::None ? kWhite : kTransparent);
    picture.DropUnusedAlpha();
    picture.SetMeta(std::move(description.metadata));
    return picture;
}

}  // namespace tessara
