#pragma once

namespace gatescope {

/// From now on an std::bad_alloc that nobody can catch (thrown where nothing may be) ends the
/// program with status_of_an_error and a text on standard error, and leaves no temporary file.
void end_in_order_without_memory();

/// Ends the program with the error text and status_of_an_error, after an std::bad_alloc was caught.
[[noreturn]] void end_without_memory();

}  // namespace gatescope
