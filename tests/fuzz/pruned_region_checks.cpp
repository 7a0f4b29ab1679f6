#include <sys/stat.h>

#include <algorithm>
#include <iterator>

#include "fuzz/fuzz_world.h"
#include "fuzz/pruned_region.h"

namespace gatescope {

namespace fs = std::filesystem;

namespace {

std::string description(const fs::directory_entry& entry) {
    if (entry.is_symlink()) return "link to " + fs::read_symlink(entry.path()).string();
    struct stat status;
    must(lstat(entry.path().c_str(), &status) == 0, "a listed file exists");
    const std::string node = std::to_string(status.st_mode) + " " + std::to_string(status.st_ino);
    return entry.is_regular_file() ? node + " " + file_text(entry.path()) : node;
}

}  // namespace

std::optional<std::string> PrunedRegion::expected_counts() const {
    int total = 0;
    int removed = 0;
    for (const auto& [number, log] : logs_) {
        if (!log.is_certain) return std::nullopt;
        total += log.total;
        removed += log.removed;
    }
    return std::to_string(removed) + " of " + std::to_string(total) + " log entries " +
           (removed == 1 ? "was" : "were") + " removed from";
}

std::vector<std::string> PrunedRegion::unusable() const {
    std::vector<std::string> paths;
    for (const auto& entry : fs::directory_iterator(logging_dir_)) {
        const bool is_left_over = std::ranges::any_of(logs_, [&](const auto& one) {
            return beside_log(log_file_path(logging_dir_, one.first), entry.path()).has_value();
        });
        if (is_left_over && !place_at(entry.path()).is_usable) paths.push_back(entry.path());
    }
    for (const auto& [number, log] : logs_) {
        if (!log.is_usable) {
            paths.push_back(log_file_path(logging_dir_, number));
        } else if (!log.has_usable_companion) {
            paths.push_back(pruning_companion_path(logging_dir_, number));
        }
    }
    return paths;
}

PrunedRegion::Snapshot PrunedRegion::snapshot() const {
    Snapshot found;
    for (const std::string& directory : {logging_dir_, elsewhere_}) {
        for (const auto& entry : fs::directory_iterator(directory)) {
            found[entry.path()] = description(entry);
        }
    }
    return found;
}

bool PrunedRegion::may_change(const std::string& path) const {
    if (may_change_.contains(path)) return true;
    if (initial_.contains(path)) return false;
    return path == pruning_token_path(logging_dir_) || path == pruning_scratch_path(logging_dir_) ||
           std::ranges::any_of(logs_, [&](const auto& entry) {
               const auto& [number, log] = entry;
               return log.is_usable && beside_log(log_file_path(logging_dir_, number), path);
           });
}

/// The files that pruning must not change.
PrunedRegion::Snapshot PrunedRegion::snapshot_of_untouched() const {
    Snapshot found = snapshot();
    std::erase_if(found, [&](const auto& entry) { return may_change(entry.first); });
    return found;
}

void PrunedRegion::check_after_interruption() const {
    must(snapshot_of_untouched() == untouched_, "no other file is changed at any moment");
    for (const auto& [number, log] : logs_) {
        const auto text = place_at(log_file_path(logging_dir_, number)).text;
        if (!log.is_usable) continue;
        Words missing = log.is_certain ? log.always_in_log : Words();
        for (const std::string& word : words_of(text.value_or(""))) {
            const auto found = missing.find(word);
            if (found != missing.end()) missing.erase(found);
            must(log.possible.contains(word), "no word in a log is incomplete at any moment");
        }
        must(missing.empty(), "every kept record of a log is in it at any moment");
    }
}

/// The log has exactly the expected words, each on its own line; beside a writer, its old records
/// are allowed too.
void PrunedRegion::check_log(int number, bool beside_a_writer) const {
    const Log& log = logs_.at(number);
    const std::string path = log_file_path(logging_dir_, number);
    const auto text = place_at(path).text;
    must(text.has_value() == log.will_exist || !log.is_certain,
         "a log exists if it did, or had a companion or left-over");
    if (!text) return;
    // A log with several hard links keeps its mode where no record is removed.
    must(fs::status(path).permissions() == fs::perms(0666) || fs::hard_link_count(path) > 1 ||
             beside_a_writer,
         "all users can write to a log");
    std::string lines;
    Words found;
    for (const std::string& word : words_of(*text)) {
        lines += word + "\n";
        found.insert(word);
    }
    must(lines == *text, "each record is on its own line");
    if (!log.is_certain) return;
    Words missing;
    Words added;
    std::ranges::set_difference(log.kept, found, std::inserter(missing, missing.end()));
    std::ranges::set_difference(found, log.kept, std::inserter(added, added.end()));
    must(missing.empty(), "every kept record is in the log");
    must(added.empty() || (beside_a_writer && std::ranges::includes(late_old_records_, added)),
         "no record is duplicated or added");
}

void PrunedRegion::check(bool beside_a_writer) const {
    must(snapshot_of_untouched() == untouched_, "no other file is changed");
    std::set<std::string> logs;
    for (const auto& [number, log] : logs_) logs.insert(log_file_path(logging_dir_, number));
    for (const auto& [path, description] : snapshot()) {
        must(logs.contains(path) || !may_change(path), "no file remains but the logs");
    }
    for (const auto& [number, log] : logs_) {
        if (log.is_usable) check_log(number, beside_a_writer);
    }
}

}  // namespace gatescope
