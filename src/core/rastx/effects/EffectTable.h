#pragma once

#include <array>
#include <span>
#include <string_view>

#include "core/rastx/effects/Kernel.h"

/// Every operation of the imaging pane on pixels, by its name.
namespace tessara::effects {

enum class ArgumentKind { Integer, Real, Flag, Color };

/// The range and default are those of the effect dialog, as it passes them. A flag is 0 or 1.
struct Argument {
    std::string_view name;
    ArgumentKind kind;
    double lowest, highest, usual;
};

/// Values of an effect's arguments, in order; what it has no argument for is not looked at.
using ArgumentValues = std::array<double, 3>;

struct Effect {
    std::string_view name;
    std::span<const Argument> arguments;
    bool movesPixels;  ///< and alpha with them; the others leave alpha alone
    bool random;       ///< the outcome depends on the seed
    /// A picture that is handed over, and that nobody shares, is worked on in place where the effect can.
    Result<Picture> (*apply)(Picture picture, const ArgumentValues& values, const EffectRun& run);

    ArgumentValues Usual() const;
};

std::span<const Effect> EffectTable();
/// Null where there is none of that name.
const Effect* FindEffect(std::string_view name);

}  // namespace tessara::effects
