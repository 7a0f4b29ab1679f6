#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gatescope {

// The text of a gatebits file as a value, with its lines, fields and keys, and edits that make
// another text of it. Nothing here touches a file. Lines and fields are counted from 1.

/// Passed to set_a_line instead of a text, it deletes the line.
inline constexpr char DELETION_TOKEN[] = "<[;;;;;deletme;;;;;]>";

/// Significant lines of the region block; the lines after it are command keys.
inline constexpr int HEADER_LINE = 1;
inline constexpr int DEPOT_LINE = 2;
inline constexpr int PARENT_LINE = 3;
inline constexpr int NOTIFY_LINE = 4;
inline constexpr int RESTRICTED_LINE = 5;
inline constexpr int SPECIAL_LINE = 6;
inline constexpr int MOTD_LINE = 7;
inline constexpr int BITS_LINE = 8;
inline constexpr int FIRST_KEY_LINE = 9;

/// Fields of the depot, parent and notify lines, and one of the depot line alone.
inline constexpr int WINDOWS_FIELD = 1;
inline constexpr int UNIX_FIELD = 2;
inline constexpr int LOGGING_FIELD = 3;

/// The other operating system's field.
constexpr int other_field(int field) {
    return field == WINDOWS_FIELD ? UNIX_FIELD : WINDOWS_FIELD;
}

/// A gatebits file as it was read once, or as an edit wants it. It never changes.
class Gatebits {
  public:
    /// All bytes of a file. Its lines are those that hold anything, up to the first NUL.
    explicit Gatebits(std::string bytes);
    /// The lines of a new file, each of which ends at its first NUL. An empty one stands in it as a
    /// blank line, which readers do not see and the next rewrite drops.
    explicit Gatebits(std::vector<std::string> lines);

    /// All bytes; those of an edit are its lines, each followed by a newline.
    [[nodiscard]] const std::string& text() const { return text_; }
    /// The lines without their newlines.
    [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }

  private:
    std::string text_;
    std::vector<std::string> lines_;
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

/// Significant line n, leading blanks included; nothing when there is none.
std::optional<std::string> get_a_line(const Gatebits& gatebits, int n);

/// Field f of significant line n; nothing when the line or the field does not exist. Only text that
/// a ';' ends is a field.
std::optional<std::string> get_a_field(const Gatebits& gatebits, int n, int f);

/// The field's value, or an empty text when the line or the field does not exist.
std::string field_or_empty(const Gatebits& gatebits, int n, int f);

/// The command keys that have a line number, in their order: the first is key 0.
std::vector<std::string> command_keys(const Gatebits& gatebits);

/// All command keys, those included that no line number reaches.
std::size_t number_of_keys(const Gatebits& gatebits);

/// What became of a change.
enum class ChangeResult {
    WRITTEN,
    CHANGED_MEANWHILE,  ///< nothing written: what the operator was shown no longer stands there
    NO_SUCH_LINE,       ///< nothing changed: the file has too few significant lines
    NO_SUCH_FIELD       ///< the value was not written: its line has too few fields
};

/// What an edit makes of a text.
struct Rewrite {
    ChangeResult result;
    /// The new text; nothing when the file stays as it is.
    std::optional<Gatebits> text = std::nullopt;
};

/// `text` in place of significant line n, or that line deleted (DELETION_TOKEN: a blank line stands
/// there until the next rewrite), or `text` as the last line (n = 0). There is a new text even when
/// there is no line n.
Rewrite set_a_line(const Gatebits& gatebits, int n, const std::string& text);

/// A field and its new value.
struct FieldValue {
    int line;
    int field;
    std::string value;
    bool operator==(const FieldValue&) const = default;
};

/// The line with the new value as its field, every field ended by ';', and in the same text the
/// lines of the `further` fields. Text after the last ';' goes. A field one past the last is
/// accepted, but its value is not written. The result is that of `field`; a further one that does
/// not exist is passed over.
Rewrite set_a_field(const Gatebits& gatebits, const FieldValue& field,
                    const std::vector<FieldValue>& further = {});

}  // namespace gatescope
