#pragma once

#include <optional>
#include <string>

namespace gatescope {

/// The options of the command line: set by parse_arguments and not changed afterwards.
struct Options {
    /// Whether the argument was given. file_selected also requires that the file can be read, and
    /// R= sets display_selected; see parse_arguments.
    bool file_selected = false;
    bool query_selected = false;
    bool action_selected = false;
    bool command_selected = false;
    bool user_selected = false;
    bool key_selected = false;
    bool bit_selected = false;
    bool display_selected = false;
    bool repeat_selected = false;
    bool data_gen_selected = false;

    /// The file of the last F=, readable or not; nothing without an F=.
    std::optional<std::string> selected_file;
    /// 1 to 6 and 1 to 29.
    int selected_query = 0;
    int selected_action = 0;
    /// A triggerable command as given, or "*".
    std::string selected_command;
    /// A user, lower-cased, or "*".
    std::string selected_user;
    /// A key or bit number; -1 for all.
    long long selected_key = 0;
    int selected_bit = 0;
    /// "y" or "n".
    std::string selected_display = "y";
    std::string selected_repeat = "y";

    /// Whether the installer started the program.
    bool IS_DURING_INSTALL = false;

    /// Whether a finished page or pruning is shown in a dialog or browser, not only reported on
    /// standard output.
    [[nodiscard]] bool displays() const { return selected_display != "n"; }
    /// Whether the program stops after the first request.
    [[nodiscard]] bool runs_once() const { return selected_repeat.front() == 'n'; }
};

}  // namespace gatescope
