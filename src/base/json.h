#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

// One line of JSON: an object whose values are texts, whole numbers or null.

/// How many bytes the character that `text` begins with has in UTF-8; 0 when it is none, or when
/// there is nothing.
std::size_t utf8_size(std::string_view text);

/// `bytes` as a string of JSON, with its quotes. A byte that is not part of a character in UTF-8
/// becomes its number, from \u0080 to \u00ff: every reader takes that, and those of Latin-1 show
/// what they were meant to.
std::string json_string(std::string_view bytes);

/// The same, or null.
std::string json_value(const std::optional<std::string>& bytes);

/// The members of an object: texts as the bytes that json_string was given, numbers as their
/// digits, nothing for null.
using JsonObject = std::map<std::string, std::optional<std::string>>;

/// Reads a line that was written with the functions above; nothing when it is anything else.
std::optional<JsonObject> read_json_object(std::string_view line);
