#pragma once

#include <string>

namespace gatescope {

/// The triggerable commands as one text, each between commas, beginning and ending with one.
std::string ALL_TRIGGERABLE_COMMANDS();
/// A text of the same length: where a command's name begins in the other one, its number stands
/// here in decimal; every other character is a comma.
std::string ALL_TRIGGERABLE_COMMANDS_MAP();

/// A command's number, 1 to 54, as log records carry it; 0 when there is no such command, and for
/// "*". The search is for the name between commas, so two neighbours of the list, joined by their
/// comma, count as the first of them.
int command_number(const std::string& name);

}  // namespace gatescope
