#pragma once

#include <cstdio>
#include <string>

#include "base/temporary_files.h"

// The one orderly way out of the process, and what it has to close on the way.

/// The log file being read: set by the query reader, the pruner and the demo data generator.
extern FILE* LOGGING_STREAM;
/// The log file or scratch file being written: set by the pruner.
extern FILE* LOGGING_FILE_PRUNE_STREAM;
/// Descriptor of the gatebits file while the command line probes it; -1 when it did not open.
extern int ENTERPRIZE_PERMISSION_FILE_FD;

/// A just-checking mode that this program never enters; the exit path keeps its place.
extern FILE* JUST_CHECKING_STREAM;
extern std::string just_checking_file;
extern int LOGGING_FILE_FD;
extern int TEMP_FILE_FD;

/// Closes `*descriptor` when it is neither 0 nor -1 and makes it -1.
void close_descriptor(int* descriptor);

/// Closes what is open, removes the temporary files that are left and ends the process with
/// `status`, or with 99 when standard output could not be written.
[[noreturn]] void clean_exit(int status);
