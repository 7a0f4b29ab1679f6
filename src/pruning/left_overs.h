#pragma once

#include <sys/types.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace gatescope {

// What a pruning may leave beside a log, wherever it is ended. Nothing is ever appended to a log,
// cut or overwritten: its whole new text is made in the scratch file and renamed over it.
//
//   Name             What it is                            What the next pruning does
//   ---------------  ------------------------------------  ----------------------------------
//   pruning_.txt     the scratch file                      throws it away
//   <log>.taken_K    a companion, where no writer looks    adds all of it
//   <log>.ready_F_P  the complete new text: the log's      if the log still begins with those F
//                    first F bytes, whose fingerprint is   bytes: removes the taken and old files
//                    P, and all taken and old files, as    and puts it in the log's place. Else
//                    far as they are kept. The rename to   the log is another one: the same, but
//                    this name is the commit               it becomes a taken file
//   <log>.old_F      the replaced log, whose first F       adds what follows those, of writers
//                    bytes stand in the new one            that had it open. If it is still the
//                                                          log, removes this name

struct LeftOver {
    enum Kind { TAKEN, OLD, READY } kind;
    /// K or F.
    off_t number;
    std::string name;
    bool operator<(const LeftOver& other) const { return name < other.name; }
};
/// `fingerprint` is P.
LeftOver left_over(LeftOver::Kind kind, const std::string& log, off_t number,
                   std::uint64_t fingerprint = 0);

/// Those of `names` that are left-overs of the log.
std::set<LeftOver> left_overs_of(const std::string& log, const std::vector<std::string>& names);

}  // namespace gatescope
