#include "logs/log_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/files.h"
#include "messages/startup_texts.h"

namespace gatescope {
namespace {

/// Small enough to stay in the processor's cache until it is searched. The logs of fuzz targets are
/// short, and need short pieces.
#ifdef FUZZED_READ_SIZE
constexpr std::size_t READ_SIZE = FUZZED_READ_SIZE;
#else
constexpr std::size_t READ_SIZE = std::size_t{128} * 1024;
#endif
/// Bytes read at first after the end of a range: the last word rarely ends later.
constexpr std::size_t TAIL_SIZE = std::min<std::size_t>(READ_SIZE, 4096);

}  // namespace

std::string why_left_out(int error) {
    if (error == ENOENT || error == ENOTDIR) return "";
    return error == EINVAL || error == EISDIR ? NOT_A_REGULAR_FILE : std::strerror(error);
}

Descriptor open_log(const std::string& path, std::string* reason) {
    Descriptor log(open_regular_file(path, O_RDONLY));
    *reason = log ? "" : why_left_out(errno);
    return log;
}

LogReader::LogReader()
    : buffer_(std::make_unique_for_overwrite<char[]>(WORD_LIMIT + READ_SIZE + READER_MARGIN)) {}

void LogReader::start(int file, off_t from, off_t end) {
    start_range(file, from, TO_THE_END);
    offset_ = from;
    end_ = std::max(from, end);
    skipping_ = false;
}

void LogReader::start_range(int file, off_t from, off_t to) {
    file_ = file;
    // The byte before the range decides whether a word begins at its first byte.
    offset_ = std::max<off_t>(from - 1, 0);
    to_ = to;
    end_ = TO_THE_END;
    size_ = 0;
    without_white_ = 0;
    returned_ = 0;
    skipping_ = from > 0;
    finished_ = from >= to;
    at_end_ = false;
    error_ = 0;
}

bool LogReader::next(std::string_view* piece) {
    // The rest is the beginning of one word, shorter than WORD_LIMIT.
    size_ -= returned_;
    std::memmove(buffer_.get(), buffer_.get() + returned_, size_);
    returned_ = 0;
    while (returned_ == 0 && !finished_ && fill()) {
        if (skipping_) skip_to_first_word();
        find_piece();
    }
    *piece = {buffer_.get(), returned_};
    return returned_ != 0;
}

/// Reads more bytes into the buffer; false if that fails.
bool LogReader::fill() {
    without_white_ = size_;
    const off_t wanted = std::clamp<off_t>(to_ - offset_, 0, READ_SIZE);
    // A word that continues after the tail may be very long.
    const std::size_t size =
        offset_ > to_ ? READ_SIZE
                      : std::min(READ_SIZE, static_cast<std::size_t>(wanted) + TAIL_SIZE);
    const auto until_end = static_cast<std::size_t>(end_ - offset_);
    ssize_t got;
    do {
        got = pread(file_, buffer_.get() + size_, std::min(size, until_end), offset_);
    } while (got == -1 && errno == EINTR);
    if (got == -1) {
        error_ = errno;
        finished_ = true;
        return false;
    }
    at_end_ = got == 0;
    size_ += static_cast<std::size_t>(got);
    offset_ += got;
    return true;
}

/// Drops the bytes before the first white space. If the range contains none, no word begins in it.
void LogReader::skip_to_first_word() {
    const char* const begin = buffer_.get();
    const char* const end = begin + size_;
    const char* const first = find_white(begin, end);
    const off_t next_word_offset = offset_ - (end - first);
    skipping_ = first == end;
    finished_ = next_word_offset >= to_ - 1;
    size_ = finished_ ? 0 : static_cast<std::size_t>(end - first);
    without_white_ = 0;
    std::memmove(buffer_.get(), first, size_);
}

/// Determines how much of the buffer can be returned: up to the end of the range, else as many
/// words as are known to be whole. These end after the last white space, or after the last
/// WORD_LIMIT bytes of a longer word.
void LogReader::find_piece() {
    const char* const begin = buffer_.get();
    const char* const read = begin + without_white_;
    const char* const end = begin + size_;
    if (at_end_) {
        finished_ = true;
        returned_ = size_;
        return;
    }
    if (offset_ >= to_) {
        // The last word of the range is the one that contains its last byte.
        const off_t after_last = offset_ - (to_ - 1);
        const char* const last = end - std::min<off_t>(after_last, end - read);
        const char* const stop = find_white(last, end);
        if (stop != end) {
            finished_ = true;
            returned_ = static_cast<std::size_t>(stop - begin) + 1;
            return;
        }
    }
    const char* last = after_last_white(read, end);
    if (last == read) last = begin;
    returned_ = size_ - static_cast<std::size_t>(end - last) % WORD_LIMIT;
}

}  // namespace gatescope
