#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gatescope {

// String functions with the rules of the gatebits file and the dialogs. Letters are ASCII letters;
// a text ends at its first NUL.

/// Converts `text` to lower case in place and returns it.
std::string& STRING_LOWER(std::string& text);

/// Doubles every '&' in place: in a dialog "&&" shows one "&".
void double_amp_string(std::string& text);

/// Inserts `inserted` after the n-th `sought` (counted from 1) in place. Null when `sought` does
/// not occur; with fewer than n the text is returned unchanged.
std::string* in_string__insert_this_char_after_nth_instance_of_that_char(std::string& text,
                                                                         char inserted, int n,
                                                                         char sought);

/// Whether `text` contains a bracket form that matches everything, such as "(*)" or "%*%".
bool includes_all_cases(const std::string& text);

/// Whether every character of `text` is in `allowed` (empty text: true; null: false).
bool holds_only(const char* text, const char* allowed);

/// Whether any character of `text` is in `forbidden` (empty text or null: false).
bool holds_any_of(const char* text, const char* forbidden);

/// Removes the first piece of `*rest`, with its delimiter, and returns it. Unlike strtok it returns
/// empty pieces, and it drops a last piece without a delimiter: fields and lists are terminated,
/// not separated. Nothing at the end.
std::optional<std::string_view> STRTOK(std::string_view* rest, const char* delimiters);

/// All the pieces of `line` that STRTOK returns with ";", in order.
std::vector<std::string> terminated_fields(const std::string& line);

/// The lines of a text, NULs included, each with its newline.
std::vector<std::string_view> whole_lines(std::string_view text);

/// The blank-separated words of `text`, joined by single blanks. A NUL ends its word, not the text,
/// as answers have always been read.
std::string words_joined(std::string_view text);

/// The decimal number at the start of `text`, with an optional sign, up to the first other
/// character; 0 without digits, and the nearest 64-bit limit when it is out of range.
long long leading_number(const char* text);

}  // namespace gatescope
