#pragma once

#include <string>
#include <string_view>

namespace gatescope {

/// What turns `old_text` into `new_text`, in the form of "diff -u", with three lines around each
/// change, after the two lines of its head; empty when they are the same.
std::string unified_diff(std::string_view old_text, std::string_view new_text,
                         const std::string& head);

/// The same diff for a terminal: nothing that it would obey, and, where they are wanted, the
/// colours that terminals show diffs in.
std::string for_terminal(std::string_view diff, bool has_colours);

}  // namespace gatescope
