#include "base/trusted_links.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>

#include "messages/log_texts.h"

namespace {

/// Where the link at `path` leads; empty, with errno set, when it cannot be read.
std::string link_target(const std::string& path) {
    std::array<char, PATH_MAX> target;
    const ssize_t size = readlink(path.c_str(), target.data(), target.size());
    if (size <= 0) return "";
    const std::string text(target.data(), static_cast<std::size_t>(size));
    return text.front() == '/' ? text : path.substr(0, path.rfind('/') + 1) + text;
}

}  // namespace

MeantFile follow_links(const std::string& path, int most_links) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) {
        const bool is_missing = errno == ENOENT || errno == ENOTDIR;
        return {path, is_missing ? "" : std::strerror(errno)};
    }
    if (!S_ISLNK(status.st_mode)) {
        return {path, "", status.st_size, status.st_uid, id_of(status)};
    }
    if (most_links == 0) return {path, std::strerror(ELOOP)};
    const std::string target = link_target(path);
    if (target.empty()) return {path, std::strerror(errno)};
    MeantFile file = follow_links(target, most_links - 1);
    const uid_t owner = status.st_uid;
    if (file.reason.empty() && owner != 0 && owner != geteuid() && owner != file.owner) {
        file.reason = LINK_OF_SOMEBODY_ELSE;
    }
    return file;
}
