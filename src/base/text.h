#pragma once

#include <string>
#include <string_view>
#include <vector>

// String helpers with the rules that the gatebits file and the dialogs rely on. Letters are
// ASCII letters; a text ends at its first NUL.

/// Change the case of `text` in place and return it.
std::string& STRING_LOWER(std::string& text);
std::string& STRING_UPPER(std::string& text);

/// The place of `needle` in `haystack`: searched for letter for letter first, and only when that
/// fails without regard to case. Null when it is not there.
const char* zul_strstri(const char* haystack, const char* needle);

/// Puts a backslash before every double quote in place; null, and no change, when there is none.
std::string* escaped_quoted_string(std::string& text);

/// Doubles every '&' in place: in a dialog "&&" shows one "&".
void double_amp_string(std::string& text);

/// Puts `inserted` right behind the n-th `sought` (counted from 1) in place. Null when `sought`
/// does not occur at all; with fewer than n the text is returned unchanged.
std::string* in_string__insert_this_char_after_nth_instance_of_that_char(std::string& text,
                                                                         char inserted, int n,
                                                                         char sought);

/// Whether `text` holds a bracket form that matches everything, such as "(*)" or "%*%".
bool includes_all_cases(const std::string& text);

/// Whether every character of `text` is one of `allowed` (an empty text: yes; null: no).
bool healthy(const char* text, const char* allowed);

/// Whether any character of `text` is one of `forbidden` (an empty text: no; null: no).
bool unhealthy(const char* text, const char* forbidden);

/// Hands out the pieces of `text` one call after the other; null goes on where the last call
/// stopped. Unlike the standard tokenizer it returns empty pieces, and it drops a last piece that
/// no delimiter follows: fields and lists are terminated, not separated. The result is null at
/// the end, and otherwise good until the next call with a text.
const char* STRTOK(const char* text, const char* delimiters);

/// All the pieces that STRTOK would hand out for `line` and ";", in order.
std::vector<std::string> terminated_fields(const std::string& line);

/// The blank-separated words of `text`, joined by single blanks. A NUL ends the word that it
/// stands in, not the text: that is how answers have always been read.
std::string words_joined(std::string_view text);

/// The decimal number at the start of `text`, stopping at the first character that is no digit;
/// a sign counts, a missing number is 0, and one too large for the type is its limit.
long leading_number(const char* text);
