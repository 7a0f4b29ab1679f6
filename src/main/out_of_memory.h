#pragma once

namespace gatescope {

/// Installs handlers: a std::bad_alloc that cannot be caught, because it leaves a noexcept
/// function, ends the program with error_status and a text on standard error, and removes temporary
/// files.
void install_out_of_memory_handlers();

/// Gripes about a caught std::bad_alloc and ends the program.
[[noreturn]] void gripe_out_of_memory();

}  // namespace gatescope
