#include "edit/EffectParameters.h"

#include <algorithm>
#include <cmath>

#include "core/rastx/effects/EffectTable.h"

namespace tessara {
namespace {

using enum ValueForm;

/// The own effects and one other share a layout of their own.
constexpr std::string_view kOwnCaption = " Depth:";

constexpr EffectParameters OneSlider(int code, std::string_view operation,
                                     std::string_view caption = "Depth:", ValueForm valueForm = Number,
                                     double divisor = 1) {
    return {code, {caption}, valueForm, {operation}, divisor};
}
/// A single pass of such an operation takes no argument.
constexpr EffectParameters Repeated(int code, std::string_view operation) {
    return {code, {"Depth:"}, Number, {operation}, 1, true, {0, 10, 1, 1}};
}
constexpr EffectParameters TwoSliders(int code, std::string_view operation, std::string_view first,
                                      std::string_view second) {
    return {code, {first, second}, Box, {operation}};
}
constexpr EffectParameters Own(int code, int Max, int Value) {
    return {code, {kOwnCaption}, Percent, {}, 100, false, {0, Max, 5, Value}};
}

constexpr EffectParameters kTable[] = {
    {1, {"Brightness", "Contrast"}, Box, {"FxBrightness", "FxContrast"}},
    Repeated(9, "FxBlur"),
    Repeated(10, "FxSharpen"),
    OneSlider(12, "FxDiffuse", kOwnCaption),
    Own(19, 200, 100),
    Own(20, 200, 100),
    Own(21, 200, 75),
    Own(22, 200, 100),
    Own(23, 200, 100),
    Own(24, 200, 100),
    Own(25, 200, 100),
    Own(27, 100, 100),
    Own(28, 200, 100),
    Own(29, 200, 100),
    Own(30, 200, 125),
    OneSlider(107, "FxRotate", "Angle:", Box),
    Own(114, 200, 100),
    // No menu entry leads here: the dialog knows how it would look, and no rule changes the picture.
    {116, {"Angle:"}, BoxAndPixels, {}, 100, false, {0, 360, 1, 0}},
    OneSlider(117, "FxAddNoise", "Percent:", Percent),
    {200, {"Hue", "Saturation", "Luminance"}, Box, {"FxColorize"}},
    {204, {"Red", "Green", "Blue"}, Box, {"FxColorBalance"}},
    OneSlider(205, "FxGamma", "Gamma:", BoxAndPercent, 10),
    Repeated(206, "FxSoften"),
    OneSlider(210, "FxRippleSine"),
    OneSlider(211, "FxRippleTooth"),
    OneSlider(212, "FxRippleRandom"),
    OneSlider(213, "FxRippleTriangle"),
    OneSlider(215, "FxShakeUpDown", "Depth:", Number, 1000),
    OneSlider(216, "FxShakeLeftRight", "Depth:", Number, 1000),
    OneSlider(217, "FxWind"),
    OneSlider(218, "FxSwirl"),
    OneSlider(219, "FxFishEye", "Depth:", Number, 100),
    TwoSliders(220, "FxTexturedGlass", "Scale", "Chaos"),
    Repeated(221, "FxEmboss"),
    Repeated(222, "FxEmbossColor"),
    OneSlider(230, "FxPosterize", "Bits:"),
    OneSlider(231, "FxSolarize"),
    OneSlider(240, "FxButtonSmooth"),
    TwoSliders(241, "FxButtonSimple", "Depth", "Weight"),
    TwoSliders(243, "FxButtonEllipse1", "Depth", "Weight"),
    TwoSliders(244, "FxButtonEllipse2", "Depth", "Weight"),
    TwoSliders(245, "FxButtonEllipse3", "Depth", "Weight"),
    OneSlider(250, "FxTile1"),
    OneSlider(251, "FxTile2"),
    TwoSliders(252, "FxMosaic", "Width", "Height"),
};

const effects::Effect& Operation(std::string_view name) {
    const effects::Effect* effect = effects::FindEffect(name);
    assert(effect);
    return *effect;
}

}  // namespace

int EffectParameters::SliderCount() const {
    return static_cast<int>(std::ranges::find(captions, std::string_view{}) - captions.begin());
}

EffectSlider EffectParameters::Slider() const {
    if (IsOwnEffect() || repeated) return ownRange;
    const effects::Argument& argument = Operation(operations[0]).arguments[0];
    const auto steps = [&](double value) { return static_cast<int>(std::lround(value * divisor)); };
    return {steps(argument.lowest), steps(argument.highest), 1, steps(argument.usual)};
}

std::span<const EffectParameters> EffectParametersTable() {
    return kTable;
}

const EffectParameters* FindEffectParameters(int code) {
    const auto row = std::ranges::find(kTable, code, &EffectParameters::code);
    return row == std::end(kTable) ? nullptr : row;
}

ValueForm ValueFormOf(int code) {
    if (const EffectParameters* effect = FindEffectParameters(code)) return effect->valueForm;
    return code == 0 ? Box : Percent;
}

std::string SignedText(int value) {
    return (value > 0 ? "+" : "") + std::to_string(value);
}

std::string ValueText(ValueForm form, int value) {
    switch (form) {
        case Box:
            return {};
        case Number:
            return std::to_string(value);
        case BoxAndPixels:
            return std::to_string(value) + " Pixels";
        default:
            return std::to_string(value) + " %";
    }
}

std::string_view DragCaption(int code) {
    const EffectParameters* effect = FindEffectParameters(code);
    const bool plural = effect && (effect->SliderCount() > 1 || effect->captions[0] == kOwnCaption);
    return plural ? "Apply when sliders being dragged" : "Apply when slider being dragged";
}

Result<void> RunOperation(Rastx& pane, std::string_view name, std::span<const double> numbers,
                          ColorNumber color, bool flag) {
    const effects::Effect& operation = Operation(name);
    effects::ArgumentValues values{};
    auto number = numbers.begin();
    for (std::size_t i = 0; i < operation.arguments.size(); ++i) {
        switch (operation.arguments[i].kind) {
            case effects::ArgumentKind::Color:
                values[i] = color;
                break;
            case effects::ArgumentKind::Flag:
                values[i] = flag;
                break;
            default:
                values[i] = *number++;
        }
    }
    return pane.Run(operation, values);
}

void RunPaneEffect(const EffectParameters& effect, const EffectChoice& choice, Rastx& pane) {
    std::array<double, 3> numbers;
    std::ranges::transform(choice.sliders, numbers.begin(),
                           [&](int value) { return value / effect.divisor; });
    auto values = std::span<const double>(numbers).subspan(static_cast<std::size_t>(effect.FirstSlider()));
    const auto run = [&](std::string_view name) {
        Ignore(RunOperation(pane, name, values, choice.background, choice.Check1));
    };
    if (effect.repeated) {
        for (int i = 0; i < choice.sliders[1]; ++i) run(effect.operations[0]);
        return;
    }
    for (const std::string_view name : effect.operations) {
        if (name.empty()) break;
        run(name);
        values = values.subspan(1);  // a second operation has the second slider
    }
}

}  // namespace tessara
