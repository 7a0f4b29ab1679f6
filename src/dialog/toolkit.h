#pragma once

#include <optional>
#include <string>

namespace gatescope {

// The toolkit: utilities for files, texts, names and dialogs that belong to the system and that
// this program itself has no use for. They are kept together here, with tests of their own; what
// the program does use stands where it is used.

// Whole files. The first four end the process through gripe when a file cannot be opened; what they
// return is the status of the close (0: all written).

/// Creates or truncates a file and writes `text` (may be null) into it; gripes when it cannot be
/// opened. Returns the status of the close (0: all written).
int touch_file(const std::string& path, const char* text);

/// Opens a file for appending, creating it where needed, and appends `text` (may be null);
/// gripes when it cannot be opened. Returns the status of the close.
int append_file(const std::string& path, const char* text);

/// Copies a text file over `destination`, which is created or truncated first; gripes when either
/// cannot be opened. A NUL byte ends what is copied of the 30000-byte chunk that it stands in.
/// Returns the status of the close.
int copy_file(const std::string& source, const std::string& destination);

/// copy_file, then the source is removed.
void move_file(const std::string& source, const std::string& destination);

/// Set the mode to 0666 and to 0444; the result is the system call's.
int make_public(const std::string& path);
int make_fully_readable(const std::string& path);

/// Whether two files hold the same bytes. Files that cannot be read, and empty files, never do.
bool cmp_files(const std::string& path1, const std::string& path2);

// Texts.

/// Makes the letters of `text` large in place and returns it.
std::string& STRING_UPPER(std::string& text);

/// The place of `needle` in `haystack`: searched for letter for letter first, and only when that
/// fails without regard to case. Null when it is not there.
const char* zul_strstri(const char* haystack, const char* needle);

/// Puts a backslash before every double quote in place; null, and no change, when there is none.
std::string* escaped_quoted_string(std::string& text);

// Names of files, ClearCase and time.

/// make_tfile with the tag "cache".
std::string make_cache_file(const char* part1, const char* part2);

/// Whether ClearCase says that the VOB is a UCM project VOB; no when it cannot be asked.
bool is_ucm_vob(const std::string& vob_tag);

/// Waits; returns the seconds that were left when a signal ended the wait.
unsigned zul_sleep(unsigned seconds);

// Dialogs.

/// prompt for a default that is long or has line breaks: it is handed over in a file. A
/// leftover file of that name is added to, not replaced.
std::optional<std::string> prompt_from_file(const std::string& prompt_text,
                                            const std::string& default_text);

/// Shows a file; what the operator types is thrown away. `errors` says whether the title speaks
/// of errors in it.
void show_file_with_clearprompt(const std::string& title, const std::string& file, bool errors);

}  // namespace gatescope
