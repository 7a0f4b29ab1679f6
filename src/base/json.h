#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace gatescope {

// Values in lines of JSON.

/// `bytes` as a JSON string with its quotes; "null" for nothing. A byte that is not part of a UTF-8
/// character is escaped by its value, \u0080 to \u00ff: valid JSON that shows Latin-1 correctly.
std::string json_value(std::optional<std::string_view> bytes);

/// The bytes of a string member of the JSON object in `line`, as json_value wrote them, without
/// blanks between tokens. Nothing when the member is missing or not a string, or has an escape that
/// json_value does not write.
std::optional<std::string> json_text(std::string_view line, const std::string& member);

}  // namespace gatescope
