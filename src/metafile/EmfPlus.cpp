// Comments of enhanced metafiles. Those of EMF+ ([MS-EMFPLUS]) hold records of their own:
//
//   u16 type, u16 flags, u32 size, u32 bytes of data, data
//
// The data of a bitmap object: u32 version, u32 type 1, i32 width, height, stride, u32 pixel format,
// u32 0 raw or 1 a whole image file, the bytes.

#include "metafile/EmfPlus.h"

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Emf.h"

namespace tessara::metafile {
namespace {

enum PlusType : unsigned { kPlusHeader = 0x4001, kPlusObject = 0x4008 };
constexpr unsigned kImage = 5;
constexpr std::uint32_t kBitmap = 1;

/// Gathers the image object, which may be spread over several records.
class ImageCollector {
  public:
    explicit ImageCollector(EmfComments& comments) : comments_(comments) {}

    void Read(Bytes records) {
        ByteReader reader(records);
        while (reader.Left() >= 12) {
            const unsigned type = reader.U16Le();
            const unsigned flags = reader.U16Le();
            const std::uint32_t size = reader.U32Le();
            const std::uint32_t dataBytes = reader.U32Le();
            if (size < 12) return;
            ByteReader data(reader.TakeUpTo(size - 12));
            if (type == kPlusHeader) comments_.plusOnly = (flags & 1) == 0;
            if (type == kPlusObject && ((flags >> 8) & 0x7F) == kImage)
                Add(data.TakeUpTo(dataBytes), (flags & 0x8000) != 0);
        }
    }

  private:
    void Add(Bytes data, bool continued) {
        if (complete_) return;
        if (continued) data = Slice(data, 4);  // the size of the whole stands before each piece
        comments_.plusImage.insert(comments_.plusImage.end(), data.begin(), data.end());
        complete_ = !continued;
    }

    EmfComments& comments_;
    bool complete_ = false;
};

Result<Picture> DecodeRawPixels(ByteReader& reader, int width, int height, std::int64_t stride,
                                std::uint32_t format, const Limits& limits) {
    constexpr std::uint32_t kRgb24 = 0x00021808, kRgb32 = 0x00022009, kArgb32 = 0x0026200A,
                            kPremultiplied32 = 0x000E200B;
    const bool threeBytes = format == kRgb24;
    if (!threeBytes && format != kRgb32 && format != kArgb32 && format != kPremultiplied32)
        return Unsupported("an image of this pixel format is not read");
    const std::int64_t rowBytes = std::int64_t{width} * (threeBytes ? 3 : 4);
    if (stride < rowBytes) return Damaged("the rows of an image are too short");
    const bool alpha = format == kArgb32 || format == kPremultiplied32;
    TRY(limits.Check(width, height));
    if (static_cast<std::uint64_t>(stride) * static_cast<std::uint64_t>(height - 1) > reader.Left())
        return Damaged("the rows of an image are cut off");
    TRY_ASSIGN(Picture picture,
               Picture::Create(width, height, alpha ? Alpha::Straight : Alpha::None, limits));
    for (int y = 0; y < height; ++y) {
        const Bytes row = reader.TakeUpTo(static_cast<std::uint64_t>(stride));
        const auto pixels = picture.MutableRow(y);
        if (row.size() < static_cast<std::size_t>(rowBytes)) break;
        if (threeBytes) {
            BgrToPixels(row, pixels);
            continue;
        }
        for (std::size_t x = 0; x < pixels.size(); ++x)
            pixels[x] = {row[4 * x], row[4 * x + 1], row[4 * x + 2],
                         alpha ? row[4 * x + 3] : std::uint8_t{255}};
        if (format == kPremultiplied32) Unpremultiply(pixels);
    }
    return picture;
}

}  // namespace

EmfComments ReadEmfComments(Bytes file) {
    constexpr std::uint32_t kWindowsMetafile = 0x80000001;
    EmfComments comments;
    ImageCollector images(comments);
    EmfRecords walk(file);
    while (const auto record = walk.Next()) {
        if (record->type != emf::kComment) continue;
        ByteReader reader(record->bytes);
        reader.Skip(8);
        const Bytes data = reader.TakeUpTo(reader.U32Le());
        if (HasSignature(data, "EMF+")) images.Read(Slice(data, 4));
        if (!HasSignature(data, "GDIC") || ByteReader(Slice(data, 4)).U32Le() != kWindowsMetafile) continue;
        // Version, checksum, flags and the size of the metafile stand before it.
        ByteReader fields(Slice(data, 8));
        fields.Skip(8);
        comments.windowsMetafile = fields.TakeUpTo(fields.U32Le());
    }
    return comments;
}

Result<Picture> DecodePlusImage(Bytes object, const DecodeOptions& options) {
    ByteReader reader(object);
    reader.Skip(4);
    if (reader.U32Le() != kBitmap) return Unsupported("an image that is no bitmap is not read");
    const std::int32_t width = reader.I32Le();
    const std::int32_t height = reader.I32Le();
    const std::int32_t stride = reader.I32Le();
    const std::uint32_t format = reader.U32Le();
    const bool encoded = reader.U32Le() != 0;
    if (!encoded) return DecodeRawPixels(reader, width, height, stride, format, options.limits);
    if (options.nestingLeft < 1) return Unsupported("too many pictures inside one another");
    return DecodeFile(reader.Rest(), "", options.Nested());
}

}  // namespace tessara::metafile
