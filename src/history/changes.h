#pragma once

#include <string>
#include <vector>

#include "base/json.h"

namespace gatescope {

/// A change that a history has a record of.
struct PastChange {
    /// The number of the record's line, from 1.
    int number;
    JsonObject record;

    /// Whether the record has the member, and does not say null.
    [[nodiscard]] bool has(const std::string& member) const { return record.contains(member); }
    /// What the record says there; empty for nothing.
    [[nodiscard]] std::string text(const std::string& member) const {
        return has(member) ? record.at(member) : "";
    }
};

struct History {
    std::string directory;
    /// From the first to the last.
    std::vector<PastChange> changes = {};
};

/// Reads the records in the directory. A last line without an end is left out: it is of a change
/// that has not been made. Gripes when the lines cannot be read, or one holds no record.
History read_history(const std::string& directory);

/// A text, and the name of the file that it is from.
struct NamedText {
    std::string name;
    std::string text;
};

/// What the policy file held before the change: the saved text, or nothing where there was no file
/// yet. Gripes when the saved text cannot be read.
NamedText text_before(const History& history, const PastChange& change);

/// What it held afterwards: the text that stood before its next change, or stands there now. Gripes
/// when that cannot be read, or when there was no file any more.
NamedText text_after(const History& history, const PastChange& change);

}  // namespace gatescope
