#pragma once

#include <chrono>
#include <string>

/// How long an append waits for another one of the same page.
inline constexpr std::chrono::seconds PAGE_PATIENCE(5);

/// Appends a page to the file at `path`, creating it where needed: in one piece, however many do so
/// at once, and never through a link or into anything but a regular file. Gripes when that cannot
/// be done, with the file as it was before; the reason also goes to standard error.
void append_page(const std::string& path, const std::string& page,
                 std::chrono::milliseconds patience = PAGE_PATIENCE);
