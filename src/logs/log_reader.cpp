#include "logs/log_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/filled.h"
#include "base/process_end.h"
#include "dialog/messages.h"
#include "messages/log_texts.h"

namespace {

/// Small enough to stay in the processor's cache between reading and looking. A fuzzer's logs are
/// short, so it asks for pieces that are short too.
#ifdef FUZZED_READ_SIZE
constexpr std::size_t READ_SIZE = FUZZED_READ_SIZE;
#else
constexpr std::size_t READ_SIZE = std::size_t{128} * 1024;
#endif

/// Where the words that are known to be whole end: behind the last white space, or behind the
/// last full piece of a word that is longer than WORD_LIMIT.
std::size_t whole_words(const char* bytes, std::size_t size) {
    std::size_t end = size;
    while (end > 0 && !is_white(bytes[end - 1])) --end;
    return size - (size - end) % WORD_LIMIT;
}

}  // namespace

std::string_view next_word(const char** at, const char* end) {
    const char* start = std::find_if_not(*at, end, is_white);
    const char* limit = start + std::min<std::ptrdiff_t>(end - start, WORD_LIMIT);
    *at = std::find_if(start, limit, is_white);
    return {start, static_cast<std::size_t>(*at - start)};
}

bool open_log_stream(const std::string& path) {
    // Without O_NONBLOCK somebody's pipe under a log's name would hold the program for ever.
    int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    // A log that is being rewritten in place is waited for, and not skipped.
    if (descriptor == -1 && errno == EWOULDBLOCK)
        descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor == -1) return false;
    struct stat status;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        LOGGING_STREAM = fdopen(descriptor, "r");
        if (LOGGING_STREAM != nullptr) return true;
    }
    close(descriptor);
    return false;
}

void close_log_stream() {
    std::fclose(LOGGING_STREAM);
    LOGGING_STREAM = nullptr;
}

LogReader::LogReader() : buffer_(WORD_LIMIT + READ_SIZE + READER_MARGIN) {}

void LogReader::start(int descriptor, const std::string& path) {
    descriptor_ = descriptor;
    path_ = path;
    held_ = 0;
    handed_out_ = 0;
    at_end_ = false;
}

bool LogReader::next(std::string_view* piece) {
    // What is left over is the beginning of one word, shorter than WORD_LIMIT.
    held_ -= handed_out_;
    std::memmove(buffer_.data(), buffer_.data() + handed_out_, held_);
    handed_out_ = 0;
    while (handed_out_ == 0 && !at_end_) {
        const std::size_t got = fill();
        at_end_ = got == 0;
        held_ += got;
        handed_out_ = at_end_ ? held_ : whole_words(buffer_.data(), held_);
    }
    *piece = {buffer_.data(), handed_out_};
    return handed_out_ != 0;
}

std::size_t LogReader::fill() {
    ssize_t got;
    do {
        got = read(descriptor_, buffer_.data() + held_, READ_SIZE);
    } while (got == -1 && errno == EINTR);
    if (got == -1) gripe(filled(LOG_READ_FAILURE, path_.c_str(), std::strerror(errno)));
    return static_cast<std::size_t>(got);
}
