#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace gatescope {

// Whole reads and writes of open files; partial and interrupted calls are repeated. Each returns 0
// or an errno.

/// Appends the rest of the file, at most `limit` bytes, to `*bytes`. Up to 32 KiB are read in one
/// call, so that a text rewritten in place is not read half old and half new.
int read_whole(int descriptor, std::size_t limit, std::string* bytes);

/// The same with a regular file, opened with these flags besides O_RDONLY, and without a limit.
int read_file(const std::string& path, int flags, std::string* bytes);

/// Writes all of `text`.
int write_all(int descriptor, std::string_view text);

/// Writes all of `text` and syncs the file to the disk.
int write_and_sync(int descriptor, std::string_view text);

/// The same, and always closes the file. The errno is that of the first failure.
int write_sync_close(int descriptor, std::string_view text);

}  // namespace gatescope
