#include "logs/log_rewrite.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "base/answer_file.h"
#include "base/file_identity.h"
#include "base/replace_file.h"
#include "base/signals.h"
#include "base/temporary_files.h"
#include "dialog/messages.h"
#include "logs/log_access.h"
#include "messages/log_texts.h"

namespace {

/// The disk is set to work on a new text whenever so many bytes have come together.
constexpr off_t WRITE_BACK_SIZE = 8 << 20;

/// Whether the place of this log, and not the disk, is the reason: other logs may fare better.
bool is_refusal(int error) {
    constexpr int REFUSALS[] = {EACCES, EPERM, EROFS, EBUSY, EXDEV, EMLINK, EOPNOTSUPP, ENOENT};
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
    explicit NewText(std::string path) : path_(std::move(path)) {}

    bool exists() const { return static_cast<bool>(file_); }

    /// Creates it. 0 or an errno.
    int begin() {
        file_ = Descriptor(create_temporary_file(path_, 0666));
        return file_ ? 0 : errno;
    }

    void add(std::string_view text) {
        const int error = write_all(file_.get(), text);
        if (error != 0) stop_pruning("write", path_, error);
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
        const int error = file_.close();
        if (error != 0) stop_pruning("close", path_, error);
        Descriptor log(open(path_.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
        must(static_cast<bool>(log), "open", path_);
        flock(log.get(), LOCK_EX | LOCK_NB);
        return log;
    }

  private:
    std::string path_;
    Descriptor file_;
    off_t size_ = 0;
    /// The beginning that the system has been told to bring to the disk already.
    off_t on_its_way_ = 0;
};

/// Begins the new text. 0, or the errno of a refusal.
int begin(const std::string& log, int old_log, bool is_linked, NewText* text) {
    if (!may_be_replaced(log, status_of(old_log))) return EPERM;
    const int error = text->begin();
    if (error != 0 && !(is_linked && is_refusal(error))) gripe(NO_PRUNING_FILE);
    return error;
}

/// Gives the log's name to the new text, and the old file that of the left-over. 0, or the errno
/// of a refusal, and then the log is what it was.
int put_in_place(const std::string& scratch, const std::string& log, const std::string& left_over) {
    const SignalsHeld held;
    must(rename(scratch.c_str(), left_over.c_str()) == 0, "rename", scratch);
    forget_temporary_file(scratch);
    bool done = renameat2(AT_FDCWD, left_over.c_str(), AT_FDCWD, log.c_str(), RENAME_EXCHANGE) == 0;
    if (!done && (errno == EINVAL || errno == ENOSYS)) {
        // A file system that cannot exchange two names: the old file gets the other one first.
        must(rename(left_over.c_str(), scratch.c_str()) == 0, "rename", left_over);
        remember_temporary_file(scratch);
        done =
            link(log.c_str(), left_over.c_str()) == 0 && rename(scratch.c_str(), log.c_str()) == 0;
        if (done) forget_temporary_file(scratch);
    }
    const int error = done ? 0 : errno;
    if (!done) must(unlink(left_over.c_str()) == 0 || errno == ENOENT, "remove", left_over);
    if (!done && !is_refusal(error)) stop_pruning("replace", log, error);
    if (const int failed = sync_directory_of(log); failed != 0) stop_pruning("sync", log, failed);
    return error;
}

/// Writes what is to be kept of the log's first `size` bytes, if that is not just what stands
/// there. 0, or the errno of a refusal.
int make_new_text(const std::string& log, int old_log, off_t size, bool is_linked,
                  KeptRecords* records, NewText* text) {
    int refusal = 0;
    off_t done = 0;
    read_pieces(old_log, log, 0, size, [&](std::string_view piece) {
        const std::string_view kept = records->of(piece);
        if (refusal == 0 && !text->exists() && kept.data() != piece.data()) {
            refusal = begin(log, old_log, is_linked, text);
            if (refusal != 0) return;
            read_pieces(old_log, log, 0, done, [&](std::string_view same) { text->add(same); });
        }
        if (text->exists()) text->add(kept);
        done += static_cast<off_t>(piece.size());
    });
    return refusal;
}

}  // namespace

Rewritten rewrite_log(const std::string& log, const std::string& scratch, bool is_linked,
                      std::int64_t cut_off, Moment deadline) {
    Rewritten result;
    const Descriptor old_log = open_locked(log, deadline, &result.left_alone);
    if (!old_log) return result;
    unlink(scratch.c_str());
    const Settled settled = settle(old_log.get(), deadline);
    if (settled.is_written) return {KEPT_OPEN};

    KeptRecords records(cut_off);
    NewText text(scratch);
    int refusal = make_new_text(log, old_log.get(), settled.size, is_linked, &records, &text);
    if (refusal == 0 && text.exists()) {
        const Descriptor new_log = text.complete(old_log.get());
        LeftOver old_file = new_left_over(log, settled.size, old_log.get());
        refusal = put_in_place(scratch, log, old_file.path());
        if (refusal == 0) {
            add_left_over(&old_file, {log, new_log.get()}, &records, deadline);
            if (!old_file.stays.empty()) result.old_file = old_file;
        } else {
            remove_temporary_file(scratch);
        }
    } else if (refusal == 0) {
        make_log_public(old_log.get());
    }
    if (refusal != 0) return {std::strerror(refusal)};
    result.total = records.total();
    result.removed = records.removed();
    return result;
}
