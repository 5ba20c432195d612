#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/rastx/Rastx.h"
#include "core/rastx/effects/EffectTable.h"
#include "tests/Support.h"

namespace tessara::test {
namespace {

using effects::ArgumentValues;
using effects::Effect;

template <typename... Types, std::size_t... places>
Result<void> CallWith(Rastx& pane, Result<void> (Rastx::*member)(Types...), const ArgumentValues& values,
                      std::index_sequence<places...>) {
    return (pane.*member)(static_cast<Types>(values[places])...);
}
template <typename... Types>
constexpr std::size_t CountOf(Result<void> (Rastx::*)(Types...)) {
    return sizeof...(Types);
}
template <auto member>
Result<void> Call(Rastx& pane, const ArgumentValues& values) {
    return CallWith(pane, member, values, std::make_index_sequence<CountOf(member)>());
}

struct Member {
    const char* name;
    std::size_t argumentCount;
    Result<void> (*call)(Rastx& pane, const ArgumentValues& values);
};

#define MEMBER(name)                                       \
    Member {                                               \
#name, CountOf(&Rastx::name), Call < &Rastx::name> \
    }
constexpr Member kMembers[] = {
    MEMBER(FxAddNoise),
    MEMBER(FxAntiAlias),
    MEMBER(FxBlur),
    MEMBER(FxBrightness),
    MEMBER(FxButtonEllipse1),
    MEMBER(FxButtonEllipse2),
    MEMBER(FxButtonEllipse3),
    MEMBER(FxButtonSimple),
    MEMBER(FxButtonSmooth),
    MEMBER(FxColorBalance),
    MEMBER(FxColorize),
    MEMBER(FxContrast),
    MEMBER(FxDiffuse),
    MEMBER(FxEmboss),
    MEMBER(FxEmbossColor),
    MEMBER(FxEnhanceEdge),
    MEMBER(FxFindEdges),
    MEMBER(FxFishEye),
    MEMBER(FxFlipHorizontal),
    MEMBER(FxFlipVertical),
    MEMBER(FxGamma),
    MEMBER(FxGrayScale),
    MEMBER(FxHighPass),
    MEMBER(FxMaskEllipse),
    MEMBER(FxMosaic),
    MEMBER(FxNegative),
    MEMBER(FxNeonTrace),
    MEMBER(FxPosterize),
    MEMBER(FxReflectUpDown),
    MEMBER(FxReflectLeftRight),
    MEMBER(FxRippleRandom),
    MEMBER(FxRippleSine),
    MEMBER(FxRippleTooth),
    MEMBER(FxRippleTriangle),
    MEMBER(FxRotate),
    MEMBER(FxShakeLeftRight),
    MEMBER(FxShakeUpDown),
    MEMBER(FxSharpen),
    MEMBER(FxSoften),
    MEMBER(FxSolarize),
    MEMBER(FxStretchUpLeft),
    MEMBER(FxStretchUpRight),
    MEMBER(FxStretchDownLeft),
    MEMBER(FxStretchDownRight),
    MEMBER(FxSwapGreenBlue),
    MEMBER(FxSwapRedBlue),
    MEMBER(FxSwapRedGreen),
    MEMBER(FxSwirl),
    MEMBER(FxTexturedGlass),
    MEMBER(FxTile1),
    MEMBER(FxTile2),
    MEMBER(FxWind),
};
#undef MEMBER

/// Different for each argument, so that a change of their order shows; many usual values change nothing.
ArgumentValues Telling(const Effect& effect) {
    ArgumentValues values{};
    for (std::size_t i = 0; i < effect.arguments.size(); ++i) {
        const effects::Argument& argument = effect.arguments[i];
        const double share = 0.25 * static_cast<double>(3 - i);
        values[i] = argument.lowest + share * (argument.highest - argument.lowest);
        if (argument.kind != effects::ArgumentKind::Real) values[i] = std::floor(values[i]);
    }
    return values;
}

TEST(RastxEffects, EachMemberIsTheRowOfItsName) {
    constexpr std::uint32_t kSeed = 9;
    const Picture photo = PhotoLike(90, 70);
    std::size_t swept = 0;
    for (const Effect& effect : effects::EffectTable()) {
        SCOPED_TRACE(effect.name);
        const auto* member = std::ranges::find(kMembers, effect.name, &Member::name);
        ASSERT_NE(member, std::end(kMembers));
        EXPECT_EQ(member->argumentCount, effect.arguments.size());
        for (const ArgumentValues& values : {effect.Usual(), Telling(effect)}) {
            Rastx pane({.randomSeed = [] { return kSeed; }});
            pane.SetImage(photo);
            Must(member->call(pane, values));
            EXPECT_EQ(LargestDifference(pane.Image(),
                                        Must(effect.apply(photo, values, {.threads = 1, .seed = kSeed}))),
                      0);
        }
        ++swept;
    }
    EXPECT_EQ(swept, std::size(kMembers));
}

TEST(RastxEffects, TellingValuesTellTheEffectsApart) {
    const Picture photo = PhotoLike(90, 70);
    for (const Effect& effect : effects::EffectTable())
        EXPECT_NE(LargestDifference(photo, Must(effect.apply(photo, Telling(effect), {.seed = 9}))), 0)
            << effect.name;
}

}  // namespace
}  // namespace tessara::test
