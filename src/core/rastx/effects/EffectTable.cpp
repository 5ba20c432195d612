#include "core/rastx/effects/EffectTable.h"

#include <utility>

#include "core/rastx/effects/Buttons.h"
#include "core/rastx/effects/Convolution.h"
#include "core/rastx/effects/Displacement.h"
#include "core/rastx/effects/Edges.h"
#include "core/rastx/effects/Geometry.h"
#include "core/rastx/effects/Mosaic.h"
#include "core/rastx/effects/Noise.h"
#include "core/rastx/effects/Point.h"
#include "core/rastx/effects/Refraction.h"

namespace tessara::effects {
namespace {

/// A number of a table as whatever type the effect's function takes.
struct Number {
    double value;
    template <typename Type>
    operator Type() const {
        return static_cast<Type>(value);
    }
};

/// An effect's function, called with as many of the values as it takes.
template <auto function>
Result<Picture> Call(Picture picture, const ArgumentValues& values, const EffectRun& run) {
    const auto call = [&](auto... numbers) { return function(std::move(picture), numbers..., run); };
    const Number first{values[0]}, second{values[1]}, third{values[2]};
    using Function = decltype(function);
    if constexpr (std::is_invocable_v<Function, Picture, EffectRun>)
        return call();
    else if constexpr (std::is_invocable_v<Function, Picture, Number, EffectRun>)
        return call(first);
    else if constexpr (std::is_invocable_v<Function, Picture, Number, Number, EffectRun>)
        return call(first, second);
    else
        return call(first, second, third);
}

constexpr Argument Integer(std::string_view name, int lowest, int highest, int usual) {
    return {name, ArgumentKind::Integer, double(lowest), double(highest), double(usual)};
}
constexpr Argument Real(std::string_view name, double lowest, double highest, double usual) {
    return {name, ArgumentKind::Real, lowest, highest, usual};
}
constexpr Argument Color(std::string_view name, ColorNumber usual) {
    return {name, ArgumentKind::Color, 0, double(RGB(255, 255, 255)), double(usual)};
}

constexpr Argument kPercent[] = {Integer("percent", -100, 100, 0)};
constexpr Argument kNoise[] = {Integer("percent", 0, 100, 30),
                               {"monochromatic", ArgumentKind::Flag, 0, 1, 0}};
constexpr Argument kButton[] = {Integer("depth", 0, 100, 40), Integer("weight", 0, 100, 40)};
constexpr Argument kButtonSmooth[] = {Integer("depth", 0, 100, 40)};
constexpr Argument kColorize[] = {Integer("hue", -250, 250, 0), Integer("saturation", -250, 250, 0),
                                  Integer("luminance", -250, 250, 0)};
constexpr Argument kColorBalance[] = {Integer("red", -250, 250, 0), Integer("green", -250, 250, 0),
                                      Integer("blue", -250, 250, 0)};
constexpr Argument kRotate[] = {Integer("angle", 0, 360, 0), Color("background", RGB(255, 255, 255))};
constexpr Argument kFishEye[] = {Real("strength", 0.01, 3, 0.01)};
constexpr Argument kMask[] = {Color("color", RGB(255, 255, 255))};
constexpr Argument kMosaic[] = {Integer("width", 2, 20, 5), Integer("height", 2, 20, 5)};
constexpr Argument kBits[] = {Integer("bits", 1, 4, 1)};
constexpr Argument kRipple[] = {Integer("depth", 1, 20, 1)};
constexpr Argument kShake[] = {Real("amount", 0.005, 0.1, 0.005)};
constexpr Argument kThreshold[] = {Integer("threshold", 1, 250, 100)};
constexpr Argument kDiffuse[] = {Integer("depth", 0, 20, 5)};
constexpr Argument kSwirl[] = {Integer("depth", 1, 300, 1)};
constexpr Argument kGlass[] = {Real("scale", 1, 20, 10), Integer("chaos", 1, 20, 10)};
constexpr Argument kTile[] = {Integer("depth", 1, 100, 50)};
constexpr Argument kGamma[] = {Real("gamma", 0.1, 3, 1.5)};
constexpr Argument kWind[] = {Integer("depth", 5, 50, 5)};

constexpr bool kMoves = true, kStays = false, kRandom = true, kFixed = false;

constexpr Effect kEffects[] = {
    {"FxContrast", kPercent, kStays, kFixed, Call<Contrast>},
    {"FxNegative", {}, kStays, kFixed, Call<Negative>},
    {"FxAddNoise", kNoise, kStays, kRandom, Call<AddNoise>},
    {"FxAntiAlias", {}, kStays, kFixed, Call<AntiAlias>},
    {"FxBlur", {}, kStays, kFixed, Call<Blur>},
    {"FxButtonEllipse1", kButton, kStays, kFixed, Call<ButtonEllipse1>},
    {"FxButtonEllipse2", kButton, kStays, kFixed, Call<ButtonEllipse2>},
    {"FxButtonEllipse3", kButton, kStays, kFixed, Call<ButtonEllipse3>},
    {"FxButtonSimple", kButton, kStays, kFixed, Call<ButtonSimple>},
    {"FxButtonSmooth", kButtonSmooth, kStays, kFixed, Call<ButtonSmooth>},
    {"FxColorize", kColorize, kStays, kFixed, Call<Colorize>},
    {"FxRotate", kRotate, kMoves, kFixed, Call<Rotate>},
    {"FxEmboss", {}, kStays, kFixed, Call<Emboss>},
    {"FxEmbossColor", {}, kStays, kFixed, Call<EmbossColor>},
    {"FxHighPass", {}, kStays, kFixed, Call<HighPass>},
    {"FxFindEdges", {}, kStays, kFixed, Call<FindEdges>},
    {"FxFishEye", kFishEye, kMoves, kFixed, Call<FishEye>},
    {"FxFlipHorizontal", {}, kMoves, kFixed, Call<FlipHorizontal>},
    {"FxFlipVertical", {}, kMoves, kFixed, Call<FlipVertical>},
    {"FxGrayScale", {}, kStays, kFixed, Call<GrayScale>},
    {"FxEnhanceEdge", {}, kStays, kFixed, Call<EnhanceEdge>},
    {"FxBrightness", kPercent, kStays, kFixed, Call<Brightness>},
    {"FxMaskEllipse", kMask, kStays, kFixed, Call<MaskEllipse>},
    {"FxMosaic", kMosaic, kStays, kFixed, Call<Mosaic>},
    {"FxNeonTrace", {}, kStays, kFixed, Call<NeonTrace>},
    {"FxPosterize", kBits, kStays, kFixed, Call<Posterize>},
    {"FxReflectLeftRight", {}, kMoves, kFixed, Call<ReflectLeftRight>},
    {"FxReflectUpDown", {}, kMoves, kFixed, Call<ReflectUpDown>},
    {"FxRippleRandom", kRipple, kMoves, kRandom, Call<RippleRandom>},
    {"FxRippleSine", kRipple, kMoves, kFixed, Call<RippleSine>},
    {"FxRippleTooth", kRipple, kMoves, kFixed, Call<RippleTooth>},
    {"FxRippleTriangle", kRipple, kMoves, kFixed, Call<RippleTriangle>},
    {"FxShakeLeftRight", kShake, kMoves, kRandom, Call<ShakeLeftRight>},
    {"FxShakeUpDown", kShake, kMoves, kRandom, Call<ShakeUpDown>},
    {"FxSharpen", {}, kStays, kFixed, Call<Sharpen>},
    {"FxSoften", {}, kStays, kFixed, Call<Soften>},
    {"FxSolarize", kThreshold, kStays, kFixed, Call<Solarize>},
    {"FxDiffuse", kDiffuse, kMoves, kRandom, Call<Diffuse>},
    {"FxStretchDownLeft", {}, kMoves, kFixed, Call<StretchDownLeft>},
    {"FxStretchDownRight", {}, kMoves, kFixed, Call<StretchDownRight>},
    {"FxStretchUpLeft", {}, kMoves, kFixed, Call<StretchUpLeft>},
    {"FxStretchUpRight", {}, kMoves, kFixed, Call<StretchUpRight>},
    {"FxSwapGreenBlue", {}, kStays, kFixed, Call<SwapGreenBlue>},
    {"FxSwapRedBlue", {}, kStays, kFixed, Call<SwapRedBlue>},
    {"FxSwapRedGreen", {}, kStays, kFixed, Call<SwapRedGreen>},
    {"FxSwirl", kSwirl, kMoves, kFixed, Call<Swirl>},
    {"FxTexturedGlass", kGlass, kMoves, kRandom, Call<TexturedGlass>},
    {"FxTile1", kTile, kMoves, kRandom, Call<Tile1>},
    {"FxTile2", kTile, kMoves, kFixed, Call<Tile2>},
    {"FxGamma", kGamma, kStays, kFixed, Call<Gamma>},
    {"FxColorBalance", kColorBalance, kStays, kFixed, Call<ColorBalance>},
    {"FxWind", kWind, kStays, kRandom, Call<Wind>},
};

}  // namespace

ArgumentValues Effect::Usual() const {
    ArgumentValues values{};
    for (std::size_t i = 0; i < arguments.size(); ++i) values[i] = arguments[i].usual;
    return values;
}

std::span<const Effect> EffectTable() {
    return kEffects;
}

const Effect* FindEffect(std::string_view name) {
    const auto row = std::ranges::find(kEffects, name, &Effect::name);
    return row == std::end(kEffects) ? nullptr : row;
}

}  // namespace tessara::effects
