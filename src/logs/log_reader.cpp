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

/// Small enough to stay in the processor's cache between reading and looking. A fuzzer's logs are
/// short, so it asks for pieces that are short too.
#ifdef FUZZED_READ_SIZE
constexpr std::size_t READ_SIZE = FUZZED_READ_SIZE;
#else
constexpr std::size_t READ_SIZE = std::size_t{128} * 1024;
#endif
/// What is read after the end of a range at first: the last word hardly ever goes on for longer.
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

void LogReader::start(int file, off_t from) {
    start_range(file, from, TO_THE_END);
    place_ = from;
    skipping_ = false;
}

void LogReader::start_range(int file, off_t from, off_t to) {
    file_ = file;
    // The byte before tells whether a word begins at the first one.
    place_ = std::max<off_t>(from - 1, 0);
    to_ = to;
    held_ = 0;
    without_white_ = 0;
    handed_out_ = 0;
    skipping_ = from > 0;
    finished_ = from >= to;
    at_end_ = false;
    error_ = 0;
}

bool LogReader::next(std::string_view* piece) {
    // What is left over is the beginning of one word, shorter than WORD_LIMIT.
    held_ -= handed_out_;
    std::memmove(buffer_.get(), buffer_.get() + handed_out_, held_);
    handed_out_ = 0;
    while (handed_out_ == 0 && !finished_ && fill()) {
        if (skipping_) skip_to_first_word();
        find_end();
    }
    *piece = {buffer_.get(), handed_out_};
    return handed_out_ != 0;
}

/// Reads on; false when that fails.
bool LogReader::fill() {
    without_white_ = held_;
    const off_t wanted = std::clamp<off_t>(to_ - place_, 0, READ_SIZE);
    // A word that goes on after the tail may go on for long.
    const std::size_t size =
        place_ > to_ ? READ_SIZE
                     : std::min(READ_SIZE, static_cast<std::size_t>(wanted) + TAIL_SIZE);
    ssize_t got;
    do {
        got = pread(file_, buffer_.get() + held_, size, place_);
    } while (got == -1 && errno == EINTR);
    if (got == -1) {
        error_ = errno;
        finished_ = true;
        return false;
    }
    at_end_ = got == 0;
    held_ += static_cast<std::size_t>(got);
    place_ += got;
    return true;
}

/// Drops what stands before the first white space. When there is none before the end of the range,
/// no word begins in it.
void LogReader::skip_to_first_word() {
    const char* const begin = buffer_.get();
    const char* const end = begin + held_;
    const char* const first = find_white(begin, end);
    const off_t place = place_ - (end - first);
    skipping_ = first == end;
    finished_ = place >= to_ - 1;
    held_ = finished_ ? 0 : static_cast<std::size_t>(end - first);
    without_white_ = 0;
    std::memmove(buffer_.get(), first, held_);
}

/// Finds out how much of what is held can be handed out: up to where the range ends, or else up to
/// where the words that are known to be whole end. That is after the last white space, or after
/// the last full piece of a word that is longer than WORD_LIMIT.
void LogReader::find_end() {
    const char* const begin = buffer_.get();
    const char* const read = begin + without_white_;
    const char* const end = begin + held_;
    if (at_end_) {
        finished_ = true;
        handed_out_ = held_;
        return;
    }
    if (place_ >= to_) {
        // The last word of the range is the one that its last byte belongs to.
        const off_t after_last = place_ - (to_ - 1);
        const char* const last = end - std::min<off_t>(after_last, end - read);
        const char* const stop = find_white(last, end);
        if (stop != end) {
            finished_ = true;
            handed_out_ = static_cast<std::size_t>(stop - begin) + 1;
            return;
        }
    }
    const char* last = after_last_white(read, end);
    if (last == read) last = begin;
    handed_out_ = held_ - static_cast<std::size_t>(end - last) % WORD_LIMIT;
}

}  // namespace gatescope
