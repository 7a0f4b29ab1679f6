#include "history/changes.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "base/descriptor.h"
#include "base/files.h"
#include "base/filled.h"
#include "dialog/messages.h"
#include "messages/history_texts.h"
#include "policy/history.h"

namespace {

constexpr std::array<const char*, 8> MEMBERS = {"time", "operator", "file", "action",
                                                "item", "from",     "to",   "saved"};

/// All bytes of a file; gripes when they cannot be read.
std::string bytes_of(const std::string& path, int flags = 0) {
    const Descriptor file(open_regular_file(path, O_RDONLY | flags));
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

bool is_record(const JsonObject& object) {
    return std::all_of(MEMBERS.begin(), MEMBERS.end(),
                       [&](const char* name) { return object.contains(name); });
}

}  // namespace

History read_history(const std::string& directory) {
    History history = {directory};
    const std::string bytes = bytes_of(directory + "/" + CHANGES_FILE);
    std::string_view rest = bytes;
    for (int number = 1; rest.find('\n') != std::string_view::npos; ++number) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(line.size() + 1);
        const auto object = read_json_object(line);
        if (object && is_record(*object)) {
            history.changes.push_back({number, *object});
        } else if (history.first_other_line == 0) {
            history.first_other_line = number;
        }
    }
    return history;
}

NamedText text_before(const History& history, const PastChange& change) {
    const auto& saved = change.record.at("saved");
    if (!saved) return {NO_FILE, ""};
    const std::string path = history.directory + "/" + *saved;
    // No record that was made here leads to another directory, or to a link.
    if (saved->find('/') != std::string::npos) {
        gripe(filled(CANNOT_READ, path.c_str(), std::strerror(EINVAL)));
    }
    return {*saved, bytes_of(path, O_NOFOLLOW)};
}

NamedText text_after(const History& history, const PastChange& change) {
    const std::string file = change.text("file");
    const auto next =
        std::find_if(history.changes.begin(), history.changes.end(), [&](const PastChange& other) {
            return other.number > change.number && other.text("file") == file;
        });
    if (next == history.changes.end()) return {file, bytes_of(file)};
    if (!next->record.at("saved")) gripe(filled(FILE_WAS_GONE, file.c_str(), next->number));
    return text_before(history, *next);
}
