#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace gatescope {

// Lines of JSON: objects of strings, numbers and null.

/// The size in bytes of the UTF-8 character at the start of `text`; 0 when there is none.
std::size_t utf8_size(std::string_view text);

/// `bytes` as a JSON string, with its quotes. A byte that is not part of a UTF-8 character becomes
/// \u0080 to \u00ff: valid JSON, and readable where the bytes are Latin-1.
std::string json_string(std::string_view bytes);

/// The members of an object that are not null: the bytes of a string, the word of another value.
using JsonObject = std::map<std::string, std::string>;

/// Reads an object on one line, without blanks between its members and with strings as json_string
/// writes them; nothing when the line is not an object. Other JSON is read without an error, but
/// not correctly.
std::optional<JsonObject> read_json_object(std::string_view line);

}  // namespace gatescope
