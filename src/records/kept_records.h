#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "records/instruction_set.h"

namespace gatescope {

/// What pruning keeps and drops of a log's words.
class KeptRecords {
  public:
    /// Records of `cut_off` (seconds since the epoch) and later are kept.
    explicit KeptRecords(std::int64_t cut_off, InstructionSet set = best_instruction_set());

    /// The kept words of `piece`, each on a line of its own; good until the next call.
    /// READER_MARGIN bytes may be read after the piece. It is the piece itself when the two are
    /// the same text.
    std::string_view of(std::string_view piece);

    /// Words seen and dropped so far.
    std::int64_t total() const { return total_; }
    std::int64_t removed() const { return removed_; }

  private:
    template <class SET>
    std::string_view kept_of(std::string_view piece);
    template <class SET>
    bool stays(const char* at, const char* end) const;
    char* copied(std::string_view piece, const char* until);
    /// Where the reading and the writing go on.
    struct Places {
        const char* at;
        char* out;
    };
    Places take_words(Places places, const char* stop, const char* end);

    std::int64_t cut_off_;
    /// Of the cut-off.
    std::uint64_t first_digits_;
    InstructionSet instruction_set_;
    std::int64_t total_ = 0;
    std::int64_t removed_ = 0;
    std::vector<char> kept_;
};

}  // namespace gatescope
