#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace gatescope {

// Values in lines of JSON.

/// `bytes` as a string of JSON, with its quotes; null for nothing. A byte that is no part of a
/// character in UTF-8 becomes its number, from \u0080 to \u00ff: every reader takes that, and bytes
/// of Latin-1 show what they were meant to.
std::string json_value(std::optional<std::string_view> bytes);

/// The bytes that json_value was given for that member of the object in the line, which has no
/// blanks between its parts; nothing when the member is not there or is no string, or when
/// json_value would not have written it so.
std::optional<std::string> json_text(std::string_view line, const std::string& member);

}  // namespace gatescope
