#include "logs/left_overs.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <tuple>

#include "base/files.h"
#include "base/whole_file.h"
#include "messages/log_texts.h"

namespace {

/// What follows a companion's or a log's path; then the byte where it goes on, the log's device and
/// inode, and the log's size.
constexpr char LEFT_OVER_MARK[] = ".to_add_";
constexpr char LEFT_OVER_NUMBERS[] = ".to_add_%lld_%llu_%llu_%lld";

constexpr char WHITE_SPACE[] = " \t\n\v\f\r";

/// The left-over that the path names; nothing when no pruning gives a file such a name.
std::optional<LeftOver> named(const std::string& path) {
    const std::size_t mark = path.rfind(LEFT_OVER_MARK);
    if (mark == std::string::npos) return std::nullopt;
    long long from;
    long long size;
    unsigned long long device;
    unsigned long long inode;
    if (std::sscanf(&path[mark], LEFT_OVER_NUMBERS, &from, &device, &inode, &size) != 4) {
        return std::nullopt;
    }
    LeftOver left_over = {path.substr(0, mark), from, {device, inode}, size};
    if (from < 0 || size < 0 || left_over.path() != path) return std::nullopt;
    return left_over;
}

/// All left-overs of a directory; one that is not there has none.
std::vector<LeftOver> list(const std::string& directory) {
    std::vector<LeftOver> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(directory.c_str()), closedir);
    const dirent* entry = nullptr;
    struct stat status;
    while (stream && (errno = 0, entry = readdir(stream.get())) != nullptr) {
        const std::string path = directory + entry->d_name;
        std::optional<LeftOver> left_over = named(path);
        if (!left_over) continue;
        // What cannot be looked at is found out when it is opened.
        const bool is_seen = lstat(path.c_str(), &status) == 0;
        if (is_seen ? S_ISREG(status.st_mode) : errno != ENOENT) {
            found.push_back(*std::move(left_over));
        }
    }
    need(errno == 0 || errno == ENOENT || errno == ENOTDIR);
    return found;
}

void sync_names(const std::string& path, const Work& work) {
    stop_on(sync_directory_of(path), "bring to the disk the directory of", path, work);
}

/// Renames a left-over so that its name holds the new numbers, and syncs the directory.
void renumber(LeftOver* left_over, off_t from, FileId log, off_t size, const Work& work) {
    const LeftOver renamed = {left_over->source, from, log, size};
    if (left_over->has_name) {
        need(rename(left_over->path().c_str(), renamed.path().c_str()) == 0);
        sync_names(renamed.path(), work);
    }
    std::tie(left_over->from, left_over->log, left_over->size) = std::tie(from, log, size);
}

void remove(const LeftOver& left_over) {
    need(!left_over.has_name || unlink(left_over.path().c_str()) == 0 || errno == ENOENT);
}

template <typename Take>
void for_each_word(std::string_view words, const Take& take) {
    const char* at = words.data();
    const char* const end = at + words.size();
    for (auto word = next_word(&at, end); !word.empty(); word = next_word(&at, end)) take(word);
}

/// The lines that do not stand in the log yet. Each of the others uses up one of the `standing`.
std::string missing_lines(std::string_view lines, Words* standing) {
    std::string missing;
    for_each_word(lines, [&](std::string_view word) {
        const auto found = standing->find(std::string(word));
        if (found == standing->end()) {
            missing.append(word) += '\n';
        } else {
            standing->erase(found);
        }
    });
    return missing;
}

Words words_after(off_t from, const Descriptor& log, Work* work) {
    Words words;
    read_pieces(log, from, status_of(log).st_size, &work->progress, [&](std::string_view piece) {
        for_each_word(piece, [&](std::string_view word) { words.emplace(word); });
        return true;
    });
    return words;
}

/// Opens the log for at most `size` bytes of lines, after those that stand in it. One that somebody
/// keeps open in the middle of a record is left alone.
Descriptor begin_to_add(LeftOver* left_over, const std::string& path, const Descriptor& log,
                        off_t size, Work* work) {
    const Settled settled = settle(log, work->deadline);
    // If the log has become shorter meanwhile, there is no byte to read, and no unfinished record.
    char last = '\n';
    need(settled.size == 0 || pread(log.get(), &last, 1, settled.size - 1) != -1);
    if (settled.is_written && !is_white(last)) throw LeftAlone{KEPT_OPEN};
    Descriptor file(open_regular_file(path, O_WRONLY | O_APPEND | O_NOFOLLOW));
    need(static_cast<bool>(file));
    const FileId id = id_of(log);
    if (id_of(file) != id) throw LeftAlone{REPLACED_MEANWHILE};
    // A full disk is noticed before anything is begun, where the file system can do that.
    need(fallocate(file.get(), FALLOC_FL_KEEP_SIZE, settled.size, size) == 0 ||
         errno == EOPNOTSUPP || errno == ENOSYS);
    if (left_over->log != id) renumber(left_over, left_over->from, id, settled.size, *work);
    if (!is_white(last)) stop_on(write_all(file.get(), "\n"), "write", path, *work);
    return file;
}

}  // namespace

std::string LeftOver::path() const {
    return source + LEFT_OVER_MARK + std::to_string(from) + '_' + std::to_string(log.device) + '_' +
           std::to_string(log.inode) + '_' + std::to_string(size);
}

LeftOver new_left_over(const std::string& source, Descriptor file) {
    const FileId id = id_of(file);
    return {source, 0, id, 0, std::move(file)};
}

void find_left_overs(const std::string& source, Listings* listings, std::vector<LeftOver>* found) {
    const std::string directory = source.substr(0, source.rfind('/') + 1);
    if (!listings->contains(directory)) listings->emplace(directory, list(directory));
    for (LeftOver& left_over : listings->at(directory)) {
        if (left_over.source == source) found->push_back(std::move(left_over));
    }
}

off_t add_words(const LeftOver& left_over, const Settled& to, const std::string& path,
                Descriptor out, Work* work, Words standing) {
    off_t added = left_over.from;
    int error = 0;
    std::string missing;
    const auto add = [&](std::string_view words) {
        // A writer that keeps the file open may be in the middle of the last record.
        const std::size_t whole =
            to.is_written ? words.find_last_of(WHITE_SPACE) + 1 : words.size();
        std::string_view lines = work->records.of(words.substr(0, whole));
        if (!standing.empty()) lines = missing = missing_lines(lines, &standing);
        error = write_all(out.get(), lines);
        added += static_cast<off_t>(whole);
        return error == 0 && whole == words.size();
    };
    const std::string unread =
        reason_of([&] { read_pieces(left_over.file, added, to.size, &work->progress, add); });
    if (error == 0 && fsync(out.get()) != 0) error = errno;
    const int not_closed = out.close();
    stop_on(error != 0 ? error : not_closed, "write", path, *work);
    if (!unread.empty()) throw LeftAlone{unread};
    return added;
}

namespace {

/// Leaves a left-over alone of which something cannot be added yet.
void add_and_remove(LeftOver* left_over, const std::string& path, const Descriptor& log,
                    Work* work) {
    if (!left_over->file) left_over->file = open_here(left_over->path());
    // One that is gone was added by another pruning of its log.
    if (!left_over->file) return;
    const FileId id = id_of(left_over->file);
    if (id == id_of(log)) return remove(*left_over);
    const Settled settled = settle(left_over->file, work->deadline);
    off_t added = left_over->from;
    if (settled.size > added) {
        Words standing;
        if (left_over->log == id_of(log)) standing = words_after(left_over->size, log, work);
        Descriptor out = begin_to_add(left_over, path, log, settled.size - added, work);
        added = add_words(*left_over, settled, path, std::move(out), work, std::move(standing));
        sync_names(path, *work);
    }
    if (settled.is_written) {
        renumber(left_over, added, id, 0, *work);
        throw LeftAlone{KEPT_OPEN};
    }
    remove(*left_over);
    if (added > left_over->from) sync_names(left_over->source, *work);
}

}  // namespace

void add_left_over(LeftOver* left_over, const std::string& path, const Descriptor& log,
                   Work* work) {
    const KeptRecords before = work->records;
    const off_t from = left_over->from;
    left_over->stays = reason_of([&] { add_and_remove(left_over, path, log, work); });
    // Who adds the rest counts it from there.
    if (!left_over->stays.empty() && left_over->from == from) work->records = before;
}
