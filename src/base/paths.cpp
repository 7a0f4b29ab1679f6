#include "base/paths.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace gatescope {

std::string directory_of(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string file_name_of(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::string beside(const std::string& path, const std::string& name) {
    return path.substr(0, path.rfind('/') + 1) + name;
}

std::optional<std::string> link_target(const std::string& link) {
    std::array<char, PATH_MAX> target;
    const ssize_t size = readlink(link.c_str(), target.data(), target.size());
    if (size <= 0 || static_cast<std::size_t>(size) == target.size()) return std::nullopt;
    const std::string text(target.data(), static_cast<std::size_t>(size));
    return text.front() == '/' ? text : beside(link, text);
}

std::string resolved_path(const std::string& path) {
    char* resolved = realpath(path.c_str(), nullptr);
    std::string result = resolved != nullptr ? resolved : path;
    std::free(resolved);
    return result;
}

std::string absolute_path(const std::string& path) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    const auto real = std::filesystem::weakly_canonical(absolute, error);
    return error ? absolute : real;
}

}  // namespace gatescope
