#pragma once

#include <sys/types.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace gatescope {

// The files that a pruning may leave beside a log when it ends early. A log is never written to or
// truncated: its complete new text is written to the scratch file and renamed over it.
//
//   Name             Content                               What the next pruning does
//   ---------------  ------------------------------------  ----------------------------------
//   pruning_.txt     the scratch file                      removes it
//   <log>.taken_K    a renamed companion, which no writer  merges all of it
//                    opens
//   <log>.ready_F_P  the complete new text: the kept       removes the taken and old files. If
//                    records of the log's first F bytes,   the log still begins with those F
//                    whose fingerprint is P, and of all    bytes, renames this file over it,
//                    taken and old files. The rename to    else (the log was replaced) to a
//                    this name is the commit               taken file
//   <log>.old_F      the replaced log; the new log         merges what follows the first F
//                    includes its first F bytes            bytes: writers that had it open
//                                                          appended it. If it is a hard link of
//                                                          the log, removes it

struct LeftOver {
    enum class Kind { TAKEN, OLD, READY } kind;
    /// K or F in the table.
    off_t number;
    std::string name;
    bool operator<(const LeftOver& other) const { return name < other.name; }
};
/// `fingerprint` is P in the table.
LeftOver left_over(LeftOver::Kind kind, const std::string& log, off_t number,
                   std::uint64_t fingerprint = 0);

/// The left-overs of the log among `names`.
std::set<LeftOver> left_overs_of(const std::string& log, const std::vector<std::string>& names);

}  // namespace gatescope
