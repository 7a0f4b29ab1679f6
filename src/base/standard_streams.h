#pragma once

#include <string>
#include <string_view>

#include "messages/identity.h"

namespace gatescope {

// The three streams that the program is started with.

/// Opens the null device on whichever of standard input, output and error is closed: a file that
/// is opened later would otherwise get its number, and what is meant for the operator. Comes before
/// anything is opened. 0 or an errno.
[[nodiscard]] int open_missing_standard_streams();

/// Writes to standard output, past any buffer, so that what a child prints later comes later. A
/// failure is kept for output_error.
void write_output(std::string_view text);

/// The errno of the first failure to write something that was meant for standard output; 0 when all
/// was written.
int output_error();

/// Writes "<program>: <text>" as a line to standard error, for whoever looks for a reason there.
/// When that fails there is nobody left to tell.
void note(const std::string& text, const char* program = SELF);

}  // namespace gatescope
