#pragma once

#include <string>

#include "logs/kept_records.h"

// One log file rewritten without its old records, so that no kept record is lost or doubled,
// wherever the program is killed and whatever a call answers.
//
// Others may be writing. They open a log, append one record and close it; while the pruning token
// exists they do so to the log's companion. One that looked for the token just before it appeared
// may still open the log, or have it open.
//
// What stands beside a log says how far its rewriting has come:
//
//   pruning_.txt         A new text that is not complete: to be thrown away.
//   <companion>.taken    A companion that nobody will open any more: its records are to be added.
//                        While somebody who opened it before still has it open, it waits, and so
//                        does the log.
//   <log>.new_<n>        A complete new text. It holds the first n bytes of the log, and all of
//                        the companion taken and of <log>.old_<m>; so these are to be removed, and
//                        then it is to become the log.
//   <log>.old_<n>        The file that was the log until a new text took its place, for whoever
//                        had it open by then: records behind its first n bytes are to be added.
//                        If it is the log still, it is to be removed.
//   <log>.overwriting_<n>
//                        A complete new text on its way into a log that cannot be replaced (it has
//                        hard links, another owner or a writer that never closes it): to be
//                        copied over the first n bytes of the log, with blank lines behind it.
//                        Records behind them are not in the text, and stay where they are.
//
// One rename, link or removal leads from each of these states to the next, so a run that finds
// what another one left knows where to go on.

/// A log and its companion, by their paths; that of the log names no symbolic link.
struct LogFiles {
    std::string log;
    std::string companion;
};

/// Rewrites the log with the records that `records` keeps, and adds what an earlier run has left
/// to be added. A log that does not exist is not made, unless there is something to add.
void rewrite_log(const LogFiles& files, KeptRecords* records);

/// Adds the companion's kept records to the log, which is made if need be, and removes the
/// companion. Nothing happens when there is none.
void merge_companion(const LogFiles& files, KeptRecords* records);
