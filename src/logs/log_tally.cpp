#include "logs/log_tally.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "base/filled.h"
#include "base/processors.h"
#include "dialog/messages.h"
#include "logs/log_reader.h"
#include "logs/progress.h"
#include "logs/range_tally.h"
#include "messages/log_texts.h"

namespace gatescope {
namespace {

constexpr off_t MEBIBYTE = 1 << 20;
/// To count less than this takes less time than to start another thread for it.
constexpr off_t LEAST_A_THREAD = 8 * MEBIBYTE;
constexpr off_t RANGE_SIZE = 2 * MEBIBYTE;
constexpr int MOST_THREADS = 16;

/// As many as the bytes are worth and the processors can carry.
int threads_for(off_t bytes) {
    const off_t worth = bytes / LEAST_A_THREAD;
    if (worth < 2) return 1;
    return static_cast<int>(std::min<off_t>(worth, std::min(usable_processors(), MOST_THREADS)));
}

/// The logs with the sizes that they have now; how one that cannot be opened is dealt with is not
/// for here.
std::vector<LogToCount> logs_at(const std::vector<std::string>& paths) {
    std::vector<LogToCount> logs;
    for (const std::string& path : paths) {
        struct stat status;
        logs.push_back({path, stat(path.c_str(), &status) == 0 ? status.st_size : 0});
    }
    return logs;
}

void name_left_out(const std::vector<LogToCount>& logs, const std::vector<int>& not_opened) {
    for (std::size_t i = 0; i < logs.size(); ++i) {
        const std::string reason = not_opened[i] == 0 ? "" : why_left_out(not_opened[i]);
        if (reason.empty()) continue;
        std::fputs(filled(LOG_LEFT_OUT, logs[i].path.c_str(), reason.c_str()).c_str(), stderr);
    }
}

}  // namespace

RecordTally tally_logs(const RecordQuery& query, const std::vector<std::string>& paths) {
    const std::vector<LogToCount> logs = logs_at(paths);
    off_t bytes = 0;
    for (const LogToCount& log : logs) bytes += log.size;
    const int threads = threads_for(bytes);
    Progress progress(bytes);
    const RangeTally all = tally_ranges(
        query, logs, threads, threads == 1 ? LogReader::TO_THE_END : RANGE_SIZE, &progress);
    progress.wipe();
    if (all.error != 0) {
        gripe(filled(LOG_READ_FAILURE, paths[all.unread].c_str(), std::strerror(all.error)));
    }
    name_left_out(logs, all.not_opened);
    return all.tally;
}

}  // namespace gatescope
