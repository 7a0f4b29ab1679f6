#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Log bytes in, words out. A word is what stands between white space (blank, \t, \n, \v, \f, \r);
// one that is longer than WORD_LIMIT is read as several. One word is one record.

inline constexpr std::size_t WORD_LIMIT = 255;

/// How many bytes may be looked at behind the end of a piece that LogReader hands out: vector
/// code may read, but not believe, what stands there.
inline constexpr std::size_t READER_MARGIN = 64;

/// Whether `c` separates words.
constexpr bool is_white(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The first word in [*at, end), and `*at` moved behind it; empty, with `*at` at the end, when
/// there is none. NUL bytes are part of a word; what counts of a word is its C text.
std::string_view next_word(const char** at, const char* end);

/// Opens a log file for reading as LOGGING_STREAM, where the end of the process finds it. False,
/// without a message, when there is no such file or it is not a regular one that may be read.
bool open_log_stream(const std::string& path);
/// Closes LOGGING_STREAM.
void close_log_stream();

/// Hands out a file piece by piece, always in whole words.
class LogReader {
  public:
    LogReader();

    /// Starts over with an open file that is read from where it stands. `path` is for messages.
    void start(int descriptor, const std::string& path);

    /// The next piece, never empty; it is good until the next call. False at the end of the file.
    /// A word that the end of the file cuts short is handed out as it stands. Gripes when the
    /// file cannot be read on.
    bool next(std::string_view* piece);
    /// Whether the last piece went up to the end of the file, as it was when it was read.
    bool at_end() const { return at_end_; }

  private:
    std::size_t fill();

    std::vector<char> buffer_;
    int descriptor_ = -1;
    std::string path_;
    /// The bytes in the buffer, and how many of them have been handed out.
    std::size_t held_ = 0;
    std::size_t handed_out_ = 0;
    bool at_end_ = true;
};
