#pragma once

#include <algorithm>
#include <memory>
#include <optional>

#include "core/rastx/effects/Kernel.h"

/// What stands once for the effects that take their pixels from somewhere else in the picture.
namespace tessara::effects {

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

}  // namespace tessara::effects
