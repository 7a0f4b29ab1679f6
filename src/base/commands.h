#pragma once

#include <string>

/// The triggerable commands as one string, each between commas, beginning and ending with one.
extern const std::string ALL_TRIGGERABLE_COMMANDS;
/// A string of the same length: where a command's name begins in the other one, its number stands
/// here in decimal; every other character is a comma.
extern const std::string ALL_TRIGGERABLE_COMMANDS_MAP;
extern const char* const p_com;
extern const char* const p_map;

/// A command's number, 1 to 54, as log records carry it; 0 when there is no such command, and for
/// "*". The search is for the name between commas, so two neighbours of the list, joined by their
/// comma, count as the first of them.
int command_number(const std::string& name);

/// Whether ClearCase says that the VOB is a UCM project VOB; no when it cannot be asked.
bool is_ucm_vob(const std::string& vob_tag);
