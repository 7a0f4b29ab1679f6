#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

namespace gatescope {

/// Fills a message or command template. The result is C text and ends before its first NUL, so an
/// argument of %c must not be NUL.
[[gnu::format(printf, 1, 2)]] std::string filled(const char* format, ...);

/// The same with the arguments of a caller; the result includes NULs and what follows them.
[[gnu::format(printf, 1, 0)]] std::string filled_whole(const char* format, va_list arguments);

/// `bytes` up to its first NUL.
std::string_view c_text(std::string_view bytes);

}  // namespace gatescope
