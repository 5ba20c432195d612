#include "edit/EffectCatalogue.h"

#include <gtest/gtest.h>

#include <cctype>
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

/// The letters and digits of a caption.
std::string NameIn(std::string_view caption) {
    std::string name(caption);
    std::erase_if(name, [](unsigned char c) { return !std::isalnum(c); });
    return name;
}

TEST(EffectCatalogue, CaptionsNameWhatIsRun) {
    // What the program computes itself has no operation.
    const std::map<std::string, int> ownEffects = {
        {"Heat", 19},    {"Night", 20},      {"Ice", 21},           {"Aqua", 22},
        {"Strange", 23}, {"Darkness", 24},   {"Africa", 25},        {"Rects", 27},
        {"Comic", 28},   {"CrazyLines", 29}, {"BlackandWhite", 30}, {"Wave", 114}};
    for (const EffectEntry& entry : EffectEntries()) {
        const EffectParameters* parameters = FindEffectParameters(entry.code);
        const std::string name = NameIn(entry.caption);
        if (parameters && parameters->IsOwnEffect()) {
            EXPECT_EQ(ownEffects.at(name), entry.code);
            continue;
        }
        const std::string_view operation = parameters ? parameters->operations[0] : entry.operation;
        if (operation.empty() || operation == "FxRotate") continue;
        // "Buttonize : Smooth" runs FxButtonSmooth, "Tweak Gamma" FxGamma.
        const bool isButton = operation.starts_with("FxButton");
        EXPECT_TRUE(name.ends_with(operation.substr(isButton ? 8 : 2))) << name << " " << operation;
        EXPECT_EQ(name.starts_with("Buttonize"), isButton);
    }
}

TEST(EffectCatalogue, HelpMarksChangeAtTheirIndexes) {
    struct Case {
        const char* group;
        int last;  ///< with the mark
        const char* mark;
    };
    const Case cases[] = {{"Effects", 19, "e3"},   {"Color", 4, "co1"},    {"Color", 8, "co2"},
                          {"Outline", 3, "ou1"},   {"Outline", 8, "ou2"},  {"Distort", 3, "di1"},
                          {"Distort", 12, "di2"},  {"Distort", 16, "di3"}, {"Stylize", 3, "st1"},
                          {"Stylize", 12, "st2"},  {"Stylize", 19, "st3"}, {"Buttonize", 1, "bu1"},
                          {"Buttonize", 5, "bu2"}, {"Others", 2, "ot1"}};
    std::string group;
    int first = 0;
    for (const Case& row : cases) {
        if (group != row.group) first = 0;
        group = row.group;
        for (const int index : {first, row.last})
            EXPECT_EQ(EffectHelpAnchor(group, index), row.mark) << index;
        first = row.last + 1;
    }
}

/// The captions, "Min..Max by SmallChange at Value", what stands above a slider at its Value, and what is run
/// with "/" and the divisor; "sliders" where the box of the live preview speaks of several.
std::string Describe(int code) {
    const EffectParameters& effect = *FindEffectParameters(code);
    const EffectSlider slider = effect.Slider();
    std::string text = effect.repeated ? "repeated " : "";
    for (const std::string_view caption : effect.captions)
        if (!caption.empty()) text += std::string(caption) + ", ";
    text += std::to_string(slider.Min) + ".." + std::to_string(slider.Max) + " by " +
            std::to_string(slider.SmallChange) + " at " + std::to_string(slider.Value) + " [" +
            ValueText(ValueFormOf(code), slider.Value) + "]";
    for (const std::string_view name : effect.operations)
        if (!name.empty()) text += " " + std::string(name);
    if (effect.divisor != 1) text += " / " + std::to_string(static_cast<int>(effect.divisor));
    return text + (DragCaption(code).find("sliders") != std::string_view::npos ? " sliders" : "");
}

TEST(EffectParameters, EveryEffectHasItsSliders) {
    const std::pair<int, const char*> cases[] = {
        {1, "Brightness, Contrast, -100..100 by 1 at 0 [] FxBrightness FxContrast sliders"},
        {9, "repeated Depth:, 0..10 by 1 at 1 [1] FxBlur"},
        {10, "repeated Depth:, 0..10 by 1 at 1 [1] FxSharpen"},
        {12, " Depth:, 0..20 by 1 at 5 [5] FxDiffuse sliders"},
        {19, " Depth:, 0..200 by 5 at 100 [100 %] / 100 sliders"},
        {20, " Depth:, 0..200 by 5 at 100 [100 %] / 100 sliders"},
        {21, " Depth:, 0..200 by 5 at 75 [75 %] / 100 sliders"},
        {22, " Depth:, 0..200 by 5 at 100 [100 %] / 100 sliders"},
        {23, " Depth:, 0..200 by 5 at 100 [100 %] / 100 sliders"},
        {24, " Depth:, 0..200 by 5 at 100 [100 %] / 100 sliders"},
        {25, " Depth:, 0..200 by 5 at 100 [100 %] / 100 sliders"},
        {27, " Depth:, 0..100 by 5 at 100 [100 %] / 100 sliders"},
        {28, " Depth:, 0..200 by 5 at 100 [100 %] / 100 sliders"},
        {29, " Depth:, 0..200 by 5 at 100 [100 %] / 100 sliders"},
        {30, " Depth:, 0..200 by 5 at 125 [125 %] / 100 sliders"},
        {107, "Angle:, 0..360 by 1 at 0 [] FxRotate"},
        {114, " Depth:, 0..200 by 5 at 100 [100 %] / 100 sliders"},
        {116, "Angle:, 0..360 by 1 at 0 [0 Pixels] / 100"},
        {117, "Percent:, 0..100 by 1 at 30 [30 %] FxAddNoise"},
        {200, "Hue, Saturation, Luminance, -250..250 by 1 at 0 [] FxColorize sliders"},
        {204, "Red, Green, Blue, -250..250 by 1 at 0 [] FxColorBalance sliders"},
        {205, "Gamma:, 1..30 by 1 at 15 [15 %] FxGamma / 10"},
        {206, "repeated Depth:, 0..10 by 1 at 1 [1] FxSoften"},
        {210, "Depth:, 1..20 by 1 at 1 [1] FxRippleSine"},
        {211, "Depth:, 1..20 by 1 at 1 [1] FxRippleTooth"},
        {212, "Depth:, 1..20 by 1 at 1 [1] FxRippleRandom"},
        {213, "Depth:, 1..20 by 1 at 1 [1] FxRippleTriangle"},
        {215, "Depth:, 5..100 by 1 at 5 [5] FxShakeUpDown / 1000"},
        {216, "Depth:, 5..100 by 1 at 5 [5] FxShakeLeftRight / 1000"},
        {217, "Depth:, 5..50 by 1 at 5 [5] FxWind"},
        {218, "Depth:, 1..300 by 1 at 1 [1] FxSwirl"},
        {219, "Depth:, 1..300 by 1 at 1 [1] FxFishEye / 100"},
        {220, "Scale, Chaos, 1..20 by 1 at 10 [] FxTexturedGlass sliders"},
        {221, "repeated Depth:, 0..10 by 1 at 1 [1] FxEmboss"},
        {222, "repeated Depth:, 0..10 by 1 at 1 [1] FxEmbossColor"},
        {230, "Bits:, 1..4 by 1 at 1 [1] FxPosterize"},
        {231, "Depth:, 1..250 by 1 at 100 [100] FxSolarize"},
        {240, "Depth:, 0..100 by 1 at 40 [40] FxButtonSmooth"},
        {241, "Depth, Weight, 0..100 by 1 at 40 [] FxButtonSimple sliders"},
        {243, "Depth, Weight, 0..100 by 1 at 40 [] FxButtonEllipse1 sliders"},
        {244, "Depth, Weight, 0..100 by 1 at 40 [] FxButtonEllipse2 sliders"},
        {245, "Depth, Weight, 0..100 by 1 at 40 [] FxButtonEllipse3 sliders"},
        {250, "Depth:, 1..100 by 1 at 50 [50] FxTile1"},
        {251, "Depth:, 1..100 by 1 at 50 [50] FxTile2"},
        {252, "Width, Height, 2..20 by 1 at 5 [] FxMosaic sliders"},
    };
    EXPECT_EQ(std::size(cases), EffectParametersTable().size());
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
