#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace gatescope {

/// The size in bytes of the UTF-8 character at the start of `text`; 0 for invalid or empty text.
std::size_t utf8_size(std::string_view text);

/// The characters of a text with '?' for each control character except the tab, and for each byte
/// that is not UTF-8: safe to write to a terminal.
std::vector<std::string> shown_characters(std::string_view text);

/// shown_characters as one text.
std::string printable(std::string_view text);

}  // namespace gatescope
