#include "logs/log_rewrite.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "base/file_identity.h"
#include "base/replace_file.h"
#include "base/signals_held.h"
#include "base/temporary_files.h"
#include "dialog/messages.h"
#include "logs/log_access.h"
#include "messages/log_texts.h"

namespace {

/// The disk is set to work on a new text whenever so many bytes have come together.
constexpr off_t WRITE_BACK_SIZE = 8 << 20;

/// Whether the place of this log, and not the disk, is the reason: other logs may fare better.
bool is_refusal(int error) {
    constexpr int REFUSALS[] = {EACCES, EPERM,  EROFS,      EBUSY,       EXDEV,
                                ENOENT, EMLINK, EOPNOTSUPP, ENAMETOOLONG};
    return std::find(std::begin(REFUSALS), std::end(REFUSALS), error) != std::end(REFUSALS);
}

/// In a sticky directory names belong to the owners of their files.
bool may_be_replaced(const std::string& log, const struct stat& status) {
    struct stat directory;
    if (stat(log.substr(0, log.rfind('/') + 1).c_str(), &directory) != 0) return true;
    const uid_t self = geteuid();
    return (directory.st_mode & S_ISVTX) == 0 || self == 0 || self == status.st_uid ||
           self == directory.st_uid;
}

/// The new text of a log while it is written.
class NewText {
  public:
    NewText(std::string path, Progress* progress) : path_(std::move(path)), progress_(progress) {}

    const std::string& path() const { return path_; }
    bool exists() const { return static_cast<bool>(file_); }

    /// Creates it. 0 or an errno.
    int begin() {
        file_ = Descriptor(create_temporary_file(path_, 0666));
        return file_ ? 0 : errno;
    }

    void add(std::string_view text) {
        const int error = write_all(file_.get(), text);
        if (error != 0) progress_->wipe();
        stop_on(error, "write", path_);
        size_ += static_cast<off_t>(text.size());
        if (size_ - on_its_way_ >= WRITE_BACK_SIZE) {
            // Only to make the sync shorter, so it may fail.
            sync_file_range(file_.get(), on_its_way_, 0, SYNC_FILE_RANGE_WRITE);
            on_its_way_ = size_;
        }
    }

    /// Brings it to the disk, as like the old file as the system allows and writable for all.
    /// What comes back is open for reading and locked.
    Descriptor complete(int old_file) {
        carry_over_identity(old_file, file_.get());
        must(fchmod(file_.get(), 0666) == 0, "make public", path_);
        must(fsync(file_.get()) == 0, "sync", path_);
        stop_on(file_.close(), "close", path_);
        Descriptor log(open(path_.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
        must(static_cast<bool>(log), "open", path_);
        flock(log.get(), LOCK_EX | LOCK_NB);
        return log;
    }

  private:
    std::string path_;
    /// Its line goes before anything is said.
    Progress* progress_;
    Descriptor file_;
    off_t size_ = 0;
    /// The beginning that the system has been told to bring to the disk already.
    off_t on_its_way_ = 0;
};

/// Begins the new text with the log's first `size` bytes. 0, or the errno of a refusal.
int begin(const std::string& log, int old_log, off_t size, bool is_linked, NewText* text) {
    if (!may_be_replaced(log, status_of(old_log))) return EPERM;
    const int error = text->begin();
    if (error != 0 && !(is_linked && is_refusal(error)))
        gripe(NO_PRUNING_FILE, text->path(), error);
    if (error != 0) return error;
    read_pieces(old_log, log, 0, size, [&](std::string_view same) { text->add(same); });
    return 0;
}

int exchange(const std::string& one, const std::string& other) {
    return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0 ? 0
                                                                                           : errno;
}

/// For file systems that cannot exchange two names: the old file gets the other one first.
int put_one_by_one(const std::string& scratch, const std::string& log, int old_log,
                   const std::string& left_over) {
    if (rename(left_over.c_str(), scratch.c_str()) != 0) return errno;
    if (link(log.c_str(), left_over.c_str()) != 0) return errno;
    if (!is_name_of(left_over, old_log)) return EBUSY;
    return rename(scratch.c_str(), log.c_str()) == 0 ? 0 : errno;
}

/// Gives the log's name to the new text, and the old file that of the left-over. 0 or an errno, and
/// then the log is what it was.
int put_in_place(const std::string& scratch, const std::string& log, int old_log,
                 const std::string& left_over) {
    const SignalsHeld held;
    if (rename(scratch.c_str(), left_over.c_str()) != 0) return errno;
    int error = exchange(left_over, log);
    if (error == EINVAL || error == ENOSYS || error == EOPNOTSUPP) {
        error = put_one_by_one(scratch, log, old_log, left_over);
    } else if (error == 0 && !is_name_of(left_over, old_log)) {
        // Somebody has put another file there meanwhile, and gets it back.
        error = exchange(left_over, log);
        if (error != 0) return error;
        error = EBUSY;
    }
    if (error == 0) {
        forget_temporary_file(scratch);
    } else {
        unlink(left_over.c_str());
    }
    return error;
}

/// Writes what is to be kept of the log's first `size` bytes, if that is not just what stands
/// there. 0, or the errno of a refusal.
int make_new_text(const std::string& log, int old_log, off_t size, bool is_linked,
                  KeptRecords* records, NewText* text, Progress* progress) {
    int refusal = 0;
    off_t done = 0;
    const auto take = [&](std::string_view piece) {
        const std::string_view kept = records->of(piece);
        if (refusal == 0 && !text->exists() && kept.data() != piece.data()) {
            progress->wipe();
            refusal = begin(log, old_log, done, is_linked, text);
        }
        if (text->exists()) text->add(kept);
        done += static_cast<off_t>(piece.size());
    };
    read_pieces(old_log, log, 0, size, take, progress);
    return refusal;
}

}  // namespace

std::string rewrite_log(const std::string& log, const std::string& scratch, bool is_linked,
                        KeptRecords* records, Moment deadline, std::vector<LeftOver>* left_overs,
                        Progress* progress) {
    std::string reason;
    const Descriptor old_log = open_locked(log, deadline, &reason);
    if (!old_log) return reason;
    unlink(scratch.c_str());
    const Settled settled = settle(old_log.get(), deadline);
    if (settled.is_written) return KEPT_OPEN;

    KeptRecords counted = *records;
    NewText text(scratch, progress);
    int error =
        make_new_text(log, old_log.get(), settled.size, is_linked, &counted, &text, progress);
    if (error != 0) return std::strerror(error);
    // To a log that is its owner's only, others cannot append.
    if (!text.exists() && !make_log_public(old_log.get())) {
        begin(log, old_log.get(), settled.size, is_linked, &text);
    }
    if (text.exists()) {
        const Descriptor new_log = text.complete(old_log.get());
        LeftOver old_file = new_left_over(log, settled.size, old_log.get());
        error = put_in_place(scratch, log, old_log.get(), old_file.path());
        if (error != 0) remove_temporary_file(scratch);
        if (is_refusal(error)) return std::strerror(error);
        stop_on(error == 0 ? sync_directory_of(log) : error, "replace", log);
        add_left_over(&old_file, {log, new_log.get()}, &counted, deadline);
        if (!old_file.stays.empty()) left_overs->push_back(old_file);
    }
    *records = counted;
    return "";
}
