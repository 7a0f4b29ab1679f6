#pragma once

#include <string>
#include <vector>

#include "logs/kept_records.h"
#include "logs/left_overs.h"
#include "logs/progress.h"
#include "logs/settling.h"

/// Rewrites a log without the words that `records` drops. It is read once; when there is something
/// to drop the new text is written to `scratch`, in the same directory, and renamed: whoever opens
/// the log finds the old file or the new one. Other names of the old file keep the old text.
///
/// Nothing happens to a log that does not exist. One that cannot be read or replaced, or that
/// somebody keeps open, is left alone and not counted; the result says why. Without a scratch file
/// in the logging directory itself no pruning can take place, so that ends the program; a log that
/// `is_linked` to from there may have a directory that does not allow one. An old file that
/// somebody keeps open is put with `left_overs`. `progress` is told of what has been read.
std::string rewrite_log(const std::string& log, const std::string& scratch, bool is_linked,
                        KeptRecords* records, Moment deadline, std::vector<LeftOver>* left_overs,
                        Progress* progress);
