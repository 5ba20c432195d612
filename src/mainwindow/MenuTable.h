#pragma once

#include <span>
#include <string_view>

namespace tessara {

// The caption "-" is a separator.

enum class HeadKind { Menu, Entry };

/// A menu of the bar or a submenu, whose items are the control array `array`; or an entry among menus.
struct MenuHead {
    std::string_view name;
    std::string_view caption;
    std::string_view array;
    std::string_view parent = {};  ///< the name of another head; empty in the menu bar
    HeadKind kind = HeadKind::Menu;
};

/// An item of a control array.
struct MenuItem {
    std::string_view array;
    int index;
    std::string_view caption;
    std::string_view shortcut = {};
    bool enabled = true;  ///< at the start
    bool checkable = false;
};

/// In the order shown, a menu before its submenus. Effects and filters have their items in the effect
/// catalogue.
std::span<const MenuHead> MenuHeads();
std::span<const MenuItem> MenuItems();

/// A button of the toolbar `Imagetool`.
struct ToolButton {
    int index;
    std::string_view tooltip;
    int left;               ///< twips
    std::string_view icon;  ///< name of its picture
};
std::span<const ToolButton> ToolButtons();
inline constexpr int kCaptureTool = 11;

}  // namespace tessara
