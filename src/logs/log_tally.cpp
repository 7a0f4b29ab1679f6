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
/// Counting fewer bytes takes less time than starting another thread.
constexpr off_t MIN_BYTES_PER_THREAD = 8 * MEBIBYTE;
constexpr off_t RANGE_SIZE = 2 * MEBIBYTE;
constexpr int MAX_THREADS = 16;

/// One thread for each MIN_BYTES_PER_THREAD, but no more than processors or MAX_THREADS.
int threads_for(off_t bytes) {
    const off_t threads = bytes / MIN_BYTES_PER_THREAD;
    if (threads < 2) return 1;
    return static_cast<int>(std::min<off_t>(threads, std::min(usable_processors(), MAX_THREADS)));
}

/// The logs with their present sizes, 0 for those without a status.
std::vector<LogToCount> logs_at(const std::vector<std::string>& paths) {
    std::vector<LogToCount> logs;
    for (const std::string& path : paths) {
        struct stat status;
        logs.push_back({path, stat(path.c_str(), &status) == 0 ? status.st_size : 0});
    }
    return logs;
}

void report_left_out(const std::vector<LogToCount>& logs, const std::vector<int>& not_opened) {
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
    report_left_out(logs, all.not_opened);
    return all.tally;
}

}  // namespace gatescope
