#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gatescope {

// String helpers with the rules that the gatebits file and the dialogs rely on. Letters are
// ASCII letters; a text ends at its first NUL.

/// Makes the letters of `text` small in place and returns it.
std::string& STRING_LOWER(std::string& text);

/// Doubles every '&' in place: in a dialog "&&" shows one "&".
void double_amp_string(std::string& text);

/// Puts `inserted` right after the n-th `sought` (counted from 1) in place. Null when `sought`
/// does not occur at all; with fewer than n the text is returned unchanged.
std::string* in_string__insert_this_char_after_nth_instance_of_that_char(std::string& text,
                                                                         char inserted, int n,
                                                                         char sought);

/// Whether `text` holds a bracket form that matches everything, such as "(*)" or "%*%".
bool includes_all_cases(const std::string& text);

/// Whether every character of `text` is one of `allowed` (an empty text: yes; null: no).
bool holds_only(const char* text, const char* allowed);

/// Whether any character of `text` is one of `forbidden` (an empty text: no; null: no).
bool holds_any_of(const char* text, const char* forbidden);

/// Hands out the first piece of `*rest` and leaves there what comes after its delimiter. Unlike the
/// standard tokenizer it returns empty pieces, and it drops a last piece that no delimiter follows:
/// fields and lists are terminated, not separated. Nothing at the end.
std::optional<std::string_view> STRTOK(std::string_view* rest, const char* delimiters);

/// All the pieces that STRTOK would hand out for `line` and ";", in order.
std::vector<std::string> terminated_fields(const std::string& line);

/// The lines of a text, NULs and all, each with its newline.
std::vector<std::string_view> whole_lines(std::string_view text);

/// The blank-separated words of `text`, joined by single blanks. A NUL ends the word that it
/// stands in, not the text: that is how answers have always been read.
std::string words_joined(std::string_view text);

/// The decimal number at the start of `text`, stopping at the first character that is no digit;
/// a sign counts, a missing number is 0, and one that 64 bits do not hold is their limit.
long long leading_number(const char* text);

}  // namespace gatescope
