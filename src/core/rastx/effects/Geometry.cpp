#include "core/rastx/effects/Geometry.h"

#include <cmath>
#include <numbers>

namespace tessara::effects {
namespace {

/// Turned by a quarter: row y of the result is a column of the source. In blocks, so that a line of the cache
/// is used up before it is lost.
Result<Picture> QuarterTurn(const Picture& picture, bool clockwise, const EffectRun& run) {
    const int width = picture.Height();
    const int height = picture.Width();
    TRY_ASSIGN(Picture target, CreateLike(picture, width, height));
    const Pixel* source = picture.Pixels().data();
    Pixel* out = target.MutablePixels().data();
    constexpr int kSide = 32;
    ParallelRows((height + kSide - 1) / kSide, run.threads, RowsPerThread(kSide * width),
                 [&](int begin, int end) {
                     const int bottom = std::min(end * kSide, height);
                     for (int top = begin * kSide; top < bottom; top += kSide) {
                         for (int left = 0; left < width; left += kSide) {
                             for (int y = top; y < std::min(top + kSide, bottom); ++y) {
                                 const std::ptrdiff_t column = clockwise ? y : height - 1 - y;
                                 for (int x = left; x < std::min(left + kSide, width); ++x) {
                                     const std::ptrdiff_t row = clockwise ? width - 1 - x : x;
                                     out[std::ptrdiff_t{y} * width + x] = source[row * height + column];
                                 }
                             }
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
    return ChangeRows(std::move(picture), run, [](std::span<Pixel> row, int) { std::ranges::reverse(row); });
}

Picture FlipVertical(Picture picture, const EffectRun& run) {
    const auto height = static_cast<std::size_t>(picture.Height());
    const auto width = static_cast<std::size_t>(picture.Width());
    const std::span<Pixel> pixels = picture.MutablePixels();
    ParallelRows(picture.Height() / 2, run.threads, RowsPerThread(picture.Width()), [&](int begin, int end) {
        for (auto y = static_cast<std::size_t>(begin); y < static_cast<std::size_t>(end); ++y)
            std::ranges::swap_ranges(pixels.subspan(y * width, width),
                                     pixels.subspan((height - 1 - y) * width, width));
    });
    return picture;
}

Picture ReflectLeftRight(Picture picture, const EffectRun& run) {
    return ChangeRows(std::move(picture), run, [](std::span<Pixel> row, int) {
        const std::size_t half = row.size() / 2;
        std::ranges::reverse_copy(row.first(half), row.last(half).begin());
    });
}

Picture ReflectUpDown(Picture picture, const EffectRun& run) {
    const auto height = static_cast<std::size_t>(picture.Height());
    const auto width = static_cast<std::size_t>(picture.Width());
    const std::span<Pixel> pixels = picture.MutablePixels();
    ParallelRows(picture.Height() / 2, run.threads, RowsPerThread(picture.Width()), [&](int begin, int end) {
        for (auto y = static_cast<std::size_t>(begin); y < static_cast<std::size_t>(end); ++y)
            std::ranges::copy(pixels.subspan(y * width, width),
                              pixels.subspan((height - 1 - y) * width, width).begin());
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
