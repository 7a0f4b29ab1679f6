#include "policy/gatebits.h"

#include <algorithm>
#include <utility>

#include "base/filled.h"
#include "base/text.h"

namespace gatescope {
namespace {

std::vector<std::string> lines_of(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        if (!line.empty()) lines.emplace_back(line);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines;
}

std::string text_of(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text.append(c_text(line)) += '\n';
    return text;
}

/// The first line with a number: the counter may reach it again. The end if there is none.
template <typename Lines>
auto line_numbered(int n, Lines& lines) {
    LineCounter counter;
    return std::find_if(lines.begin(), lines.end(),
                        [&](const std::string& line) { return counter.counts_as(n, line); });
}

/// Whether the line ends in an alias reference. That needs a blank before the ';', which does not
/// end a reference for the policy engine.
bool ends_in_a_reference(const std::string& line) {
    const auto tilde = line.rfind('~');
    if (tilde == std::string::npos) return false;
    const auto blank = line.rfind(' ');
    return blank == std::string::npos || tilde > blank;
}

/// The line with these fields, and the new value.
std::string rebuilt_line(const std::vector<std::string>& fields, const FieldValue& changed) {
    std::string rebuilt;
    int number = 1;
    for (const std::string& field : fields) {
        rebuilt += number++ == changed.field ? std::string(c_text(changed.value)) : field;
        if (ends_in_a_reference(rebuilt)) rebuilt += ' ';
        rebuilt += ';';
    }
    return rebuilt;
}

/// Rebuilds the line of the field. Sets `*is_rewritten` if it exists.
ChangeResult change_field(const FieldValue& changed, std::vector<std::string>* lines,
                          bool* is_rewritten) {
    const auto line = line_numbered(changed.line, *lines);
    if (line == lines->end()) return ChangeResult::NO_SUCH_LINE;
    const std::vector<std::string> fields = terminated_fields(*line);
    const auto field = static_cast<std::size_t>(changed.field);
    // A field one past the last is accepted: its line is rewritten without the value.
    if (fields.empty() || field > fields.size() + 1) return ChangeResult::NO_SUCH_FIELD;
    *line = rebuilt_line(fields, changed);
    *is_rewritten = true;
    return field > fields.size() ? ChangeResult::NO_SUCH_FIELD : ChangeResult::WRITTEN;
}

}  // namespace

Gatebits::Gatebits(std::string bytes) : text_(std::move(bytes)), lines_(lines_of(c_text(text_))) {}

Gatebits::Gatebits(std::vector<std::string> lines)
    : text_(text_of(lines)), lines_(std::move(lines)) {}

std::string_view without_leading_blanks(std::string_view line) {
    const auto first = line.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string_view() : line.substr(first);
}

bool is_significant(std::string_view line) {
    const std::string_view text = without_leading_blanks(line);
    return !text.empty() && text.front() != '#';
}

bool LineCounter::counts_as(int n, std::string_view line) {
    if (!is_significant(line)) return false;
    counter_ = static_cast<std::int8_t>(static_cast<std::uint8_t>(counter_) + 1);
    return counter_ == n;
}

std::optional<std::string> get_a_line(const Gatebits& gatebits, int n) {
    const auto line = line_numbered(n, gatebits.lines());
    if (line == gatebits.lines().end()) return std::nullopt;
    return *line;
}

std::optional<std::string> get_a_field(const Gatebits& gatebits, int n, int f) {
    const auto line = get_a_line(gatebits, n);
    if (!line) return std::nullopt;
    std::vector<std::string> fields = terminated_fields(*line);
    if (f < 1 || static_cast<std::size_t>(f) > fields.size()) return std::nullopt;
    return std::move(fields[static_cast<std::size_t>(f) - 1]);
}

std::string field_or_empty(const Gatebits& gatebits, int n, int f) {
    return get_a_field(gatebits, n, f).value_or("");
}

std::vector<std::string> command_keys(const Gatebits& gatebits) {
    std::vector<std::string> keys;
    while (auto key = get_a_line(gatebits, FIRST_KEY_LINE + static_cast<int>(keys.size()))) {
        keys.push_back(std::move(*key));
    }
    return keys;
}

std::size_t number_of_keys(const Gatebits& gatebits) {
    const auto& lines = gatebits.lines();
    const auto significant = std::count_if(lines.begin(), lines.end(), is_significant);
    return significant < FIRST_KEY_LINE
               ? 0
               : static_cast<std::size_t>(significant - (FIRST_KEY_LINE - 1));
}

Rewrite set_a_line(const Gatebits& gatebits, int n, const std::string& text) {
    std::vector<std::string> lines = gatebits.lines();
    ChangeResult result = ChangeResult::WRITTEN;
    if (n == 0) {
        lines.push_back(text);
    } else if (const auto line = line_numbered(n, lines); line == lines.end()) {
        result = ChangeResult::NO_SUCH_LINE;
    } else {
        *line = text == DELETION_TOKEN ? "" : text;
    }
    return {result, Gatebits(std::move(lines))};
}

Rewrite set_a_field(const Gatebits& gatebits, const FieldValue& field,
                    const std::vector<FieldValue>& further) {
    std::vector<std::string> lines = gatebits.lines();
    bool is_rewritten = false;
    const ChangeResult result = change_field(field, &lines, &is_rewritten);
    for (const FieldValue& one : further) change_field(one, &lines, &is_rewritten);
    if (!is_rewritten || result == ChangeResult::NO_SUCH_LINE) return {result};
    return {result, Gatebits(std::move(lines))};
}

}  // namespace gatescope
