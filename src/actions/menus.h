#pragma once

#include <string>

namespace gatescope {

// What the two menus show, all of it from the request table.

/// The menus by number.
inline constexpr int MAIN_MENU = 1;
inline constexpr int SUBMENU = 2;

/// Entries of the two menus, separated by commas; the main menu's are in the wording of the edition
/// (see GATEWARDEN_IS), and the submenu has one more for the installer.
std::string main_menu_entries(int edition);
std::string submenu_entries(bool during_install);

/// The titles for a region of that name; the submenu's has the installer's wording where it started
/// the program.
std::string main_menu_title(const std::string& region);
std::string submenu_title(const std::string& region, bool during_install);

/// Whether a pick is one of the lines between the menu's groups.
bool is_separator(const std::string& pick);

}  // namespace gatescope
