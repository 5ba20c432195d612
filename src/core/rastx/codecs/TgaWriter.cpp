// Writing TGA: with run lengths, in the fewest bytes a pixel that hold the picture.

#include <algorithm>
#include <bit>
#include <cstring>

#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Tga.h"
#include "core/rastx/codecs/TgaFormat.h"

namespace tessara {
namespace {

using namespace tga;

bool IsGrey(const Picture& picture) {
    for (int y = 0; y < picture.Height(); ++y) {
        std::uint8_t difference = 0;
        for (const Pixel pixel : picture.Row(y))
            difference |= static_cast<std::uint8_t>((pixel.b ^ pixel.g) | (pixel.g ^ pixel.r));
        if (difference != 0) return false;
    }
    return true;
}

/// Pixels equal to the first one, at most as many as a packet holds.
std::size_t RunLength(std::span<const Pixel> pixels) {
    const std::size_t most = std::min(pixels.size(), kPacketPixels);
    const auto first = std::bit_cast<std::uint32_t>(pixels[0]);
    std::size_t length = 1;
    while (length < most && std::bit_cast<std::uint32_t>(pixels[length]) == first) ++length;
    return length;
}

/// Packs one row at a time; packets never cross rows.
class RowPacker {
  public:
    RowPacker(int width, std::size_t pixelBytes) : pixelBytes_(pixelBytes) {
        const auto pixels = static_cast<std::size_t>(width);
        packed_.resize(pixels * pixelBytes);
        out_.reserve(packed_.size() + pixels / kPacketPixels + 1);
    }

    Bytes Pack(std::span<const Pixel> row) {
        ToFileLayout(row);
        out_.clear();
        const std::size_t worthwhile = pixelBytes_ == 1 ? 3 : 2;
        std::size_t literalsFrom = 0;
        for (std::size_t x = 0; x < row.size();) {
            const std::size_t run = RunLength(row.subspan(x));
            if (run >= worthwhile) {
                AppendLiterals(literalsFrom, x);
                AppendPacket(static_cast<std::uint8_t>(kRepeat | (run - 1)), x, 1);
                literalsFrom = x + run;
            }
            x += run;
        }
        AppendLiterals(literalsFrom, row.size());
        return out_;
    }

  private:
    void ToFileLayout(std::span<const Pixel> row) {
        if (pixelBytes_ == 1)
            std::ranges::transform(row, packed_.begin(), &Pixel::g);
        else if (pixelBytes_ == 3)
            PixelsToBgr(row, packed_);
        else
            std::memcpy(packed_.data(), row.data(), row.size_bytes());
    }
    void AppendLiterals(std::size_t begin, std::size_t end) {
        for (std::size_t count = 0; begin < end; begin += count) {
            count = std::min(end - begin, kPacketPixels);
            AppendPacket(static_cast<std::uint8_t>(count - 1), begin, count);
        }
    }
    void AppendPacket(std::uint8_t head, std::size_t first, std::size_t count) {
        out_.push_back(head);
        const Bytes pixels = Slice(packed_, first * pixelBytes_, count * pixelBytes_);
        out_.insert(out_.end(), pixels.begin(), pixels.end());
    }

    std::size_t pixelBytes_;
    ByteVector packed_;
    ByteVector out_;
};

ByteVector WriteHeader(const Picture& picture, std::size_t pixelBytes) {
    const Kind kind = pixelBytes == 1 ? Kind::Grey : Kind::Color;
    ByteWriter header;
    header.U8(0).U8(0).U8(static_cast<std::uint8_t>(kind) | kRunLengthKind).Zeros(9);
    header.U16Le(static_cast<std::uint32_t>(picture.Width()))
        .U16Le(static_cast<std::uint32_t>(picture.Height()));
    header.U8(static_cast<std::uint32_t>(8 * pixelBytes)).U8(kFromTop | (pixelBytes == 4 ? 8 : 0));
    return header.TakeBytes();
}

/// The footer, behind an extension area where there is alpha: only that says that a picture whose alpha is
/// empty all over is meant to be so.
ByteVector WriteEnd(bool alpha, std::uint64_t position) {
    ByteWriter end;
    if (alpha)
        end.U16Le(kExtensionSize).Zeros(kAttributesOffset - 2).U8(static_cast<int>(Attributes::Straight));
    // A file of more than 4 GiB cannot say where its extension area is; readers then decide by the values.
    const bool told = alpha && position <= UINT32_MAX;
    end.U32Le(told ? static_cast<std::uint32_t>(position) : 0).U32Le(0).Text(kFooterSignature);
    return end.TakeBytes();
}

}  // namespace

Result<void> EncodeTga(const Picture& picture, const EncodeOptions&, ByteSink& sink) {
    if (picture.Empty()) return BadArgument("there is no picture");
    const std::size_t pixelBytes = picture.HasAlpha() ? 4 : IsGrey(picture) ? 1 : 3;
    const std::uint64_t start = sink.Position();
    TRY(sink.Write(WriteHeader(picture, pixelBytes)));
    RowPacker packer(picture.Width(), pixelBytes);
    // From the top down: there are readers that take a picture from the bottom up for one to be turned, and
    // pass it on upside down.
    for (int y = 0; y < picture.Height(); ++y) TRY(sink.Write(packer.Pack(picture.Row(y))));
    return sink.Write(WriteEnd(pixelBytes == 4, sink.Position() - start));
}

}  // namespace tessara
