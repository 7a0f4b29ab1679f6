#pragma once

#include <optional>
#include <string>

namespace gatescope {

// Functions for files, texts, names and dialogs that belong to the system but that this program
// does not call itself. Tests call them.

// Whole files. The first four gripe when a file cannot be opened; a result is the status of the
// close (0: all written).

/// Creates or truncates a file and writes `text` (may be null).
int touch_file(const std::string& path, const char* text);

/// Appends `text` (may be null) to a file, which is created where needed.
int append_file(const std::string& path, const char* text);

/// Copies a text file over `destination`, which is created or truncated first. A NUL byte ends what
/// is copied of its 30000-byte chunk.
int copy_file(const std::string& source, const std::string& destination);

/// copy_file, then removes the source.
void move_file(const std::string& source, const std::string& destination);

/// Set the mode to 0666 and to 0444; return the result of chmod.
int make_public(const std::string& path);
int make_fully_readable(const std::string& path);

/// Whether two files have the same bytes. Empty files, and files that cannot be read, never match.
bool cmp_files(const std::string& path1, const std::string& path2);

// Texts.

/// Converts `text` to upper case in place and returns it.
std::string& STRING_UPPER(std::string& text);

/// The first exact match of `needle` in `haystack`, else the first match that ignores case, else
/// null.
const char* zul_strstri(const char* haystack, const char* needle);

/// Inserts a backslash before every double quote in place; null, and no change, when there is none.
std::string* escaped_quoted_string(std::string& text);

// Names of files, ClearCase and time.

/// make_tfile with the tag "cache".
std::string make_cache_file(const char* part1, const char* part2);

/// Whether cleartool lists the VOB as a UCM project VOB; false when it cannot be run.
bool is_ucm_vob(const std::string& vob_tag);

/// Waits; returns the remaining seconds when a signal ended the wait.
unsigned zul_sleep(unsigned seconds);

// Dialogs.

/// prompt for a default that is long or has line breaks; it is passed in a file. A leftover file of
/// that name is appended to, not replaced.
std::optional<std::string> prompt_from_file(const std::string& prompt_text,
                                            const std::string& default_text);

/// Shows a file; typed text is discarded. `errors` selects a title that reports errors in the file.
void show_file_with_clearprompt(const std::string& title, const std::string& file, bool errors);

}  // namespace gatescope
