#pragma once

#include <string>

namespace gatescope {

// The two menus, made from the table of requests.

/// Numbers of the menus.
inline constexpr int MAIN_MENU = 1;
inline constexpr int SUBMENU = 2;

/// Entries of the two menus, separated by commas. Those of the main menu depend on the edition (see
/// GATEWARDEN_IS); the submenu has one more for the installer.
std::string main_menu_entries(int edition);
std::string submenu_entries(bool during_install);

/// The titles for a region of that name; the submenu's differs during an installation.
std::string main_menu_title(const std::string& region);
std::string submenu_title(const std::string& region, bool during_install);

/// Whether a pick is a separator between groups of entries.
bool is_separator(const std::string& pick);

}  // namespace gatescope
