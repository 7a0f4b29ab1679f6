#pragma once

#include <sys/types.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "base/descriptor.h"
#include "records/words.h"

namespace gatescope {

/// The reason, by the errno of an open, why a log is left out; empty if the file does not exist.
std::string why_left_out(int error);

/// Opens a log for reading. If it cannot be opened or is not a regular file, the descriptor is
/// closed and `*reason` is set; it is empty if the file does not exist.
Descriptor open_log(const std::string& path, std::string* reason);

/// Reads the words of an open file in pieces of whole words. The file position does not change, so
/// several threads may read the same file.
class LogReader {
  public:
    LogReader();

    /// As an end: the end of the file at the time when it is reached.
    static constexpr off_t TO_THE_END = std::numeric_limits<off_t>::max();

    /// Starts with byte `from` of `file`, and reads as if the file ended before byte `end`. The
    /// caller keeps the file open, and closes it.
    void start(int file, off_t from = 0, off_t end = TO_THE_END);

    /// Starts with the words that begin in the bytes [from, to): adjacent ranges return each word
    /// of a file once.
    void start_range(int file, off_t from, off_t to);

    /// The next piece, never empty and valid until the next call. The end of the file ends a word.
    /// False at the end of the range, and if a read fails: then error() is set.
    bool next(std::string_view* piece);
    /// 0, or the errno of the read that failed.
    int error() const { return error_; }

  private:
    bool fill();
    void skip_to_first_word();
    void find_piece();

    std::unique_ptr<char[]> buffer_;
    int file_ = -1;
    /// Offset of the next read, end of the range, and where the file counts as ended.
    off_t offset_ = 0;
    off_t to_ = TO_THE_END;
    off_t end_ = TO_THE_END;
    /// Number of bytes in the buffer; how many of the first ones are known to contain no white
    /// space; how many of the first ones were returned as a piece.
    std::size_t size_ = 0;
    std::size_t without_white_ = 0;
    std::size_t returned_ = 0;
    /// Whether a word that begins before the range has not ended yet.
    bool skipping_ = false;
    bool finished_ = true;
    bool at_end_ = true;
    int error_ = 0;
};

}  // namespace gatescope
