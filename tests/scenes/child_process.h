#pragma once

#include <map>
#include <string>
#include <vector>

namespace gatescope {

/// The end of a program and of all its descendants.
struct Finished {
    /// The exit status; 128 plus the signal's number when a signal ended it.
    int status = -1;
    long pid = 0;
    std::string out;
    std::string err;
    bool timed_out = false;
};

/// Runs `program` with `name` as its argv[0], in exactly this environment and in `directory`, with
/// an empty standard input, and waits until it and all its descendants have ended, background
/// processes included. Kills them all after a minute.
Finished run_to_the_end(const std::string& program, const std::string& name,
                        const std::vector<std::string>& args,
                        const std::map<std::string, std::string>& environment,
                        const std::string& directory);

/// Makes this process the parent of its orphaned descendants (a subreaper).
void adopt_descendants();

/// Waits until this process has no descendants. False when that takes longer than a minute.
bool wait_for_all_descendants();

}  // namespace gatescope
