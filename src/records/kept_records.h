#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "records/instruction_set.h"

namespace gatescope {

/// Separates the words of a log that pruning keeps from those that it drops.
class KeptRecords {
  public:
    /// Records of `cut_off` (seconds since the epoch) and later are kept.
    explicit KeptRecords(std::int64_t cut_off, InstructionSet set = best_instruction_set());

    /// The kept words of `piece`, each on a line of its own; valid until the next call. The piece
    /// itself when that is the same text. READER_MARGIN bytes may be read after the piece.
    std::string_view of(std::string_view piece);

    /// Number of words so far: all, and those dropped.
    std::int64_t total() const { return total_; }
    std::int64_t removed() const { return removed_; }

  private:
    template <class SET>
    std::string_view kept_of(std::string_view piece);
    template <class SET>
    bool is_kept_unchanged(const char* at, const char* end) const;
    const char* filter_by_plain_rule(const char* at, const char* stop, const char* end);

    std::int64_t cut_off_;
    std::uint64_t cut_off_digits_;
    InstructionSet instruction_set_;
    std::int64_t total_ = 0;
    std::int64_t removed_ = 0;
    /// The kept words of the piece, once they are known to differ from it.
    std::string kept_;
};

}  // namespace gatescope
