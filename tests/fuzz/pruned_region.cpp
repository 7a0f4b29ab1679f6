#include "fuzz/pruned_region.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <string_view>

#include "fuzz/fuzz_world.h"

namespace fs = std::filesystem;

namespace {

/// One directory for all executions.
const ScratchDirectory& scratch() {
    static const ScratchDirectory directory;
    return directory;
}

/// What stands at a path behind links.
struct Place {
    bool is_usable = true;
    std::optional<std::string> text;
};

Place place_at(const std::string& path) {
    std::error_code error;
    const fs::file_type type = fs::status(path, error).type();
    if (type == fs::file_type::regular) return {true, file_text(path)};
    return {type == fs::file_type::not_found, std::nullopt};
}

std::string description(const fs::directory_entry& entry) {
    if (entry.is_symlink()) return "link to " + fs::read_symlink(entry.path()).string();
    struct stat status;
    must(lstat(entry.path().c_str(), &status) == 0, "what is listed is there");
    const std::string node = std::to_string(status.st_mode) + " " + std::to_string(status.st_ino);
    return entry.is_regular_file() ? node + " " + file_text(entry.path()) : node;
}

/// Links here lead to no further ones.
std::string behind_link(const std::string& path) {
    return fs::is_symlink(path) ? fs::read_symlink(path).string() : path;
}

bool begins_one_of(const std::multiset<std::string>& words, const std::string& beginning) {
    // Those that begin with it come first of all that are not before it.
    const auto found = words.lower_bound(beginning);
    return found != words.end() && found->starts_with(beginning);
}

/// What may be added of a left-over: its name says from which byte on, maybe inside a word.
std::string to_be_added(const std::string& path, const std::string& text) {
    constexpr std::string_view MARK = ".to_add_";
    const std::size_t mark = path.rfind(MARK);
    if (mark == std::string::npos) return text;
    const std::size_t from = std::strtoull(&path[mark + MARK.size()], nullptr, 10);
    return text.substr(std::min(from, text.size()));
}

bool is_white(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

}  // namespace

std::vector<std::string> words_of(const std::string& text) {
    std::vector<std::string> words;
    auto at = text.begin();
    while (true) {
        at = std::find_if_not(at, text.end(), is_white);
        if (at == text.end()) return words;
        const auto end = std::find_if(at, text.end(), is_white);
        words.emplace_back(std::string(at, end).c_str());
        at = end;
    }
}

PrunedRegion::PrunedRegion(std::int64_t cut_off)
    : cut_off_(cut_off), logging_dir_(scratch() / "log"), elsewhere_(scratch() / "elsewhere") {
    for (const std::string& directory : {logging_dir_, elsewhere_}) {
        fs::remove_all(directory);
        fs::create_directory(directory);
    }
}

std::string PrunedRegion::directory() const {
    return scratch().path();
}

void PrunedRegion::plant(const std::string& path, Kind kind, const std::string& text,
                         bool is_private) {
    if (fs::symlink_status(path).type() != fs::file_type::not_found) return;
    const std::string target = elsewhere_ + path.substr(path.rfind('/'));
    switch (kind) {
        case Kind::FILE:
            write_file(path, text);
            fs::permissions(path, fs::perms(is_private ? 0600 : 0666));
            break;
        case Kind::LINKED_FILE:
            write_file(target, text);
            fs::create_symlink(target, path);
            break;
        case Kind::LINK_TO_NOTHING:
            fs::create_symlink(target, path);
            break;
        case Kind::RING:
            fs::create_symlink(path, path);
            break;
        case Kind::PIPE:
            must(mkfifo(path.c_str(), 0666) == 0, "a pipe can be made");
            break;
        case Kind::DIRECTORY:
            fs::create_directory(path);
            break;
    }
}

void PrunedRegion::plant_left_over(const std::string& path, Kind kind, const std::string& text) {
    if (left_overs_.contains(path)) return;
    plant(path, kind, text, false);
    const std::vector<std::string> words = words_of(to_be_added(path, text));
    left_overs_[path] = {description(fs::directory_entry(path)), words};
    left_over_words_.insert(words.begin(), words.end());
}

void PrunedRegion::add_words(const std::string& text, Log* log) const {
    for (const std::string& word : words_of(text)) {
        ++log->total;
        if (std::strtoll(word.c_str(), nullptr, 10) >= cut_off_) {
            log->kept.insert(word);
        } else {
            ++log->removed;
        }
    }
}

void PrunedRegion::begin() {
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) begin(number);
    untouched_ = untouched();
}

void PrunedRegion::begin(int number) {
    const std::string path = log_file_path(logging_dir_, number);
    const std::string companion_path = pruning_companion_path(logging_dir_, number);
    const Place file = place_at(path);
    const Place companion = place_at(companion_path);
    Log log;
    log.is_usable = file.is_usable;
    if (file.is_usable) {
        rewritten_.insert(behind_link(path));
        if (companion.is_usable) rewritten_.insert(behind_link(companion_path));
        log.will_be_there = file.text || companion.text;
        add_words(file.text.value_or(""), &log);
        add_words(companion.text.value_or(""), &log);
    }
    logs_[number] = log;
}

void PrunedRegion::write_record(int number, bool is_kept) {
    const auto log = logs_.find(number);
    const std::string companion = pruning_companion_path(logging_dir_, number);
    if (log == logs_.end() || !log->second.is_usable || !place_at(companion).is_usable) return;
    const bool diverted = place_at(pruning_token_path(logging_dir_)).text.has_value();
    const std::string word = std::to_string(is_kept ? cut_off_ : cut_off_ - 1) + ":S:writer" +
                             std::to_string(writers_++) + "[1]-<->";
    std::ofstream(diverted ? companion : log_file_path(logging_dir_, number), std::ios::app)
        // What was planted there may end in the middle of a word.
        << "\n" + word + "\n";
    if (is_kept) log->second.kept.insert(word);
    log->second.will_be_there = true;
}

std::vector<std::string> PrunedRegion::obstacles() const {
    std::vector<std::string> found;
    for (const std::string& path :
         {pruning_token_path(logging_dir_), pruning_scratch_path(logging_dir_)}) {
        const fs::file_type type = fs::symlink_status(path).type();
        if (type != fs::file_type::regular && type != fs::file_type::not_found) {
            found.push_back(path);
        }
    }
    for (const auto& [number, log] : logs_) {
        const bool has_companion =
            place_at(pruning_companion_path(logging_dir_, number)).text.has_value();
        if (!log.is_usable && has_companion) found.push_back(log_file_path(logging_dir_, number));
    }
    return found;
}

bool PrunedRegion::remove_obstacles() {
    const std::vector<std::string> found = obstacles();
    if (found.empty()) return false;
    for (const std::string& path : found) {
        fs::remove_all(path);
        untouched_.erase(path);
    }
    for (const auto& [number, log] : std::map(logs_)) {
        if (!log.is_usable) begin(number);
    }
    std::erase_if(untouched_, [&](const auto& entry) { return is_rewritten(entry.first); });
    return true;
}

std::string PrunedRegion::expected_counts() const {
    int total = 0;
    int removed = 0;
    for (const auto& [number, log] : logs_) {
        total += log.total;
        removed += log.removed;
    }
    return std::to_string(removed) + " of " + std::to_string(total) + " log entries " +
           (removed == 1 ? "was" : "were") + " removed from";
}

std::vector<std::string> PrunedRegion::unusable() const {
    std::vector<std::string> paths;
    for (const auto& [number, log] : logs_) {
        if (!log.is_usable) paths.push_back(log_file_path(logging_dir_, number));
    }
    return paths;
}

PrunedRegion::Snapshot PrunedRegion::everything() const {
    Snapshot found;
    for (const std::string& directory : {logging_dir_, elsewhere_}) {
        for (const auto& entry : fs::directory_iterator(directory)) {
            found[entry.path()] = description(entry);
        }
    }
    // One that is there already goes as soon as there is a log to rewrite.
    found.erase(pruning_scratch_path(logging_dir_));
    return found;
}

bool PrunedRegion::is_rewritten(const std::string& path) const {
    return rewritten_.contains(path) || left_overs_.contains(path) ||
           path == pruning_token_path(logging_dir_);
}

/// What pruning has no business with.
PrunedRegion::Snapshot PrunedRegion::untouched() const {
    Snapshot found = everything();
    std::erase_if(found, [&](const auto& entry) { return is_rewritten(entry.first); });
    return found;
}

/// A log holds what it is to hold, each word on a line of its own, and at most words of `extra`
/// besides, which are taken out of there, or the beginning of a word for each write that was torn.
void PrunedRegion::check_log(int number, Words* extra, int* torn) const {
    const Log& log = logs_.at(number);
    const std::string path = log_file_path(logging_dir_, number);
    const auto text = place_at(path).text;
    // A left-over makes one too.
    must(text.has_value() == log.will_be_there || (text && !left_overs_.empty()),
         "a log is there when it was, or had a companion");
    if (!text) return;
    must(fs::status(path).permissions() == fs::perms(0666), "everybody can write to a log");
    std::string lines;
    Words missing = log.kept;
    Words added;
    for (const std::string& word : words_of(*text)) {
        lines += word + "\n";
        const auto found = missing.find(word);
        if (found == missing.end()) {
            added.insert(word);
        } else {
            missing.erase(found);
        }
    }
    must(lines == *text, "each record is on a line of its own");
    must(missing.empty(), "every kept record is there");
    for (const std::string& word : added) {
        const auto found = extra->find(word);
        if (found != extra->end()) {
            extra->erase(found);
            continue;
        }
        must((*torn)-- > 0, "nothing is there twice, and nothing else");
        must(begins_one_of(log.kept, word) || begins_one_of(left_over_words_, word),
             "a torn word is the beginning of a record");
    }
}

void PrunedRegion::check(int torn) const {
    must(untouched() == untouched_, "nothing else is touched");
    const Snapshot now = everything();
    must(!now.contains(pruning_token_path(logging_dir_)), "the token is down");
    Words extra;
    for (const auto& [path, planted] : left_overs_) {
        const auto& [before, words] = planted;
        const auto found = now.find(path);
        must(found == now.end() || found->second == before, "a left-over is whole, or gone");
        if (found == now.end()) extra.insert(words.begin(), words.end());
    }
    for (const auto& [number, log] : logs_) {
        if (log.is_usable) check_log(number, &extra, &torn);
        const std::string companion = pruning_companion_path(logging_dir_, number);
        must(!log.is_usable || !place_at(companion).text, "companions are merged");
    }
}
