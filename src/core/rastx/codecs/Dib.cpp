// Decoding a device independent bitmap: its header, colours and pixels come together here.

#include "core/rastx/codecs/Dib.h"

#include <algorithm>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/ColorProfile.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/DibHeader.h"
#include "core/rastx/codecs/DibPixels.h"
#include "core/rastx/codecs/Jpg.h"
#include "core/rastx/codecs/Png.h"

namespace tessara {
namespace {

using namespace dib;

/// The last header can name a place in the file for an ICC profile.
void ConvertByProfile(Bytes dib, const DibHeader& header, Picture& picture) {
    constexpr std::uint32_t kEmbeddedProfile = 0x4d424544;
    if (header.size < kV5Size) return;
    ByteReader reader(dib);
    reader.Seek(56);
    if (reader.U32Le() != kEmbeddedProfile) return;
    reader.Seek(112);
    const std::uint64_t offset = reader.U32Le();
    const std::uint64_t length = reader.U32Le();
    const auto profile = ColorProfile::Open(Slice(dib, offset, length), SampleColors::Rgb);
    if (profile) profile->ConvertPixels(picture.MutablePixels());
}

bool AllTransparent(const Picture& picture) {
    return std::ranges::all_of(picture.Pixels(), [](Pixel pixel) { return pixel.a == 0; });
}

void MakeOpaque(Picture& picture) {
    for (Pixel& pixel : picture.MutablePixels()) pixel.a = 255;
    picture.SetAlpha(Alpha::None);
}

/// Makes the pixels transparent whose bit is set. A cut mask leaves the rest opaque.
void ApplyMask(Bytes mask, std::uint64_t stride, Picture& picture) {
    picture.SetAlpha(Alpha::Straight);
    const std::span<Pixel> pixels = picture.MutablePixels();
    const auto width = static_cast<std::size_t>(picture.Width());
    for (int y = picture.Height() - 1; y >= 0 && !mask.empty(); --y) {
        const Bytes row = Slice(mask, 0, stride);
        mask = Slice(mask, stride);
        const std::size_t held = std::min(width, row.size() * 8);
        for (std::size_t x = 0; x < held; ++x)
            if ((row[x / 8] >> (7 - x % 8)) & 1)
                pixels[static_cast<std::size_t>(y) * width + x] = kTransparent;
    }
}

void SettleAlpha(const DibHeader& header, Bytes bits, const DibOptions& dibOptions, Picture& picture) {
    const bool used = picture.HasAlpha() && !AllTransparent(picture);
    const bool writerKnowsAlpha =
        header.size >= kV5Size && !dibOptions.iconWithMask && !dibOptions.alphaWhereUsed;
    if (dibOptions.premultipliedAlpha && picture.HasAlpha()) {
        Unpremultiply(picture.MutablePixels());
    } else if (picture.HasAlpha() && !used && !writerKnowsAlpha) {
        // Writers that know nothing of alpha leave 0 in its place; those of the last header know.
        MakeOpaque(picture);
    }
    if (dibOptions.iconWithMask && !used)
        ApplyMask(Slice(bits, static_cast<std::uint64_t>(header.height) * header.Stride()),
                  header.MaskStride(), picture);
    picture.DropUnusedAlpha();
}

/// A JPEG or PNG file in place of the pixels. What is no file of either kind can only be OS/2 runs.
Result<Picture> DecodeEmbedded(const DibHeader& header, Bytes bits, const DecodeOptions& options) {
    const bool jpg = RecogniseJpg(bits);
    if (!jpg && !RecognisePng(bits)) {
        if (header.compression != kJpegOrRle24 || header.bitsPerPixel != 24)
            return Damaged("the bitmap carries no JPEG or PNG file");
        DibHeader runs = header;
        runs.layout = Layout::Rle24;
        return DecodeRuns(runs, bits, {}, options.limits);
    }
    if (options.nestingLeft < 1) return Damaged("too many pictures inside one another");
    return (jpg ? DecodeJpg : DecodePng)(bits, options.Nested());
}

Result<Picture> DecodePixels(Bytes dib, std::optional<Bytes> givenBits, const DibHeader& header,
                             const DibOptions& dibOptions, const DecodeOptions& options) {
    ColorTable table = ReadColorTable(dib, header, dibOptions);
    const Bytes bits = givenBits.value_or(Slice(dib, table.end));
    if (header.layout == Layout::Embedded) return DecodeEmbedded(header, bits, options);
    if (header.layout != Layout::Rows) {
        TRY_ASSIGN(Picture picture, DecodeRuns(header, bits, std::move(table.colors), options.limits));
        ConvertByProfile(dib, header, picture);
        return picture;
    }
    const bool fourthByteCounts =
        dibOptions.iconWithMask || dibOptions.premultipliedAlpha || dibOptions.alphaWhereUsed;
    TRY_ASSIGN(Picture picture, DecodeRows(header, bits, MasksOf(header, fourthByteCounts),
                                           std::move(table.colors), options.limits));
    SettleAlpha(header, bits, dibOptions, picture);
    ConvertByProfile(dib, header, picture);
    return picture;
}

}  // namespace

Result<Picture> DecodeDib(Bytes dib, std::optional<Bytes> bits, const DibOptions& dibOptions,
                          const DecodeOptions& options) {
    TRY_ASSIGN(DibHeader header, ParseHeader(dib));
    TRY_ASSIGN(header.layout, FindLayout(header));
    if (dibOptions.iconWithMask) {
        header.height /= 2;
        header.topDown = false;  // not legal in icons
    }
    TRY_ASSIGN(Picture picture, DecodePixels(dib, bits, header, dibOptions, options));
    if (!picture.Meta().resolution.Known()) picture.SetResolution(header.resolution);
    return picture;
}

}  // namespace tessara
