#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>

#include "base/descriptor.h"

namespace gatescope {

// Records changes of policy files in a history: a directory with a line of JSON for each change,
// and with each replaced text in a file of its own.

/// The file of records.
inline constexpr char CHANGES_FILE[] = "changes.jsonl";

/// Time limit for the lock of the file of records.
inline constexpr std::chrono::seconds HISTORY_PATIENCE(10);

/// The part of a record that depends on the action.
struct RecordedChange {
    /// The action's number as the menus show it, say "A08".
    std::string action;
    /// The changed item as the confirmation names it.
    std::string item;
    /// The old value; nothing for an addition.
    std::optional<std::string> from = std::nullopt;
    /// The new value; nothing for a deletion.
    std::optional<std::string> to = std::nullopt;
};

/// The record of a change that is about to be made. Keeps the lock of the file of records.
struct PendingRecord {
    /// The file of records; closed without a history.
    Descriptor file = {};
    /// The offset of the record in it.
    off_t begin = 0;
    /// The path of the saved text; empty when there is none.
    std::string saved = {};

    /// Removes the record and its saved text, because the change could not be made.
    void take_back();
};

/// Writes the record of a change of `policy_file`, and `old_text`, the text to be replaced (nothing
/// for a new file), to the history that ZUL_GATESCOPE_HISTORY names, and syncs both. Does nothing
/// if the variable is not set. Gripes, and leaves no part of the record, when it cannot be written.
PendingRecord record_change(const std::string& policy_file,
                            const std::optional<std::string>& old_text,
                            const RecordedChange& change,
                            std::chrono::seconds patience = HISTORY_PATIENCE);

}  // namespace gatescope
