#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "logs/lanes.h"
#include "logs/record_rule.h"

// The fast path of the queries. Almost every record of a log has the exact shape that the policy
// engine writes; canonical_scan.h says what it is and why it may be counted by its fields.
// All others take the plain rule, so that the result is the plain rule's for every input.

/// What the fast path compares in a canonical record.
struct CanonicalFilter {
    /// The user and the '[' behind it are no longer than this.
    static constexpr std::size_t USER_LIMIT = 32;

    /// RecordOutcome by kind and detail letter, as the plain rule has it.
    std::array<std::uint8_t, 32> outcomes = {};
    /// "user[" in lower case, the bytes of it that count, and the bit that tells the cases of a
    /// letter apart where there is a letter.
    alignas(16) std::array<char, USER_LIMIT> user = {};
    alignas(16) std::array<char, USER_LIMIT> user_mask = {};
    alignas(16) std::array<char, USER_LIMIT> user_case = {};
    /// "[54]" and "<23>" as numbers whose lowest byte is the first character, and the bits of them
    /// that count.
    std::uint32_t command = 0;
    std::uint32_t command_mask = 0;
    std::uint32_t value = 0;
    std::uint32_t value_mask = 0;
    /// Whether user, command or value have to be compared, and whether more than 16 bytes of the
    /// user have to be.
    bool has_fields = false;
    bool has_long_user = false;
};

/// A query, prepared for records of the canonical shape.
class CanonicalQuery {
  public:
    explicit CanonicalQuery(const RecordQuery& query, Lanes lanes = Lanes::VECTORS);

    /// Counts all words of `piece`, behind whose end READER_MARGIN bytes may be read.
    void count(std::string_view piece, RecordTally* tally) const;

    /// Whether each filter is one that a canonical record can be asked field by field. If not,
    /// count uses the plain rule throughout.
    bool has_fast_path() const { return has_fast_path_; }

  private:
    bool take_filter(std::string_view filter);
    bool take_user(std::string_view user_and_bracket);
    void ask_for_outcomes(RecordQuery letters);

    RecordQuery plain_;
    Lanes lanes_;
    CanonicalFilter filter_;
    bool has_fast_path_ = true;
};
