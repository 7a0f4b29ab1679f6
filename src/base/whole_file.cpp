#include "base/whole_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "base/descriptor.h"
#include "base/files.h"

namespace gatescope {

int read_whole(int descriptor, std::size_t limit, std::string* bytes) {
    std::array<char, 32768> chunk;
    while (limit > 0) {
        const ssize_t got = read(descriptor, chunk.data(), std::min(chunk.size(), limit));
        if (got == 0) return 0;
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return errno;
        bytes->append(chunk.data(), static_cast<std::size_t>(got));
        limit -= static_cast<std::size_t>(got);
    }
    return 0;
}

int read_file(const std::string& path, int flags, std::string* bytes) {
    const Descriptor file(open_regular_file(path, O_RDONLY | flags));
    return file ? read_whole(file.get(), std::string::npos, bytes) : errno;
}

int write_all(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        if (written == 0) return EIO;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

int write_and_sync(int descriptor, std::string_view text) {
    if (const int error = write_all(descriptor, text)) return error;
    return fsync(descriptor) == 0 ? 0 : errno;
}

int write_sync_close(int descriptor, std::string_view text) {
    const int error = write_and_sync(descriptor, text);
    if (close(descriptor) != 0 && error == 0) return errno;
    return error;
}

}  // namespace gatescope
