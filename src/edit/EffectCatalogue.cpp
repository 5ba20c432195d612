#include "edit/EffectCatalogue.h"

#include <algorithm>
#include <climits>

namespace tessara {
namespace {

using enum EffectKind;

constexpr std::string_view kEffects = "mEffects", kColor = "mColor", kOutline = "mOutline",
                           kDistort = "mDistort", kStylize = "mStylize", kButtonize = "mButtonize",
                           kOthers = "mOthers";

constexpr EffectMenu kMenus[] = {
    {kEffects, "Effects"}, {kColor, "Color"},         {kOutline, "Outline"}, {kDistort, "Distort"},
    {kStylize, "Stylize"}, {kButtonize, "Buttonize"}, {kOthers, "Others"},
};

constexpr EffectEntry DirectRow(std::string_view array, int index, std::string_view caption,
                                std::string_view operation, int argument = 0) {
    return {array, index, caption, Direct, -1, operation, argument};
}
constexpr EffectEntry DialogRow(std::string_view array, int index, std::string_view caption, int code) {
    return {array, index, caption, Dialog, code};
}
constexpr EffectEntry Separator(std::string_view array, int index) {
    return {array, index, "-"};
}
/// An entry that nobody sees; it stays because the indexes behind it are fixed.
constexpr EffectEntry Hidden(EffectEntry entry) {
    entry.visible = false;
    return entry;
}

constexpr EffectEntry kEntries[] = {
    // Positive angles turn counter-clockwise.
    DirectRow(kEffects, 0, "Rotate 90 &Right", "FxRotate", -90),
    DirectRow(kEffects, 1, "Rotate 90 &Left", "FxRotate", 90),
    DialogRow(kEffects, 2, "&Arbitrary Rotate", 107),
    Separator(kEffects, 3),
    DirectRow(kEffects, 4, "Flip &Horizontal", "FxFlipHorizontal"),
    DirectRow(kEffects, 5, "Flip &Vertical", "FxFlipVertical"),
    Separator(kEffects, 6),
    DialogRow(kEffects, 7, "&Wave", 114),
    DialogRow(kEffects, 8, "Tile&1", 250),
    DialogRow(kEffects, 9, "Tile&2", 251),
    DialogRow(kEffects, 10, "&Mosaic", 252),
    DialogRow(kEffects, 11, "Add &Noise", 117),
    Separator(kEffects, 12),
    DirectRow(kEffects, 13, "Reflect [Lef&tRight]", "FxReflectLeftRight"),
    DirectRow(kEffects, 14, "Reflect [Up&Down]", "FxReflectUpDown"),
    Separator(kEffects, 15),
    {kEffects, 16, "Re&size", Resize},
    Separator(kEffects, 17),
    {.array = kEffects, .index = 18, .caption = "Undo", .kind = Undo, .shortcut = "Ctrl+Z"},
    {kEffects, 19, "Redo", Redo},

    DialogRow(kColor, 0, "Colorize", 200),
    DialogRow(kColor, 1, "Color Balance", 204),
    DialogRow(kColor, 2, "Contrast / Brightness", 1),
    DialogRow(kColor, 3, "Tweak Gamma", 205),
    DirectRow(kColor, 4, "GrayScale", "FxGrayScale"),
    Separator(kColor, 5),
    DirectRow(kColor, 6, "Swap Red Blue", "FxSwapRedBlue"),
    DirectRow(kColor, 7, "Swap Red Green", "FxSwapRedGreen"),
    DirectRow(kColor, 8, "Swap Green Blue", "FxSwapGreenBlue"),

    DialogRow(kOutline, 0, "Blur", 9),
    DialogRow(kOutline, 1, "Soften", 206),
    DialogRow(kOutline, 2, "Sharpen", 10),
    Separator(kOutline, 3),
    DirectRow(kOutline, 4, "High-Pass", "FxHighPass"),
    DirectRow(kOutline, 5, "Anti Alias", "FxAntiAlias"),
    DirectRow(kOutline, 6, "Find Edges", "FxFindEdges"),
    DirectRow(kOutline, 7, "Enhance Edge", "FxEnhanceEdge"),
    {kOutline, 8, "Mask Ellipse", AskColor, -1, "FxMaskEllipse"},

    DialogRow(kDistort, 0, "Ripple : Sine", 210),
    DialogRow(kDistort, 1, "Ripple : Tooth", 211),
    DialogRow(kDistort, 2, "Ripple : Random", 212),
    DialogRow(kDistort, 3, "Ripple : Triangle", 213),
    Separator(kDistort, 4),
    DialogRow(kDistort, 5, "Shake : UpDown", 215),
    DialogRow(kDistort, 6, "Shake : LeftRight", 216),
    DirectRow(kDistort, 7, "Stretch : UpLeft", "FxStretchUpLeft"),
    DirectRow(kDistort, 8, "Stretch : UpRight", "FxStretchUpRight"),
    DirectRow(kDistort, 9, "Stretch : DownLeft", "FxStretchDownLeft"),
    DirectRow(kDistort, 10, "Stretch : DownRight", "FxStretchDownRight"),
    Separator(kDistort, 11),
    Hidden(DialogRow(kDistort, 12, "Wave", 114)),
    DialogRow(kDistort, 13, "Wind", 217),
    DialogRow(kDistort, 14, "Swirl", 218),
    DialogRow(kDistort, 15, "Fish Eye", 219),
    DialogRow(kDistort, 16, "Textured Glass", 220),

    Hidden({kStylize, 0, "Emboss"}),
    DialogRow(kStylize, 1, "Emboss", 221),
    DialogRow(kStylize, 2, "Emboss [Color] ", 222),
    DialogRow(kStylize, 3, "Diffuse", 12),
    Separator(kStylize, 4),
    Hidden({kStylize, 5, "Invert "}),
    DirectRow(kStylize, 6, "Negative", "FxNegative"),
    DirectRow(kStylize, 7, "NeonTrace", "FxNeonTrace"),
    DialogRow(kStylize, 8, "Posterize", 230),
    DialogRow(kStylize, 9, "Solarize", 231),
    DialogRow(kStylize, 10, "Black and White", 30),
    Hidden(Separator(kStylize, 11)),
    Separator(kStylize, 12),
    DialogRow(kStylize, 13, "Heat", 19),
    DialogRow(kStylize, 14, "Night", 20),
    DialogRow(kStylize, 15, "Ice", 21),
    DialogRow(kStylize, 16, "Aqua ", 22),
    DialogRow(kStylize, 17, "Strange", 23),
    DialogRow(kStylize, 18, "Darkness", 24),
    DialogRow(kStylize, 19, "Africa", 25),

    DialogRow(kButtonize, 0, "Buttonize : Smooth", 240),
    DialogRow(kButtonize, 1, "Buttonize : Simple", 241),
    Separator(kButtonize, 2),
    DialogRow(kButtonize, 3, "Buttonize : Ellipse1", 243),
    DialogRow(kButtonize, 4, "Buttonize : Ellipse2", 244),
    DialogRow(kButtonize, 5, "Buttonize : Ellipse3", 245),

    DialogRow(kOthers, 0, "Rects", 27),
    DialogRow(kOthers, 1, "Comic", 28),
    DialogRow(kOthers, 2, "Crazy Lines", 29),
};

/// The entries of a group below an index, as far as no row before takes them, are told of at a mark.
struct HelpMark {
    std::string_view group;
    int below;
    std::string_view anchor;
};
constexpr HelpMark kHelpMarks[] = {
    {"Effects", INT_MAX, "e3"},    {"Color", 5, "co1"},         {"Color", INT_MAX, "co2"},
    {"Outline", 4, "ou1"},         {"Outline", INT_MAX, "ou2"}, {"Distort", 4, "di1"},
    {"Distort", 13, "di2"},        {"Distort", INT_MAX, "di3"}, {"Stylize", 4, "st1"},
    {"Stylize", 13, "st2"},        {"Stylize", INT_MAX, "st3"}, {"Buttonize", 2, "bu1"},
    {"Buttonize", INT_MAX, "bu2"}, {"Others", INT_MAX, "ot1"},
};

}  // namespace

std::span<const EffectEntry> EffectEntries() {
    return kEntries;
}

const EffectEntry* FindEffectEntry(std::string_view array, int index) {
    const auto row = std::ranges::find_if(
        kEntries, [&](const EffectEntry& entry) { return entry.array == array && entry.index == index; });
    return row == std::end(kEntries) ? nullptr : row;
}

std::span<const EffectMenu> EffectMenus() {
    return kMenus;
}

std::string EffectCaptionOf(std::string_view caption) {
    std::string text(caption);
    std::erase(text, '&');
    return text;
}

std::string_view EffectHelpAnchor(std::string_view group, int menuIndex) {
    const auto mark = std::ranges::find_if(
        kHelpMarks, [&](const HelpMark& row) { return row.group == group && menuIndex < row.below; });
    return mark == std::end(kHelpMarks) ? std::string_view{} : mark->anchor;
}

}  // namespace tessara
