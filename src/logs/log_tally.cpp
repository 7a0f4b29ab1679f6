#include "logs/log_tally.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

#include "base/filled.h"
#include "base/processors.h"
#include "dialog/messages.h"
#include "logs/log_reader.h"
#include "logs/progress.h"
#include "logs/range_tally.h"
#include "messages/log_texts.h"

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

void name_left_out(const std::string& path, const std::string& reason) {
    std::fputs(filled(LOG_LEFT_OUT, path.c_str(), reason.c_str()).c_str(), stderr);
}

}  // namespace

RecordTally tally_logs(const RecordQuery& query, const std::vector<std::string>& paths) {
    std::vector<LogToCount> logs;
    std::vector<std::string> names;
    off_t bytes = 0;
    for (const std::string& path : paths) {
        std::string reason;
        Descriptor file = open_log(path, &reason);
        struct stat status;
        if (file && fstat(file.get(), &status) != 0) {
            reason = std::strerror(errno);
            file.close();
        }
        if (!reason.empty()) name_left_out(path, reason);
        if (!file) continue;
        bytes += status.st_size;
        logs.push_back({std::move(file), status.st_size});
        names.push_back(path);
    }
    const int threads = threads_for(bytes);
    Progress progress(bytes);
    const RangeTally all = tally_ranges(
        query, logs, threads, threads == 1 ? LogReader::TO_THE_END : RANGE_SIZE, &progress);
    progress.wipe();
    if (all.error != 0) {
        gripe(filled(LOG_READ_FAILURE, names[all.unread].c_str(), std::strerror(all.error)));
    }
    return all.tally;
}
