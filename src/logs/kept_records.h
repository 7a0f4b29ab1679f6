#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

/// What pruning keeps and drops of a log's words.
class KeptRecords {
  public:
    /// Records of `cut_off` (seconds since the epoch) and later are kept.
    explicit KeptRecords(std::int64_t cut_off) : cut_off_(cut_off) {}

    /// The kept words of `piece`, each on a line of its own; good until the next call.
    /// READER_MARGIN bytes may be read behind the piece. It is the piece itself when the two are
    /// the same text.
    std::string_view of(std::string_view piece);

    /// Words seen and dropped so far.
    std::int64_t total() const { return total_; }
    std::int64_t removed() const { return removed_; }

  private:
    std::int64_t cut_off_;
    std::int64_t total_ = 0;
    std::int64_t removed_ = 0;
    std::vector<char> kept_;
};
