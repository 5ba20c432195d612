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

/// Marks the visible pixels that have a neighbour which is not opaque.
TESSARA_MULTIVERSION void FindConcerned(const Neighbours& rows, std::size_t width,
                                        std::uint8_t* __restrict concerned) {
    for (std::size_t x = 0; x < width; ++x) {
        std::uint8_t least = 255;
        for (const std::uint8_t* row : {rows.above, rows.here, rows.below}) {
            const std::uint8_t* alpha = row + 4 * x + 3;
            const auto both = static_cast<std::uint8_t>(alpha[-4] & alpha[4]);
            least = static_cast<std::uint8_t>(least & alpha[0] & both);
        }
        concerned[x] = rows.here[4 * x + 3] != 0 && least != 255;
    }
}

/// The way from one colour to another, as far as `alpha` tells.
std::uint8_t Toward(std::uint8_t from, std::uint8_t to, std::uint8_t alpha) {
    const int way = (to - from) * alpha;
    return static_cast<std::uint8_t>(from + (way + (way < 0 ? -127 : 127)) / 255);
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
    CopyPixels(row, &pixels_[1]);
    pixels_.front() = row.front();
    pixels_.back() = row.back();
}

AlphaWindows::AlphaWindows(const Neighbours& rows, std::span<Pixel> out)
    : source_(rows), target_(out), concerned_(out.size()) {
    FindConcerned(rows, out.size(), concerned_.data());
}

bool AlphaWindows::Next() {
    for (count_ = 0; next_ < target_.size() && count_ < kMost; ++next_)
        if (concerned_[next_]) Add(next_);
    return count_ > 0;
}

void AlphaWindows::Add(std::size_t column) {
    const std::uint8_t* sources[] = {source_.above, source_.here, source_.below};
    Pixel middle;
    std::memcpy(static_cast<void*>(&middle), source_.here + 4 * column, sizeof middle);
    for (std::size_t y = 0; y < 3; ++y) {
        Pixel* window = &rows_[y][3 * count_ + 1];
        std::memcpy(static_cast<void*>(window), sources[y] + 4 * column - 4, 3 * sizeof middle);
        for (std::size_t x = 0; x < 3; ++x) {
            Pixel& pixel = window[x];
            pixel = {Toward(middle.b, pixel.b, pixel.a), Toward(middle.g, pixel.g, pixel.a),
                     Toward(middle.r, pixel.r, pixel.a), pixel.a};
        }
    }
    columns_[count_++] = column;
}

Neighbours AlphaWindows::Rows() const {
    const auto bytes = [](const Pixel* row) { return reinterpret_cast<const std::uint8_t*>(row + 1); };
    return {bytes(rows_[0]), bytes(rows_[1]), bytes(rows_[2])};
}

void AlphaWindows::Put() const {
    for (std::size_t i = 0; i < count_; ++i) target_[columns_[i]] = out_[3 * i + 1];
}

void KeepAlpha(const std::uint8_t* alpha, std::span<Pixel> row) {
    CopyAlpha(alpha, row.size(), BytesOf(row));
}

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
