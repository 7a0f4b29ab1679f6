#include "policy/gatebits_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/file_lock.h"
#include "base/filled.h"
#include "base/replace_file.h"
#include "base/run_identity.h"
#include "base/temporary_files.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "messages/policy_texts.h"
#include "messages/startup_texts.h"

namespace {

/// The lock under which the file is changed; where there is none to be had we do without. Gripes
/// when somebody else does not let go of it.
FileLock lock_gatebits_file(const std::string& path, std::chrono::seconds patience) {
    FileLock lock = lock_file(path, patience);
    if (lock.state != LockState::KEPT_BY_ANOTHER) return lock;
    const int seconds = static_cast<int>(patience.count());
    gripe(filled(COULD_NOT_REPLACE, path.c_str(), filled(LOCKED_BY_ANOTHER, seconds).c_str(),
                 filled(FILE_IS_UNCHANGED, path.c_str()).c_str()));
}

std::vector<std::string> lines_of(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        if (!line.empty()) lines.emplace_back(line);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines;
}

/// The new text of the file; gripes when a reader would not get back from it what `lines` holds.
std::string text_fit_to_be_read_back(const std::string& path,
                                     const std::vector<std::string>& lines) {
    const char* name = path.c_str();
    if (read_gatebits_bytes(path).find('\0') != std::string::npos) {
        gripe(filled(GATEBITS_HOLDS_NUL, name));
    }
    std::string text;
    for (const std::string& line : lines) {
        const std::string_view kept = c_text(line);
        if (kept.find('\n') != std::string_view::npos) gripe(filled(NEW_LINE_HOLDS_BREAK, name));
        text.append(kept) += '\n';
    }
    if (text.size() > GATEBITS_FILE_LIMIT) {
        gripe(filled(GATEBITS_WOULD_BE_TOO_LARGE, name, text.size(), GATEBITS_FILE_LIMIT, name));
    }
    return text;
}

/// Puts the new text of the file at `path` into the run's scratch file, on the disk.
void write_scratch_file(const std::string& path, std::string_view text) {
    const std::string scratch = t_file_name();
    const int file = create_temporary_file(scratch);
    if (file == -1) gripe(CANNOT_CREATE_TEMP_FILE, scratch, errno);
    const int error = write_sync_close(file, text);
    if (error == 0) return;
    gripe(filled(COULD_NOT_REPLACE, path.c_str(), std::strerror(error),
                 filled(FILE_IS_UNCHANGED, path.c_str()).c_str()));
}

/// Puts the lines in the file's place.
void write_gatebits_lines(const std::string& path, const std::vector<std::string>& lines) {
    const std::string text = text_fit_to_be_read_back(path, lines);
    write_scratch_file(path, text);
    const auto failure = replace_file(path, text, t_file_name());
    if (failure && failure->error != 0) gripe(failure->message, failure->error);
    if (failure) gripe(failure->message);
}

/// Whether a field that ends in an alias reference needs a blank after it: a reference is ended
/// by a blank, and the ';' alone would leave it open for the policy engine.
bool ends_in_a_reference(const std::string& line) {
    const auto tilde = line.rfind('~');
    if (tilde == std::string::npos) return false;
    const auto blank = line.rfind(' ');
    return blank == std::string::npos || tilde > blank;
}

const std::string* line_numbered(int n, const std::vector<std::string>& lines) {
    LineCounter counter;
    for (const std::string& line : lines) {
        if (counter.counts_as(n, line)) return &line;
    }
    return nullptr;
}

/// The line that a reader finds under the number, and no other: where the counter starts over, the
/// number comes again.
void replace_line(int n, const std::string& replacement, std::vector<std::string>* lines) {
    LineCounter counter;
    const auto line = std::find_if(lines->begin(), lines->end(), [&](const std::string& one) {
        return counter.counts_as(n, one);
    });
    if (line != lines->end()) *line = replacement;
}

/// The value of field f of significant line n; empty when there is none.
std::string field_in(const std::vector<std::string>& lines, int n, int f) {
    const std::string* line = line_numbered(n, lines);
    const auto fields = line == nullptr ? std::vector<std::string>() : terminated_fields(*line);
    return f < 1 || static_cast<std::size_t>(f) > fields.size()
               ? ""
               : fields[static_cast<std::size_t>(f) - 1];
}

bool holds_what_was_shown(const FieldChange& change, const std::vector<std::string>& lines) {
    return !change.shown || *change.shown == field_in(lines, change.line, change.field);
}

/// The line of the change with its new value.
std::string rebuilt_line(const std::vector<std::string>& fields, const FieldChange& change) {
    std::string rebuilt;
    int number = 1;
    for (const std::string& field : fields) {
        rebuilt += number++ == change.field ? std::string(c_text(change.value)) : field;
        if (ends_in_a_reference(rebuilt)) rebuilt += ' ';
        rebuilt += ';';
    }
    return rebuilt;
}

/// Rebuilds the line of the change. `*any` becomes true when there is anything to write.
ChangeResult change_field(const FieldChange& change, std::vector<std::string>* lines, bool* any) {
    const std::string* line = line_numbered(change.line, *lines);
    if (line == nullptr) return ChangeResult::NO_SUCH_LINE;
    const std::vector<std::string> fields = terminated_fields(*line);
    const auto field = static_cast<std::size_t>(change.field);
    // A field one past the last passes: the line is then written back as it stands.
    if (fields.empty() || field > fields.size() + 1) return ChangeResult::NO_SUCH_FIELD;
    replace_line(change.line, rebuilt_line(fields, change), lines);
    *any = true;
    return field > fields.size() ? ChangeResult::NO_SUCH_FIELD : ChangeResult::WRITTEN;
}

}  // namespace

std::string read_gatebits_bytes(const std::string& path) {
    // A pipe without a writer must not keep us waiting.
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file == -1) gripe(CANNOT_OPEN_GATEBITS, path, errno);
    std::string bytes(GATEBITS_FILE_LIMIT + 1, '\0');
    std::size_t size = 0;
    while (size < bytes.size()) {
        const ssize_t got = read(file, bytes.data() + size, bytes.size() - size);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) gripe(CANNOT_READ_GATEBITS, path, errno);
        if (got == 0) break;
        size += static_cast<std::size_t>(got);
    }
    close(file);
    if (size > GATEBITS_FILE_LIMIT) {
        gripe(filled(GATEBITS_TOO_LARGE, path.c_str(), GATEBITS_FILE_LIMIT));
    }
    bytes.resize(size);
    return bytes;
}

std::vector<std::string> read_gatebits_lines(const std::string& path) {
    const std::string bytes = read_gatebits_bytes(path);
    std::vector<std::string> lines = lines_of(c_text(bytes));
    if (lines.empty()) gripe(filled(GATEBITS_EMPTY, path.c_str()));
    return lines;
}

void change_gatebits_lines(const std::string& path,
                           const std::function<bool(std::vector<std::string>* lines)>& change,
                           std::chrono::seconds patience) {
    const FileLock lock = lock_gatebits_file(path, patience);
    std::vector<std::string> lines = read_gatebits_lines(path);
    if (change(&lines)) write_gatebits_lines(path, lines);
}

std::string_view without_leading_blanks(std::string_view line) {
    const auto first = line.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string_view() : line.substr(first);
}

bool is_significant(std::string_view line) {
    const std::string_view text = without_leading_blanks(line);
    return !text.empty() && text.front() != '#';
}

bool LineCounter::counts_as(int n, std::string_view line) {
    if (!is_significant(line)) return false;
    counter_ = static_cast<std::int8_t>(static_cast<std::uint8_t>(counter_) + 1);
    return counter_ == n;
}

bool get_a_line(const std::string& path, int n, std::string* line) {
    const std::vector<std::string> lines = read_gatebits_lines(path);
    const std::string* found = line_numbered(n, lines);
    if (found == nullptr) return false;
    *line = *found;
    return true;
}

ChangeResult set_a_line(const std::string& path, int n, const std::string& text,
                        const std::optional<std::string>& shown) {
    ChangeResult result = ChangeResult::WRITTEN;
    change_gatebits_lines(path, [&](std::vector<std::string>* lines) {
        if (n == 0) {
            lines->push_back(text);
            return true;
        }
        const std::string* line = line_numbered(n, *lines);
        if (line == nullptr) result = ChangeResult::NO_SUCH_LINE;
        if (shown && (line == nullptr || *line != *shown)) {
            result = ChangeResult::CHANGED_MEANWHILE;
            return false;
        }
        replace_line(n, text == DELETION_TOKEN ? "" : text, lines);
        return true;
    });
    return result;
}

bool get_a_field(const std::string& path, int n, int f, std::string* value) {
    std::string line;
    if (!get_a_line(path, n, &line)) return false;
    const std::vector<std::string> fields = terminated_fields(line);
    if (f < 1 || static_cast<std::size_t>(f) > fields.size()) return false;
    *value = fields[static_cast<std::size_t>(f) - 1];
    return true;
}

std::string field_or_empty(const std::string& path, int n, int f) {
    std::string value;
    get_a_field(path, n, f, &value);
    return value;
}

ChangeResult set_a_field(const std::string& path, const FieldChange& change,
                         const std::vector<FieldChange>& further) {
    ChangeResult result = ChangeResult::CHANGED_MEANWHILE;
    change_gatebits_lines(path, [&](std::vector<std::string>* lines) {
        const auto still_holds = [&](const FieldChange& one) {
            return holds_what_was_shown(one, *lines);
        };
        if (!still_holds(change) || !std::all_of(further.begin(), further.end(), still_holds)) {
            return false;
        }
        bool any = false;
        result = change_field(change, lines, &any);
        for (const FieldChange& one : further) change_field(one, lines, &any);
        return any && result != ChangeResult::NO_SUCH_LINE;
    });
    return result;
}
