#pragma once

/// From now on an std::bad_alloc that nobody can catch (thrown where nothing may be) ends the
/// program with status 99 and a text on standard error, and leaves no temporary file.
void end_in_order_without_memory();

/// Ends the program with the error text and status 99: for whoever has caught an std::bad_alloc.
[[noreturn]] void end_without_memory();
