#pragma once

#include <string>

// How a text gets into a clearprompt command line: the one place that knows about quoting.

/// `text`, up to its first NUL, in double quotes. What is inside goes to the shell as it is, so
/// quotes, dollar signs and back-quotes in it act; scripts rely on that. Only when the
/// environment variable ZUL_GATESCOPE_STRICT_QUOTING is "yes" (in any case) are backslashes,
/// double quotes, dollar signs and back-quotes escaped, so that clearprompt receives the text
/// letter for letter.
std::string quoted(const std::string& text);

/// "-newline" when `text` holds the two characters backslash and n, so that clearprompt turns
/// them into a line break; else a single blank.
std::string newline_option(const std::string& text);
