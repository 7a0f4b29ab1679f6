#include "fuzz/pruned_region.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>

#include "base/descriptor.h"
#include "base/file_identity.h"
#include "fuzz/fuzz_world.h"

namespace fs = std::filesystem;

namespace {

/// One directory for all executions.
const ScratchDirectory& scratch() {
    static const ScratchDirectory directory;
    return directory;
}

/// What stands at a path.
struct Place {
    /// A file, or nothing.
    bool is_usable = true;
    std::optional<std::string> text;
};

Place place_at(const std::string& path) {
    const fs::file_type type = fs::symlink_status(path).type();
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

std::string without(std::size_t bytes, const std::string& text) {
    return text.substr(std::min(bytes, text.size()));
}

bool is_white(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

/// Takes "_", and a number as it is usually written, from the beginning of a name.
template <typename Number>
bool take_number(std::string_view* name, Number* number) {
    if (!name->starts_with("_")) return false;
    const char* const digits = name->data() + 1;
    const auto [end, error] = std::from_chars(digits, name->data() + name->size(), *number);
    const std::string_view taken(digits, static_cast<std::size_t>(end - digits));
    *name = name->substr(taken.size() + 1);
    return error == std::errc() && taken == std::to_string(*number) && !taken.starts_with("-");
}

}  // namespace

struct PrunedRegion::LeftOver {
    enum Kind { TAKEN, OLD, READY } kind;
    std::string path;
    std::size_t number;
    std::string text = {};

    /// What the name of something beside a log makes of it.
    static std::optional<LeftOver> of(const std::string& log, const std::string& path) {
        constexpr std::string_view MARKS[] = {".taken", ".old", ".ready"};
        if (!path.starts_with(log)) return std::nullopt;
        const std::string_view rest = std::string_view(path).substr(log.size());
        for (const LeftOver::Kind kind : {TAKEN, OLD, READY}) {
            if (!rest.starts_with(MARKS[kind])) continue;
            std::string_view numbers = rest.substr(MARKS[kind].size());
            std::int64_t number;
            std::uint64_t fingerprint;
            const bool is_one = take_number(&numbers, &number) &&
                                (kind != READY || take_number(&numbers, &fingerprint));
            if (is_one && numbers.empty()) {
                return LeftOver{kind, path, static_cast<std::size_t>(number)};
            }
        }
        return std::nullopt;
    }
};

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
        case Kind::WITH_SECOND_NAME:
            write_file(path, text);
            fs::permissions(path, fs::perms(is_private ? 0600 : 0666));
            if (kind == Kind::WITH_SECOND_NAME) fs::create_hard_link(path, target);
            break;
        case Kind::LINKED_FILE:
            write_file(target, text);
            fs::create_symlink(target, path);
            break;
        case Kind::LINKED_DIRECTORY:
            fs::create_directory(target);
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

void PrunedRegion::plant_ready_text(int number, std::size_t size, bool is_of_another, Kind kind,
                                    const std::string& text, bool is_private) {
    const std::string log = log_file_path(logging_dir_, number);
    std::string beginning = place_at(log).text.value_or("").substr(0, size);
    if (is_of_another && !beginning.empty()) beginning[0] ^= 1;
    const std::string other = scratch() / "beginning";
    write_file(other, beginning);
    std::uint64_t fingerprint = 0;
    const Descriptor file(open(other.c_str(), O_RDONLY | O_CLOEXEC));
    must(fingerprint_of(file.get(), static_cast<off_t>(beginning.size()), &fingerprint) == 0,
         "a file has a fingerprint");
    const std::string path =
        log + ".ready_" + std::to_string(beginning.size()) + "_" + std::to_string(fingerprint);
    plant(path, kind, text, is_private);
    beginnings_.emplace(path, beginning);
}

bool PrunedRegion::is_kept(const std::string& word) const {
    return std::strtoll(word.c_str(), nullptr, 10) >= cut_off_;
}

void PrunedRegion::add_words(const std::string& text, Log* log) const {
    for (const std::string& word : words_of(text)) {
        ++log->total;
        if (is_kept(word)) {
            log->kept.insert(word);
        } else {
            ++log->removed;
        }
    }
}

void PrunedRegion::begin() {
    for (const std::string& path :
         {pruning_token_path(logging_dir_), pruning_scratch_path(logging_dir_)}) {
        if (place_at(path).is_usable) rewritten_.insert(path);
    }
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) begin(number);
    at_the_beginning_ = everything();
    untouched_ = untouched();
}

void PrunedRegion::begin(int number) {
    const std::string path = log_file_path(logging_dir_, number);
    const std::string companion_path = pruning_companion_path(logging_dir_, number);
    const Place file = place_at(path);
    const Place companion = place_at(companion_path);
    const std::vector<LeftOver> left_overs = left_overs_of(number);
    const auto is_ready = [](const LeftOver& one) { return one.kind == LeftOver::READY; };
    const auto is_shared = [](const LeftOver& one) { return fs::hard_link_count(one.path) > 1; };
    Log log;
    log.is_certain = std::ranges::count_if(left_overs, is_ready) < 2;
    // A ready text with a second name keeps its log as it is. Of several, another one might be put
    // in the log's place before.
    log.is_usable = file.is_usable && std::ranges::none_of(left_overs, [&](const LeftOver& one) {
                        if (!is_ready(one) || !is_shared(one)) return false;
                        if (!log.is_certain)
                            fs::remove(elsewhere_ + one.path.substr(one.path.rfind('/')));
                        return is_shared(one);
                    });
    log.has_usable_companion = companion.is_usable;
    if (log.is_usable) {
        rewritten_.insert(path);
        if (companion.is_usable) rewritten_.insert(companion_path);
        for (const LeftOver& one : left_overs) rewritten_.insert(one.path);
        log.will_be_there = file.text || companion.text;
        add_words(companion.text.value_or(""), &log);
        add_left_overs(left_overs, file.text.value_or(""), &log);
        for (const std::string& word : words_of(companion.text.value_or("")))
            log.known.insert(word);
    }
    logs_[number] = log;
}

std::vector<PrunedRegion::LeftOver> PrunedRegion::left_overs_of(int number) const {
    std::vector<LeftOver> found;
    for (const auto& entry : fs::directory_iterator(logging_dir_)) {
        auto one = LeftOver::of(log_file_path(logging_dir_, number), entry.path());
        if (!one || entry.is_symlink() || !entry.is_regular_file()) continue;
        one->text = file_text(one->path);
        found.push_back(*one);
    }
    return found;
}

/// How many of the log's bytes a ready text stands for: none where it is of another log.
std::size_t PrunedRegion::replaced_by(const LeftOver& ready, const std::string& log) const {
    const auto beginning = beginnings_.find(ready.path);
    return beginning != beginnings_.end() && log.starts_with(beginning->second) ? ready.number : 0;
}

/// Adds the words of the log itself and of its left-overs. All taken and old files stand in a ready
/// text already.
void PrunedRegion::add_left_overs(const std::vector<LeftOver>& left_overs, const std::string& text,
                                  Log* log) const {
    std::vector<std::string> texts = {text};
    std::vector<std::size_t> numbers = {0};
    std::vector<LeftOver> added;
    for (const LeftOver& one : left_overs) {
        texts.push_back(one.text);
        numbers.push_back(one.number);
        if (one.kind == LeftOver::READY) added.push_back(one);
    }
    const std::size_t replaced = added.empty() ? 0 : replaced_by(added.front(), text);
    if (added.empty()) added = left_overs;
    add_words(without(replaced, text), log);
    if (replaced == 0) {
        for (const std::string& word : words_of(text)) {
            if (is_kept(word)) log->always_there.insert(word);
        }
    }
    for (const LeftOver& one : added) {
        const std::string what = without(one.kind == LeftOver::OLD ? one.number : 0, one.text);
        add_words(what, log);
        if (!what.empty()) log->will_be_there = true;
    }
    for (const std::string& one : texts) {
        for (const std::size_t number : numbers) {
            for (const std::string& word : words_of(without(number, one))) log->known.insert(word);
        }
    }
}

void PrunedRegion::write_record(int number, bool is_kept) {
    const auto log = logs_.find(number);
    if (log == logs_.end() || !log->second.is_usable || !log->second.has_usable_companion) return;
    const bool diverted = place_at(pruning_token_path(logging_dir_)).text.has_value();
    const std::string path = diverted ? pruning_companion_path(logging_dir_, number)
                                      : log_file_path(logging_dir_, number);
    const std::string word = std::to_string(is_kept ? cut_off_ : cut_off_ - 1) + ":S:writer" +
                             std::to_string(writers_++) + "[1]-<->";
    const std::string text = place_at(path).text.value_or("");
    // What was planted there may end in the middle of a word.
    const bool is_cut = !text.empty() && !text.ends_with("\n");
    std::ofstream(path, std::ios::app) << (is_cut ? "\n" : "") + word + "\n";
    (is_kept ? log->second.kept : late_).insert(word);
    log->second.known.insert(word);
    log->second.will_be_there = true;
}

std::vector<PrunedRegion::Obstacle> PrunedRegion::obstacles() const {
    std::vector<Obstacle> found;
    const std::string token = pruning_token_path(logging_dir_);
    const std::string scratch_file = pruning_scratch_path(logging_dir_);
    const Place token_place = place_at(token);
    if (!token_place.is_usable || (token_place.text && fs::hard_link_count(token) > 1)) {
        found.push_back({token, "Could not create needed pruning token", true});
    }
    if (!place_at(scratch_file).is_usable) {
        found.push_back({scratch_file, "Could not create needed pruning file", false});
    }
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        const std::string log = log_file_path(logging_dir_, number);
        const Place companion = place_at(pruning_companion_path(logging_dir_, number));
        if (!place_at(log).is_usable && companion.text && !companion.text->empty()) {
            found.push_back({log, "Could not create needed logging file", true});
        }
        for (const auto& entry : fs::directory_iterator(logging_dir_)) {
            const auto one = LeftOver::of(log, entry.path());
            if (one && one->kind == LeftOver::OLD && !place_at(one->path).is_usable) {
                found.push_back(
                    {one->path, "The log file (" + log + ") was left as it is: ", false});
            }
        }
    }
    return found;
}

void PrunedRegion::remove(const std::vector<Obstacle>& obstacles) {
    for (const Obstacle& obstacle : obstacles) {
        fs::remove_all(obstacle.path);
        untouched_.erase(obstacle.path);
        at_the_beginning_.erase(obstacle.path);
    }
    for (const auto& [number, log] : std::map(logs_)) {
        if (!log.is_usable) begin(number);
    }
    std::erase_if(untouched_, [&](const auto& entry) { return is_rewritten(entry.first); });
}

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
    for (const auto& [number, log] : logs_) {
        if (!log.is_usable) {
            paths.push_back(log_file_path(logging_dir_, number));
        } else if (!log.has_usable_companion) {
            paths.push_back(pruning_companion_path(logging_dir_, number));
        }
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
    return found;
}

bool PrunedRegion::is_rewritten(const std::string& path) const {
    if (rewritten_.contains(path)) return true;
    if (at_the_beginning_.contains(path)) return false;
    return path == pruning_token_path(logging_dir_) || path == pruning_scratch_path(logging_dir_) ||
           std::ranges::any_of(logs_, [&](const auto& entry) {
               const auto& [number, log] = entry;
               return log.is_usable && LeftOver::of(log_file_path(logging_dir_, number), path);
           });
}

/// What pruning has no business with.
PrunedRegion::Snapshot PrunedRegion::untouched() const {
    Snapshot found = everything();
    std::erase_if(found, [&](const auto& entry) { return is_rewritten(entry.first); });
    return found;
}

void PrunedRegion::check_in_between() const {
    must(untouched() == untouched_, "nothing else is touched at any moment");
    for (const auto& [number, log] : logs_) {
        const auto text = place_at(log_file_path(logging_dir_, number)).text;
        if (!log.is_usable) continue;
        Words missing = log.is_certain ? log.always_there : Words();
        for (const std::string& word : words_of(text.value_or(""))) {
            const auto found = missing.find(word);
            if (found != missing.end()) missing.erase(found);
            must(log.known.contains(word), "no word in a log is torn at any moment");
        }
        must(missing.empty(), "every kept record of a log is in it at any moment");
    }
}

/// A log holds what it is to hold, each word on a line of its own, and nothing else; beside a
/// writer, maybe his old records.
void PrunedRegion::check_log(int number, bool beside_a_writer) const {
    const Log& log = logs_.at(number);
    const std::string path = log_file_path(logging_dir_, number);
    const auto text = place_at(path).text;
    must(text.has_value() == log.will_be_there || !log.is_certain,
         "a log is there when it was, or had a companion or left-over");
    if (!text) return;
    // One that may be another file stays as it is where nothing is dropped.
    must(fs::status(path).permissions() == fs::perms(0666) || fs::hard_link_count(path) > 1 ||
             beside_a_writer,
         "everybody can write to a log");
    std::string lines;
    Words found;
    for (const std::string& word : words_of(*text)) {
        lines += word + "\n";
        found.insert(word);
    }
    must(lines == *text, "each record is on a line of its own");
    if (!log.is_certain) return;
    Words missing;
    Words added;
    std::ranges::set_difference(log.kept, found, std::inserter(missing, missing.end()));
    std::ranges::set_difference(found, log.kept, std::inserter(added, added.end()));
    must(missing.empty(), "every kept record is there");
    must(added.empty() || (beside_a_writer && std::ranges::includes(late_, added)),
         "nothing is there twice, and nothing else");
}

void PrunedRegion::check(bool beside_a_writer) const {
    must(untouched() == untouched_, "nothing else is touched");
    std::set<std::string> logs;
    for (const auto& [number, log] : logs_) logs.insert(log_file_path(logging_dir_, number));
    for (const auto& [path, description] : everything()) {
        must(logs.contains(path) || !is_rewritten(path), "nothing but the logs stays");
    }
    for (const auto& [number, log] : logs_) {
        if (log.is_usable) check_log(number, beside_a_writer);
    }
}
