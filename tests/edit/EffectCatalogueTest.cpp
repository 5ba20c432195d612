#include "edit/EffectCatalogue.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "core/rastx/effects/EffectTable.h"
#include "edit/EffectParameters.h"
#include "tests/Support.h"

namespace tessara {
namespace {

TEST(EffectCatalogue, OffersSixtyEightCommandsInSevenMenus) {
    std::map<std::string_view, int> nextIndex;
    int commands = 0;
    for (const EffectEntry& entry : EffectEntries()) {
        EXPECT_EQ(entry.index, nextIndex[entry.array]++) << entry.caption;
        if (entry.visible && entry.kind != EffectKind::None) ++commands;
        EXPECT_TRUE(!entry.IsSeparator() || entry.kind == EffectKind::None);
    }
    EXPECT_EQ(commands, 68);
    EXPECT_EQ(nextIndex.size(), EffectMenus().size());
    EXPECT_EQ(EffectCaptionOf(FindEffectEntry("mEffects", 13)->caption), "Reflect [LeftRight]");
}

TEST(EffectCatalogue, EveryCommandReachesAnOperationAndEveryOperationIsReached) {
    std::set<int> codes;
    std::set<std::string_view> reached;
    for (const EffectEntry& entry : EffectEntries()) {
        if (!entry.operation.empty()) reached.insert(entry.operation);
        if (entry.kind == EffectKind::Dialog) codes.insert(entry.code);
    }
    for (const EffectParameters& effect : EffectParametersTable()) {
        EXPECT_EQ(codes.erase(effect.code), effect.code == 116 ? 0U : 1U) << effect.code;
        for (const std::string_view name : effect.operations)
            if (!name.empty()) reached.insert(name);
    }
    EXPECT_TRUE(codes.empty()) << "codes without parameters";
    std::set<std::string_view> operations;
    for (const effects::Effect& effect : effects::EffectTable()) operations.insert(effect.name);
    EXPECT_EQ(reached, operations);
}

/// "sliders: Min..Max by SmallChange at Value", what stands above a slider at its Value, and whether the box
/// of the live preview speaks of sliders.
std::string Describe(int code) {
    const EffectParameters& effect = *FindEffectParameters(code);
    const EffectSlider slider = effect.Slider();
    const bool plural = DragCaption(code).find("sliders") != std::string_view::npos;
    return std::to_string(effect.SliderCount()) + ": " + std::to_string(slider.Min) + ".." +
           std::to_string(slider.Max) + " by " + std::to_string(slider.SmallChange) + " at " +
           std::to_string(slider.Value) + " [" + ValueText(ValueFormOf(code), slider.Value) + "]" +
           (plural ? " sliders" : "");
}

TEST(EffectParameters, EveryKindOfEffectHasItsSliders) {
    const std::pair<int, const char*> cases[] = {
        {1, "2: -100..100 by 1 at 0 [] sliders"},
        {9, "1: 0..10 by 1 at 1 [1]"},
        {12, "1: 0..20 by 1 at 5 [5] sliders"},
        {21, "1: 0..200 by 5 at 75 [75 %] sliders"},
        {27, "1: 0..100 by 5 at 100 [100 %] sliders"},
        {107, "1: 0..360 by 1 at 0 []"},
        {116, "1: 0..360 by 1 at 0 [0 Pixels]"},
        {117, "1: 0..100 by 1 at 30 [30 %]"},
        {200, "3: -250..250 by 1 at 0 [] sliders"},
        {205, "1: 1..30 by 1 at 15 [15 %]"},
        {216, "1: 5..100 by 1 at 5 [5]"},
        {219, "1: 1..300 by 1 at 1 [1]"},
        {220, "2: 1..20 by 1 at 10 [] sliders"},
        {243, "2: 0..100 by 1 at 40 [] sliders"},
        {252, "2: 2..20 by 1 at 5 [] sliders"},
    };
    for (const auto& [code, expected] : cases) EXPECT_EQ(Describe(code), expected) << code;
    EXPECT_EQ(SignedText(5) + SignedText(0) + SignedText(-5), "+50-5");
    EXPECT_EQ(ValueFormOf(0), ValueForm::Box);
    EXPECT_EQ(ValueFormOf(26), ValueForm::Percent) << "as every code that is not known";
}

TEST(EffectParameters, SlidersReachTheirArguments) {
    struct Case {
        int code;
        std::array<int, 3> sliders;
        Result<void> (*same)(Rastx& pane);
    };
    const Case cases[] = {
        {9,
         {9, 2, 9},
         [](Rastx& pane) {
             Ignore(pane.FxBlur());
             return pane.FxBlur();
         }},
        {1, {0, -30, 9}, [](Rastx& pane) { return pane.FxContrast(-30); }},
        {107, {9, 30, 9}, [](Rastx& pane) { return pane.FxRotate(30, RGB(1, 2, 3)); }},
        {117, {9, 40, 9}, [](Rastx& pane) { return pane.FxAddNoise(40, true); }},
        {204, {10, 20, -30}, [](Rastx& pane) { return pane.FxColorBalance(10, 20, -30); }},
        {205, {9, 21, 9}, [](Rastx& pane) { return pane.FxGamma(2.1F); }},
        {216, {9, 70, 9}, [](Rastx& pane) { return pane.FxShakeLeftRight(0.07F); }},
        {219, {9, 120, 9}, [](Rastx& pane) { return pane.FxFishEye(1.2F); }},
        {220, {7, 3, 9}, [](Rastx& pane) { return pane.FxTexturedGlass(7, 3); }},
        {252, {4, 7, 9}, [](Rastx& pane) { return pane.FxMosaic(4, 7); }},
    };
    const Picture source = test::PhotoLike(40, 30);
    for (const Case& row : cases) {
        Rastx pane, expected;
        pane.SetImage(source);
        expected.SetImage(source);
        RunPaneEffect(*FindEffectParameters(row.code), {row.sliders, RGB(1, 2, 3), true}, pane);
        test::Must(row.same(expected));
        EXPECT_EQ(test::LargestDifference(pane.Image(), expected.Image()), 0) << row.code;
    }
}

}  // namespace
}  // namespace tessara
