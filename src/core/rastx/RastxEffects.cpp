#include <type_traits>
#include <utility>

#include "core/WithinMemory.h"
#include "core/rastx/Rastx.h"
#include "core/rastx/effects/Buttons.h"
#include "core/rastx/effects/Convolution.h"
#include "core/rastx/effects/Displacement.h"
#include "core/rastx/effects/Edges.h"
#include "core/rastx/effects/EffectTable.h"
#include "core/rastx/effects/Geometry.h"
#include "core/rastx/effects/Mosaic.h"
#include "core/rastx/effects/Noise.h"
#include "core/rastx/effects/Point.h"
#include "core/rastx/effects/Refraction.h"
#include "core/rastx/effects/Resample.h"

namespace tessara {

effects::EffectRun Rastx::StartRun() const {
    return {surroundings_.threads, surroundings_.randomSeed ? surroundings_.randomSeed() : 0};
}

template <typename Effect, typename... Arguments>
Result<void> Rastx::Change(Effect effect, Arguments... arguments) {
    if (picture_.Empty()) return BadArgument("there is no picture");
    const effects::EffectRun run = StartRun();
    if constexpr (std::is_invocable_r_v<Picture, Effect, Picture, Arguments..., effects::EffectRun>) {
        // Such an effect works in place on a picture that is handed over. One that is shared it copies, and
        // comes to nothing where there is no memory for that.
        const Picture before = Image().Shared() ? Image() : Picture();
        auto changed = WithinMemory(
            [&]() -> Result<Picture> { return effect(picture_.TakeWhole(), arguments..., run); });
        picture_ = changed ? std::move(changed).Value() : before;
        if (!changed) return changed.Error();
    } else {
        TRY_ASSIGN(picture_, WithinMemory([&] { return effect(Image(), arguments..., run); }));
    }
    PictureChanged();
    return {};
}

Result<void> Rastx::Run(const effects::Effect& effect, const effects::ArgumentValues& arguments) {
    if (picture_.Empty()) return BadArgument("there is no picture");
    TRY_ASSIGN(picture_, WithinMemory([&] { return effect.apply(Image(), arguments, StartRun()); }));
    PictureChanged();
    return {};
}

Result<void> Rastx::Resample(int width, int height, bool fast) {
    if (fast) {
        TRY(picture_.PutOffResample(width, height, surroundings_.threads));
    } else {
        TRY_ASSIGN(picture_,
                   tessara::Resample(Image(), width, height, ResampleQuality::Best, surroundings_.threads));
    }
    PictureChanged();
    return {};
}

Result<void> Rastx::FxAddNoise(int percent, bool monochromatic) {
    return Change(effects::AddNoise, percent, monochromatic);
}
Result<void> Rastx::FxAntiAlias() {
    return Change(effects::AntiAlias);
}
Result<void> Rastx::FxBlur() {
    return Change(effects::Blur);
}
Result<void> Rastx::FxBrightness(int percent) {
    return Change(effects::Brightness, percent);
}
Result<void> Rastx::FxButtonEllipse1(int depth, int weight) {
    return Change(effects::ButtonEllipse1, depth, weight);
}
Result<void> Rastx::FxButtonEllipse2(int depth, int weight) {
    return Change(effects::ButtonEllipse2, depth, weight);
}
Result<void> Rastx::FxButtonEllipse3(int depth, int weight) {
    return Change(effects::ButtonEllipse3, depth, weight);
}
Result<void> Rastx::FxButtonSimple(int depth, int weight) {
    return Change(effects::ButtonSimple, depth, weight);
}
Result<void> Rastx::FxButtonSmooth(int depth) {
    return Change(effects::ButtonSmooth, depth);
}
Result<void> Rastx::FxColorBalance(int red, int green, int blue) {
    return Change(effects::ColorBalance, red, green, blue);
}
Result<void> Rastx::FxColorize(int hue, int saturation, int luminance) {
    return Change(effects::Colorize, hue, saturation, luminance);
}
Result<void> Rastx::FxContrast(int percent) {
    return Change(effects::Contrast, percent);
}
Result<void> Rastx::FxDiffuse(int depth) {
    return Change(effects::Diffuse, depth);
}
Result<void> Rastx::FxEmboss() {
    return Change(effects::Emboss);
}
Result<void> Rastx::FxEmbossColor() {
    return Change(effects::EmbossColor);
}
Result<void> Rastx::FxEnhanceEdge() {
    return Change(effects::EnhanceEdge);
}
Result<void> Rastx::FxFindEdges() {
    return Change(effects::FindEdges);
}
Result<void> Rastx::FxFishEye(float strength) {
    return Change(effects::FishEye, strength);
}
Result<void> Rastx::FxFlipHorizontal() {
    return Change(effects::FlipHorizontal);
}
Result<void> Rastx::FxFlipVertical() {
    return Change(effects::FlipVertical);
}
Result<void> Rastx::FxGamma(float gamma) {
    return Change(effects::Gamma, gamma);
}
Result<void> Rastx::FxGrayScale() {
    return Change(effects::GrayScale);
}
Result<void> Rastx::FxHighPass() {
    return Change(effects::HighPass);
}
Result<void> Rastx::FxMaskEllipse(ColorNumber color) {
    return Change(effects::MaskEllipse, color);
}
Result<void> Rastx::FxMosaic(int cellWidth, int cellHeight) {
    return Change(effects::Mosaic, cellWidth, cellHeight);
}
Result<void> Rastx::FxNegative() {
    return Change(effects::Negative);
}
Result<void> Rastx::FxNeonTrace() {
    return Change(effects::NeonTrace);
}
Result<void> Rastx::FxPosterize(int bits) {
    return Change(effects::Posterize, bits);
}
Result<void> Rastx::FxReflectLeftRight() {
    return Change(effects::ReflectLeftRight);
}
Result<void> Rastx::FxReflectUpDown() {
    return Change(effects::ReflectUpDown);
}
Result<void> Rastx::FxRippleRandom(int depth) {
    return Change(effects::RippleRandom, depth);
}
Result<void> Rastx::FxRippleSine(int depth) {
    return Change(effects::RippleSine, depth);
}
Result<void> Rastx::FxRippleTooth(int depth) {
    return Change(effects::RippleTooth, depth);
}
Result<void> Rastx::FxRippleTriangle(int depth) {
    return Change(effects::RippleTriangle, depth);
}
Result<void> Rastx::FxRotate(int degrees, ColorNumber background) {
    return Change(effects::Rotate, degrees, background);
}
Result<void> Rastx::FxShakeLeftRight(float amount) {
    return Change(effects::ShakeLeftRight, amount);
}
Result<void> Rastx::FxShakeUpDown(float amount) {
    return Change(effects::ShakeUpDown, amount);
}
Result<void> Rastx::FxSharpen() {
    return Change(effects::Sharpen);
}
Result<void> Rastx::FxSoften() {
    return Change(effects::Soften);
}
Result<void> Rastx::FxSolarize(int threshold) {
    return Change(effects::Solarize, threshold);
}
Result<void> Rastx::FxStretchDownLeft() {
    return Change(effects::StretchDownLeft);
}
Result<void> Rastx::FxStretchDownRight() {
    return Change(effects::StretchDownRight);
}
Result<void> Rastx::FxStretchUpLeft() {
    return Change(effects::StretchUpLeft);
}
Result<void> Rastx::FxStretchUpRight() {
    return Change(effects::StretchUpRight);
}
Result<void> Rastx::FxSwapGreenBlue() {
    return Change(effects::SwapGreenBlue);
}
Result<void> Rastx::FxSwapRedBlue() {
    return Change(effects::SwapRedBlue);
}
Result<void> Rastx::FxSwapRedGreen() {
    return Change(effects::SwapRedGreen);
}
Result<void> Rastx::FxSwirl(int degrees) {
    return Change(effects::Swirl, degrees);
}
Result<void> Rastx::FxTexturedGlass(float scale, int chaos) {
    return Change(effects::TexturedGlass, scale, chaos);
}
Result<void> Rastx::FxTile1(int depth) {
    return Change(effects::Tile1, depth);
}
Result<void> Rastx::FxTile2(int depth) {
    return Change(effects::Tile2, depth);
}
Result<void> Rastx::FxWind(int depth) {
    return Change(effects::Wind, depth);
}

}  // namespace tessara
