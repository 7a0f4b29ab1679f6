#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

namespace gatescope {

/// Fills a message or command template. The result is C text: it ends where the first NUL would
/// stand, so an argument of %c must not be one.
[[gnu::format(printf, 1, 2)]] std::string filled(const char* format, ...);

/// The same with the arguments of a caller, and with all that stands after a NUL.
[[gnu::format(printf, 1, 0)]] std::string filled_whole(const char* format, va_list arguments);

/// `bytes` up to its first NUL.
std::string_view c_text(std::string_view bytes);

}  // namespace gatescope
