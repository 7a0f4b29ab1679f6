#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/json.h"

namespace gatescope {

/// A change that a history has a record of.
struct PastChange {
    /// Of the history.
    std::string directory;
    /// The number of the record's line, from 1, and the line.
    int number;
    std::string line;

    /// What the record says there; nothing for null.
    [[nodiscard]] std::optional<std::string> value(const std::string& member) const {
        return json_text(line, member);
    }
    [[nodiscard]] std::string text(const std::string& member) const {
        return value(member).value_or("");
    }
};

/// From the first to the last.
using PastChanges = std::vector<PastChange>;

/// Reads the records in the directory, of one policy file where that is named. Gripes when the
/// lines cannot be read. A line that is not a complete record is reported on standard error and
/// skipped.
PastChanges read_history(const std::string& directory, const std::optional<std::string>& file);

/// What the policy file held before the change: the saved text, or nothing where there was no file
/// yet. Gripes when the saved text cannot be read, or is larger than a policy file may be.
std::string text_before(const PastChange& change);

/// What it held afterwards: the text that stood before its next change, or stands there now. Gripes
/// when that cannot be read, or when there was no file any more.
std::string text_after(const PastChange& change, const PastChanges& changes);

}  // namespace gatescope
