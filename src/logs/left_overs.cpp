#include "logs/left_overs.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <unordered_map>

#include "base/file_identity.h"
#include "base/filled.h"
#include "base/replace_file.h"
#include "messages/log_texts.h"

namespace {

void sync_names(const std::string& path) {
    const int error = sync_directory_of(path);
    if (error != 0) stop_pruning("bring to the disk the directory of", path, error);
}

/// Gives it the name that says the new numbers, for good.
void rename_left_over(LeftOver* left_over, const LeftOver& changed) {
    const std::string path = left_over->path();
    must(rename(path.c_str(), changed.path().c_str()) == 0, "rename", path);
    *left_over = changed;
    sync_names(changed.path());
}

/// Where the whole words end: behind the last white space of the file's first `size` bytes.
off_t behind_last_white(int file, off_t size) {
    std::array<char, 4096> bytes;
    while (size > 0) {
        const off_t start = std::max<off_t>(0, size - static_cast<off_t>(bytes.size()));
        const auto wanted = static_cast<std::size_t>(size - start);
        const ssize_t got = pread(file, bytes.data(), wanted, start);
        if (got != static_cast<ssize_t>(wanted))
            stop_pruning("read", "an open log file", got < 0 ? errno : EIO);
        const auto last = std::find_if(bytes.rend() - got, bytes.rend(), is_white);
        if (last != bytes.rend()) return start + (bytes.rend() - last);
        size = start;
    }
    return 0;
}

/// Words that stand in the log already, and how often.
class Standing {
  public:
    void count(std::string_view words) {
        for_each_word(words, [&](std::string_view word) { ++times_[std::string(word)]; });
    }

    /// The lines of `lines` that do not stand there; good until the next call.
    std::string_view missing(std::string_view lines) {
        if (times_.empty()) return lines;
        missing_.clear();
        for_each_word(lines, [&](std::string_view word) {
            const auto found = times_.find(std::string(word));
            if (found == times_.end() || found->second == 0) {
                missing_.append(word) += '\n';
            } else {
                --found->second;
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

    std::unordered_map<std::string, std::size_t> times_;
    std::string missing_;
};

/// Appends whole lines to a log, from the first one that there is.
class Appending {
  public:
    Appending(const OpenLog& log, Moment deadline) : log_(log), deadline_(deadline) {}

    /// Makes ready for `size` bytes of lines, unless somebody keeps the log open in the middle of a
    /// record.
    void begin(LeftOver* left_over, off_t size) {
        const Settled settled = settle(log_.file, deadline_);
        const bool is_torn = behind_last_white(log_.file, settled.size) != settled.size;
        if (is_torn && settled.is_written) {
            left_over->stays = KEPT_OPEN;
            return;
        }
        const FileId id = id_of(log_.file);
        if (left_over->log != id) {
            rename_left_over(left_over, {left_over->source, left_over->from, id, settled.size});
        }
        const char* const path = log_.path.c_str();
        file_ = Descriptor(open(path, O_WRONLY | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        must(static_cast<bool>(file_), "open", path);
        if (id_of(file_.get()) != id) stop_pruning("find again", path, ESTALE);
        // A full disk is noticed before any harm is done, where the file system can do that.
        must(fallocate(file_.get(), FALLOC_FL_KEEP_SIZE, settled.size, size) == 0 ||
                 errno == EOPNOTSUPP || errno == ENOSYS,
             "make room in", path);
        if (is_torn) append("\n");
    }

    bool has_begun() const { return static_cast<bool>(file_); }

    void append(std::string_view lines) {
        const int error = write_all(file_.get(), lines);
        if (error != 0) stop_pruning("write", log_.path, error);
    }

    /// Brings all to the disk.
    void end() {
        must(fsync(file_.get()) == 0, "sync", log_.path);
        const int error = file_.close();
        if (error != 0) stop_pruning("close", log_.path, error);
        sync_names(log_.path);
    }

  private:
    const OpenLog& log_;
    Moment deadline_;
    Descriptor file_;
};

void remove_left_over(const LeftOver& left_over) {
    const std::string path = left_over.path();
    must(unlink(path.c_str()) == 0 || errno == ENOENT, "remove", path);
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

LeftOverNames::Listing LeftOverNames::list(const std::string& directory) {
    Listing listing;
    std::error_code error;
    for (auto entry = std::filesystem::directory_iterator(directory, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (name.find(LEFT_OVER_MARK) != std::string::npos) listing.names.push_back(name);
    }
    // A directory that is not there has none.
    if (error && error != std::errc::no_such_file_or_directory &&
        error != std::errc::not_a_directory) {
        listing.reason = error.message();
    }
    return listing;
}

void LeftOverNames::find(Place* source, std::vector<LeftOver>* found) {
    const std::size_t name_at = source->path.rfind('/') + 1;
    const std::string start = source->path.substr(name_at) + LEFT_OVER_MARK;
    const auto [known, is_new] = listings_.try_emplace(source->path.substr(0, name_at));
    if (is_new) known->second = list(known->first);
    source->reason = known->second.reason;
    for (const std::string& name : known->second.names) {
        if (!name.starts_with(start)) continue;
        long long from;
        long long size;
        unsigned long long device;
        unsigned long long inode;
        if (std::sscanf(name.c_str() + start.size(), LEFT_OVER_NUMBERS, &from, &device, &inode,
                        &size) != 4) {
            continue;
        }
        const LeftOver left_over = {source->path, from, {device, inode}, size};
        struct stat status;
        // A name that was not given here is somebody else's.
        if (left_over.path() == known->first + name && from >= 0 && size >= 0 &&
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
    const off_t from = left_over->from;
    const off_t end = settled.is_written
                          ? std::max(from, behind_last_white(file.get(), settled.size))
                          : settled.size;
    Standing standing;
    if (end > from && left_over->log == id_of(log.file)) {
        read_pieces(log.file, log.path, left_over->size, status_of(log.file).st_size,
                    [&](std::string_view words) { standing.count(words); });
    }
    Appending appending(log, deadline);
    read_pieces(file.get(), left_over->path(), from, end, [&](std::string_view words) {
        const std::string_view lines = standing.missing(records->of(words));
        if (lines.empty() || !left_over->stays.empty()) return;
        if (!appending.has_begun()) appending.begin(left_over, end - from);
        if (appending.has_begun()) appending.append(lines);
    });
    if (!left_over->stays.empty()) return;
    if (appending.has_begun()) appending.end();
    if (settled.is_written) {
        rename_left_over(left_over, new_left_over(left_over->source, end, file.get()));
        left_over->stays = KEPT_OPEN;
    } else {
        remove_left_over(*left_over);
        if (appending.has_begun()) sync_names(left_over->source);
    }
}
