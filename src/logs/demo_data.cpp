#include "logs/demo_data.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/exit_status.h"
#include "base/files.h"
#include "base/filled.h"
#include "base/standard_streams.h"
#include "dialog/messages.h"
#include "dialog/process_end.h"
#include "logs/log_files.h"
#include "messages/log_texts.h"
#include "records/query_period.h"

namespace gatescope {
namespace {

// Records as the policy engine writes them: time, kind, user, command, then the detail letter and
// the number if they vary.
constexpr char DENIED_RECORD[] = "%lld:%c:%s[%d]%c<%d>\n";
constexpr char BIT_RECORD[] = "%lld:%c:%s[%d]-<%d>\n";
constexpr char ALLOWED_RECORD[] = "%lld:%c:%s[%d]-<->\n";
constexpr char PARENT_RECORD[] = "%lld:%c:%s[%d]%c<->\n";

constexpr int DEMO_RECORDS = 50000;
constexpr int PROGRESS_STEP = 100;
/// Only the first three are drawn.
constexpr char DENIAL_LETTERS[] = "KBRC";
constexpr char PARENT_LETTERS[] = "daaa";

/// A random number from 0 to below `limit`. The order of the calls decides which records a seed
/// yields, so an expression may contain only one.
int draw(int limit) {
    return std::rand() % limit;
}

char kind_in_last_40_days() {
    const int x = draw(20);
    if (x == 7) return draw(125) == 0 ? 'D' : 'S';
    return x == 8 || x == 9 ? 'B' : 'S';
}

/// One of ten kinds, each with the same probability.
char one_of_ten(const char (&kinds)[11]) {
    return kinds[draw(10)];
}

/// By the age of the record: old ones have a parent policy and many denials, recent ones few.
char drawn_kind(std::int64_t end_of_day_time, std::int64_t time) {
    const std::int64_t border_40 = end_of_day_time - QUERY_DAYS * SECONDS_A_DAY / 3;
    const std::int64_t border_80 = end_of_day_time - 2 * SECONDS_A_DAY * QUERY_DAYS / 3;
    if (time >= border_40) return kind_in_last_40_days();
    return time < border_80 ? one_of_ten("PSSDDDDBBB") : one_of_ten("PSSSSSDDBB");
}

std::string drawn_record(std::int64_t end_of_day_time) {
    const std::string user = "user" + std::to_string(draw(5));
    const std::int64_t day = draw(QUERY_DAYS);
    const long long time = end_of_day_time - SECONDS_A_DAY / 2 - day * SECONDS_A_DAY;
    const int command = draw(40) + 1;
    const char kind = drawn_kind(end_of_day_time, time);
    switch (kind) {
        case 'D': {
            const int key = draw(10);
            const char letter = DENIAL_LETTERS[draw(3)];
            return filled(DENIED_RECORD, time, kind, user.c_str(), command, letter, key);
        }
        case 'B':
            return filled(BIT_RECORD, time, kind, user.c_str(), command, draw(24));
        case 'S':
            return filled(ALLOWED_RECORD, time, kind, user.c_str(), command);
        case 'P':
            return filled(PARENT_RECORD, time, kind, user.c_str(), command,
                          PARENT_LETTERS[draw(4)]);
        default:
            gripe_uncoded("dat_gen");
    }
}

void show_progress(int records) {
    write_output(filled(DEMO_PROGRESS, records));
}

}  // namespace

void data_gen(const std::string& logging_dir) {
    const std::int64_t end_of_day_time = set_time_values().end_of_day_time;
    const std::string path = log_file_path(logging_dir, DEMO_LOG_FILE);
    const int file = open_regular_file(path, O_WRONLY | O_CREAT | O_APPEND);
    FILE* const LOGGING_STREAM = file == -1 ? nullptr : fdopen(file, "a");
    if (LOGGING_STREAM == nullptr) gripe(DEMO_LOG_NOT_MADE, path, errno);
    bool written = true;
    for (int i = 0; i < DEMO_RECORDS; ++i) {
        written = std::fputs(drawn_record(end_of_day_time).c_str(), LOGGING_STREAM) >= 0 && written;
        if (i % PROGRESS_STEP == 0) show_progress(i);
    }
    show_progress(DEMO_RECORDS);
    written = std::fclose(LOGGING_STREAM) == 0 && written;
    if (!written) gripe(filled(DEMO_LOG_NOT_WRITTEN, path.c_str(), std::strerror(errno)));
    clean_exit(STATUS_SUCCESS);
}

}  // namespace gatescope
