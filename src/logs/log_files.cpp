#include "logs/log_files.h"

#include "base/filled.h"
#include "base/run_identity.h"

namespace gatescope {
namespace {

// Paths in the logging directory: directory, delimiter, and the number where there
// is one.
constexpr char LOGGING_NORMAL_PATTERN[] = "%s%clogging_%d.txt";
constexpr char LOGGING_PRUNING_PATTERN[] = "%s%clogging__%d.txt";
constexpr char LOGGING_PRUNING_FILE[] = "%s%cpruning_.txt";
constexpr char LOGGING_PRUNING_TOKEN[] = "%s%clogging_pruning_token.txt";

}  // namespace

std::string log_file_path(const std::string& logging_dir, int number) {
    return filled(LOGGING_NORMAL_PATTERN, logging_dir.c_str(), DIR_DELIMETER, number);
}

std::string pruning_companion_path(const std::string& logging_dir, int number) {
    return filled(LOGGING_PRUNING_PATTERN, logging_dir.c_str(), DIR_DELIMETER, number);
}

std::string pruning_scratch_path(const std::string& logging_dir) {
    return filled(LOGGING_PRUNING_FILE, logging_dir.c_str(), DIR_DELIMETER);
}

std::string pruning_token_path(const std::string& logging_dir) {
    return filled(LOGGING_PRUNING_TOKEN, logging_dir.c_str(), DIR_DELIMETER);
}

}  // namespace gatescope
