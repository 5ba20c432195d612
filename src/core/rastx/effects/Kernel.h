#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

#include "core/Multiversion.h"
#include "core/Parallel.h"
#include "core/Result.h"
#include "core/rastx/Picture.h"

/// What stands once for all effects: the loops over rows with their threads, and random numbers. An
/// effect adds a rule for one row, a plain loop that the compiler vectorises.
namespace tessara::effects {

/// What an effect is given besides the picture and its parameters. The outcome depends on the seed where the
/// effect is a random one, never on the number of threads.
struct EffectRun {
    int threads = 1;
    std::uint32_t seed = 0;
};

/// How many pixels stand for one of a picture whose longer side is 500: lengths that a parameter gives in
/// pixels grow with the picture, so that an effect looks the same on a thumbnail and on a photograph.
inline float PixelScale(const Picture& picture) {
    return static_cast<float>(std::max(picture.Width(), picture.Height())) / 500;
}

/// A column, row or length as what containers count by.
inline std::size_t Index(int value) {
    return static_cast<std::size_t>(value);
}

/// A thread is worth its start from about this much work on.
inline int RowsPerThread(int width) {
    return (1 << 16) / std::max(1, width) + 1;
}

inline std::uint8_t* BytesOf(std::span<Pixel> pixels) {
    return reinterpret_cast<std::uint8_t*>(pixels.data());
}
inline const std::uint8_t* BytesOf(std::span<const Pixel> pixels) {
    return reinterpret_cast<const std::uint8_t*>(pixels.data());
}
/// The range algorithms copy pixel by pixel.
inline void CopyPixels(std::span<const Pixel> pixels, Pixel* out) {
    std::memcpy(static_cast<void*>(out), pixels.data(), pixels.size_bytes());
}

TESSARA_ALWAYS_INLINE std::uint32_t LoadPixel(const std::uint8_t* bytes) {
    std::uint32_t value;
    std::memcpy(&value, bytes, 4);
    return value;
}
TESSARA_ALWAYS_INLINE void StorePixel(std::uint8_t* bytes, std::uint32_t value) {
    std::memcpy(bytes, &value, 4);
}
inline std::uint32_t WordOf(Pixel pixel) {
    std::uint32_t value;
    std::memcpy(&value, &pixel, 4);
    return value;
}
inline constexpr std::uint32_t kColorBits = 0x00ffffff;
inline constexpr std::uint32_t kAlphaBits = 0xff000000;

TESSARA_ALWAYS_INLINE int ToByte(int value) {
    value = value < 0 ? 0 : value;
    return value > 255 ? 255 : value;
}
/// Rounds and clamps.
TESSARA_ALWAYS_INLINE int ToByte(float value) {
    value = value < 0.0f ? 0.0f : value;
    value = value > 255.0f ? 255.0f : value;
    return static_cast<int>(value + 0.5f);
}

/// A picture of another size with the same alpha and metadata; nothing in it is written yet.
Result<Picture> CreateLike(const Picture& picture, int width, int height);

/// The pixels that an effect reads and those that it writes: the same where nobody else holds the picture,
/// for the first touch of fresh memory costs more than most effects.
class Canvas {
  public:
    explicit Canvas(Picture picture);
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    std::span<const Pixel> Source(int y) const { return source_.subspan(Offset(y), Width()); }
    std::span<Pixel> Target(int y) const { return target_.subspan(Offset(y), Width()); }
    int Height() const { return targetPicture_.Height(); }
    bool InPlace() const { return sourcePicture_.Empty(); }
    Picture Take() && { return std::move(targetPicture_); }

  private:
    std::size_t Width() const { return static_cast<std::size_t>(targetPicture_.Width()); }
    std::size_t Offset(int y) const { return static_cast<std::size_t>(y) * Width(); }

    Picture sourcePicture_;  ///< empty where the work is done in place
    Picture targetPicture_;
    std::span<const Pixel> source_;
    std::span<Pixel> target_;
};

/// Point operations: `rule(row, y)` changes the pixels of one row in place.
template <typename Rule>
Picture ChangeRows(Picture picture, const EffectRun& run, const Rule& rule) {
    const int width = picture.Width();
    Canvas canvas(std::move(picture));
    ParallelRows(canvas.Height(), run.threads, RowsPerThread(width), [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const std::span<Pixel> row = canvas.Target(y);
            if (!canvas.InPlace()) CopyPixels(canvas.Source(y), row.data());
            rule(row, y);
        }
    });
    return std::move(canvas).Take();
}

/// A new picture of the given size: `rule(row, begin, end)` writes the rows from `begin` to `end`; row(y) is
/// one of them.
template <typename Rule>
Result<Picture> MakeBands(const Picture& like, int width, int height, const EffectRun& run,
                          const Rule& rule) {
    TRY_ASSIGN(Picture target, CreateLike(like, width, height));
    const std::span<Pixel> pixels = target.MutablePixels();
    const auto row = [pixels, side = static_cast<std::size_t>(width)](int y) {
        return pixels.subspan(static_cast<std::size_t>(y) * side, side);
    };
    ParallelRows(height, run.threads, RowsPerThread(width),
                 [&](int begin, int end) { rule(row, begin, end); });
    return target;
}

/// Rearranging operations: `rule(row, y)` writes one row of a new picture of the given size.
template <typename Rule>
Result<Picture> MakeRows(const Picture& like, int width, int height, const EffectRun& run, const Rule& rule) {
    return MakeBands(like, width, height, run, [&](const auto& row, int begin, int end) {
        for (int y = begin; y < end; ++y) rule(row(y), y);
    });
}

/// A random number for a value: every bit depends on every bit of it (a multiply-xorshift mix).
constexpr std::uint32_t RandomOf(std::uint32_t value) {
    value = (value ^ (value >> 16)) * 0x7feb352du;
    value = (value ^ (value >> 15)) * 0x846ca68bu;
    return value ^ (value >> 16);
}
/// The start of a sequence of random numbers, RandomOf(start + i), for one row or column of a picture.
constexpr std::uint32_t RandomStart(std::uint32_t seed, std::uint32_t line) {
    return RandomOf(RandomOf(seed ^ 0x5bd1e995u) + line * 0x9e3779b9u);
}
/// A random number as one in the range from -1 to 1.
constexpr float SignedUnit(std::uint32_t random) {
    return static_cast<float>(static_cast<std::int32_t>(random)) * (1.0f / 2147483648.0f);
}

/// sin of a whole turn times `turns`; a plain polynomial, so that loops with it vectorise.
TESSARA_ALWAYS_INLINE float SinOfTurns(float turns) {
    float rest = turns - static_cast<float>(static_cast<int>(turns));  // -1 to 1
    rest = rest > 0.5f ? rest - 1.0f : rest;
    rest = rest < -0.5f ? rest + 1.0f : rest;
    rest = rest > 0.25f ? 0.5f - rest : rest;
    rest = rest < -0.25f ? -0.5f - rest : rest;
    const float angle = rest * 6.28318531f;
    const float square = angle * angle;
    return angle *
           (1 + square * (-1.0f / 6 + square * (1.0f / 120 + square * (-1.0f / 5040 + square / 362880))));
}
TESSARA_ALWAYS_INLINE float CosOfTurns(float turns) {
    return SinOfTurns(turns + 0.25f);
}

}  // namespace tessara::effects
