#include "dialog/clearprompt.h"

#include <strings.h>

#include <cstdlib>
#include <string_view>

#include "base/filled.h"
#include "messages/environment.h"

namespace {

bool quoting_is_strict() {
    const char* wish = std::getenv(ENV_STRICT_QUOTING);
    return wish != nullptr && strcasecmp(wish, "yes") == 0;
}

}  // namespace

std::string quoted(const std::string& text) {
    const bool strict = quoting_is_strict();
    std::string result = "\"";
    for (const char character : c_text(text)) {
        if (strict && std::string_view("\\\"$`").find(character) != std::string_view::npos) {
            result += '\\';
        }
        result += character;
    }
    return result + '"';
}

std::string newline_option(const std::string& text) {
    return c_text(text).find("\\n") == std::string_view::npos ? " " : "-newline";
}
