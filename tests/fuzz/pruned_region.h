#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "fuzz/region_files.h"
#include "logs/log_files.h"
#include "support/scratch_directory.h"

namespace gatescope {

// A region's logs on the disk, and what is to become of them by the plain rule.

/// What is planted under a name. Links lead to the directory beside the logs; second names of files
/// are there too.
enum class Kind {
    FILE,
    WITH_SECOND_NAME,
    LINKED_FILE,
    LINKED_DIRECTORY,
    LINK_TO_NOTHING,
    RING,
    PIPE,
    DIRECTORY
};

class PrunedRegion {
  public:
    /// Records of `cut_off` (seconds since the epoch) and later are kept.
    explicit PrunedRegion(std::int64_t cut_off);

    /// Where the logs are.
    [[nodiscard]] const std::string& logging_dir() const { return logging_dir_; }
    /// All that stands below this belongs to the region.
    [[nodiscard]] std::string directory() const;

    /// Puts something there, unless there is something already.
    void plant(const std::string& path, Kind kind, const std::string& text, bool is_private);
    /// plant, of a ready text in the place of the first `size` bytes of the log as it stands now
    /// (all of them, when it has less), or of a log that differs from it in its first byte.
    void plant_ready_text(int number, std::size_t size, bool is_of_another, Kind kind,
                          const std::string& text, bool is_private);

    /// Makes `path` another name of the log, if there is one, and nothing there.
    void plant_name_of_log(int number, const std::string& path);

    /// Takes everything as it is for what is to be pruned.
    void begin();
    /// A log writer who looks for the token first, and adds a kept record then, or an old one.
    void write_record(int number, bool is_kept);

    /// Something that can be in the way of a pruning.
    struct Obstacle {
        std::string path;
        /// How the operator is told of it.
        std::string failure;
        /// Whether no pruning gets past it, or else just those that need its name.
        bool is_always_met;
    };
    [[nodiscard]] std::vector<Obstacle> obstacles() const;
    void remove(const std::vector<Obstacle>& obstacles);

    /// "2 of 3 log entries were removed from": what the next pruning is to say; nothing where the
    /// rule is not that plain.
    [[nodiscard]] std::optional<std::string> expected_counts() const;
    /// The logs, companions and left-overs that cannot be used.
    [[nodiscard]] std::vector<std::string> unusable() const;

    /// All that is there, with bytes, modes and inodes.
    using Snapshot = std::map<std::string, std::string>;
    [[nodiscard]] Snapshot everything() const;

    /// Ends the fuzzing unless each log is a whole text, old or new, wherever a pruning has ended.
    void check_in_between() const;
    /// Ends the fuzzing unless a pruning has come out right; of what a writer added meanwhile, old
    /// records may still be there.
    void check(bool beside_a_writer) const;

  private:
    using Words = std::multiset<std::string>;
    /// What is to become of a log.
    struct Log {
        bool is_usable = true;
        bool has_usable_companion = true;
        /// Not when there are several ready texts, or other names of the log beside one: it makes
        /// the log another file, and then the rest means something else.
        bool is_certain = true;
        /// The log, or the file that becomes one.
        bool will_be_there = false;
        Words kept;
        /// Those of them that stand in the log at any moment.
        Words always_there;
        /// What may stand in the log at some moment.
        std::set<std::string> known;
        int total = 0;
        int removed = 0;
    };

    void begin(int number);
    [[nodiscard]] bool is_log(int number, const std::string& path) const;
    [[nodiscard]] std::vector<FileBesideLog> left_overs_of(int number) const;
    /// Whether a ready text is of that log.
    [[nodiscard]] bool takes_place_of(const FileBesideLog& ready, const std::string& log) const;
    void add_left_overs(const std::vector<FileBesideLog>& left_overs, const std::string& text,
                        Log* log) const;
    [[nodiscard]] bool is_kept(const std::string& word) const;
    void add_words(const std::string& text, Log* log) const;
    [[nodiscard]] bool is_rewritten(const std::string& path) const;
    [[nodiscard]] Snapshot untouched() const;
    void check_log(int number, bool beside_a_writer) const;

    std::int64_t cut_off_;
    std::string logging_dir_;
    std::string elsewhere_;
    std::map<int, Log> logs_;
    /// What pruning may change of what was there when it began.
    std::set<std::string> rewritten_;
    /// By the path of a ready text: what the log begins with that it is of.
    std::map<std::string, std::string> beginnings_;
    Snapshot at_the_beginning_;
    Snapshot untouched_;
    /// Old records of writers.
    Words late_;
    int writers_ = 0;
};

}  // namespace gatescope
