#include "history/changes.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "base/descriptor.h"
#include "base/files.h"
#include "base/filled.h"
#include "base/paths.h"
#include "dialog/messages.h"
#include "messages/history_texts.h"
#include "policy/gatebits_file.h"
#include "policy/history.h"

namespace gatescope {
namespace {

/// All bytes of a file; gripes when they cannot be read.
std::string bytes_of(const std::string& path) {
    const Descriptor file(open_regular_file(path, O_RDONLY));
    std::string bytes;
    std::array<char, 65536> chunk;
    for (ssize_t got = file ? 1 : -1; got != 0;) {
        if (got < 0 && errno != EINTR) {
            gripe(filled(CANNOT_READ, path.c_str(), std::strerror(errno)));
        }
        got = read(file.get(), chunk.data(), chunk.size());
        if (got > 0) bytes.append(chunk.data(), static_cast<std::size_t>(got));
    }
    return bytes;
}

}  // namespace

History read_history(const std::string& directory) {
    History history = {directory};
    const std::string path = directory + "/" + CHANGES_FILE;
    const std::string bytes = bytes_of(path);
    std::string_view rest = bytes;
    for (int number = 1; rest.find('\n') != std::string_view::npos; ++number) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        const auto record = read_json_object(line);
        if (!record) gripe(filled(NO_RECORD_IN_LINE, number, path.c_str()));
        history.changes.push_back({number, *record});
        rest.remove_prefix(line.size() + 1);
    }
    return history;
}

NamedText text_before(const History& history, const PastChange& change) {
    if (!change.has("saved")) return {NO_FILE, ""};
    // No record that was made here leads to another directory.
    const std::string saved = change.text("saved");
    return {saved, bytes_of(history.directory + "/" + file_name_of(saved))};
}

NamedText text_after(const History& history, const PastChange& change) {
    const std::string file = change.text("file");
    for (const PastChange& next : history.changes) {
        if (next.number <= change.number || next.text("file") != file) continue;
        if (!next.has("saved")) gripe(filled(FILE_WAS_GONE, file.c_str(), next.number));
        return text_before(history, next);
    }
    return {file, read_gatebits_bytes(file)};
}

}  // namespace gatescope
