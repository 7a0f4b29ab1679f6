#include "logs/pruning.h"

#include <cstdio>
#include <string>

#include "dialog/messages.h"
#include "logs/log_files.h"
#include "main/files.h"
#include "main/filled.h"
#include "main/process_end.h"
#include "main/selections.h"
#include "main/text.h"
#include "policy/region.h"

namespace {

struct Tally {
    int total = 0;
    int removed = 0;
};

void copy_kept_words(const std::string& from, const std::string& to, const char* mode,
                     const char* failure, Tally* tally) {
    LOGGING_STREAM = std::fopen(from.c_str(), "r");
    if (LOGGING_STREAM == nullptr) return;
    LOGGING_FILE_PRUNE_STREAM = std::fopen(to.c_str(), mode);
    if (LOGGING_FILE_PRUNE_STREAM == nullptr) gripe(failure);
    char word[256];
    while (std::fscanf(LOGGING_STREAM, "%255s", word) == 1) {
        ++tally->total;
        if (leading_number(word) >= start_of_period_time) {
            std::fprintf(LOGGING_FILE_PRUNE_STREAM, "%s\n", word);
        } else {
            ++tally->removed;
        }
    }
    std::fclose(LOGGING_STREAM);
    std::fclose(LOGGING_FILE_PRUNE_STREAM);
    LOGGING_STREAM = LOGGING_FILE_PRUNE_STREAM = nullptr;
}

}  // namespace

void prune_logging_files(std::uint8_t days) {
    set_time_values();
    start_of_period_time = end_of_day_time - days * SECONDS_A_DAY;
    FILE* token = std::fopen(pruning_token_path().c_str(), "a");
    if (token == nullptr) gripe("Could not create needed pruning token");
    std::fprintf(token, "pruning records before:\n   %s\n",
                 time_text(start_of_period_time).c_str());
    std::fclose(token);
    Tally tally;
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        if (!this_file_exists(log_file_path(number))) continue;
        copy_kept_words(log_file_path(number), pruning_scratch_path(), "w",
                        "Could not create needed pruning file", &tally);
        move_file(pruning_scratch_path(), log_file_path(number));
        make_public(log_file_path(number));
    }
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        copy_kept_words(pruning_companion_path(number), log_file_path(number), "a",
                        "Could not create needed logging file", &tally);
        unlink_remove(pruning_companion_path(number));
    }
    unlink_remove(pruning_token_path());
    TMSG = filled(
        "%d of %d log entries %s removed from the Gatewarden LOGS for the Gatewarden Region "
        "(%s).\n\n%d days of data retained.",
        tally.removed, tally.total, tally.removed == 1 ? "was" : "were", ENTERPRIZE_NAME.c_str(),
        days);
    if (selected_display == "n") {
        print_stdout(TMSG);
    } else {
        advise(TMSG);
    }
}
