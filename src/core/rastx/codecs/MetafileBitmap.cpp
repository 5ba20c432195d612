#include "core/rastx/codecs/MetafileBitmap.h"

#include <algorithm>
#include <cmath>

#include "core/rastx/Rows.h"

namespace tessara {
namespace {

std::uint32_t PixelsPerMetre(double dotsPerInch) {
    return static_cast<std::uint32_t>(std::lround(dotsPerInch / 0.0254));
}

ByteVector InfoHeader(const Picture& picture) {
    const Resolution resolution = ResolutionOrDefault(picture);
    ByteWriter header;
    header.U32Le(kBitmapHeaderBytes).I32Le(picture.Width()).I32Le(picture.Height()).U16Le(1).U16Le(24);
    header.U32Le(0).U32Le(static_cast<std::uint32_t>(BitmapBytes(picture.Width(), picture.Height())));
    header.U32Le(PixelsPerMetre(resolution.x)).U32Le(PixelsPerMetre(resolution.y)).U32Le(0).U32Le(0);
    return header.TakeBytes();
}

}  // namespace

Resolution ResolutionOrDefault(const Picture& picture) {
    const Resolution& known = picture.Meta().resolution;
    if (!known.Known()) return {96, 96};
    return {std::clamp(known.x, 1.0, 32767.0), std::clamp(known.y, 1.0, 32767.0)};
}

Result<void> WriteBitmap(const Picture& picture, ByteSink& sink) {
    TRY(sink.Write(InfoHeader(picture)));
    constexpr std::uint64_t kBlockBytes = 1 << 18;
    const auto rowBytes = static_cast<std::size_t>(BitmapRowBytes(picture.Width()));
    const int rowsPerBlock = static_cast<int>(std::max<std::uint64_t>(1, kBlockBytes / rowBytes));
    std::vector<Pixel> flat(picture.HasAlpha() ? static_cast<std::size_t>(picture.Width()) : 0);
    ByteVector block;
    for (int end = picture.Height(); end > 0; end -= rowsPerBlock) {
        const int rows = std::min(rowsPerBlock, end);
        block.assign(rowBytes * static_cast<std::size_t>(rows), 0);
        for (int i = 0; i < rows; ++i) {
            std::span<const Pixel> row = picture.Row(end - 1 - i);
            if (picture.HasAlpha()) {
                FlattenRow(row, kWhite, flat);
                row = flat;
            }
            PixelsToBgr(row,
                        std::span(block).subspan(rowBytes * static_cast<std::size_t>(i), 3 * row.size()));
        }
        TRY(sink.Write(block));
    }
    return {};
}

}  // namespace tessara
