#include "logs/log_tally.h"

#include <cstdio>
#include <string_view>

#include "base/process_end.h"
#include "logs/canonical_records.h"
#include "logs/log_reader.h"

RecordTally tally_logs(const RecordQuery& query, const std::vector<std::string>& paths) {
    RecordTally tally;
    const CanonicalQuery canonical(query);
    LogReader reader;
    for (const std::string& path : paths) {
        if (!open_log_stream(path)) continue;
        reader.start(fileno(LOGGING_STREAM), path);
        for (std::string_view piece; reader.next(&piece);) canonical.count(piece, &tally);
        close_log_stream();
    }
    return tally;
}
