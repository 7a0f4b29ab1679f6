#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A gatebits file as lines and fields; `path` says which. Nothing is cached: every call reads the
// file anew, and every change reads it, changes it and replaces it whole in one step that no other
// gatescope can come between. Lines and fields are counted from 1. What cannot be read or written
// ends the program through gripe.

/// The policy engine reads no more than this many bytes, so no reader or writer here does.
inline constexpr std::size_t GATEBITS_FILE_LIMIT = 30000;

/// How long the lock of a gatebits file is waited for: longer than a change takes even on a slow
/// disk, so whoever keeps it longer is not at work.
inline constexpr std::chrono::seconds LOCK_PATIENCE(10);

/// Passed to set_a_line instead of a text, it deletes the line.
inline constexpr char DELETION_TOKEN[] = "<[;;;;;deletme;;;;;]>";

/// Significant lines of the region block; the lines after it are command keys.
enum RegionLine {
    HEADER_LINE = 1,
    DEPOT_LINE = 2,
    PARENT_LINE = 3,
    NOTIFY_LINE = 4,
    RESTRICTED_LINE = 5,
    SPECIAL_LINE = 6,
    MOTD_LINE = 7,
    BITS_LINE = 8,
    FIRST_KEY_LINE = 9
};

/// Fields of the depot, parent and notify lines, and one of the depot line alone.
enum RegionField { WINDOWS_FIELD = 1, UNIX_FIELD = 2, LOGGING_FIELD = 3 };

/// The other operating system's field.
constexpr int other_field(int field) {
    return field == WINDOWS_FIELD ? UNIX_FIELD : WINDOWS_FIELD;
}

/// All bytes of the gatebits file. Gripes when it cannot be read or holds more than
/// GATEBITS_FILE_LIMIT bytes.
std::string read_gatebits_bytes(const std::string& path);

/// The lines of the gatebits file, without their newlines and without empty lines. Gripes when
/// the file cannot be read, holds more than GATEBITS_FILE_LIMIT bytes or holds no line.
std::vector<std::string> read_gatebits_lines(const std::string& path);

/// Reads the lines of the gatebits file, has them changed, and replaces the file by them, each
/// followed by a newline, when `change` says so. An empty line is left as a blank one, which
/// readers do not see and the next rewrite drops. All of it happens under the file's lock, where
/// its file system has locks. The one way in which this program changes a gatebits file. Gripes,
/// with the file as it was, when somebody else keeps the lock for longer than `patience`, or when
/// the new text is not fit to be read back or cannot be written.
void change_gatebits_lines(const std::string& path,
                           const std::function<bool(std::vector<std::string>* lines)>& change,
                           std::chrono::seconds patience = LOCK_PATIENCE);

/// What became of a change.
enum class ChangeResult {
    WRITTEN,
    CHANGED_MEANWHILE,  ///< nothing written: what the operator was shown no longer stands there
    NO_SUCH_LINE,       ///< nothing written: the file has too few significant lines
    NO_SUCH_FIELD       ///< the value was not written: its line has too few fields
};

/// A line without its leading blanks and tabs.
std::string_view without_leading_blanks(std::string_view line);

/// Whether a line counts: it holds a character that is not blank, and that is not '#'.
bool is_significant(std::string_view line);

/// Counts significant lines in eight signed bits: after the 127th the numbers turn negative and
/// start over, so higher ones address nothing, and in long files a number comes again: the line
/// that it addresses is the first one.
class LineCounter {
  public:
    /// Counts `line` when it is significant; the result says whether it is and has number n.
    bool counts_as(int n, std::string_view line);

  private:
    std::int8_t counter_ = 0;
};

/// Copies significant line n to `*line`, leading blanks included. False, with `*line` left alone,
/// when there is none.
bool get_a_line(const std::string& path, int n, std::string* line);

/// Writes `text` in place of significant line n, or deletes that line (DELETION_TOKEN: a blank line
/// stands there until the next rewrite), or appends `text` as the last line (n = 0). With `shown`,
/// only when that is what line n holds. Without it the file is rewritten even when there is no
/// line n.
ChangeResult set_a_line(const std::string& path, int n, const std::string& text,
                        const std::optional<std::string>& shown = std::nullopt);

/// Copies field f of significant line n to `*value`. False, with `*value` left alone, when the line
/// or the field does not exist. Only text that a ';' ends is a field.
bool get_a_field(const std::string& path, int n, int f, std::string* value);

/// The field's value, or an empty text when the line or the field does not exist.
std::string field_or_empty(const std::string& path, int n, int f);

/// A field's new value and, where it matters, the value that the operator was shown: empty for a
/// line or a field that did not exist.
struct FieldChange {
    int line;
    int field;
    std::string value;
    std::optional<std::string> shown = {};
};

/// Rebuilds the line with the new value as its field, every field ended by ';', and in the same
/// write the lines of the `further` changes. Text after the last ';' goes. A field one past the
/// last is accepted, but its value is not written. Nothing is written when one of the fields no
/// longer holds what was shown. The result is that of `change`; a further one of a field that does
/// not exist is passed over.
ChangeResult set_a_field(const std::string& path, const FieldChange& change,
                         const std::vector<FieldChange>& further = {});
