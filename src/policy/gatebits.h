#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gatescope {

// The text of a gatebits file as a value: its lines, fields and keys, and edits that return another
// text. Files are neither read nor written here. Lines and fields are numbered from 1.

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

/// Fields of the depot, parent and notify lines; LOGGING_FIELD of the depot line only.
inline constexpr int WINDOWS_FIELD = 1;
inline constexpr int UNIX_FIELD = 2;
inline constexpr int LOGGING_FIELD = 3;

/// The field of the other operating system.
constexpr int other_field(int field) {
    return field == WINDOWS_FIELD ? UNIX_FIELD : WINDOWS_FIELD;
}

/// The text of a gatebits file as read, or as returned by an edit. Immutable.
class Gatebits {
  public:
    /// All bytes of a file. Its lines are those that are not empty, up to the first NUL.
    explicit Gatebits(std::string bytes);
    /// The lines of a new file, each cut at its first NUL. An empty one is written as a blank line,
    /// which readers ignore and the next rewrite drops.
    explicit Gatebits(std::vector<std::string> lines);

    /// All bytes; of an edit, the lines, each followed by a newline.
    [[nodiscard]] const std::string& text() const { return text_; }
    /// The lines without their newlines.
    [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }

  private:
    std::string text_;
    std::vector<std::string> lines_;
};

/// A line without its leading blanks and tabs.
std::string_view without_leading_blanks(std::string_view line);

/// Whether the first character of a line that is not a blank or tab exists and is not '#'.
bool is_significant(std::string_view line);

/// Counts significant lines in eight signed bits. The number after 127 is -128, so numbers above
/// 127 address no line. In long files a number occurs again; it addresses the first line that has
/// it.
class LineCounter {
  public:
    /// Counts `line` if it is significant; returns whether it is significant and has number n.
    bool counts_as(int n, std::string_view line);

  private:
    std::int8_t counter_ = 0;
};

/// Significant line n, leading blanks included; nothing if there is none.
std::optional<std::string> get_a_line(const Gatebits& gatebits, int n);

/// Field f of significant line n; nothing if the line or the field does not exist. Text after the
/// last ';' is no field.
std::optional<std::string> get_a_field(const Gatebits& gatebits, int n, int f);

/// The value of a field, or an empty text if the line or the field does not exist.
std::string field_or_empty(const Gatebits& gatebits, int n, int f);

/// The command keys that a line number addresses, in order; the first is key 0.
std::vector<std::string> command_keys(const Gatebits& gatebits);

/// The number of all command keys, with those that no line number addresses.
std::size_t number_of_keys(const Gatebits& gatebits);

enum class ChangeResult {
    WRITTEN,
    CHANGED_MEANWHILE,  ///< nothing written: the file differs from what the operator was shown
    NO_SUCH_LINE,       ///< nothing changed: the file has too few significant lines
    NO_SUCH_FIELD       ///< the value was not written: its line has too few fields
};

/// The result of an edit.
struct Rewrite {
    ChangeResult result;
    /// The new text; nothing if the file is not to be written.
    std::optional<Gatebits> text = std::nullopt;
};

/// Replaces significant line n by `text`, or deletes it (DELETION_TOKEN: leaves a blank line until
/// the next rewrite), or appends `text` (n = 0). The result has a new text even if there is no line
/// n.
Rewrite set_a_line(const Gatebits& gatebits, int n, const std::string& text);

/// A field and its new value.
struct FieldValue {
    int line;
    int field;
    std::string value;
    bool operator==(const FieldValue&) const = default;
};

/// Sets a field and the `further` fields. Their lines are rewritten with a ';' after each field;
/// text after the last ';' is dropped. A field one past the last is accepted, but its value is not
/// written. The result is that of `field`; further fields that do not exist are skipped.
Rewrite set_a_field(const Gatebits& gatebits, const FieldValue& field,
                    const std::vector<FieldValue>& further = {});

}  // namespace gatescope
