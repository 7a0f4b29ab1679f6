#include "logs/pruning.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>

#include "base/filled.h"
#include "base/process_end.h"
#include "base/replace_file.h"
#include "base/standard_streams.h"
#include "dialog/messages.h"
#include "logs/kept_records.h"
#include "logs/log_files.h"
#include "logs/log_rewrite.h"
#include "messages/log_texts.h"
#include "policy/region.h"

namespace {

/// The system follows no more symbolic links than this, so they are a ring.
constexpr int MOST_LINKS = 40;

/// Opens the token, making it where needed, and locks it: two that prune the same region at once
/// would take each other's files for left-overs. Gripes when another process has it locked.
int open_token(const std::string& path) {
    while (true) {
        const int token =
            open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC, 0666);
        if (token == -1) gripe(NO_PRUNING_TOKEN);
        // File systems without locks are trusted to have but one administrator.
        if (flock(token, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
            gripe(filled(PRUNED_BY_ANOTHER, ENTERPRIZE_NAME.c_str()));
        }
        // Another run may have ended, and removed it, between the two calls.
        struct stat status;
        if (fstat(token, &status) != 0 || status.st_nlink != 0) return token;
        close(token);
    }
}

/// Puts up the token, which diverts the log writers to the companions.
int put_up_token(const std::string& path, std::int64_t start_of_period_time) {
    const int token = open_token(path);
    const std::string text = filled(TOKEN_TEXT, time_text(start_of_period_time).c_str());
    if (write_all(token, text) != 0) gripe(NO_PRUNING_TOKEN);
    return token;
}

void take_down_token(const std::string& path, int token) {
    if (unlink(path.c_str()) != 0 && errno != ENOENT) {
        gripe(filled(TOKEN_STAYS, path.c_str(), std::strerror(errno)));
    }
    close(token);
}

/// The log that is meant: where a symbolic link stands for it, the link stays, and leads to the log
/// even when that is not there yet.
std::string behind_links(std::filesystem::path path) {
    for (int links = 0; links < MOST_LINKS; ++links) {
        std::error_code error;
        const std::filesystem::path target = std::filesystem::read_symlink(path, error);
        // No link, nothing there, or nothing that can be reached and so opened.
        constexpr std::errc FINAL[] = {std::errc::invalid_argument,
                                       std::errc::no_such_file_or_directory,
                                       std::errc::not_a_directory,
                                       std::errc::permission_denied,
                                       std::errc::too_many_symbolic_link_levels,
                                       std::errc::filename_too_long};
        if (std::find(std::begin(FINAL), std::end(FINAL), error) != std::end(FINAL)) break;
        if (error) {
            gripe(filled(PRUNING_STOPPED, "follow", path.c_str(), std::strerror(error.value()),
                         path.c_str()));
        }
        path = path.parent_path() / target;
    }
    return path;
}

LogFiles files_of(int number) {
    return {behind_links(log_file_path(logging_dir, number)),
            pruning_companion_path(logging_dir, number)};
}

void tell_result(const KeptRecords& records, int days, bool display) {
    const std::string result =
        filled(PRUNING_RESULT, static_cast<long long>(records.removed()),
               static_cast<long long>(records.total()), records.removed() == 1 ? "was" : "were",
               ENTERPRIZE_NAME.c_str(), days);
    if (display) {
        advise(result);
    } else {
        write_output(c_text(result));
    }
}

}  // namespace

void prune_logging_files(std::uint8_t days, bool display) {
    const std::int64_t start_of_period_time = set_time_values(days).start_of_period_time;
    const std::string token_path = pruning_token_path(logging_dir);
    const int token = put_up_token(token_path, start_of_period_time);
    KeptRecords records(start_of_period_time);
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        rewrite_log(files_of(number), &records);
    }
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        merge_companion(files_of(number), &records);
    }
    take_down_token(token_path, token);
    tell_result(records, days, display);
}
