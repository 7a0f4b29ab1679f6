#pragma once

#include <string>

// What the command line asked for. Set once by the command line (and query_selected and
// action_selected cleared by the main loop after the first pass); read by the query drivers, the
// actions, the pruner and the page writer.

extern bool file_selected;
extern bool query_selected;
extern bool action_selected;
extern bool command_selected;
extern bool user_selected;
extern bool key_selected;
extern bool bit_selected;
extern bool display_selected;
extern bool repeat_selected;
extern bool data_gen_selected;

/// 1 to 6 and 1 to 29.
extern int selected_query;
extern int selected_action;
/// A triggerable command as given, or "*".
extern std::string selected_command;
/// A user, lower-cased, or "*".
extern std::string selected_user;
/// A key or bit number; -1 for all.
extern long selected_key;
extern int selected_bit;
/// "y" or "n".
extern std::string selected_display;
extern std::string selected_repeat;

/// Whether the installer started the program.
extern bool IS_DURING_INSTALL;
