#include "core/rastx/effects/Geometry.h"

#include <cmath>
#include <numbers>
#include <vector>

#include "core/rastx/effects/Sampler.h"

namespace tessara::effects {
namespace {

/// `count` pixels in the opposite order.
TESSARA_MULTIVERSION void ReverseInto(const std::uint8_t* source, std::size_t count,
                                      std::uint8_t* __restrict out) {
    for (std::size_t i = 0; i < count; ++i) StorePixel(out + 4 * i, LoadPixel(source + 4 * (count - 1 - i)));
}

TESSARA_MULTIVERSION void SwapRows(std::uint8_t* __restrict one, std::uint8_t* __restrict other,
                                   std::size_t count) {
    for (std::size_t i = 0; i < 4 * count; i += 4) {
        const std::uint32_t pixel = LoadPixel(one + i);
        StorePixel(one + i, LoadPixel(other + i));
        StorePixel(other + i, pixel);
    }
}

/// A part of a picture that is read row by row and written column by column, or a piece of one; the steps
/// are those to the next row, negative where it lies above.
struct Transposition {
    const Pixel* source;
    std::ptrdiff_t sourceStep;
    Pixel* out;
    std::ptrdiff_t outStep;

    Transposition From(int row, int column) const {
        return {source + row * sourceStep + column, sourceStep, out + column * outStep + row, outStep};
    }
};

/// Four rows and columns.
TESSARA_ALWAYS_INLINE void TransposeFour(const Transposition& piece) {
    typedef std::uint32_t Four __attribute__((vector_size(16)));
    Four row[4];
    for (int y = 0; y < 4; ++y) std::memcpy(&row[y], piece.source + y * piece.sourceStep, sizeof row[y]);
    const Four left[] = {__builtin_shufflevector(row[0], row[1], 0, 4, 1, 5),
                         __builtin_shufflevector(row[2], row[3], 0, 4, 1, 5)};
    const Four right[] = {__builtin_shufflevector(row[0], row[1], 2, 6, 3, 7),
                          __builtin_shufflevector(row[2], row[3], 2, 6, 3, 7)};
    const Four columns[] = {__builtin_shufflevector(left[0], left[1], 0, 1, 4, 5),
                            __builtin_shufflevector(left[0], left[1], 2, 3, 6, 7),
                            __builtin_shufflevector(right[0], right[1], 0, 1, 4, 5),
                            __builtin_shufflevector(right[0], right[1], 2, 3, 6, 7)};
    for (int x = 0; x < 4; ++x)
        std::memcpy(static_cast<void*>(piece.out + x * piece.outStep), &columns[x], sizeof columns[x]);
}

void TransposeTile(const Transposition& tile, int rows, int columns) {
    const int wholeRows = rows & ~3;
    const int wholeColumns = columns & ~3;
    for (int x = 0; x < wholeColumns; x += 4)
        for (int y = 0; y < wholeRows; y += 4) TransposeFour(tile.From(y, x));
    for (int x = 0; x < columns; ++x)
        for (int y = x < wholeColumns ? wholeRows : 0; y < rows; ++y) {
            const Transposition pixel = tile.From(y, x);
            *pixel.out = *pixel.source;
        }
}

/// Turned by a quarter, in tiles as wide as a line of the cache. Memory is asked ahead for the next tile:
/// that one lies in other rows, which the processor does not foresee.
Result<Picture> QuarterTurn(const Picture& picture, bool clockwise, const EffectRun& run) {
    const int width = picture.Width();
    const int height = picture.Height();
    TRY_ASSIGN(Picture target, CreateLike(picture, height, width));
    const Pixel* source = picture.Pixels().data();
    Pixel* out = target.MutablePixels().data();
    const Transposition whole =
        clockwise ? Transposition{source + std::ptrdiff_t{height - 1} * width, -width, out, height}
                  : Transposition{source, width, out + std::ptrdiff_t{width - 1} * height, -height};
    constexpr int kSide = 16;
    const int strips = (width + kSide - 1) / kSide;
    ParallelRows(strips, run.threads, RowsPerThread(kSide * height), [&](int begin, int end) {
        for (int left = begin * kSide; left < std::min(end * kSide, width); left += kSide) {
            for (int top = 0; top < height; top += kSide) {
                for (int y = top + kSide; y < std::min(top + 2 * kSide, height); ++y)
                    __builtin_prefetch(whole.From(y, left).source);
                TransposeTile(whole.From(top, left), std::min(kSide, height - top),
                              std::min(kSide, width - left));
            }
        }
    });
    return target;
}

Picture HalfTurn(Picture picture, const EffectRun& run) {
    return FlipVertical(FlipHorizontal(std::move(picture), run), run);
}

/// Positions that lie on a straight line: the start and the step from pixel to pixel.
TESSARA_MULTIVERSION void LinePositions(float startX, float startY, float stepX, float stepY, int count,
                                        Positions& positions) {
    for (int i = 0; i < count; ++i) {
        positions.x[i] = startX + static_cast<float>(i) * stepX;
        positions.y[i] = startY + static_cast<float>(i) * stepY;
    }
}

Result<Picture> FreeTurn(const Picture& picture, double degrees, Pixel background, const EffectRun& run) {
    const double cosine = std::cos(degrees * std::numbers::pi / 180);
    const double sine = std::sin(degrees * std::numbers::pi / 180);
    const auto extent = [](double length) { return static_cast<int>(std::ceil(length - 1e-6)); };
    const int width = extent(picture.Width() * std::abs(cosine) + picture.Height() * std::abs(sine));
    const int height = extent(picture.Width() * std::abs(sine) + picture.Height() * std::abs(cosine));
    const auto rule = [&](int x, int y, int count, Positions& positions) {
        const double fromX = x - (width - 1) / 2.0;
        const double fromY = y - (height - 1) / 2.0;
        LinePositions(static_cast<float>((picture.Width() - 1) / 2.0 + fromX * cosine - fromY * sine),
                      static_cast<float>((picture.Height() - 1) / 2.0 + fromX * sine + fromY * cosine),
                      static_cast<float>(cosine), static_cast<float>(sine), count, positions);
    };
    return MapPositions(picture, width, height, background, run, rule);
}

/// Where a stretched pixel comes from, by its distances from the corner that is pulled out.
struct Stretch {
    bool right, down;
    float lastX, lastY;
};

TESSARA_MULTIVERSION void StretchPositions(const Stretch& stretch, int x, int y, int count,
                                           Positions& positions) {
    constexpr float kPull = 0.35f;
    const float perX = stretch.lastX > 0 ? 1 / stretch.lastX : 0.0f;
    const float perY = stretch.lastY > 0 ? 1 / stretch.lastY : 0.0f;
    const float fromRow = static_cast<float>(y) * perY;
    const float nearRow = stretch.down ? fromRow : 1 - fromRow;
    const float signX = stretch.right ? -1.0f : 1.0f;
    const float signY = stretch.down ? -1.0f : 1.0f;
    for (int i = 0; i < count; ++i) {
        const float fromColumn = static_cast<float>(x + i) * perX;
        const float nearColumn = stretch.right ? fromColumn : 1 - fromColumn;
        const float pull = kPull * nearRow * nearColumn;
        positions.x[i] = static_cast<float>(x + i) + signX * pull * stretch.lastX;
        positions.y[i] = static_cast<float>(y) + signY * pull * stretch.lastY;
    }
}

Result<Picture> StretchTo(const Picture& picture, bool right, bool down, const EffectRun& run) {
    const Stretch stretch{right, down, static_cast<float>(picture.Width() - 1),
                          static_cast<float>(picture.Height() - 1)};
    return MapPositions(picture, run, [&](int x, int y, int count, Positions& positions) {
        StretchPositions(stretch, x, y, count, positions);
    });
}

struct Center {
    float x, y;              ///< of the picture
    float radiusX, radiusY;  ///< where the effect ends
};

Center CenterOf(const Picture& picture) {
    const auto width = static_cast<float>(picture.Width());
    const auto height = static_cast<float>(picture.Height());
    return {(width - 1) / 2, (height - 1) / 2, width / 2, height / 2};
}

TESSARA_MULTIVERSION void SwirlPositions(const Center& center, float turns, int x, int y, int count,
                                         Positions& positions) {
    const float v = (static_cast<float>(y) - center.y) / center.radiusY;
    for (int i = 0; i < count; ++i) {
        const float u = (static_cast<float>(x + i) - center.x) / center.radiusX;
        const float square = u * u + v * v;
        const float distance = std::sqrt(square < 1 ? square : 1.0f);
        const float rest = 1 - distance;
        const float turn = turns * rest * rest;
        const float sine = SinOfTurns(turn);
        const float cosine = CosOfTurns(turn);
        positions.x[i] = center.x + (u * cosine - v * sine) * center.radiusX;
        positions.y[i] = center.y + (u * sine + v * cosine) * center.radiusY;
    }
}

/// `bend` from 0 to below 1: distances from the middle, as a share of the half diagonal, follow the division
/// model of lens distortion.
TESSARA_MULTIVERSION void LensPositions(const Center& center, float bend, int x, int y, int count,
                                        Positions& positions) {
    const float perSquare = 1 / (center.radiusX * center.radiusX + center.radiusY * center.radiusY);
    const float fromY = static_cast<float>(y) - center.y;
    for (int i = 0; i < count; ++i) {
        const float fromX = static_cast<float>(x + i) - center.x;
        const float square = (fromX * fromX + fromY * fromY) * perSquare;
        const float factor = (1 - bend) / (1 - bend * square);
        positions.x[i] = center.x + fromX * factor;
        positions.y[i] = center.y + fromY * factor;
    }
}

}  // namespace

Picture FlipHorizontal(Picture picture, const EffectRun& run) {
    const auto width = static_cast<std::size_t>(picture.Width());
    Canvas canvas(std::move(picture));
    ParallelRows(
        canvas.Height(), run.threads, RowsPerThread(static_cast<int>(width)), [&](int begin, int end) {
            std::vector<Pixel> before(canvas.InPlace() ? width : 0);
            for (int y = begin; y < end; ++y) {
                const std::span<Pixel> row = canvas.Target(y);
                if (canvas.InPlace()) CopyPixels(row, before.data());
                ReverseInto(BytesOf(canvas.InPlace() ? before : canvas.Source(y)), width, BytesOf(row));
            }
        });
    return std::move(canvas).Take();
}

Picture FlipVertical(Picture picture, const EffectRun& run) {
    const int height = picture.Height();
    const int width = picture.Width();
    Canvas canvas(std::move(picture));
    const int rows = canvas.InPlace() ? height / 2 : height;
    ParallelRows(rows, run.threads, RowsPerThread(width), [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const std::span<Pixel> row = canvas.Target(y);
            if (canvas.InPlace())
                SwapRows(BytesOf(row), BytesOf(canvas.Target(height - 1 - y)), row.size());
            else
                CopyPixels(canvas.Source(height - 1 - y), row.data());
        }
    });
    return std::move(canvas).Take();
}

Picture ReflectLeftRight(Picture picture, const EffectRun& run) {
    return ChangeRows(std::move(picture), run, [](std::span<Pixel> row, int) {
        const std::size_t half = row.size() / 2;
        ReverseInto(BytesOf(row), half, BytesOf(row.last(half)));
    });
}

Picture ReflectUpDown(Picture picture, const EffectRun& run) {
    const auto height = static_cast<std::size_t>(picture.Height());
    const auto width = static_cast<std::size_t>(picture.Width());
    const std::span<Pixel> pixels = picture.MutablePixels();
    ParallelRows(picture.Height() / 2, run.threads, RowsPerThread(picture.Width()), [&](int begin, int end) {
        for (auto y = static_cast<std::size_t>(begin); y < static_cast<std::size_t>(end); ++y)
            CopyPixels(pixels.subspan(y * width, width), &pixels[(height - 1 - y) * width]);
    });
    return picture;
}

Result<Picture> Rotate(const Picture& picture, int degrees, ColorNumber background, const EffectRun& run) {
    degrees = (degrees % 360 + 360) % 360;
    if (degrees == 0) return picture;
    if (degrees == 180) return HalfTurn(picture, run);
    if (degrees % 90 == 0) return QuarterTurn(picture, degrees == 270, run);
    return FreeTurn(picture, degrees, PixelFromColor(background), run);
}

Result<Picture> StretchUpLeft(const Picture& picture, const EffectRun& run) {
    return StretchTo(picture, false, false, run);
}
Result<Picture> StretchUpRight(const Picture& picture, const EffectRun& run) {
    return StretchTo(picture, true, false, run);
}
Result<Picture> StretchDownLeft(const Picture& picture, const EffectRun& run) {
    return StretchTo(picture, false, true, run);
}
Result<Picture> StretchDownRight(const Picture& picture, const EffectRun& run) {
    return StretchTo(picture, true, true, run);
}

Result<Picture> Swirl(const Picture& picture, int degrees, const EffectRun& run) {
    const float turns = static_cast<float>(degrees) / 360;
    return MapPositions(picture, run,
                        [&, center = CenterOf(picture)](int x, int y, int count, Positions& out) {
                            SwirlPositions(center, turns, x, y, count, out);
                        });
}

Result<Picture> FishEye(const Picture& picture, float strength, const EffectRun& run) {
    const float positive = std::max(0.0f, strength);
    const float bend = positive / (1 + positive);
    return MapPositions(picture, run,
                        [&, center = CenterOf(picture)](int x, int y, int count, Positions& out) {
                            LensPositions(center, bend, x, y, count, out);
                        });
}

}  // namespace tessara::effects
