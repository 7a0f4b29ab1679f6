#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/json.h"

namespace gatescope {

/// The record of a change, read from a history.
struct ChangeRecord {
    /// The directory of the history.
    std::string directory;
    /// The number of the line in the file of records, from 1, and the line.
    int number;
    std::string line;

    /// The value of the record's member; nothing for null.
    [[nodiscard]] std::optional<std::string> value(const std::string& member) const {
        return json_text(line, member);
    }
    /// The same; empty for null.
    [[nodiscard]] std::string text(const std::string& member) const {
        return value(member).value_or("");
    }
};

/// From the oldest to the newest.
using ChangeRecords = std::vector<ChangeRecord>;

/// Reads the records of the history in `directory`: those of the policy file `file`, if given, else
/// all. Gripes when the file of records cannot be read. A line that is not a complete record is
/// reported on standard error and skipped.
ChangeRecords read_history(const std::string& directory, const std::optional<std::string>& file);

/// The policy file's text before the change: the saved text, or "" where there was no file. Gripes
/// when the saved text cannot be read or is larger than a policy file may be.
std::string text_before(const ChangeRecord& change);

/// The policy file's text after the change: the text before its next change in `changes`, else the
/// present text. Gripes when that cannot be read, or when there was no file before the next change.
std::string text_after(const ChangeRecord& change, const ChangeRecords& changes);

}  // namespace gatescope
