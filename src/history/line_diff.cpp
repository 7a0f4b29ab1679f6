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

constexpr std::size_t LINES_AROUND = 3;

/// By what a line begins with, and of all others.
constexpr std::string_view KINDS = "@-+";
constexpr std::array<const char*, 4> COLOURS = {CYAN, RED, GREEN, PLAIN};

using Lines = std::vector<std::string_view>;

/// Lines that stay, go or come, each after its ' ', '-' or '+'.
using Steps = std::vector<std::string>;

std::string step(char kind, std::string_view line) {
    return kind + std::string(line) + (line.ends_with('\n') ? "" : NO_NEWLINE_AT_END);
}

/// As many lines as possible stay. Between them those that go are first.
Steps steps_between(const Lines& old_lines, const Lines& new_lines) {
    const std::size_t rows = old_lines.size();
    const std::size_t columns = new_lines.size();
    // From each pair of places on: how many lines can stay, and whether that is so without the old
    // one.
    std::vector<bool> old_may_go(rows * (columns + 1), true);
    std::vector<std::size_t> below(columns + 1);
    std::vector<std::size_t> here(columns + 1);
    for (std::size_t i = rows; i-- > 0; std::swap(here, below)) {
        for (std::size_t j = columns; j-- > 0;) {
            const bool same = old_lines[i] == new_lines[j];
            here[j] = same ? below[j + 1] + 1 : std::max(below[j], here[j + 1]);
            old_may_go[i * (columns + 1) + j] = below[j] >= here[j + 1];
        }
    }
    Steps steps;
    for (std::size_t i = 0, j = 0; i < rows || j < columns;) {
        if (i < rows && j < columns && old_lines[i] == new_lines[j]) {
            steps.push_back(step(' ', old_lines[i++]));
            ++j;
        } else if (i < rows && old_may_go[i * (columns + 1) + j]) {
            steps.push_back(step('-', old_lines[i++]));
        } else {
            steps.push_back(step('+', new_lines[j++]));
        }
    }
    return steps;
}

/// Whether a diff shows it: it changes something, or is near a step that does.
bool is_shown(const Steps& steps, std::size_t i) {
    const std::size_t end = std::min(i + LINES_AROUND + 1, steps.size());
    for (std::size_t near = i - std::min(i, LINES_AROUND); near < end; ++near) {
        if (steps[near].front() != ' ') return true;
    }
    return false;
}

/// So many lines after so many others.
std::string range(std::size_t before, std::size_t count) {
    const std::string begin = std::to_string(count == 0 ? before : before + 1);
    return count == 1 ? begin : begin + "," + std::to_string(count);
}

}  // namespace

std::string unified_diff(std::string_view old_text, std::string_view new_text,
                         const std::string& head) {
    const Steps steps = steps_between(whole_lines(old_text), whole_lines(new_text));
    std::string hunks;
    std::size_t old_before = 0;
    std::size_t new_before = 0;
    // Between two hunks there are lines that stay.
    for (std::size_t i = 0; i < steps.size(); ++i, ++old_before, ++new_before) {
        std::string lines;
        std::size_t in_old = 0;
        std::size_t in_new = 0;
        for (; i < steps.size() && is_shown(steps, i); ++i) {
            in_old += steps[i].front() != '+' ? 1U : 0U;
            in_new += steps[i].front() != '-' ? 1U : 0U;
            lines += steps[i];
        }
        if (lines.empty()) continue;
        hunks += filled(DIFF_HUNK, range(old_before, in_old).c_str(),
                        range(new_before, in_new).c_str()) +
                 lines;
        old_before += in_old;
        new_before += in_new;
    }
    return hunks.empty() ? "" : head + hunks;
}

std::string for_terminal(std::string_view diff, bool has_colours) {
    std::string shown;
    const Lines lines = whole_lines(diff);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string text = harmless(lines[i].substr(0, lines[i].size() - 1));
        const std::string colour =
            i < 2 ? BOLD : COLOURS.at(std::min(KINDS.find(text.front()), KINDS.size()));
        shown += (has_colours ? colour + text + PLAIN : text) + '\n';
    }
    return shown;
}

}  // namespace gatescope
