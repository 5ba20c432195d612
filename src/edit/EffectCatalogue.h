#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tessara {

/// What choosing an entry of the effect menus does.
enum class EffectKind {
    None,      ///< nothing: separators, and entries that only hold their index
    Direct,    ///< runs an operation of the imaging pane at once
    AskColor,  ///< asks for a colour and runs the operation with it
    Dialog,    ///< opens the effect dialog for a code
    Resize,    ///< opens the resize dialog
    Undo,
    Redo,
};

/// An entry of the menu "Effects" or of a submenu of "Filters".
struct EffectEntry {
    std::string_view array;  ///< control array, "mEffects"
    int index;
    std::string_view caption;  ///< "-" is a separator
    EffectKind kind = EffectKind::None;
    int code = -1;                    ///< of the kind Dialog
    std::string_view operation = {};  ///< of the kinds Direct and AskColor: its name in effects::EffectTable
    int argument = 0;                 ///< of the operation, where it takes a number
    std::string_view shortcut = {};
    bool visible = true;

    bool IsSeparator() const { return caption == "-"; }
};

/// All entries, menu after menu, each by ascending index.
std::span<const EffectEntry> EffectEntries();
/// Null where there is no such entry.
const EffectEntry* FindEffectEntry(std::string_view array, int index);

/// A menu of effects, and the group that its entries belong to.
struct EffectMenu {
    std::string_view array;
    std::string_view group;  ///< as titles and the help know it
};
std::span<const EffectMenu> EffectMenus();

/// A menu entry's caption without "&"; trailing blanks stay.
std::string EffectCaptionOf(std::string_view caption);
/// The mark in the help page of the effects for an entry of a group.
std::string_view EffectHelpAnchor(std::string_view group, int menuIndex);

}  // namespace tessara
