#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <vector>

#include "core/Multiversion.h"
#include "core/Parallel.h"
#include "core/Result.h"
#include "core/rastx/Picture.h"

/// What stands once for all effects: the loops over rows with their threads, the borders, and alpha. An
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

/// A row with one more pixel at either end, a copy of the outermost.
class PaddedRow {
  public:
    explicit PaddedRow(std::span<const Pixel> row) : pixels_(row.size() + 2) { Load(row); }
    void Load(std::span<const Pixel> row);
    std::span<const Pixel> Pixels() const { return std::span(pixels_).subspan(1, pixels_.size() - 2); }
    const std::uint8_t* Bytes() const { return reinterpret_cast<const std::uint8_t*>(pixels_.data() + 1); }

  private:
    std::vector<Pixel> pixels_;
};

/// Three rows as bytes; each may be read one pixel beyond either end.
struct Neighbours {
    const std::uint8_t* above;
    const std::uint8_t* here;
    const std::uint8_t* below;
};

/// Gives the bytes of alpha in `row` the values of `alpha`.
void KeepAlpha(const std::uint8_t* alpha, std::span<Pixel> row);

/// The windows around pixels that have transparent neighbours, one beside the other in three rows. What is
/// transparent has no colour that anyone sees; so each neighbour counts by its alpha, and what is missing is
/// the colour of the pixel in the middle.
class AlphaWindows {
  public:
    AlphaWindows(const Neighbours& rows, std::span<Pixel> out);

    /// Takes the next windows; none are left where it returns false.
    bool Next();
    Neighbours Rows() const;
    std::size_t Length() const { return 12 * count_; }
    std::uint8_t* Out() { return BytesOf(std::span<Pixel>(out_)); }
    /// Gives the pixels of the windows what the rule made of them.
    void Put() const;

  private:
    static constexpr std::size_t kMost = 64;

    void Add(std::size_t column);

    Neighbours source_;
    std::span<Pixel> target_;
    std::vector<std::uint8_t> concerned_;  ///< for each column
    std::size_t next_ = 0;
    std::size_t count_ = 0;
    std::size_t columns_[kMost];
    Pixel rows_[3][3 * kMost + 2];
    Pixel out_[3 * kMost];
};

/// Neighbourhood operations: `rule(neighbours, length, out)` computes `length` bytes of one row from the 3x3
/// windows around them; beyond the border the outermost pixels go on. What the rule writes to alpha is
/// dropped. Transparent neighbours count by their alpha.
template <typename Rule>
Picture ChangeByNeighbours(Picture picture, const EffectRun& run, const Rule& rule) {
    const int width = picture.Width();
    const int height = picture.Height();
    const bool alpha = picture.HasAlpha();
    Canvas canvas(std::move(picture));
    // In place a band would read rows that its neighbours have overwritten; so those are put aside first.
    const int bands = std::clamp(height / RowsPerThread(width), 1, std::max(1, run.threads));
    const auto edge = [=](int band) { return static_cast<int>(std::int64_t{height} * band / bands); };
    std::vector<PaddedRow> outer;
    for (int band = 0; band < bands; ++band) {
        outer.emplace_back(canvas.Source(std::max(edge(band) - 1, 0)));
        outer.emplace_back(canvas.Source(std::min(edge(band + 1), height - 1)));
    }
    ParallelRows(bands, bands, 1, [&](int band, int) {
        PaddedRow above = outer[static_cast<std::size_t>(2 * band)];
        PaddedRow here(canvas.Source(edge(band)));
        PaddedRow below = here;
        for (int y = edge(band); y < edge(band + 1); ++y) {
            below.Load(y + 1 < edge(band + 1) ? canvas.Source(y + 1)
                                              : outer[static_cast<std::size_t>(2 * band + 1)].Pixels());
            const std::span<Pixel> row = canvas.Target(y);
            const Neighbours rows{above.Bytes(), here.Bytes(), below.Bytes()};
            rule(rows, 4 * row.size(), BytesOf(row));
            if (alpha) {
                for (AlphaWindows windows(rows, row); windows.Next(); windows.Put())
                    rule(windows.Rows(), windows.Length(), windows.Out());
            }
            KeepAlpha(here.Bytes(), row);
            std::swap(above, here);
            std::swap(here, below);
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

/// Positions in the source, in pixels from the centre of its first one.
struct Positions {
    static constexpr int kMost = 256;
    float x[kMost];
    float y[kMost];
};

/// Writes pixels from between those of a source, interpolated between the four around a position (colours by
/// their alpha). Beyond the border the outermost pixels go on, or a background that is blended in over the
/// width of a pixel. One run is always under way: while it is written, memory is asked for the next one's.
class Sampler {
  public:
    explicit Sampler(const Picture& source, std::optional<Pixel> background = {});
    ~Sampler();
    Sampler(const Sampler&) = delete;
    Sampler& operator=(const Sampler&) = delete;

    /// `out`, of at most Positions::kMost pixels, is complete after the next run or at the end of the
    /// sampler.
    void Write(const Positions& positions, std::span<Pixel> out);

  private:
    struct Run;

    void Finish(const Run& run) const;

    const Picture& source_;
    std::optional<Pixel> background_;
    std::unique_ptr<Run[]> runs_;
    int newest_ = 0;
};

/// Mapping operations: `rule(x, y, count, positions)` tells where `count` pixels of the result, from (x, y)
/// to the right, come from. Several rows are made together, for a steep mapping reads the same lines of
/// memory for all of them.
template <typename Rule>
Result<Picture> MapPositions(const Picture& source, int width, int height, std::optional<Pixel> background,
                             const EffectRun& run, const Rule& rule) {
    return MakeBands(source, width, height, run, [&](const auto& row, int begin, int end) {
        Sampler sampler(source, background);
        Positions positions;
        constexpr int kTileRows = 8;
        for (int top = begin; top < end; top += kTileRows) {
            for (int x = 0; x < width; x += Positions::kMost) {
                const int count = std::min(Positions::kMost, width - x);
                for (int y = top; y < std::min(top + kTileRows, end); ++y) {
                    rule(x, y, count, positions);
                    sampler.Write(positions, row(y).subspan(static_cast<std::size_t>(x),
                                                            static_cast<std::size_t>(count)));
                }
            }
        }
    });
}

template <typename Rule>
Result<Picture> MapPositions(const Picture& source, const EffectRun& run, const Rule& rule) {
    return MapPositions(source, source.Width(), source.Height(), {}, run, rule);
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
