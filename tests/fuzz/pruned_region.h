#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "logs/log_files.h"
#include "support/scratch_directory.h"

// A region's logs on the disk, and what is to become of them by the plain rule.

/// All words of a log; those that a NUL cuts short are what stands before it.
std::vector<std::string> words_of(const std::string& text);

/// What is planted under a name.
enum class Kind { FILE, LINKED_FILE, LINK_TO_NOTHING, RING, PIPE, DIRECTORY };

class PrunedRegion {
  public:
    /// Records of `cut_off` (seconds since the epoch) and later are kept.
    explicit PrunedRegion(std::int64_t cut_off);

    /// Where the logs are.
    [[nodiscard]] const std::string& logging_dir() const { return logging_dir_; }
    /// All that stands below this belongs to the region.
    [[nodiscard]] std::string directory() const;

    /// Puts something there, unless there is something already. Links lead to the directory beside
    /// the logs.
    void plant(const std::string& path, Kind kind, const std::string& text, bool is_private);
    /// plant, of something with a name that begins as a log's or a companion's does: pruning may
    /// take it for its own, and then its words are allowed in the logs.
    void plant_left_over(const std::string& path, Kind kind, const std::string& text);

    /// Takes the logs as they are for what is to be pruned.
    void begin();
    /// A log writer who looks for the token first, and adds a kept record then, or an old one.
    void write_record(int number, bool is_kept);
    /// Takes away what need not be put up with: directories, pipes and links under the names of the
    /// token, of the scratch file and of logs with a companion. False when there are none.
    bool remove_obstacles();

    /// Whether the records can be counted: nothing is there that might be a left-over.
    [[nodiscard]] bool is_countable() const { return left_overs_.empty(); }
    /// "2 of 3 log entries were removed from": what the next pruning is to say.
    [[nodiscard]] std::string expected_counts() const;
    /// The logs that cannot be used.
    [[nodiscard]] std::vector<std::string> unusable() const;

    /// All that is there but the scratch file, with bytes, modes and inodes.
    using Snapshot = std::map<std::string, std::string>;
    [[nodiscard]] Snapshot everything() const;

    /// Ends the fuzzing unless pruning has come out right. Each of the writes that were torn may
    /// have left the beginning of a record.
    void check(int torn) const;

  private:
    using Words = std::multiset<std::string>;
    struct Log {
        bool is_usable = true;
        /// The log, or the file that becomes one.
        bool will_be_there = false;
        Words kept;
        int total = 0;
        int removed = 0;
    };

    void begin(int number);
    [[nodiscard]] std::vector<std::string> obstacles() const;
    void add_words(const std::string& text, Log* log) const;
    [[nodiscard]] bool is_rewritten(const std::string& path) const;
    [[nodiscard]] Snapshot untouched() const;
    void check_log(int number, Words* extra, int* torn) const;

    std::int64_t cut_off_;
    std::string logging_dir_;
    std::string elsewhere_;
    std::map<int, Log> logs_;
    /// The real paths of the logs and companions that can be used.
    std::set<std::string> rewritten_;
    /// What was planted under each name, and the words that may be added of it.
    std::map<std::string, std::pair<std::string, std::vector<std::string>>> left_overs_;
    Words left_over_words_;
    Snapshot untouched_;
    int writers_ = 0;
};
