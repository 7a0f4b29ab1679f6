#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace gatescope {

// Open files read and written whole, however often the system takes or gives only a part, or is
// interrupted. Each returns 0 or an errno.

/// Appends what comes from the file until its end, but no more than `limit` bytes, to `*bytes`. Up
/// to 32 KiB come in one piece, so that nobody finds half of a text that is rewritten in place.
int read_whole(int descriptor, std::size_t limit, std::string* bytes);

/// The same with a regular file, opened with these flags besides O_RDONLY, and without a limit.
int read_file(const std::string& path, int flags, std::string* bytes);

/// Writes all of `text`.
int write_all(int descriptor, std::string_view text);

/// Writes all of `text` and brings the file to the disk.
int write_and_sync(int descriptor, std::string_view text);

/// The same, and closes the file, whatever has failed. The errno is the first one.
int write_sync_close(int descriptor, std::string_view text);

}  // namespace gatescope
