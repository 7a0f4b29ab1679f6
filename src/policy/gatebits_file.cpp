#include "policy/gatebits_file.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "base/descriptor.h"
#include "base/file_lock.h"
#include "base/filled.h"
#include "base/replace_file.h"
#include "base/run_identity.h"
#include "base/temporary_files.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "messages/policy_texts.h"
#include "messages/startup_texts.h"
#include "policy/write_failure.h"

namespace gatescope {

namespace {

/// Takes the lock, which is empty on a file system without locks. Gripes if another process keeps
/// it.
FileLock lock_gatebits_file(const std::string& path, std::chrono::seconds patience) {
    FileLock lock = lock_file(path, patience);
    if (lock.state != LockState::HELD_BY_ANOTHER) return lock;
    gripe_unchanged(path, filled(LOCKED_BY_ANOTHER, static_cast<int>(patience.count())));
}

/// Gripes if a reader would not get the same lines from the new text.
void check_readable(const std::string& path, const Gatebits& now, const Gatebits& wanted) {
    const char* name = path.c_str();
    if (now.text().find('\0') != std::string::npos) gripe(filled(GATEBITS_HOLDS_NUL, name));
    for (const std::string& line : wanted.lines()) {
        if (c_text(line).find('\n') != std::string_view::npos) {
            gripe(filled(NEW_LINE_HOLDS_BREAK, name));
        }
    }
    const std::size_t size = wanted.text().size();
    if (size > GATEBITS_FILE_LIMIT) {
        gripe(filled(GATEBITS_WOULD_BE_TOO_LARGE, name, size, GATEBITS_FILE_LIMIT, name));
    }
}

/// Writes the new text of the file at `path` to the run's scratch file, and syncs it.
void write_scratch_file(const std::string& path, const std::string& text) {
    const std::string scratch = t_file_name();
    const int file = create_temporary_file(scratch);
    if (file == -1) gripe(CANNOT_CREATE_TEMP_FILE, scratch, errno);
    const int error = write_sync_close(file, text);
    if (error != 0) gripe_unchanged(path, std::strerror(error));
}

/// Replaces the old text by `text` and records the change, if there is one. `open_file` is the file
/// if it is open.
void write_gatebits(const std::string& path, const std::string& old_text, const std::string& text,
                    const std::optional<RecordedChange>& change, const Descriptor& open_file) {
    write_scratch_file(path, text);
    HistoryRecord record;
    if (change) record = record_change(path, old_text, *change);
    const auto failure = replace_file(path, text, t_file_name(), open_file);
    if (!failure) return;
    if (is_unchanged(*failure)) record.take_back();
    gripe_not_replaced(*failure, path, t_file_name());
}

/// All bytes of the open file at `path`.
std::string bytes_in(const Descriptor& file, const std::string& path) {
    std::string bytes;
    const int error = read_whole(file.get(), GATEBITS_FILE_LIMIT + 1, &bytes);
    if (error != 0) gripe(CANNOT_READ_GATEBITS, path, error);
    if (bytes.size() > GATEBITS_FILE_LIMIT) {
        gripe(filled(GATEBITS_TOO_LARGE, path.c_str(), GATEBITS_FILE_LIMIT));
    }
    return bytes;
}

/// The text of the file at `path`. Gripes if it has no line.
Gatebits parse_gatebits(std::string bytes, const std::string& path) {
    Gatebits gatebits(std::move(bytes));
    if (gatebits.lines().empty()) gripe(filled(GATEBITS_EMPTY, path.c_str()));
    return gatebits;
}

/// All bytes of the file at `path`, whose lock was tried for.
std::string bytes_under(const FileLock& lock, const std::string& path) {
    return lock.file ? bytes_in(lock.file, path) : read_gatebits_bytes(path);
}

}  // namespace

std::string read_gatebits_bytes(const std::string& path) {
    // O_NONBLOCK: the open must not wait for a writer of a FIFO.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file) gripe(CANNOT_OPEN_GATEBITS, path, errno);
    return bytes_in(file, path);
}

Gatebits read_gatebits(const std::string& path) {
    return parse_gatebits(read_gatebits_bytes(path), path);
}

std::vector<std::string> no_part(const Gatebits& /*gatebits*/) {
    return {};
}

Changed change(const std::string& path, const Precondition& precondition, const Edit& edit,
               const RecordedChange& record, std::chrono::seconds patience) {
    const FileLock lock = lock_gatebits_file(path, patience);
    const Gatebits now = parse_gatebits(bytes_under(lock, path), path);
    if (precondition.part(now) != precondition.part(precondition.gatebits)) {
        return {ChangeResult::CHANGED_MEANWHILE, now, now};
    }
    const Rewrite wanted = edit(now);
    if (!wanted.text) return {wanted.result, now, now};
    check_readable(path, now, *wanted.text);
    std::optional<RecordedChange> made = record;
    // Even if the value is not written, the text of the file may change.
    if (wanted.result != ChangeResult::WRITTEN) made->to = made->from;
    if (wanted.result != ChangeResult::WRITTEN && wanted.text->text() == now.text()) made.reset();
    write_gatebits(path, now.text(), wanted.text->text(), made, lock.file);
    // Parsed again, as readers see the text.
    return {wanted.result, now, Gatebits(wanted.text->text())};
}

void put_back(const std::string& path, const Gatebits& text, const RecordedChange& record) {
    const FileLock lock = lock_gatebits_file(path, LOCK_PATIENCE);
    write_gatebits(path, bytes_under(lock, path), text.text(), record, lock.file);
}

}  // namespace gatescope
