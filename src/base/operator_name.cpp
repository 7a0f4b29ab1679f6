#include "base/operator_name.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "base/filled.h"
#include "base/text.h"
#include "messages/environment.h"

namespace gatescope {
namespace {

/// Prefixes of the variables that name the operator, followed by "_USER"; the first one set is
/// used.
constexpr std::array<const char*, 5> LOOK_UNDER = {"CLEARCASE", "AUTH", "LOGON", "REMOTE",
                                                   "UNMAPPED_REMOTE"};

std::string lower_cased(std::string name) {
    return STRING_LOWER(name);
}

/// The text after "user=" in the cookie, up to ";"; nothing when the cookie ends there. A cookie
/// whose name ends in "user" matches too.
std::optional<std::string> user_in_cookie() {
    const char* cookie = std::getenv(ENV_COOKIE);
    const char* found = cookie != nullptr ? std::strstr(cookie, "user=") : nullptr;
    if (found == nullptr) return std::nullopt;
    const char* value = found + std::strlen("user=");
    if (*value == '\0') return std::nullopt;
    return std::string(value, std::strcspn(value, ";"));
}

/// The name after a domain ("DOMAIN\op") or a path ("a/b/op").
std::string without_domain(const std::string& name) {
    auto cut = name.rfind('\\');
    if (cut == std::string::npos) cut = name.rfind('/');
    return cut == std::string::npos ? name : name.substr(cut + 1);
}

}  // namespace

std::optional<std::string> calculated_user() {
    for (const char* prefix : LOOK_UNDER) {
        const char* name = std::getenv(filled("%s_%c%c%c%c", prefix, 'U', 'S', 'E', 'R').c_str());
        if (name != nullptr) return lower_cased(name);
    }
    if (const auto cookie_user = user_in_cookie()) return lower_cased(*cookie_user);
    const passwd* entry = getpwuid(geteuid());
    if (entry == nullptr) return std::nullopt;
    return lower_cased(entry->pw_name);
}

std::optional<std::string> operator_name() {
    const auto user = calculated_user();
    return user ? std::optional(without_domain(*user)) : std::nullopt;
}

}  // namespace gatescope
