#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "logs/kept_records.h"
#include "logs/log_access.h"
#include "logs/settling.h"

// What a pruning may leave on the disk, wherever it is ended, and what the next one makes of it.
//
//   What stands there                     What it is, and what the next pruning does
//   ------------------------------------  -----------------------------------------------------
//   pruning_.txt, or for a log that a     A new text that has not become the log.  It is thrown
//   link leads to, <log>.pruning_         away.
//
//   <file>.to_add_<F>_<device>_<I>_<S>    A left-over, of a companion or of a log: from byte F on
//                                         its words are to be added to the log.  If the log is
//                                         the file with that device and inode I, those that stand
//                                         after its byte S already, as often as here, are not
//                                         added once more.  It goes when all is added.
//     a companion just taken              F is 0, and I the left-over's own inode, so all are
//                                         added.
//     a log's old file                    F is what its new text was made of, I its own inode.
//                                         Who had opened the log before may have written after F.
//     its new text, for a moment before   The log has all that stands after F.  It goes.
//     an old file that is the log still   Where a file system cannot exchange two names it gets
//                                         the second one first.  That goes.
//     any, while it is being added        I is the log, S its size when that began.
//     any, if somebody keeps it open      F is what has been added, I its own inode.
//
//   the token                             Writers use the companions.  A pruning that ends well
//                                         takes it down.
//
// Nothing is ever cut or overwritten: a log changes by a rename of its whole new text, or by lines
// appended to it.  Left-overs are added before any log gets a new text, because that ends what
// their inode says.

struct LeftOver {
    /// The companion or log, whose path its own begins with.
    std::string source;
    off_t from = 0;
    FileId log;
    off_t size = 0;
    /// Why some of it, or all, could not be added yet; in memory only.
    std::string stays = "";

    [[nodiscard]] std::string path() const;
};

/// One that nothing after byte `from` of the open file has been added of.
LeftOver new_left_over(const std::string& source, off_t from, int file);

/// The left-overs in the directories that are looked at, each of which is listed but once.
class LeftOverNames {
  public:
    /// Adds those of the file in that place to `found`; a directory that cannot be listed is a
    /// reason to leave the file alone.
    void find(Place* source, std::vector<LeftOver>* found);

  private:
    const std::vector<std::string>& in(const std::string& directory, std::string* reason);

    std::map<std::string, std::vector<std::string>> names_;
};

/// A log that is open for reading and locked.
struct OpenLog {
    const std::string& path;
    int file;
};

/// Adds the kept records of a left-over to its log and removes it, unless it says afterwards why
/// it stays.
void add_left_over(LeftOver* left_over, const OpenLog& log, KeptRecords* records, Moment deadline);
