#include "mainwindow/MenuTable.h"

namespace tessara {
namespace {

constexpr bool kDisabled = false;

constexpr MenuHead kHeads[] = {
    {"mnFolder", "Fol&der", "mFolder"},
    {"mnFile", "&File", "mFile"},
    {"mnEdit", "&Copy", "mEdit"},
    {"mnOptions", "&Options", "", "", HeadKind::Entry},
    {"mnEffects", "Effec&ts", "mEffects"},
    {"mnFilters", "F&ilters", ""},
    {"Color", "&Color", "mColor", "mnFilters"},
    {"Outline", "&Outline", "mOutline", "mnFilters"},
    {"Distort", "&Distort", "mDistort", "mnFilters"},
    {"mBreak", "-", "", "mnFilters", HeadKind::Entry},
    {"Stylize", "&Stylize", "mStylize", "mnFilters"},
    {"Buttonize", "&Buttonize", "mButtonize", "mnFilters"},
    {"Others", "O&thers", "mOthers", "mnFilters"},
    {"mnTransform", "Conver&t", "mTransform"},
    {"mnHelp", "&Help", "mHelp"},
};

constexpr MenuItem kItems[] = {
    {"mFolder", 0, "&Collapse", "Ctrl+L"},
    {"mFolder", 1, "&Refresh", "Ctrl+R"},
    {"mFolder", 2, "Current &Folder", "Ctrl+N"},
    {"mFolder", 3, "-"},
    {"mFolder", 4, "Create &New Folder"},

    {"mFile", 0, "Select &All", "Ctrl+A"},
    {"mFile", 1, "&Cancel Selection", "Ctrl+U", kDisabled},
    {"mFile", 2, "&Inverted Selection"},
    {"mFile", 3, "-"},
    {"mFile", 4, "&Delete", "Del", kDisabled},
    {"mFile", 5, "Delete &Files", "Ctrl+X", kDisabled},
    {"mFile", 6, "-"},
    {"mFile", 7, "View Import Image in a New Window", "F6"},
    {"mFile", 8, "View Export Image in a New Window", "F7"},
    {"mFile", 9, "-"},
    {"mFile", 10, "List All Files", "", true, true},
    {"mFile", 11, "List All Graphics Files", "", true, true},
    {"mFile", 12, "List Graphics Files for Import", "", true, true},
    {"mFile", 13, "-"},
    {"mFile", 14, "Refresh"},
    {"mFile", 15, "-"},
    {"mFile", 16, "Slide Show"},

    {"mEdit", 0, "&Copy to Clipboard", "Ctrl+C"},
    {"mEdit", 1, "&Paste from Clipboard", "Ctrl+V"},
    {"mEdit", 2, "-"},
    {"mEdit", 3, "Copy &Whole Import Image", "Ctrl+W"},
    {"mEdit", 4, "-"},
    {"mEdit", 5, "Capture Screen"},
    {"mEdit", 6, "Capture Entire Screen"},

    {"mTransform", 0, "Convert &current image", "F2"},
    {"mTransform", 1, "Convert &selected files", "F3"},
    {"mTransform", 2, "Convert &all graphics files", "F4"},
    {"mTransform", 3, "-"},
    {"mTransform", 4, "&Reload"},

    {"mHelp", 0, "&Help", "F1"},
    {"mHelp", 1, "-"},
    {"mHelp", 2, "Home&page"},
    {"mHelp", 3, "&Other Products"},
    {"mHelp", 4, "&Subscribe Newsletters"},
    {"mHelp", 5, "&Internet Services and Supports"},
    {"mHelp", 6, "-"},
    {"mHelp", 9, "&About"},
};

constexpr ToolButton kButtons[] = {
    {0, "Collapse", 240, "collapse"},
    {1, "Refresh", 577, "refresh"},
    {2, "Create New Folder", 915, "folder-new"},
    {3, "Select All", 1425, "select-all"},
    {4, "Cancel Selection", 1725, "select-none"},
    {5, "Delete", 2010, "delete"},
    {6, "Copy to Clipboard", 2520, "copy"},
    {7, "Paste from Clipboard", 2805, "paste"},
    {8, "Undo", 3300, "undo"},
    {9, "Redo", 3585, "redo"},
    {10, "Help", 4035, "help"},
    {11, "Capture Screen", 4440, "capture"},
    {12, "Slide Show", 4830, "slide-show"},
};

}  // namespace

std::span<const MenuHead> MenuHeads() {
    return kHeads;
}

std::span<const MenuItem> MenuItems() {
    return kItems;
}

std::span<const ToolButton> ToolButtons() {
    return kButtons;
}

}  // namespace tessara
