#include "core/rastx/codecs/Psp.h"

#include <algorithm>
#include <string_view>

#include "core/rastx/ColorProfile.h"
#include "core/rastx/Exif.h"
#include "core/rastx/codecs/Jpg.h"
#include "core/rastx/codecs/PspBitmap.h"
#include "core/rastx/codecs/PspBlocks.h"
#include "core/rastx/codecs/PspLayers.h"

// All numbers are little-endian.
//   signature     32 bytes: a text, 0A 1A, zeros
//   version       16 bits, and a minor one that is always 0
//   blocks        "~BK" 0, a 16-bit identifier, [version 3: 32-bit length of the first chunk,] 32-bit length
namespace tessara {
namespace {

constexpr std::string_view kSignature("Paint Shop Pro Image File\n\x1a", 27);
constexpr std::size_t kVersionOffset = 32;
constexpr std::size_t kHeaderBytes = 36;

/// A picture of the whole document that the writer added, full size or a thumbnail.
struct Composite {
    std::int64_t width = 0, height = 0;
    int depth = 0;
    PspCompression compression = PspCompression::None;
    bool thumbnail = false;

    Bytes jpeg;
    std::vector<PspChannel> channels;
    std::vector<Pixel> palette;
};

struct Document {
    int version = 0;
    Box canvas;
    PspLayout layout;  ///< of the layers
    std::vector<Pixel> palette;
    int transparentIndex = -1;
    Metadata metadata;
    Bytes icc;
    std::vector<PspLayer> layers;
    bool layersCut = false;  ///< the file ends within them
    std::vector<Composite> composites;
};

Result<void> ReadAttributes(PspContent content, Document& document, const Limits& limits) {
    ByteReader reader(content.Chunk());
    document.canvas.right = reader.I32Le();
    document.canvas.bottom = reader.I32Le();
    double resolution = reader.F64Le();
    const std::uint8_t metric = reader.U8();
    document.layout.compression = static_cast<PspCompression>(reader.U16Le());
    document.layout.depth = reader.U16Le();
    reader.Skip(6);
    const bool grey = reader.U8() != 0;
    if (reader.Overrun()) return Damaged("the attributes are cut off");
    TRY(limits.Check(document.canvas.right, document.canvas.bottom));
    document.layout.grey = document.layout.depth == 16 || (grey && document.layout.depth == 8);
    if (metric == 2) resolution *= 2.54;
    constexpr double kMostDotsPerInch = 100'000;
    if ((metric == 1 || metric == 2) && resolution > 0 && resolution < kMostDotsPerInch)
        document.metadata.resolution = {resolution, resolution};
    return {};
}

void ReadExtendedData(PspContent content, Document& document) {
    enum Keyword { kTransparentIndex = 0, kExif = 3 };
    ByteReader reader(content.Take(UINT64_MAX));
    while (HasSignature(reader.Rest(), std::string_view("~FL\0", 4))) {
        reader.Skip(4);
        const std::uint16_t keyword = reader.U16Le();
        const Bytes data = reader.TakeUpTo(reader.U32Le());
        if (keyword == kTransparentIndex && data.size() >= 2)
            document.transparentIndex = ByteReader(data).U16Le();
        const std::string_view exifMark("Exif\0\0", 6);
        if (keyword == kExif && HasSignature(data, exifMark)) {
            ByteVector exif = UprightExif(data.subspan(exifMark.size()));
            if (!exif.empty()) document.metadata.exif = std::make_shared<const ByteVector>(std::move(exif));
        }
    }
}

Bytes ReadProfile(PspContent content) {
    ByteReader reader(content.Chunk());
    reader.Skip(reader.U16Le());
    return content.Take(reader.U32Le());
}

void ReadCompositeAttributes(Bytes chunk, Composite& composite) {
    ByteReader reader(chunk);
    composite.width = reader.I32Le();
    composite.height = reader.I32Le();
    composite.depth = reader.U16Le();
    composite.compression = static_cast<PspCompression>(reader.U16Le());
    reader.Skip(6);
    composite.thumbnail = reader.U16Le() != 0;
}

void ReadCompositePlanes(PspContent content, Composite& composite) {
    content.Chunk();
    while (std::optional<PspBlock> block = content.Block()) {
        if (block->id == PspId::Palette) composite.palette = ReadPspPalette(block->content);
        if (block->id == PspId::Channel) composite.channels.push_back(ReadPspChannel(block->content));
    }
}

Bytes ReadJpeg(PspContent content) {
    ByteReader reader(content.Chunk());
    return content.Take(reader.U32Le());
}

/// First come the attributes of all composites, then the pictures in the same order.
std::vector<Composite> ReadComposites(PspContent bank) {
    std::vector<Composite> composites;
    std::size_t pictures = 0;
    bank.Chunk();
    while (std::optional<PspBlock> block = bank.Block()) {
        if (block->id == PspId::CompositeAttributes) {
            ReadCompositeAttributes(block->content.Chunk(), composites.emplace_back());
        } else if (block->id == PspId::Composite || block->id == PspId::Jpeg) {
            if (pictures == composites.size()) break;
            Composite& composite = composites[pictures++];
            if (block->id == PspId::Jpeg)
                composite.jpeg = ReadJpeg(block->content);
            else
                ReadCompositePlanes(block->content, composite);
        }
    }
    return composites;
}

Result<Document> ReadDocument(Bytes file, const Limits& limits) {
    Document document;
    document.version = ByteReader(file.subspan(kVersionOffset)).U16Le();
    if (document.version < 3) return Unsupported("the version is not known");
    PspContent blocks(file.subspan(kHeaderBytes), document.version);
    std::optional<PspBlock> block = blocks.Block();
    if (!block || block->id != PspId::Attributes) return Damaged("the attributes are missing");
    TRY(ReadAttributes(block->content, document, limits));
    while ((block = blocks.Block())) {
        switch (block->id) {
            case PspId::Palette:
                document.palette = ReadPspPalette(block->content);
                break;
            case PspId::ExtendedData:
                ReadExtendedData(block->content, document);
                break;
            case PspId::Profile:
                document.icc = ReadProfile(block->content);
                break;
            case PspId::CompositeBank:
                document.composites = ReadComposites(block->content);
                break;
            case PspId::LayerBank: {
                TRY_ASSIGN(document.layers, ReadPspLayers(block->content, document.version));
                document.layersCut = block->cut;
                break;
            }
            default:
                break;
        }
    }
    return document;
}

/// The colours of one bitmap, with the document's transparent index applied.
std::vector<Pixel> WithTransparentIndex(std::vector<Pixel> palette, int index) {
    if (index >= 0 && static_cast<std::size_t>(index) < palette.size())
        palette[static_cast<std::size_t>(index)].a = 0;
    return palette;
}

/// Chooses among the pictures that a file offers.
class PictureFinder {
  public:
    PictureFinder(Document& document, const DecodeOptions& options) : document_(document), options_(options) {
        palette_ = WithTransparentIndex(std::move(document.palette), document.transparentIndex);
        document_.layout.palette = palette_;
    }

    Result<Picture> Find() {
        const bool drawable = !document_.layers.empty() && CanDrawAll(document_.layers);
        const Full full = FullPicture();
        // Without alpha the writer has put white below; the layers know better.
        const bool keepsAlpha = full.hasAlpha || HasOpaqueGround(document_.layers, document_.canvas);
        if (full.complete && (keepsAlpha || !drawable || document_.layersCut)) return full.picture;

        Result<Picture> composed = Unsupported("the document has no layers");
        const auto compose = [&] {
            if (Result<void> layout = CheckPspLayout(document_.layout); !layout)
                composed = layout.Error();
            else
                composed =
                    ComposePspLayers(document_.layers, document_.layout, document_.canvas, options_.limits);
            return composed.Ok();
        };
        const bool reliable = drawable && !document_.layersCut;
        if (reliable && compose()) return composed;
        if (full.complete) return full.picture;
        // Lossy, but with everything that layers without pixels would have drawn.
        if (Result<Picture> lossy = LossyPicture()) return lossy;
        if (!reliable && !document_.layers.empty() && compose()) return composed;
        if (!full.picture.Empty()) return full.picture;
        return composed;
    }

  private:
    struct Full {
        Picture picture;
        bool complete = false;
        bool hasAlpha = false;
    };

    /// The composite of full size that is stored without loss, as far as it goes.
    Full FullPicture() const {
        for (const Composite& composite : document_.composites) {
            if (!IsFullSize(composite) || composite.channels.empty()) continue;
            const std::vector<Pixel> own =
                WithTransparentIndex(composite.palette, document_.transparentIndex);
            const PspLayout layout = {.depth = composite.depth,
                                      .grey = composite.depth == 16 || (document_.layout.grey && own.empty()),
                                      .compression = composite.compression,
                                      .palette = own.empty() ? std::span<const Pixel>(palette_) : own};
            if (Result<Full> full = DecodeFull(composite, layout)) return std::move(full).Value();
        }
        return {};
    }

    Result<Full> DecodeFull(const Composite& composite, const PspLayout& layout) const {
        TRY(CheckPspLayout(layout));
        TRY_ASSIGN(const PspBitmap bitmap,
                   PspBitmap::Open(composite.channels, PspChannel::Use::CompositeColor,
                                   PspChannel::Use::CompositeAlpha, layout, composite.width, composite.height,
                                   options_.limits));
        if (bitmap.UsableRows() == 0) return Damaged("the samples are missing");
        Full full;
        full.complete = bitmap.CompleteRows() >= composite.height;
        full.hasAlpha = bitmap.HasAlpha();
        TRY_ASSIGN(full.picture,
                   Picture::Create(composite.width, composite.height, Alpha::Straight, options_.limits));
        bitmap.ToPixels(document_.canvas, full.picture.MutablePixels());
        full.picture.DropUnusedAlpha();
        return full;
    }

    Result<Picture> LossyPicture() const {
        if (options_.nestingLeft <= 0) return Unsupported("too many pictures in one another");
        for (const Composite& composite : document_.composites) {
            if (!IsFullSize(composite) || composite.jpeg.empty()) continue;
            Result<Picture> picture = DecodeJpg(composite.jpeg, options_.Nested());
            if (picture && picture.Value().Width() == composite.width &&
                picture.Value().Height() == composite.height)
                return picture;
        }
        return Unsupported("no JPEG picture of full size");
    }

    bool IsFullSize(const Composite& composite) const {
        return !composite.thumbnail && composite.width == document_.canvas.right &&
               composite.height == document_.canvas.bottom;
    }

    Document& document_;
    const DecodeOptions& options_;
    std::vector<Pixel> palette_;
};

}  // namespace

bool RecognisePsp(Bytes file) {
    return HasSignature(file, kSignature) && file.size() >= kHeaderBytes;
}

Result<Picture> DecodePsp(Bytes file, const DecodeOptions& options) {
    if (!RecognisePsp(file)) return Damaged("not a layered document of this kind");
    TRY_ASSIGN(Document document, ReadDocument(file, options.limits));
    TRY_ASSIGN(Picture picture, PictureFinder(document, options).Find());
    const SampleColors colors = document.layout.grey ? SampleColors::Grey : SampleColors::Rgb;
    if (const auto profile = ColorProfile::Open(document.icc, colors))
        profile->ConvertPixels(picture.MutablePixels());
    picture.SetMeta(std::move(document.metadata));
    return picture;
}

}  // namespace tessara
