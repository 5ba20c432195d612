#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "core/rastx/Rastx.h"

namespace tessara {

/// A slider of the effect dialog; all sliders of an effect are alike. The large change is 50 throughout.
struct EffectSlider {
    int Min = 0;
    int Max = 0;
    int SmallChange = 1;
    int Value = 0;  ///< at first
};
inline constexpr int kEffectLargeChange = 50;

/// Where the dialog shows a slider's value, and in which form.
enum class ValueForm {
    Number,         ///< above the slider
    Percent,        ///< above the slider
    Box,            ///< in the value box beside it, positive numbers with a plus sign
    BoxAndPercent,  ///< in the box and above
    BoxAndPixels    ///< in the box and above
};

/// An effect with parameters, as the effect dialog offers it.
struct EffectParameters {
    int code;
    std::array<std::string_view, 3> captions;  ///< of the sliders; empty behind the last
    ValueForm valueForm;
    /// Names in effects::EffectTable, run one after the other; the own effects have none.
    std::array<std::string_view, 2> operations = {};
    double divisor = 1;          ///< an operation's argument is the slider's value divided by it
    bool repeated = false;       ///< the operation has no argument: it is run as often as the slider says
    EffectSlider ownRange = {};  ///< where no argument of the operation tells the range

    int SliderCount() const;
    /// Of the three sliders a single one is the middle one.
    int FirstSlider() const { return SliderCount() == 1 ? 1 : 0; }
    EffectSlider Slider() const;
    bool IsOwnEffect() const { return operations[0].empty(); }
};

/// In ascending order of their codes.
std::span<const EffectParameters> EffectParametersTable();
/// Null for a code without parameters.
const EffectParameters* FindEffectParameters(int code);

/// How values of any code are shown, those without parameters too.
ValueForm ValueFormOf(int code);
/// A value in a box: "+5", "-5" or "0".
std::string SignedText(int value);
/// The text above a slider; empty where the form has none.
std::string ValueText(ValueForm form, int value);
/// "Apply when slider being dragged", or sliders: a fixed set of codes has the plural.
std::string_view DragCaption(int code);

/// What the controls of the effect dialog say.
struct EffectChoice {
    std::array<int, 3> sliders{};
    ColorNumber background = RGB(255, 255, 255);  ///< of rotated pictures
    /// Noise is monochromatic; an own effect leaves the transparent colour alone.
    bool Check1 = false;
};
/// Runs an operation of the pane by its name. The numbers go to its numeric arguments, in order, and the
/// others to the arguments of their kind, where it has any.
Result<void> RunOperation(Rastx& pane, std::string_view name, std::span<const double> numbers,
                          ColorNumber color, bool flag);
/// Runs the operations of an effect on the pane, each whether or not the one before succeeded.
void RunPaneEffect(const EffectParameters& effect, const EffectChoice& choice, Rastx& pane);

}  // namespace tessara
