#include "core/rastx/effects/Kernel.h"

#include "core/rastx/Rows.h"

namespace tessara::effects {
namespace {

TESSARA_MULTIVERSION void CopyAlpha(const std::uint8_t* alpha, std::size_t count,
                                    std::uint8_t* __restrict out) {
    for (std::size_t i = 0; i < count; ++i)
        StorePixel(out + 4 * i,
                   (LoadPixel(out + 4 * i) & kColorBits) | (LoadPixel(alpha + 4 * i) & kAlphaBits));
}

/// Where the four pixels around a position lie and how they count, in 1/256.
struct Corner {
    int offset;
    std::uint32_t fractionX, fractionY;
};

TESSARA_ALWAYS_INLINE Corner CornerOf(float x, float y, int width, int height) {
    x = x < 0 ? 0 : x;
    y = y < 0 ? 0 : y;
    const auto lastX = static_cast<float>(width - 1);
    const auto lastY = static_cast<float>(height - 1);
    x = x > lastX ? lastX : x;
    y = y > lastY ? lastY : y;
    const int fixedX = static_cast<int>(x * 256 + 0.5f);
    const int fixedY = static_cast<int>(y * 256 + 0.5f);
    int left = fixedX >> 8;
    int top = fixedY >> 8;
    // The last row and column are reached from the one before, so that there is always a next.
    left = left > width - 2 ? width - 2 : left;
    top = top > height - 2 ? height - 2 : top;
    left = left < 0 ? 0 : left;
    top = top < 0 ? 0 : top;
    return {top * width + left, static_cast<std::uint32_t>(fixedX - 256 * left),
            static_cast<std::uint32_t>(fixedY - 256 * top)};
}

/// Two channels of four pixels at once, in the lower and upper half of a word.
TESSARA_ALWAYS_INLINE std::uint32_t Mix(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
                                        const std::uint32_t (&weights)[4]) {
    return a * weights[0] + b * weights[1] + c * weights[2] + d * weights[3] + 0x00800080u;
}

TESSARA_MULTIVERSION void SampleOpaque(const std::uint8_t* __restrict source, int width, int height,
                                       const Positions& positions, int count, std::uint8_t* __restrict out) {
    const std::size_t right = width > 1 ? 4 : 0;
    const std::size_t down = height > 1 ? 4 * static_cast<std::size_t>(width) : 0;
    for (int i = 0; i < count; ++i) {
        const Corner corner = CornerOf(positions.x[i], positions.y[i], width, height);
        const std::uint8_t* first = source + 4 * static_cast<std::ptrdiff_t>(corner.offset);
        const std::uint32_t a = LoadPixel(first);
        const std::uint32_t b = LoadPixel(first + right);
        const std::uint32_t c = LoadPixel(first + down);
        const std::uint32_t d = LoadPixel(first + down + right);
        const std::uint32_t both = (corner.fractionX * corner.fractionY + 128) >> 8;
        const std::uint32_t weights[4] = {256 - corner.fractionX - corner.fractionY + both,
                                          corner.fractionX - both, corner.fractionY - both, both};
        constexpr std::uint32_t kEven = 0x00ff00ffu;
        const std::uint32_t even = (Mix(a & kEven, b & kEven, c & kEven, d & kEven, weights) >> 8) & kEven;
        const std::uint32_t odd =
            Mix((a >> 8) & kEven, (b >> 8) & kEven, (c >> 8) & kEven, (d >> 8) & kEven, weights) & ~kEven;
        StorePixel(out + 4 * static_cast<std::ptrdiff_t>(i), even | odd);
    }
}

void SampleWithAlpha(const Picture& source, const Positions& positions, std::span<Pixel> out) {
    const std::span<const Pixel> pixels = source.Pixels();
    const std::size_t right = source.Width() > 1 ? 1 : 0;
    const std::size_t down = source.Height() > 1 ? static_cast<std::size_t>(source.Width()) : 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const Corner corner = CornerOf(positions.x[i], positions.y[i], source.Width(), source.Height());
        const auto first = static_cast<std::size_t>(corner.offset);
        const std::size_t offsets[] = {first, first + right, first + down, first + down + right};
        const std::uint32_t x = corner.fractionX;
        const std::uint32_t y = corner.fractionY;
        const std::uint32_t weights[] = {(256 - x) * (256 - y), x * (256 - y), (256 - x) * y, x * y};
        std::uint64_t alpha = 0, blue = 0, green = 0, red = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            const Pixel pixel = pixels[offsets[k]];
            const std::uint64_t share = std::uint64_t{weights[k]} * pixel.a;
            alpha += share;
            blue += share * pixel.b;
            green += share * pixel.g;
            red += share * pixel.r;
        }
        const auto straight = [alpha](std::uint64_t sum) {
            return static_cast<std::uint8_t>((sum + alpha / 2) / alpha);
        };
        out[i] = alpha == 0 ? kTransparent
                            : Pixel{straight(blue), straight(green), straight(red),
                                    static_cast<std::uint8_t>((alpha + 32768) >> 16)};
    }
}

/// How much of a pixel at `position` of an axis lies inside.
TESSARA_ALWAYS_INLINE float Inside(float position, float side) {
    const float before = position + 1;
    const float behind = side - position;
    const float least = before < behind ? before : behind;
    const float positive = least > 0 ? least : 0;
    return positive < 1 ? positive : 1;
}

/// The share of each pixel that lies inside; tells whether one is not whole.
TESSARA_MULTIVERSION bool InsideShares(const Positions& positions, float width, float height, int count,
                                       float* __restrict shares) {
    int outside = 0;
    for (int i = 0; i < count; ++i) {
        const float share = Inside(positions.x[i], width) * Inside(positions.y[i], height);
        shares[i] = share;
        outside |= share < 1;
    }
    return outside != 0;
}

TESSARA_MULTIVERSION void BlendOpaque(std::uint32_t background, const float* shares, int count,
                                      std::uint8_t* row) {
    for (int i = 0; i < count; ++i) {
        std::uint8_t* out = row + 4 * static_cast<std::ptrdiff_t>(i);
        const std::uint32_t pixel = LoadPixel(out);
        const auto share = static_cast<int>(shares[i] * 256 + 0.5f);
        const auto mix = [&](int shift) {
            const int color = static_cast<int>((pixel >> shift) & 255);
            const int behind = static_cast<int>((background >> shift) & 255);
            return static_cast<std::uint32_t>(behind + (((color - behind) * share + 128) >> 8)) << shift;
        };
        StorePixel(out, mix(0) | mix(8) | mix(16) | kAlphaBits);
    }
}

void BlendStraight(Pixel background, const float* shares, std::span<Pixel> out) {
    for (std::size_t i = 0; i < out.size(); ++i) {
        if (shares[i] >= 1) continue;
        const float alpha = static_cast<float>(out[i].a) * shares[i];
        const float whole = alpha + 255 * (1 - shares[i]);
        const float share = alpha / whole;  // of the picture's colour
        const auto mix = [share](std::uint8_t color, std::uint8_t behind) {
            return static_cast<std::uint8_t>(
                ToByte(static_cast<float>(color) * share + static_cast<float>(behind) * (1 - share)));
        };
        out[i] = {mix(out[i].b, background.b), mix(out[i].g, background.g), mix(out[i].r, background.r),
                  static_cast<std::uint8_t>(ToByte(whole))};
    }
}

}  // namespace

Result<Picture> CreateLike(const Picture& picture, int width, int height) {
    TRY_ASSIGN(Picture target,
               Picture::Create(width, height, picture.HasAlpha() ? Alpha::Straight : Alpha::None));
    target.SetMeta(picture.Meta());
    return target;
}

Canvas::Canvas(Picture picture) {
    if (picture.Shared()) {
        auto target = CreateLike(picture, picture.Width(), picture.Height());
        // As with any picture that is written to: without memory for it the process cannot go on.
        if (!target) throw std::bad_alloc();
        targetPicture_ = std::move(target).Value();
        sourcePicture_ = std::move(picture);
        source_ = sourcePicture_.Pixels();
    } else {
        targetPicture_ = std::move(picture);
        source_ = targetPicture_.Pixels();
    }
    target_ = targetPicture_.MutablePixels();
}

void PaddedRow::Load(std::span<const Pixel> row) {
    std::ranges::copy(row, pixels_.begin() + 1);
    pixels_.front() = row.front();
    pixels_.back() = row.back();
}

void KeepAlpha(const std::uint8_t* alpha, std::span<Pixel> row) {
    CopyAlpha(alpha, row.size(), BytesOf(row));
}

void SamplePixels(const Picture& source, const Positions& positions, std::span<Pixel> out) {
    if (source.HasAlpha())
        SampleWithAlpha(source, positions, out);
    else
        SampleOpaque(reinterpret_cast<const std::uint8_t*>(source.Pixels().data()), source.Width(),
                     source.Height(), positions, static_cast<int>(out.size()), BytesOf(out));
}

void BlendOutside(const Picture& source, const Positions& positions, Pixel background, std::span<Pixel> out) {
    float shares[Positions::kMost];
    const int count = static_cast<int>(out.size());
    if (!InsideShares(positions, static_cast<float>(source.Width()), static_cast<float>(source.Height()),
                      count, shares))
        return;
    if (source.HasAlpha())
        BlendStraight(background, shares, out);
    else
        BlendOpaque(WordOf(background), shares, count, BytesOf(out));
}

}  // namespace tessara::effects
