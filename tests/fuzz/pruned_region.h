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

// The files of a region's logs, and their expected content after a pruning, by a simple reference
// implementation.

/// The type of a planted file. Targets of symbolic links, and other hard links, are in a directory
/// beside that of the logs.
enum class Kind {
    FILE,
    WITH_HARD_LINK,
    LINKED_FILE,
    LINKED_DIRECTORY,
    DANGLING_LINK,
    LINK_TO_ITSELF,
    PIPE,
    DIRECTORY
};

class PrunedRegion {
  public:
    /// Records of `cut_off` (seconds since the epoch) and later are kept.
    explicit PrunedRegion(std::int64_t cut_off);

    /// The directory of the logs.
    [[nodiscard]] const std::string& logging_dir() const { return logging_dir_; }
    /// The directory that includes all files of the region.
    [[nodiscard]] std::string directory() const;

    /// Creates a file at `path`, unless one exists.
    void plant(const std::string& path, Kind kind, const std::string& text, bool is_private);
    /// Plants a ready file that replaces the first `size` bytes of the present log (all, if it is
    /// shorter), or of a log that differs from it in the first byte.
    void plant_ready_file(int number, std::size_t size, bool is_of_another_log, Kind kind,
                          const std::string& text, bool is_private);

    /// Makes `path` a hard link of the log, if the log exists and `path` does not.
    void plant_hard_link_of_log(int number, const std::string& path);

    /// Computes the expected logs from the files planted so far.
    void begin();
    /// Appends a record, to be kept or old, as a log writer does: checks for the token first.
    void write_record(int number, bool is_kept);

    /// A file that can make a pruning fail.
    struct Obstacle {
        std::string path;
        /// The message about it.
        std::string failure;
        /// Whether it makes every pruning fail; else only those that need its name.
        bool blocks_every_prune;
    };
    [[nodiscard]] std::vector<Obstacle> obstacles() const;
    void remove(const std::vector<Obstacle>& obstacles);

    /// The expected counts in the message of the next pruning, as in "2 of 3 log entries were
    /// removed from"; nothing where a log is not certain.
    [[nodiscard]] std::optional<std::string> expected_counts() const;
    /// The logs, companions and left-overs that cannot be used.
    [[nodiscard]] std::vector<std::string> unusable() const;

    /// All files by path, with bytes, modes and inodes.
    using Snapshot = std::map<std::string, std::string>;
    [[nodiscard]] Snapshot snapshot() const;

    /// Ends the fuzzing unless each log has its complete old or new text.
    void check_after_interruption() const;
    /// Ends the fuzzing unless the logs are as expected. Beside a writer, old records that it added
    /// meanwhile are allowed.
    void check(bool beside_a_writer) const;

  private:
    using Words = std::multiset<std::string>;
    /// The expected result for a log.
    struct Log {
        bool is_usable = true;
        bool has_usable_companion = true;
        /// False with several ready files, or with hard links of the log beside a ready file: it
        /// replaces the log, which changes the meaning of the other left-overs.
        bool is_certain = true;
        /// Whether the log exists after the pruning.
        bool will_exist = false;
        Words kept;
        /// The words in `kept` that are in the log at any moment.
        Words always_in_log;
        /// All words that may be in the log at some moment.
        std::set<std::string> possible;
        int total = 0;
        int removed = 0;
    };

    void begin(int number);
    [[nodiscard]] bool is_hard_link_of_log(int number, const std::string& path) const;
    [[nodiscard]] std::vector<FileBesideLog> left_overs_of(int number) const;
    /// Whether the pruning renames the ready file over a log with this text.
    [[nodiscard]] bool replaces(const FileBesideLog& ready, const std::string& log) const;
    void add_left_overs(const std::vector<FileBesideLog>& left_overs, const std::string& text,
                        Log* log) const;
    [[nodiscard]] bool is_kept(const std::string& word) const;
    void add_words(const std::string& text, Log* log) const;
    [[nodiscard]] bool may_change(const std::string& path) const;
    [[nodiscard]] Snapshot snapshot_of_untouched() const;
    void check_log(int number, bool beside_a_writer) const;

    std::int64_t cut_off_;
    std::string logging_dir_;
    std::string elsewhere_;
    std::map<int, Log> logs_;
    /// The planted files that pruning may change.
    std::set<std::string> may_change_;
    /// By the path of a ready file: the beginning of the log that it replaces.
    std::map<std::string, std::string> replaced_beginnings_;
    Snapshot initial_;
    Snapshot untouched_;
    /// Records of writers that are older than the cut-off.
    Words late_old_records_;
    int writers_ = 0;
};

}  // namespace gatescope
