#pragma once

#include <string>

namespace gatescope {

/// The triggerable commands, separated by commas, with a comma before the first and after the last.
std::string ALL_TRIGGERABLE_COMMANDS();
/// A text of the same length with the decimal number of each command at the offset of its name, and
/// commas elsewhere.
std::string ALL_TRIGGERABLE_COMMANDS_MAP();

/// The number of a command in log records, 1 to 54; 0 for "*" and for an unknown command. The name
/// is searched between commas, so two adjacent commands joined by a comma have the number of the
/// first.
int command_number(const std::string& name);

}  // namespace gatescope
