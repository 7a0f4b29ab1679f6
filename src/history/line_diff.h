#pragma once

#include <string>
#include <string_view>

namespace gatescope {

/// What turns `old_text` into `new_text`, in the form of "diff -u", with three lines around each
/// change; empty when they are the same. The names stand at its head.
std::string unified_diff(std::string_view old_text, std::string_view new_text,
                         const std::string& old_name, const std::string& new_name);

/// The same diff in the colours that terminals show those in.
std::string in_colours(std::string_view diff);

}  // namespace gatescope
