#pragma once

#include <string_view>

#include "records/canonical_filter.h"
#include "records/instruction_set.h"
#include "records/record_rule.h"

namespace gatescope {

// The fast path of the queries, for records of the exact shape that the policy engine writes:
// canonical_scan.h defines it and explains why comparing single fields is enough. All other words
// take the plain rule. The result is that of the plain rule for every input.

/// A query, prepared for records of the canonical shape.
class CanonicalQuery {
  public:
    explicit CanonicalQuery(const RecordQuery& query, InstructionSet set = best_instruction_set());

    /// Counts all words of `piece`. READER_MARGIN bytes may be read after the piece.
    void count(std::string_view piece, RecordTally* tally) const;

    /// Whether each filter can be compared with one field of a canonical record. If not, count()
    /// applies the plain rule to every word.
    bool has_fast_path() const { return has_fast_path_; }

  private:
    bool add_filter(std::string_view filter);
    bool add_user_filter(std::string_view user_and_bracket);
    void find_outcomes(RecordQuery letters);

    RecordQuery plain_;
    InstructionSet instruction_set_;
    CanonicalFilter filter_;
    bool has_fast_path_ = true;
};

}  // namespace gatescope
