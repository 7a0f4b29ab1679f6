#include "base/filled.h"

#include <cstdio>

namespace gatescope {

std::string filled_whole(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        text.pop_back();
    }
    va_end(again);
    return text;
}

std::string filled(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string text = filled_whole(format, arguments);
    va_end(arguments);
    text.resize(c_text(text).size());
    return text;
}

std::string_view c_text(std::string_view bytes) {
    return bytes.substr(0, bytes.find('\0'));
}

}  // namespace gatescope
