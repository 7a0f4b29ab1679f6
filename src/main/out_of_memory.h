#pragma once

namespace gatescope {

/// From now on an std::bad_alloc that nobody can catch (thrown where nothing may be) ends the
/// program with STATUS_ERROR and a text on standard error, and leaves no temporary file.
void install_out_of_memory_handlers();

/// Ends the program with the error text and STATUS_ERROR, after an std::bad_alloc was caught.
[[noreturn]] void gripe_out_of_memory();

}  // namespace gatescope
