#include "logs/left_overs.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <unordered_set>

#include "base/file_identity.h"
#include "base/filled.h"
#include "base/replace_file.h"
#include "messages/log_texts.h"

namespace {

/// What follows a companion's or a log's path; then the byte where it goes on, the log's device and
/// inode, and the log's size.
constexpr char LEFT_OVER_MARK[] = ".to_add_";
constexpr char LEFT_OVER_NAME[] = "%s.to_add_%lld_%llu_%llu_%lld";
constexpr char LEFT_OVER_NUMBERS[] = "%lld_%llu_%llu_%lld";

void sync_names(const std::string& path) {
    stop_on(sync_directory_of(path), "bring to the disk the directory of", path);
}

/// Gives it the name that says the new numbers, for good.
void rename_left_over(LeftOver* left_over, const LeftOver& changed) {
    const std::string path = left_over->path();
    must(rename(path.c_str(), changed.path().c_str()) == 0, "rename", path);
    *left_over = changed;
    sync_names(changed.path());
}

void remove_left_over(const LeftOver& left_over) {
    const std::string path = left_over.path();
    must(unlink(path.c_str()) == 0 || errno == ENOENT, "remove", path);
}

/// Words that stand in the log already, as often as there.
class Standing {
  public:
    void put_words_of(const OpenLog& log, off_t from) {
        read_pieces(log.file, log.path, from, status_of(log.file).st_size, [&](auto words) {
            for_each_word(words, [&](std::string_view word) { words_.emplace(word); });
        });
    }
    /// The lines that do not stand there, in `lines`; good until the next call.
    std::string_view missing(std::string_view lines) {
        if (words_.empty()) return lines;
        missing_.clear();
        for_each_word(lines, [&](std::string_view word) {
            const auto found = words_.find(std::string(word));
            if (found == words_.end()) {
                missing_.append(word) += '\n';
            } else {
                words_.erase(found);
            }
        });
        return missing_;
    }

  private:
    template <typename Take>
    static void for_each_word(std::string_view words, const Take& take) {
        const char* at = words.data();
        const char* const end = at + words.size();
        for (auto word = next_word(&at, end); !word.empty(); word = next_word(&at, end)) take(word);
    }

    std::unordered_multiset<std::string> words_;
    std::string missing_;
};

void append(int file, const std::string& path, std::string_view lines) {
    stop_on(write_all(file, lines), "write", path);
}

/// Opens the log for at most `size` bytes of lines. Nothing is open when somebody keeps it so in
/// the middle of a record.
Descriptor begin_to_add(LeftOver* left_over, const OpenLog& log, off_t size, Moment deadline) {
    const Settled settled = settle(log.file, deadline);
    char last = '\n';
    must(pread(log.file, &last, 1, settled.size - 1) == 1 || settled.size == 0, "read", log.path);
    if (!is_white(last) && settled.is_written) {
        left_over->stays = KEPT_OPEN;
        return Descriptor();
    }
    constexpr int FLAGS = O_WRONLY | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    Descriptor file(open(log.path.c_str(), FLAGS));
    const FileId id = id_of(log.file);
    if (!file || id_of(file.get()) != id) {
        left_over->stays = file ? REPLACED_MEANWHILE : std::strerror(errno);
        return Descriptor();
    }
    if (left_over->log != id) {
        rename_left_over(left_over, {left_over->source, left_over->from, id, settled.size});
    }
    // A full disk is noticed before any harm is done, where the file system can do that.
    must(fallocate(file.get(), FALLOC_FL_KEEP_SIZE, settled.size, size) == 0 ||
             errno == EOPNOTSUPP || errno == ENOSYS,
         "make room in", log.path);
    if (!is_white(last)) append(file.get(), log.path, "\n");
    return file;
}

void finish(Descriptor* file, const std::string& path) {
    must(fsync(file->get()) == 0, "sync", path);
    stop_on(file->close(), "close", path);
    sync_names(path);
}

}  // namespace

std::string LeftOver::path() const {
    return filled(LEFT_OVER_NAME, source.c_str(), static_cast<long long>(from),
                  static_cast<unsigned long long>(log.device),
                  static_cast<unsigned long long>(log.inode), static_cast<long long>(size));
}

LeftOver new_left_over(const std::string& source, off_t from, int file) {
    return {source, from, id_of(file), 0};
}

const std::vector<std::string>& LeftOverNames::in(const std::string& directory,
                                                  std::string* reason) {
    const auto [listing, is_new] = names_.try_emplace(directory);
    if (!is_new) return listing->second;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(directory.c_str()), closedir);
    const dirent* entry = nullptr;
    while (stream && (errno = 0, entry = readdir(stream.get())) != nullptr) {
        const std::string name = entry->d_name;
        if (name.find(LEFT_OVER_MARK) != std::string::npos) listing->second.push_back(name);
    }
    // A directory that is not there has none.
    if (errno != 0 && errno != ENOENT && errno != ENOTDIR) *reason = std::strerror(errno);
    return listing->second;
}

void LeftOverNames::find(Place* source, std::vector<LeftOver>* found) {
    const std::size_t name_at = source->path.rfind('/') + 1;
    const std::string directory = source->path.substr(0, name_at);
    const std::string start = source->path.substr(name_at) + LEFT_OVER_MARK;
    for (const std::string& name : in(directory, &source->reason)) {
        long long from;
        long long size;
        unsigned long long device;
        unsigned long long inode;
        if (!name.starts_with(start) || std::sscanf(name.c_str() + start.size(), LEFT_OVER_NUMBERS,
                                                    &from, &device, &inode, &size) != 4) {
            continue;
        }
        const LeftOver left_over = {source->path, from, {device, inode}, size};
        struct stat status;
        // A name that was not given here is somebody else's.
        if (left_over.path() == directory + name && from >= 0 && size >= 0 &&
            lstat(left_over.path().c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
            found->push_back(left_over);
        }
    }
}

void add_left_over(LeftOver* left_over, const OpenLog& log, KeptRecords* records, Moment deadline) {
    const Descriptor file = open_log(left_over->path(), &left_over->stays);
    // One that is gone was added by another pruning of its log.
    if (!file) return;
    if (id_of(file.get()) == id_of(log.file)) return remove_left_over(*left_over);
    const Settled settled = settle(file.get(), deadline);
    off_t added = left_over->from;
    Standing standing;
    if (settled.size > added && left_over->log == id_of(log.file))
        standing.put_words_of(log, left_over->size);

    KeptRecords counted = *records;
    Descriptor to;
    bool is_torn = false;
    read_pieces(file.get(), left_over->path(), added, settled.size, [&](std::string_view words) {
        // Who keeps it open may be in the middle of the last record.
        if (is_torn) return;
        is_torn = settled.is_written && !is_white(words.back());
        while (is_torn && !words.empty() && !is_white(words.back())) words.remove_suffix(1);
        const std::string_view lines = standing.missing(counted.of(words));
        if (!to && !lines.empty() && left_over->stays.empty()) {
            to = begin_to_add(left_over, log, settled.size - added, deadline);
        }
        if (to) append(to.get(), log.path, lines);
        added += static_cast<off_t>(words.size());
    });
    if (!left_over->stays.empty()) return;
    *records = counted;
    const bool has_added = static_cast<bool>(to);
    if (has_added) finish(&to, log.path);
    if (settled.is_written) {
        rename_left_over(left_over, new_left_over(left_over->source, added, file.get()));
        left_over->stays = KEPT_OPEN;
    } else {
        remove_left_over(*left_over);
        if (has_added) sync_names(left_over->source);
    }
}
