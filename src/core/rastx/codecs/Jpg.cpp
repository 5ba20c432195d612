// Reading JPEG (ITU T.81) in JFIF and EXIF files, through libjpeg-turbo.

#include "core/rastx/codecs/Jpg.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/ColorProfile.h"
#include "core/rastx/Exif.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/JpgReader.h"

namespace tessara {
namespace {

using namespace jpg;

/// What happens to rows between the library and the picture.
struct RowConversion {
    int orientation = 1;
    std::optional<ColorProfile> profile;

    void ConvertInks(std::vector<std::uint8_t>& inks, std::span<Pixel> pixels) const {
        // Programs store ink inverted, 255 = none, with or without the marker that says so.
        for (std::uint8_t& ink : inks) ink = static_cast<std::uint8_t>(255 - ink);
        if (profile)
            profile->ConvertCmyk(inks, pixels);
        else
            CmykToPixels(inks, pixels);
    }
};

/// Makes the blocks at the right end of a line of blocks white which are nothing but the filling for missing
/// data, the colour of the last pixel. True where a block is left.
bool WhitenMissingBlocks(std::span<Pixel> rows, int width, int blockWidth) {
    const auto stride = static_cast<std::size_t>(width);
    const Pixel filling = rows.back();
    const auto isFilling = [&](std::size_t column) {
        // The top row and the left column of a block are blended with their neighbours' colours.
        for (std::size_t i = rows.size() > stride ? stride + column : column; i < rows.size(); i += stride)
            if (rows[i] != filling) return false;
        return true;
    };
    std::size_t kept = stride;
    while (kept > 0 && ((kept - 1) % static_cast<std::size_t>(blockWidth) == 0 || isFilling(kept - 1)))
        --kept;
    kept = (kept + static_cast<std::size_t>(blockWidth) - 1) / static_cast<std::size_t>(blockWidth) *
           static_cast<std::size_t>(blockWidth);
    for (std::size_t start = 0; start < rows.size(); start += stride)
        for (std::size_t x = kept; x < stride; ++x) rows[start + x] = kWhite;
    return kept > 0;
}

/// Decodes a picture band by band, each a line of blocks.
class PictureReader {
  public:
    PictureReader(Reader& reader, RowConversion conversion, Picture& picture)
        : reader_(reader), conversion_(std::move(conversion)), target_(picture.MutablePixels()) {}

    /// Whether anything at all could be read. What could not is white.
    bool ReadAll() {
        const bool direct = conversion_.orientation == 1;
        std::vector<Pixel> band(direct ? 0 : PixelsOf(reader_.BandHeight()));
        bool any = false;
        for (int y = 0; y < reader_.Height(); y += reader_.BandHeight()) {
            const int rows = std::min(reader_.BandHeight(), reader_.Height() - y);
            const std::span<Pixel> pixels =
                direct ? target_.subspan(PixelsOf(y), PixelsOf(rows)) : std::span(band).first(PixelsOf(rows));
            any |= ReadBand(y, pixels);
            if (!direct)
                PlaceOriented(pixels, y, reader_.Width(), reader_.Height(), conversion_.orientation, target_);
        }
        return any;
    }

  private:
    std::size_t PixelsOf(int rows) const {
        return static_cast<std::size_t>(rows) * static_cast<std::size_t>(reader_.Width());
    }

    bool ReadBand(int y, std::span<Pixel> pixels) {
        const int rows = static_cast<int>(pixels.size() / PixelsOf(1));
        const std::int64_t line = y / reader_.BandHeight();
        int got = 0;
        if (!failed_ && line <= reader_.MissingFrom()) {
            got = Decode(pixels, rows);
            failed_ = got < rows;
        }
        if (line > reader_.MissingFrom()) got = 0;
        std::ranges::fill(pixels.subspan(PixelsOf(got)), kWhite);
        bool any = got > 0;
        if (any && line == reader_.MissingFrom())
            any = WhitenMissingBlocks(pixels.first(PixelsOf(got)), reader_.Width(), reader_.BlockWidth());
        return any;
    }

    int Decode(std::span<Pixel> pixels, int rows) {
        if (!reader_.HasInks()) {
            const int got = reader_.ReadRows(reinterpret_cast<std::uint8_t*>(pixels.data()), rows);
            if (conversion_.profile) conversion_.profile->ConvertPixels(pixels.first(PixelsOf(got)));
            return got;
        }
        inks_.resize(4 * PixelsOf(rows));
        const int got = reader_.ReadRows(inks_.data(), rows);
        conversion_.ConvertInks(inks_, pixels);
        return got;
    }

    Reader& reader_;
    RowConversion conversion_;
    std::span<Pixel> target_;
    std::vector<std::uint8_t> inks_;
    bool failed_ = false;
};

}  // namespace

bool RecogniseJpg(Bytes file) {
    return HasSignature(file, "\xff\xd8\xff");
}

Result<Picture> DecodeJpg(Bytes file, const DecodeOptions& options) {
    Reader reader;
    TRY(reader.ReadHeader(file));
    TRY(reader.CheckSize(file.size(), options.limits));

    const ExifFields exif = ReadExif(reader.Exif());
    const SampleColors colors = reader.HasInks()  ? SampleColors::Cmyk
                                : reader.IsGrey() ? SampleColors::Grey
                                                  : SampleColors::Rgb;
    RowConversion conversion{exif.orientation, ColorProfile::Open(reader.Icc(), colors)};
    Metadata metadata{reader.JfifResolution(), nullptr};
    if (!metadata.resolution.Known()) metadata.resolution = exif.resolution;
    const bool swaps = SwapsSides(exif.orientation);
    if (swaps) std::swap(metadata.resolution.x, metadata.resolution.y);
    if (ByteVector block = UprightExif(reader.Exif()); !block.empty())
        metadata.exif = std::make_shared<const ByteVector>(std::move(block));

    TRY(reader.Start());
    TRY_ASSIGN(Picture picture,
               Picture::Create(swaps ? reader.Height() : reader.Width(),
                               swaps ? reader.Width() : reader.Height(), Alpha::None, options.limits));
    picture.SetMeta(std::move(metadata));
    if (!PictureReader(reader, std::move(conversion), picture).ReadAll())
        return Damaged("the file holds no part of its picture");
    return picture;
}

}  // namespace tessara
