#include "history/line_diff.h"

#include <algorithm>
#include <array>
#include <vector>

#include "base/filled.h"
#include "base/text.h"
#include "base/utf8.h"
#include "messages/history_texts.h"

namespace gatescope {
namespace {

constexpr std::size_t CONTEXT_LINES = 3;

/// The first characters of hunk heads, deleted and added lines, and the colours of these and of
/// context lines.
constexpr std::string_view COLOURED = "@-+";
constexpr std::array<const char*, 4> COLOURS = {CYAN, RED, GREEN, PLAIN};

using Lines = std::vector<std::string_view>;

/// The shortest edit: ' ' for each line that is kept, '-' deleted, '+' added; deletions first.
std::string edit_between(const Lines& old_lines, const Lines& new_lines) {
    const std::size_t rows = old_lines.size();
    const std::size_t columns = new_lines.size();
    // The longest common subsequence of the lines from old line i and new line j on: its length, in
    // row i and the row below, and whether there is one without old line i.
    std::vector<bool> can_delete(rows * (columns + 1), true);
    std::vector<std::size_t> below(columns + 1);
    std::vector<std::size_t> row(columns + 1);
    for (std::size_t i = rows; i-- > 0; std::swap(row, below)) {
        for (std::size_t j = columns; j-- > 0;) {
            const bool is_same = old_lines[i] == new_lines[j];
            row[j] = is_same ? below[j + 1] + 1 : std::max(below[j], row[j + 1]);
            can_delete[i * (columns + 1) + j] = below[j] >= row[j + 1];
        }
    }
    std::string edit;
    for (std::size_t i = 0, j = 0; i < rows || j < columns;) {
        const bool is_same = i < rows && j < columns && old_lines[i] == new_lines[j];
        const bool is_deleted = i < rows && can_delete[i * (columns + 1) + j];
        edit += is_same ? ' ' : is_deleted ? '-' : '+';
        i += edit.back() != '+' ? 1U : 0U;
        j += edit.back() != '-' ? 1U : 0U;
    }
    return edit;
}

/// Whether the line of step i is part of a hunk: a change or its context.
bool is_in_hunk(const std::string& edit, std::size_t i) {
    const std::size_t before = std::min(i, CONTEXT_LINES);
    const std::string context = edit.substr(i - before, before + 1 + CONTEXT_LINES);
    return context.find_first_not_of(' ') != std::string::npos;
}

/// The lines from `begin` to before `end`, both from 0, as a hunk's head names them.
std::string range(std::size_t begin, std::size_t end) {
    const std::string first = std::to_string(begin == end ? begin : begin + 1);
    return end - begin == 1 ? first : first + "," + std::to_string(end - begin);
}

}  // namespace

std::string unified_diff(std::string_view old_text, std::string_view new_text,
                         const std::string& head) {
    const Lines old_lines = whole_lines(old_text);
    const Lines new_lines = whole_lines(new_text);
    const std::string edit = edit_between(old_lines, new_lines);
    std::string hunks;
    // The step after a hunk keeps a line.
    for (std::size_t step = 0, i = 0, j = 0; step < edit.size(); ++step, ++i, ++j) {
        const std::size_t old_begin = i;
        const std::size_t new_begin = j;
        std::string hunk;
        for (; step < edit.size() && is_in_hunk(edit, step); ++step) {
            const std::string_view line = edit[step] == '+' ? new_lines[j] : old_lines[i];
            hunk += edit[step] + std::string(line);
            if (!line.ends_with('\n')) hunk += NO_NEWLINE_AT_END;
            i += edit[step] != '+' ? 1U : 0U;
            j += edit[step] != '-' ? 1U : 0U;
        }
        if (hunk.empty()) continue;
        hunks += filled(DIFF_HUNK, range(old_begin, i).c_str(), range(new_begin, j).c_str()) + hunk;
    }
    return hunks.empty() ? "" : head + hunks;
}

std::string for_terminal(std::string_view diff, bool has_colours) {
    std::string shown;
    const Lines lines = whole_lines(diff);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string text = printable(lines[i].substr(0, lines[i].size() - 1));
        const std::string colour =
            i < 2 ? BOLD : COLOURS.at(std::min(COLOURED.find(text.front()), COLOURED.size()));
        shown += (has_colours ? colour + text + PLAIN : text) + '\n';
    }
    return shown;
}

}  // namespace gatescope
