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
    ASSERT_EQ(nextIndex.size(), EffectMenus().size());
    for (const EffectMenu& menu : EffectMenus()) EXPECT_GT(nextIndex[menu.array], 0) << menu.array;
}

TEST(EffectCatalogue, EveryCommandReachesAnOperation) {
    std::set<int> codes;
    for (const EffectEntry& entry : EffectEntries()) {
        SCOPED_TRACE(entry.caption);
        if (entry.kind == EffectKind::Dialog) {
            EXPECT_NE(FindEffectParameters(entry.code), nullptr);
            codes.insert(entry.code);
        }
        if (entry.kind == EffectKind::Direct || entry.kind == EffectKind::AskColor) {
            EXPECT_NE(effects::FindEffect(entry.operation), nullptr);
        }
    }
    for (const EffectParameters& effect : EffectParametersTable())
        EXPECT_EQ(codes.count(effect.code), effect.code == 116 ? 0U : 1U) << effect.code;
}

TEST(EffectCatalogue, EveryOperationOfThePaneIsOffered) {
    std::set<std::string_view> offered;
    for (const EffectEntry& entry : EffectEntries()) offered.insert(entry.operation);
    for (const EffectParameters& effect : EffectParametersTable())
        offered.insert(effect.operations.begin(), effect.operations.end());
    for (const effects::Effect& effect : effects::EffectTable())
        EXPECT_TRUE(offered.contains(effect.name)) << effect.name;
}

TEST(EffectCatalogue, CodesFollowTheIndexesWhereTheyAreInRows) {
    struct Case {
        std::string_view array;
        int first, last, add;
    };
    const Case cases[] = {{"mDistort", 0, 3, 210},   {"mDistort", 5, 6, 210}, {"mStylize", 1, 2, 220},
                          {"mStylize", 8, 9, 222},   {"mStylize", 13, 19, 6}, {"mButtonize", 0, 1, 240},
                          {"mButtonize", 3, 5, 240}, {"mOthers", 0, 2, 27}};
    for (const Case& row : cases)
        for (int index = row.first; index <= row.last; ++index)
            EXPECT_EQ(FindEffectEntry(row.array, index)->code, index + row.add) << row.array << index;
}

TEST(EffectCatalogue, CaptionsLoseTheirMarksAndKeepTheirBlanks) {
    struct Case {
        std::string_view array;
        int index;
        std::string caption;
    };
    const Case cases[] = {{"mEffects", 8, "Tile1"},
                          {"mEffects", 13, "Reflect [LeftRight]"},
                          {"mStylize", 2, "Emboss [Color] "},
                          {"mStylize", 16, "Aqua "}};
    for (const Case& row : cases)
        EXPECT_EQ(EffectCaptionOf(FindEffectEntry(row.array, row.index)->caption), row.caption);
    EXPECT_EQ(FindEffectEntry("mOthers", 3), nullptr);
}

TEST(EffectCatalogue, HelpMarksFollowTheGroupAndTheIndex) {
    struct Case {
        std::string_view group;
        int index;
        std::string_view anchor;
    };
    const Case cases[] = {{"Effects", 11, "e3"},   {"Color", 4, "co1"},    {"Color", 5, "co2"},
                          {"Outline", 3, "ou1"},   {"Outline", 4, "ou2"},  {"Distort", 3, "di1"},
                          {"Distort", 12, "di2"},  {"Distort", 13, "di3"}, {"Stylize", 3, "st1"},
                          {"Stylize", 12, "st2"},  {"Stylize", 13, "st3"}, {"Buttonize", 1, "bu1"},
                          {"Buttonize", 2, "bu2"}, {"Others", 2, "ot1"},   {"", 0, ""}};
    for (const Case& row : cases)
        EXPECT_EQ(EffectHelpAnchor(row.group, row.index), row.anchor) << row.group << row.index;
}

TEST(EffectParameters, SlidersHaveTheRangesOfTheirOperations) {
    struct Case {
        int code, sliders, Min, Max, Small, Value;
    };
    const Case cases[] = {
        {1, 2, -100, 100, 1, 0},   {9, 1, 0, 10, 1, 1},      {12, 1, 0, 20, 1, 5},    {21, 1, 0, 200, 5, 75},
        {27, 1, 0, 100, 5, 100},   {30, 1, 0, 200, 5, 125},  {107, 1, 0, 360, 1, 0},  {117, 1, 0, 100, 1, 30},
        {200, 3, -250, 250, 1, 0}, {205, 1, 1, 30, 1, 15},   {216, 1, 5, 100, 1, 5},  {219, 1, 1, 300, 1, 1},
        {220, 2, 1, 20, 1, 10},    {231, 1, 1, 250, 1, 100}, {243, 2, 0, 100, 1, 40}, {252, 2, 2, 20, 1, 5}};
    for (const Case& row : cases) {
        SCOPED_TRACE(row.code);
        const EffectParameters& effect = *FindEffectParameters(row.code);
        const EffectSlider slider = effect.Slider();
        EXPECT_EQ(effect.SliderCount(), row.sliders);
        EXPECT_EQ(slider.Min, row.Min);
        EXPECT_EQ(slider.Max, row.Max);
        EXPECT_EQ(slider.SmallChange, row.Small);
        EXPECT_EQ(slider.Value, row.Value);
    }
}

TEST(EffectParameters, ValuesAreShownInTheFormOfTheirCode) {
    struct Case {
        int code;
        std::string above;  ///< of the value 7
        bool plural;
    };
    const Case cases[] = {
        {0, "", false},      {1, "", true},       {9, "7", false},          {12, "7", true},
        {22, "7 %", true},   {26, "7 %", false},  {107, "", false},         {114, "7 %", true},
        {117, "7 %", false}, {205, "7 %", false}, {116, "7 Pixels", false}, {240, "7", false},
        {252, "", true}};
    for (const Case& row : cases) {
        SCOPED_TRACE(row.code);
        EXPECT_EQ(ValueText(ValueFormOf(row.code), 7), row.above);
        EXPECT_EQ(DragCaption(row.code).find("sliders") != std::string_view::npos, row.plural);
    }
    EXPECT_EQ(SignedText(5) + SignedText(0) + SignedText(-5), "+50-5");
}

TEST(EffectParameters, SlidersReachTheirArguments) {
    struct Case {
        int code;
        std::array<int, 3> sliders;
        Result<void> (*same)(Rastx& pane);
    };
    const Case cases[] = {
        {1,
         {20, -30, 9},
         [](Rastx& pane) {
             Ignore(pane.FxBrightness(20));
             return pane.FxContrast(-30);
         }},
        {9,
         {9, 2, 9},
         [](Rastx& pane) {
             Ignore(pane.FxBlur());
             return pane.FxBlur();
         }},
        {9, {9, 0, 9}, [](Rastx&) { return Result<void>(); }},
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
