#pragma once

#include <string>
#include <string_view>

namespace gatescope {

/// The shortest edit from `old_text` to `new_text`, in the form of "diff -u" with three lines of
/// context, after the two lines of `head`; "" when the texts are equal.
std::string unified_diff(std::string_view old_text, std::string_view new_text,
                         const std::string& head);

/// The diff with control characters shown as '?', and coloured if `has_colours`.
std::string for_terminal(std::string_view diff, bool has_colours);

}  // namespace gatescope
