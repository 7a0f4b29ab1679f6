#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace gatescope {

// Lines of JSON: objects of texts, numbers and null.

/// How many bytes the character that `text` begins with has in UTF-8; 0 when it is none, or when
/// there is nothing.
std::size_t utf8_size(std::string_view text);

/// `bytes` as a string of JSON, with its quotes. A byte that is no part of a character in UTF-8
/// becomes its number, from \u0080 to \u00ff: every reader takes that, and bytes of Latin-1 show
/// what they were meant to.
std::string json_string(std::string_view bytes);

/// The members of an object that are not null: of strings the bytes that json_string was given, of
/// all else the word that stands there.
using JsonObject = std::map<std::string, std::string>;

/// Reads a line without blanks between its members, whose strings are those of json_string; nothing
/// when it is no object. Of one that was written otherwise it makes what it can.
std::optional<JsonObject> read_json_object(std::string_view line);

}  // namespace gatescope
