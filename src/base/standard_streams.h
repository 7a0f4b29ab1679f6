#pragma once

#include <string>
#include <string_view>

#include "messages/identity.h"

namespace gatescope {

// Standard input, output and error.

/// Opens the null device for each standard stream that is closed: a file opened later would get its
/// number and receive the stream's output. To be called before any file is opened. 0 or an errno.
[[nodiscard]] int open_missing_standard_streams();

/// Writes to standard output unbuffered, so that a child started later prints after it. A failure
/// is kept for output_error.
void write_output(std::string_view text);

/// The errno of the first failed write to standard output; 0 when all were complete.
int output_error();

/// Writes the line "<program>: <text>" to standard error. Failures are ignored.
void note(const std::string& text, const char* program = SELF);

}  // namespace gatescope
