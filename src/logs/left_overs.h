#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/descriptor.h"
#include "base/file_identity.h"
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
//                                         A writer that had the log open may have written after F.
//     an old file that is the log still   It got this name, but no new text took its place.  The
//                                         name is removed.
//     any, while it is being added        I is the log, S its size when that began.
//     any, if somebody keeps it open      F is what has been added, I its own inode.
//
//   the token                             Writers use the companions.  A pruning that ends well
//                                         takes it down.
//
// Nothing is ever cut or overwritten: a log changes by a rename of its whole new text, or by lines
// appended to it.  Left-overs are added before any log gets a new text, because that has
// another inode than the one that they name.

struct LeftOver {
    /// The companion or log, whose path its own begins with.
    std::string source;
    /// F, the device and I, and S of the table above.
    off_t from = 0;
    FileId log = {};
    off_t size = 0;
    /// Open for reading once the left-over has been looked at.
    Descriptor file = {};
    /// False for a log's old file that could not be given a name: only this run knows of it.
    bool has_name = true;
    /// Why some of it, or all, could not be added yet; only this run knows of it.
    std::string stays = {};

    [[nodiscard]] std::string path() const;
};

/// The left-over of an open file of which nothing has been added yet.
LeftOver new_left_over(const std::string& source, Descriptor file);

/// The left-overs of directories, each of which is listed once.
using Listings = std::map<std::string, std::vector<LeftOver>>;

/// Moves the left-overs of the file at `source` to `found`. Where its directory cannot be listed
/// the file is left alone.
void find_left_overs(const std::string& source, Listings* listings, std::vector<LeftOver>* found);

using Words = std::unordered_multiset<std::string>;

/// Appends to the open file at `path` the kept words of a left-over from its byte `from` to byte
/// `to.size`, except for those that are `standing` there already, and brings the file to the disk.
/// Returns the byte up to which that was done: as long as a writer has the left-over open, its last
/// word, which may be unfinished, is left out. A left-over that cannot be read on is left alone;
/// all else stops the pruning.
off_t add_words(const LeftOver& left_over, const Settled& to, const std::string& path,
                Descriptor out, Work* work, Words standing = {});

/// Adds the kept records of a left-over to the log at `path`, which is open and locked, and removes
/// the left-over. One that stays says why; what is still to be added of it is not counted.
void add_left_over(LeftOver* left_over, const std::string& path, const Descriptor& log, Work* work);
