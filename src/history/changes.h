#pragma once

#include <string>
#include <vector>

#include "base/json.h"

/// A change that a history has a record of.
struct PastChange {
    /// The number of the record's line, from 1.
    int number;
    JsonObject record;

    /// What a member of the record says; empty for null.
    [[nodiscard]] std::string text(const std::string& member) const {
        return record.at(member).value_or("");
    }
};

struct History {
    std::string directory;
    /// From the first to the last.
    std::vector<PastChange> changes = {};
    /// The number of the first line that holds no record; 0 when there is none. A last line without
    /// an end is of a change that has not been made, and left out.
    int first_other_line = 0;
};

/// Reads the records in the directory. Gripes when they cannot be read.
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
