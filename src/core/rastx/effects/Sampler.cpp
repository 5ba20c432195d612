#include "core/rastx/effects/Sampler.h"

namespace tessara::effects {
namespace {

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

/// The corners of a run of positions.
struct Corners {
    int offsets[Positions::kMost];
    std::uint32_t fractionsX[Positions::kMost];
    std::uint32_t fractionsY[Positions::kMost];
};

TESSARA_MULTIVERSION void FindCorners(const Positions& positions, int width, int height, int count,
                                      Corners& corners) {
    for (int i = 0; i < count; ++i) {
        const Corner corner = CornerOf(positions.x[i], positions.y[i], width, height);
        corners.offsets[i] = corner.offset;
        corners.fractionsX[i] = corner.fractionX;
        corners.fractionsY[i] = corner.fractionY;
    }
}

/// A picture's pixels and the ways to the next column and row, 0 where there is only one.
struct Grid {
    explicit Grid(const Picture& picture)
        : pixels(picture.Pixels().data()),
          right(picture.Width() > 1 ? 1 : 0),
          down(picture.Height() > 1 ? picture.Width() : 0) {}

    const Pixel* pixels;
    std::ptrdiff_t right, down;
};

/// Asks memory for the pixels: a mapping may jump from row to row, which the processor does not foresee. Of
/// neighbours that share a line one asks for the upper row and one for the lower.
void Prefetch(const Grid& grid, const Corners& corners, int count) {
    for (int i = 0; i < count; ++i) __builtin_prefetch(grid.pixels + corners.offsets[i] + i % 2 * grid.down);
}

/// Pixels side by side, the left one in the low half.
struct Pairs {
    std::uint64_t upper[Positions::kMost];
    std::uint64_t lower[Positions::kMost];
};

/// On its own, for instructions that gather in vector loops are slower than this.
void FetchPairs(const Grid& grid, const Corners& corners, int count, Pairs& pairs) {
    const auto pair = [&](const Pixel* left) {
        if (grid.right == 0) return std::uint64_t{WordOf(*left)} * 0x0000000100000001u;
        std::uint64_t both;
        std::memcpy(&both, left, sizeof both);
        return both;
    };
    for (int i = 0; i < count; ++i) {
        const Pixel* left = grid.pixels + corners.offsets[i];
        pairs.upper[i] = pair(left);
        pairs.lower[i] = pair(left + grid.down);
    }
}

/// Two channels at once, in the halves of a word.
TESSARA_MULTIVERSION void MixPairs(const Pairs& pairs, const Corners& corners, int count,
                                   std::uint8_t* __restrict out) {
    constexpr std::uint32_t kEven = 0x00ff00ffu;
    for (int i = 0; i < count; ++i) {
        const std::uint32_t x = corners.fractionsX[i];
        const std::uint32_t y = corners.fractionsY[i];
        const std::uint32_t both = (x * y + 128) >> 8;
        const std::uint32_t weights[] = {256 - x - y + both, x - both, y - both, both};
        const std::uint32_t pixels[] = {
            static_cast<std::uint32_t>(pairs.upper[i]), static_cast<std::uint32_t>(pairs.upper[i] >> 32),
            static_cast<std::uint32_t>(pairs.lower[i]), static_cast<std::uint32_t>(pairs.lower[i] >> 32)};
        std::uint32_t even = 0x00800080u;
        std::uint32_t odd = even;
        for (int k = 0; k < 4; ++k) {
            even += (pixels[k] & kEven) * weights[k];
            odd += ((pixels[k] >> 8) & kEven) * weights[k];
        }
        StorePixel(out + std::ptrdiff_t{4} * i, ((even >> 8) & kEven) | (odd & ~kEven));
    }
}

void MixByAlpha(const Grid& grid, const Corners& corners, std::span<Pixel> out) {
    for (std::size_t i = 0; i < out.size(); ++i) {
        const Pixel* first = grid.pixels + corners.offsets[i];
        const Pixel pixels[] = {first[0], first[grid.right], first[grid.down], first[grid.down + grid.right]};
        const std::uint32_t x = corners.fractionsX[i];
        const std::uint32_t y = corners.fractionsY[i];
        const std::uint32_t weights[] = {(256 - x) * (256 - y), x * (256 - y), (256 - x) * y, x * y};
        std::uint64_t alpha = 0, blue = 0, green = 0, red = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            const std::uint64_t share = std::uint64_t{weights[k]} * pixels[k].a;
            alpha += share;
            blue += share * pixels[k].b;
            green += share * pixels[k].g;
            red += share * pixels[k].r;
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

enum Place { kSomeInside = 1, kSomeOutside = 2 };

/// The share of each pixel that lies inside; returns the places that occur.
TESSARA_MULTIVERSION int InsideShares(const Positions& positions, float width, float height, int count,
                                      float* __restrict shares) {
    int places = 0;
    for (int i = 0; i < count; ++i) {
        const float share = Inside(positions.x[i], width) * Inside(positions.y[i], height);
        shares[i] = share;
        places |= (share > 0 ? kSomeInside : 0) | (share < 1 ? kSomeOutside : 0);
    }
    return places;
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

struct Sampler::Run {
    std::span<Pixel> out;
    Corners corners;
    int places = kSomeInside;
    float shares[Positions::kMost];  ///< where there is a background
};

Sampler::Sampler(const Picture& source, std::optional<Pixel> background)
    : source_(source), background_(background), runs_(std::make_unique<Run[]>(2)) {}

Sampler::~Sampler() {
    Finish(runs_[newest_]);
}

void Sampler::Write(const Positions& positions, std::span<Pixel> out) {
    const Run& before = runs_[newest_];
    newest_ = 1 - newest_;
    Run& run = runs_[newest_];
    run.out = out;
    const int count = static_cast<int>(out.size());
    if (background_)
        run.places = InsideShares(positions, static_cast<float>(source_.Width()),
                                  static_cast<float>(source_.Height()), count, run.shares);
    if (run.places != kSomeOutside) {
        FindCorners(positions, source_.Width(), source_.Height(), count, run.corners);
        Prefetch(Grid(source_), run.corners, count);
    }
    Finish(before);
}

void Sampler::Finish(const Run& run) const {
    if (run.places == kSomeOutside) {
        std::ranges::fill(run.out, *background_);
        return;
    }
    const int count = static_cast<int>(run.out.size());
    if (source_.HasAlpha()) {
        MixByAlpha(Grid(source_), run.corners, run.out);
    } else {
        Pairs pairs;
        FetchPairs(Grid(source_), run.corners, count, pairs);
        MixPairs(pairs, run.corners, count, BytesOf(run.out));
    }
    if (run.places == kSomeInside) return;
    if (source_.HasAlpha())
        BlendStraight(*background_, run.shares, run.out);
    else
        BlendOpaque(WordOf(*background_), run.shares, count, BytesOf(run.out));
}

}  // namespace tessara::effects
