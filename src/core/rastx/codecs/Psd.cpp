#include "core/rastx/codecs/Psd.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <vector>

#include "core/ByteReader.h"
#include "core/Parallel.h"
#include "core/rastx/Exif.h"
#include "core/rastx/codecs/PsdColors.h"
#include "core/rastx/codecs/PsdComposition.h"
#include "core/rastx/codecs/PsdFormat.h"
#include "core/rastx/codecs/PsdLayers.h"
#include "core/rastx/codecs/PsdPlanes.h"

// All numbers are big-endian.
//   header           26 bytes: "8BPS", version 1 (PSB: 2), 6 unused, channels, height, width, depth, mode
//   colour data      32-bit length; the palette of indexed documents
//   resources        32-bit length; resolution, profile and the like
//   layers           32-bit length (PSB: 64)
//   merged picture   a code for the compression, then the channels one after another
namespace tessara {
namespace {

struct Sections {
    Bytes palette, resources, layers, merged;
};

struct Resources {
    Resolution resolution;
    Bytes icc;
    Bytes exif;
    int transparentIndex = -1;
    bool mergedHasAlpha = false;  ///< the first identifier of the further channels says transparency
    bool mergedPictureKept = true;
};

bool IsKnownMode(PsdMode mode) {
    return mode <= PsdMode::Cmyk || (mode >= PsdMode::Multichannel && mode <= PsdMode::Lab);
}

bool DepthFits(PsdMode mode, int depth) {
    switch (mode) {
        case PsdMode::Bitmap:
            return depth == 1;
        case PsdMode::Indexed:
            return depth == 8;
        case PsdMode::Grey:
        case PsdMode::Rgb:
            return depth == 8 || depth == 16 || depth == 32;
        default:
            return depth == 8 || depth == 16;
    }
}

Result<PsdHeader> ReadHeader(ByteReader& reader) {
    reader.Skip(4);
    PsdHeader header;
    header.large = reader.U16Be() == 2;
    reader.Skip(6);
    header.channels = reader.U16Be();
    header.height = reader.U32Be();
    header.width = reader.U32Be();
    header.depth = reader.U16Be();
    header.mode = static_cast<PsdMode>(reader.U16Be());
    if (reader.Overrun()) return Damaged("the header is cut off");
    if (!IsKnownMode(header.mode)) return Unsupported("the colour mode is unknown");
    if (!DepthFits(header.mode, header.depth)) return Unsupported("the depth does not fit the colour mode");
    constexpr int kMostChannels = 57;
    if (header.channels < ColorChannels(header.mode) || header.channels > kMostChannels)
        return Damaged("the number of channels does not fit the colour mode");
    return header;
}

/// A section that runs over the end of the file is cut there: its beginning may still be of use.
Sections ReadSections(ByteReader& reader, bool large) {
    Sections sections;
    sections.palette = reader.TakeUpTo(reader.U32Be());
    sections.resources = reader.TakeUpTo(reader.U32Be());
    sections.layers = reader.TakeUpTo(large ? reader.U64Be() : reader.U32Be());
    sections.merged = reader.Rest();
    return sections;
}

void ReadResource(int id, Bytes data, Resources& resources) {
    ByteReader reader(data);
    switch (id) {
        case 1005: {
            const double x = reader.U32Be() / 65536.0;
            reader.Skip(4);
            const double y = reader.U32Be() / 65536.0;
            // Some writers store 1/65536 for a resolution that they do not know.
            if (x >= 1 && y >= 1) resources.resolution = {x, y};
            break;
        }
        case 1039:
            resources.icc = data;
            break;
        case 1047:
            resources.transparentIndex = reader.U16Be();
            break;
        case 1053:
            resources.mergedHasAlpha = data.size() >= 4 && reader.U32Be() == 0;
            break;
        case 1057:
            reader.Skip(4);
            resources.mergedPictureKept = data.size() < 5 || reader.U8() != 0;
            break;
        case 1058:
            resources.exif = data;
            break;
        default:
            break;
    }
}

Resources ReadResources(Bytes section) {
    Resources resources;
    ByteReader reader(section);
    while (reader.Left() >= 12) {
        reader.Skip(4);  // "8BIM", but other programs have their own
        const int id = reader.U16Be();
        const std::uint32_t nameLength = reader.U8();
        reader.Skip(nameLength | 1);
        const std::uint32_t length = reader.U32Be();
        const Bytes data = reader.Take(length);
        if (reader.Overrun()) break;
        ReadResource(id, data, resources);
        if (length % 2 != 0) reader.Skip(1);
    }
    return resources;
}

struct Merged {
    Picture picture;
    std::int64_t rows = 0;  ///< how many have all their colours
};

/// Turns the samples into the picture. Tells how many of them are darker than any colour is on white.
std::int64_t ConvertPlanes(const PsdPlanes& planes, const PsdColors& colors, bool hasAlpha,
                           PsdColors::Matte matte, Picture& picture) {
    const std::span<Pixel> pixels = picture.MutablePixels();
    const auto width = static_cast<std::size_t>(picture.Width());
    const auto colorPlanes = static_cast<std::size_t>(colors.Planes());
    const std::size_t wanted = colorPlanes + (hasAlpha ? 1 : 0);
    std::atomic<std::int64_t> tooDark = 0;
    constexpr int kRowsPerBand = 32;
    ParallelRows(picture.Height(), HardwareThreads(), kRowsPerBand, [&](int begin, int end) {
        ByteVector unpacked(planes.RowBytes() * wanted);
        const std::span<std::uint8_t> scratch(unpacked);
        PsdColors::Scratch steps;
        std::array<Bytes, 5> rows;
        for (int y = begin; y < end; ++y) {
            for (std::size_t plane = 0; plane < wanted; ++plane)
                rows[plane] = planes.Row(static_cast<int>(plane), y,
                                         scratch.subspan(plane * planes.RowBytes(), planes.RowBytes()));
            const auto row = pixels.subspan(static_cast<std::size_t>(y) * width, width);
            if (rows[0].empty()) {
                std::ranges::fill(row, picture.HasAlpha() ? kTransparent : kWhite);
                continue;
            }
            const auto color = std::span(rows).first(colorPlanes);
            const Bytes alpha = hasAlpha ? rows[colorPlanes] : Bytes();
            tooDark += colors.CountTooDarkOnWhite(color, alpha, width);
            colors.ToPixels(color, alpha, alpha.empty() ? PsdColors::Matte::None : matte, row, steps);
            colors.ToSrgb(row);
        }
    });
    return tooDark;
}

/// Decodes the merged picture, as far as the file holds it.
Result<Merged> DecodeMerged(const PsdHeader& header, Bytes section, const PsdColors& colors, bool hasAlpha,
                            const Limits& limits) {
    const int colorPlanes = colors.Planes();
    const int wanted = colorPlanes + (hasAlpha ? 1 : 0);
    const PsdPlanes::Shape shape = {.width = header.width,
                                    .height = header.height,
                                    .depth = header.depth,
                                    .stored = header.channels,
                                    .wanted = wanted,
                                    .large = header.large};
    TRY_ASSIGN(const PsdPlanes planes, PsdPlanes::Open(section, shape, 2 * limits.decodedBytes));
    if (planes.RowsPresent(0) == 0) return Damaged("the samples are missing");
    // Of several colours half of one is not worth showing.
    if (colorPlanes > 1 && planes.RowsPresent(0) < header.height) return Damaged("most samples are missing");

    Merged merged;
    merged.rows = planes.RowsPresent(colorPlanes - 1);
    const bool transparent = hasAlpha || colors.HasTransparentIndex();
    TRY_ASSIGN(merged.picture, Picture::Create(header.width, header.height,
                                               transparent ? Alpha::Straight : Alpha::None, limits));
    // Where there is alpha the colours lie on white, but for those of some other programs: these are seldom
    // bright enough for it all over.
    using enum PsdColors::Matte;
    const auto fewPixels = static_cast<std::int64_t>(merged.picture.PixelCount() / 100);
    if (ConvertPlanes(planes, colors, hasAlpha, White, merged.picture) > fewPixels)
        ConvertPlanes(planes, colors, hasAlpha, None, merged.picture);
    merged.picture.DropUnusedAlpha();
    return merged;
}

/// Documents saved without a merged picture hold a blank one. The note that says so is not reliable by
/// itself.
bool IsPlaceholder(const Picture& picture, const Resources& resources) {
    if (resources.mergedPictureKept) return false;
    const std::span<const Pixel> pixels = picture.Pixels();
    const auto sameColor = [first = pixels.front()](Pixel pixel) {
        return pixel.b == first.b && pixel.g == first.g && pixel.r == first.r;
    };
    return std::ranges::all_of(pixels, sameColor);
}

/// The merged picture where it is whole; else what the layers make; else what is left of the merged picture.
Result<Picture> ChoosePicture(const PsdHeader& header, const Sections& sections, const Resources& resources,
                              const PsdColors& colors, const Limits& limits) {
    const PsdLayers layers = ReadPsdLayers(sections.layers, header);
    const bool hasAlpha = (layers.mergedHasAlpha || resources.mergedHasAlpha) && colors.MayHaveAlpha() &&
                          header.channels > colors.Planes();
    Result<Merged> merged = DecodeMerged(header, sections.merged, colors, hasAlpha, limits);
    const bool placeholder = merged && IsPlaceholder(merged.Value().picture, resources);
    if (merged && !placeholder && merged.Value().rows >= (header.height + 1) / 2)
        return merged.Value().picture;

    Result<Picture> composed = ComposePsdLayers(layers.records, header, colors, limits);
    if (composed || placeholder) return composed;
    if (!merged) return merged.Error();
    return merged.Value().picture;
}

}  // namespace

bool RecognisePsd(Bytes file) {
    return HasSignature(file, "8BPS") && file.size() >= 6 && file[4] == 0 && (file[5] == 1 || file[5] == 2);
}

Result<Picture> DecodePsd(Bytes file, const DecodeOptions& options) {
    if (!RecognisePsd(file)) return Damaged("not a layered document of this kind");
    ByteReader reader(file);
    TRY_ASSIGN(const PsdHeader header, ReadHeader(reader));
    TRY(options.limits.Check(header.width, header.height));
    const Sections sections = ReadSections(reader, header.large);
    if (header.mode == PsdMode::Indexed && sections.palette.size() < 768)
        return Damaged("the palette is missing");
    const Resources resources = ReadResources(sections.resources);
    const PsdColors colors(header, sections.palette, resources.transparentIndex, resources.icc);

    TRY_ASSIGN(Picture picture, ChoosePicture(header, sections, resources, colors, options.limits));
    Metadata metadata;
    metadata.resolution = resources.resolution;
    // The pixels are upright, whatever the camera once said.
    if (ByteVector exif = UprightExif(resources.exif); !exif.empty())
        metadata.exif = std::make_shared<const ByteVector>(std::move(exif));
    picture.SetMeta(std::move(metadata));
    return picture;
}

}  // namespace tessara
