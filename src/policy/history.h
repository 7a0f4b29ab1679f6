#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>

#include "base/descriptor.h"

namespace gatescope {

// The history of policy files, where one is kept: a directory with a line of JSON for each change,
// and with each text that a change has replaced in a file of its own.

/// The file with the lines.
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
    std::optional<std::string> from = std::nullopt;
    /// The new value; nothing for what is deleted.
    std::optional<std::string> to = std::nullopt;
};

/// A record whose change is about to be made. While it lives it has the lock of the lines.
struct HistoryRecord {
    /// The file with the lines; none where no history is kept.
    Descriptor lines = {};
    /// Where in it the record begins.
    off_t begin = 0;
    /// The path of the saved text; empty when there is none.
    std::string saved = {};

    /// Removes the record, because its change could not be made.
    void take_back();
};

/// Puts the record of a change of `policy_file` into the history that ZUL_GATESCOPE_HISTORY names,
/// with `old_text`, the text that is replaced (nothing where there is no file yet), and brings both
/// to the disk. Does nothing where the variable is not set. Gripes when it cannot be done; nothing
/// of the record is left then.
HistoryRecord record_change(const std::string& policy_file,
                            const std::optional<std::string>& old_text,
                            const RecordedChange& change,
                            std::chrono::seconds patience = HISTORY_PATIENCE);

}  // namespace gatescope
