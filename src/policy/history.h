#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>

#include "base/descriptor.h"

// The history of policy files: a directory with one line of JSON for each change, and with each
// text that a change has replaced in a file of its own.

/// The file with the lines, in the history's directory.
inline constexpr char CHANGES_FILE[] = "changes.jsonl";

/// How long another process may keep the lock of the lines.
inline constexpr std::chrono::seconds HISTORY_PATIENCE(10);

/// What a record says of a change, besides who made it, when and where.
struct RecordedChange {
    /// The action's number as the menus show it, say "A08".
    std::string action;
    /// What changes, in the operator's words.
    std::string item;
    /// The old value; nothing for what is added.
    std::optional<std::string> from;
    /// The new value; nothing for what is deleted.
    std::optional<std::string> to;
};

/// The absolute path of a file, whatever links lead to it; of one that is not there, that of its
/// directory and its name.
std::string absolute_path(const std::string& path);

/// One record, of a change that is made while this object lives: it holds the lock of the lines, so
/// that the record can still be taken back.
class HistoryEntry {
  public:
    /// Puts the record of a change of `policy_file`, and `old_text`, the text that is replaced
    /// (nothing where there is no file yet), into the directory and brings them to the disk. Empty
    /// when that is done; else which file of the history is the fault, and why, and then nothing of
    /// the record is left at the end of the process.
    [[nodiscard]] std::string write(const std::string& directory, const std::string& policy_file,
                                    const std::optional<std::string>& old_text,
                                    const RecordedChange& change,
                                    std::chrono::seconds patience = HISTORY_PATIENCE);

    /// Removes the record that was written, because the change could not be made.
    void take_back();

  private:
    Descriptor lines_;
    /// Where the record begins.
    off_t begin_ = 0;
    /// The path of the saved text; empty when there is none.
    std::string saved_;
};
