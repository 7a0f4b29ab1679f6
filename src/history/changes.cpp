#include "history/changes.h"

#include <fcntl.h>

#include <cstring>

#include "base/filled.h"
#include "base/paths.h"
#include "base/standard_streams.h"
#include "base/text.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "messages/history_texts.h"
#include "messages/policy_texts.h"
#include "policy/gatebits_file.h"
#include "policy/history.h"

namespace gatescope {
namespace {

std::string bytes_of(const std::string& path) {
    std::string bytes;
    const int error = read_file(path, O_NOFOLLOW, &bytes);
    if (error != 0) gripe(filled(CANNOT_READ, path.c_str(), std::strerror(error)));
    return bytes;
}

/// Whether the line is a complete record: a torn one may end anywhere.
bool is_record(const PastChange& change) {
    return change.text("file").starts_with('/') &&
           (change.line.ends_with("\"saved\":null}\n") ||
            (change.value("saved") && change.line.ends_with("\"}\n")));
}

}  // namespace

PastChanges read_history(const std::string& directory, const std::optional<std::string>& file) {
    PastChanges changes;
    const std::string path = directory + "/" + CHANGES_FILE;
    const std::string bytes = bytes_of(path);
    int number = 0;
    for (const std::string_view line : whole_lines(bytes)) {
        const PastChange change = {directory, ++number, std::string(line)};
        if (!is_record(change)) {
            note(filled(NOT_A_COMPLETE_RECORD, number, path.c_str()), HISTORY_PROGRAM);
        } else if (!file || change.text("file") == *file) {
            changes.push_back(change);
        }
    }
    return changes;
}

std::string text_before(const PastChange& change) {
    if (!change.value("saved")) return "";
    // No record that was made here leads to another directory, or to a text that none could read.
    const std::string path = change.directory + "/" + file_name_of(change.text("saved"));
    const std::string text = bytes_of(path);
    if (text.size() <= GATEBITS_FILE_LIMIT) return text;
    gripe(filled(GATEBITS_TOO_LARGE, path.c_str(), GATEBITS_FILE_LIMIT));
}

std::string text_after(const PastChange& change, const PastChanges& changes) {
    const std::string file = change.text("file");
    for (const PastChange& next : changes) {
        if (next.number <= change.number || next.text("file") != file) continue;
        if (!next.value("saved")) gripe(filled(FILE_WAS_GONE, file.c_str(), next.number));
        return text_before(next);
    }
    return read_gatebits_bytes(file);
}

}  // namespace gatescope
