#include "fuzz/pruned_region.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "base/descriptor.h"
#include "base/file_identity.h"
#include "fuzz/fuzz_world.h"

namespace gatescope {

namespace fs = std::filesystem;

namespace {

/// One directory for all executions.
const ScratchDirectory& scratch() {
    static const ScratchDirectory directory;
    return directory;
}

std::string text_from(std::size_t bytes, const std::string& text) {
    return text.substr(std::min(bytes, text.size()));
}

}  // namespace

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
        case Kind::WITH_HARD_LINK:
            write_file(path, text);
            fs::permissions(path, fs::perms(is_private ? 0600 : 0666));
            if (kind == Kind::WITH_HARD_LINK) fs::create_hard_link(path, target);
            break;
        case Kind::LINKED_FILE:
            write_file(target, text);
            fs::create_symlink(target, path);
            break;
        case Kind::LINKED_DIRECTORY:
            fs::create_directory(target);
            fs::create_symlink(target, path);
            break;
        case Kind::DANGLING_LINK:
            fs::create_symlink(target, path);
            break;
        case Kind::LINK_TO_ITSELF:
            fs::create_symlink(path, path);
            break;
        case Kind::PIPE:
            must(mkfifo(path.c_str(), 0666) == 0, "a pipe can be created");
            break;
        case Kind::DIRECTORY:
            fs::create_directory(path);
            break;
    }
}

void PrunedRegion::plant_ready_file(int number, std::size_t size, bool is_of_another_log, Kind kind,
                                    const std::string& text, bool is_private) {
    const std::string log = log_file_path(logging_dir_, number);
    std::string beginning = place_at(log).text.value_or("").substr(0, size);
    if (is_of_another_log && !beginning.empty()) beginning[0] ^= 1;
    const std::string other = scratch() / "beginning";
    write_file(other, beginning);
    std::uint64_t fingerprint = 0;
    const Descriptor file(open(other.c_str(), O_RDONLY | O_CLOEXEC));
    must(fingerprint_of(file.get(), static_cast<off_t>(beginning.size()), &fingerprint) == 0,
         "a file has a fingerprint");
    const std::string path =
        log + ".ready_" + std::to_string(beginning.size()) + "_" + std::to_string(fingerprint);
    plant(path, kind, text, is_private);
    replaced_beginnings_.emplace(path, beginning);
}

void PrunedRegion::plant_hard_link_of_log(int number, const std::string& path) {
    std::error_code ignored;
    const std::string log = log_file_path(logging_dir_, number);
    if (place_at(log).text) fs::create_hard_link(log, path, ignored);
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
        if (place_at(path).is_usable) may_change_.insert(path);
    }
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) begin(number);
    initial_ = snapshot();
    untouched_ = snapshot_of_untouched();
}

void PrunedRegion::begin(int number) {
    const std::string path = log_file_path(logging_dir_, number);
    const std::string companion_path = pruning_companion_path(logging_dir_, number);
    const Place file = place_at(path);
    const Place companion = place_at(companion_path);
    const std::vector<FileBesideLog> left_overs = left_overs_of(number);
    const auto is_ready = [](const FileBesideLog& one) { return one.kind == FileBesideLog::READY; };
    const auto is_shared = [](const FileBesideLog& one) {
        return fs::hard_link_count(one.path) > 1;
    };
    Log log;
    const auto ready_files = std::ranges::count_if(left_overs, is_ready);
    const bool has_hard_links = is_hard_link_of_log(number, companion_path) ||
                                std::ranges::any_of(left_overs, [&](const FileBesideLog& one) {
                                    return is_hard_link_of_log(number, one.path);
                                });
    log.is_certain = ready_files == 0 || (ready_files == 1 && !has_hard_links);
    // With a ready file that has another hard link, the log is skipped. Of several ready files
    // another one may replace the log first, so the hard link is removed.
    log.is_usable =
        file.is_usable && std::ranges::none_of(left_overs, [&](const FileBesideLog& one) {
            if (!is_ready(one) || !is_shared(one)) return false;
            if (!log.is_certain) fs::remove(elsewhere_ + one.path.substr(one.path.rfind('/')));
            return is_shared(one);
        });
    log.has_usable_companion = companion.is_usable;
    if (log.is_usable) {
        may_change_.insert(path);
        if (companion.is_usable) may_change_.insert(companion_path);
        for (const FileBesideLog& one : left_overs) may_change_.insert(one.path);
        log.will_exist = file.text || companion.text || !left_overs.empty();
        if (!is_hard_link_of_log(number, companion_path))
            add_words(companion.text.value_or(""), &log);
        add_left_overs(left_overs, file.text.value_or(""), &log);
        for (const std::string& word : words_of(companion.text.value_or("")))
            log.possible.insert(word);
    }
    logs_[number] = log;
}

bool PrunedRegion::is_hard_link_of_log(int number, const std::string& path) const {
    std::error_code error;
    return fs::equivalent(log_file_path(logging_dir_, number), path, error) && !error;
}

std::vector<FileBesideLog> PrunedRegion::left_overs_of(int number) const {
    std::vector<FileBesideLog> found;
    for (const auto& entry : fs::directory_iterator(logging_dir_)) {
        auto one = beside_log(log_file_path(logging_dir_, number), entry.path());
        if (!one || entry.is_symlink() || !entry.is_regular_file()) continue;
        // A hard link of the log has no words to merge.
        if (!is_hard_link_of_log(number, one->path)) one->text = file_text(one->path);
        found.push_back(*one);
    }
    return found;
}

bool PrunedRegion::replaces(const FileBesideLog& ready, const std::string& log) const {
    const auto beginning = replaced_beginnings_.find(ready.path);
    return beginning != replaced_beginnings_.end() && log.starts_with(beginning->second);
}

/// Adds the words of the log itself and of its left-overs. A ready file already includes the taken
/// and old files.
void PrunedRegion::add_left_overs(const std::vector<FileBesideLog>& left_overs,
                                  const std::string& text, Log* log) const {
    std::vector<std::string> texts = {text};
    std::vector<std::size_t> numbers = {0};
    std::vector<FileBesideLog> added;
    for (const FileBesideLog& one : left_overs) {
        texts.push_back(one.text);
        numbers.push_back(one.number);
        if (one.kind == FileBesideLog::READY) added.push_back(one);
    }
    const bool is_replaced = !added.empty() && replaces(added.front(), text);
    add_words(text_from(is_replaced ? added.front().number : 0, text), log);
    if (added.empty()) added = left_overs;
    // Otherwise the words appended to the log since the commit are missing while the ready file
    // replaces it.
    if (!is_replaced) {
        for (const std::string& word : words_of(text)) {
            if (is_kept(word)) log->always_in_log.insert(word);
        }
    }
    for (const FileBesideLog& one : added) {
        const std::string what =
            text_from(one.kind == FileBesideLog::OLD ? one.number : 0, one.text);
        add_words(what, log);
    }
    for (const std::string& one : texts) {
        for (const std::size_t number : numbers) {
            for (const std::string& word : words_of(text_from(number, one)))
                log->possible.insert(word);
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
    // The planted text may end without a newline.
    const bool is_cut = !text.empty() && !text.ends_with("\n");
    std::ofstream(path, std::ios::app) << (is_cut ? "\n" : "") + word + "\n";
    // Other hard links of the file change as well.
    const Snapshot now = snapshot();
    std::error_code error;
    for (auto& [other, description] : untouched_) {
        if (fs::equivalent(path, other, error)) description = now.at(other);
    }
    (is_kept ? log->second.kept : late_old_records_).insert(word);
    log->second.possible.insert(word);
    log->second.will_exist = true;
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
            const auto one = beside_log(log, entry.path());
            if (one && one->kind == FileBesideLog::OLD && !place_at(one->path).is_usable) {
                for (const std::string& failure :
                     {"The log file (" + log + ") was left as it is: ",
                      "The next pruning adds to its log what is left in (" + log}) {
                    found.push_back({one->path, failure, false});
                }
            }
        }
    }
    return found;
}

void PrunedRegion::remove(const std::vector<Obstacle>& obstacles) {
    for (const Obstacle& obstacle : obstacles) {
        fs::remove_all(obstacle.path);
        untouched_.erase(obstacle.path);
        initial_.erase(obstacle.path);
    }
    for (const auto& [number, log] : std::map(logs_)) {
        if (!log.is_usable) begin(number);
    }
    std::erase_if(untouched_, [&](const auto& entry) { return may_change(entry.first); });
}

}  // namespace gatescope
