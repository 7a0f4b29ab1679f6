#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace gatescope {

/// How many bytes the character that `text` begins with has in UTF-8; 0 when it is none, or when
/// there is nothing.
std::size_t utf8_size(std::string_view text);

/// The characters of a text as a terminal may show them: each byte that is no text, and each
/// control character but a tab, is a '?'.
std::vector<std::string> shown_characters(std::string_view text);

/// The same as one text.
std::string harmless(std::string_view text);

}  // namespace gatescope
