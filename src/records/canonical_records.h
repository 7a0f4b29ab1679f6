#pragma once

#include <string_view>

#include "records/canonical_filter.h"
#include "records/instruction_set.h"
#include "records/record_rule.h"

namespace gatescope {

// The fast path of the queries. Almost every record of a log has the exact shape that the policy
// engine writes; canonical_scan.h says what it is and why it may be counted by its fields.
// All others take the plain rule, so that the result is the plain rule's for every input.

/// A query, prepared for records of the canonical shape.
class CanonicalQuery {
  public:
    explicit CanonicalQuery(const RecordQuery& query, InstructionSet set = best_instruction_set());

    /// Counts all words of `piece`, after whose end READER_MARGIN bytes may be read.
    void count(std::string_view piece, RecordTally* tally) const;

    /// Whether each filter is one that a canonical record can be asked field by field. If not,
    /// count uses the plain rule throughout.
    bool has_fast_path() const { return has_fast_path_; }

  private:
    bool take_filter(std::string_view filter);
    bool take_user(std::string_view user_and_bracket);
    void ask_for_outcomes(RecordQuery letters);

    RecordQuery plain_;
    InstructionSet instruction_set_;
    CanonicalFilter filter_;
    bool has_fast_path_ = true;
};

}  // namespace gatescope
