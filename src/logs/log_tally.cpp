#include "logs/log_tally.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "base/filled.h"
#include "dialog/messages.h"
#include "logs/canonical_records.h"
#include "logs/log_reader.h"
#include "messages/log_texts.h"

RecordTally tally_logs(const RecordQuery& query, const std::vector<std::string>& paths) {
    RecordTally tally;
    const CanonicalQuery canonical(query);
    LogReader reader;
    for (const std::string& path : paths) {
        std::string reason;
        const Descriptor log = open_log(path, &reason);
        if (!log) {
            const std::string line = filled(LOG_LEFT_OUT, path.c_str(), reason.c_str());
            if (!reason.empty()) std::fputs(line.c_str(), stderr);
            continue;
        }
        reader.start(log.get());
        for (std::string_view piece; reader.next(&piece);) canonical.count(piece, &tally);
        if (reader.error() == 0) continue;
        gripe(filled(LOG_READ_FAILURE, path.c_str(), std::strerror(reader.error())));
    }
    return tally;
}
