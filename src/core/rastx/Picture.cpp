#include "core/rastx/Picture.h"

#include <algorithm>
#include <new>

#include "core/rastx/Rows.h"

namespace tessara {

Result<void> Limits::Check(std::int64_t width, std::int64_t height) const {
    if (width < 1 || height < 1) return Damaged("the picture has no size");
    if (width > side || height > side) return TooBig("a side of the picture is too long");
    const auto bytes = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) * sizeof(Pixel);
    if (bytes > decodedBytes) return TooBig("the picture needs too much memory");
    return {};
}

Result<Picture> Picture::Create(std::int64_t width, std::int64_t height, Alpha alpha, const Limits& limits) {
    TRY(limits.Check(width, height));
    Picture picture;
    picture.width_ = static_cast<int>(width);
    picture.height_ = static_cast<int>(height);
    picture.alpha_ = alpha;
    picture.buffer_ = std::make_shared<LargeBuffer>(picture.PixelCount() * sizeof(Pixel));
    if (!picture.buffer_->Valid()) return TooBig("no memory for the picture");
    return picture;
}

Result<Picture> Picture::Create(std::int64_t width, std::int64_t height, Pixel fill, Alpha alpha,
                                const Limits& limits) {
    TRY_ASSIGN(Picture picture, Create(width, height, alpha, limits));
    if (fill != kTransparent) picture.FillRows(0, picture.height_, fill);
    return picture;
}

const Pixel* Picture::data() const {
    return buffer_ ? reinterpret_cast<const Pixel*>(buffer_->Data()) : nullptr;
}

std::span<Pixel> Picture::MutablePixels() {
    if (buffer_ && buffer_.use_count() > 1) {
        auto own = std::make_shared<LargeBuffer>(PixelCount() * sizeof(Pixel));
        // Whoever writes to pixels could not say so to its caller; those further up can.
        if (!own->Valid()) throw std::bad_alloc();
        std::copy_n(buffer_->Data(), buffer_->Size(), own->Data());
        buffer_ = std::move(own);
    }
    return {const_cast<Pixel*>(data()), PixelCount()};
}

void Picture::FillRows(int begin, int end, Pixel fill) {
    begin = std::clamp(begin, 0, height_);
    end = std::clamp(end, begin, height_);
    const auto rows = MutablePixels().subspan(Offset(begin), Offset(end - begin));
    std::fill(rows.begin(), rows.end(), fill);
}

void Picture::DropUnusedAlpha() {
    if (HasAlpha() && AllOpaque(Pixels())) alpha_ = Alpha::None;
}

Picture Picture::FlattenedOn(Pixel background) const {
    Picture flat = *this;
    if (!HasAlpha()) return flat;
    const std::span<Pixel> pixels = flat.MutablePixels();
    FlattenRow(pixels, background, pixels);
    flat.alpha_ = Alpha::None;
    return flat;
}

Result<Picture> Picture::Cropped(int x, int y, int width, int height) const {
    if (x < 0 || y < 0 || width < 1 || height < 1 || width > width_ - x || height > height_ - y)
        return BadArgument("the part lies outside of the picture");
    TRY_ASSIGN(Picture part, Create(width, height, alpha_));
    part.metadata_ = metadata_;
    const std::span<Pixel> target = part.MutablePixels();
    for (int row = 0; row < height; ++row) {
        const auto source =
            Row(y + row).subspan(static_cast<std::size_t>(x), static_cast<std::size_t>(width));
        std::copy(source.begin(), source.end(),
                  target.begin() + static_cast<std::ptrdiff_t>(part.Offset(row)));
    }
    return part;
}

}  // namespace tessara
