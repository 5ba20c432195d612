#pragma once

#include <algorithm>
#include <span>

#include "core/rastx/BlendFunctions.h"

/// Stretches of rows, and how one of them is blended onto another.
namespace tessara::blend {

/// A stretch of one row. On a canvas colours are multiplied with alpha, in the source of a blend they are
/// straight.
struct Strip {
    Tone* tones = nullptr;  // of the column 0
    int left = 0, right = 0;

    Strip Limited(const Box& box) const {
        return {tones, static_cast<int>(std::max<std::int64_t>(left, box.left)),
                static_cast<int>(std::min<std::int64_t>(right, box.right))};
    }
    std::span<Tone> All() const {
        return {tones + left, static_cast<std::size_t>(std::max(right - left, 0))};
    }
};

/// Whether a layer may colour the canvas where it is transparent, or only change the colours that are there.
enum class Reach : bool { Everywhere, InsideOnly };

/// A colour multiplied with its alpha, as one that is straight.
inline Tone Straight(Tone tone) {
    if (tone.a <= 0) return {};
    // The rules take roots and quotients: a colour must not leave its range by a rounding error.
    const auto channel = [=](float value) { return std::clamp(value / tone.a, 0.0f, 1.0f); };
    return {channel(tone.b), channel(tone.g), channel(tone.r), tone.a};
}

/// Mixes the source onto the canvas, of which it is a part; `y` is the row. Dissolve leaves the source
/// changed.
void Blend(BlendMode mode, const Strip& source, const Strip& canvas, int y, Reach reach);

}  // namespace tessara::blend
