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

/// Why a log is left out that could not be opened, by its errno; empty when there is no such file.
std::string why_left_out(int error);

/// Opens a log for reading. Nothing is open when it cannot be opened or is no regular file; then
/// `*reason` says why, and is empty when there is no such file at all.
Descriptor open_log(const std::string& path, std::string* reason);

/// Hands out the words of an open file piece by piece, always whole ones. It moves no file
/// position, so that several may read the same file at the same time.
class LogReader {
  public:
    LogReader();

    /// Starts over with all that stands in `file` from its byte `from` on. The caller keeps the
    /// file open, and closes it.
    void start(int file, off_t from = 0);

    /// Starts over with the words that begin at `from` or later and before `to`: ranges that
    /// follow each other without a gap hand out each word of a file once.
    void start_range(int file, off_t from, off_t to);

    /// To the end of the file, wherever that is when it is reached.
    static constexpr off_t TO_THE_END = std::numeric_limits<off_t>::max();

    /// The next piece, never empty; it is good until the next call. A word that the end of the
    /// file cuts short is handed out as it stands. False at the end, and when the file cannot be
    /// read on: then error() says why.
    bool next(std::string_view* piece);
    /// 0, or the errno of the read that failed.
    int error() const { return error_; }

  private:
    bool fill();
    void skip_to_first_word();
    void find_end();

    std::unique_ptr<char[]> buffer_;
    int file_ = -1;
    /// Where the next read starts, and where the first word that is not wanted may begin.
    off_t place_ = 0;
    off_t to_ = TO_THE_END;
    /// The bytes in the buffer, how many of them are known to hold no white space, and how many are
    /// handed out.
    std::size_t held_ = 0;
    std::size_t without_white_ = 0;
    std::size_t handed_out_ = 0;
    /// Whether what is read belongs to a word that began before the range.
    bool skipping_ = false;
    bool finished_ = true;
    bool at_end_ = true;
    int error_ = 0;
};

}  // namespace gatescope
