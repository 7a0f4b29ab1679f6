#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace gatescope {

/// How long an append waits for another one of the same page.
inline constexpr std::chrono::seconds PAGE_PATIENCE(5);

/// Appends a page to the file at `path`, creating it where needed: in one piece, however many do so
/// at once, and never through a link or into anything but a regular file. Gripes when that cannot
/// be done, with the file as it was before; the reason also goes to standard error.
void append_page(const std::string& path, const std::string& page,
                 std::chrono::milliseconds patience = PAGE_PATIENCE);

/// How long a name is looked for that nobody has: as many jobs as may begin in the same second have
/// a second each by then.
inline constexpr std::chrono::seconds NAME_PATIENCE(60);

/// Creates the file of a page that shares it with no page that was there before: at `path` or, as
/// long as that name is taken, at what `next_path` says then. Gripes like append_page, and when
/// every name was taken for as long as `patience`.
void create_page(std::string path, const std::string& page,
                 const std::function<std::string()>& next_path,
                 std::chrono::milliseconds patience = NAME_PATIENCE);

}  // namespace gatescope
