#include "history/line_diff.h"

#include <algorithm>
#include <vector>

#include "base/filled.h"
#include "history/change_list.h"
#include "messages/history_texts.h"

namespace gatescope {
namespace {

constexpr std::size_t LINES_AROUND = 3;

/// With their newlines.
using Lines = std::vector<std::string_view>;

/// A line that stays (' '), goes ('-') or comes ('+').
struct Step {
    char kind;
    std::string_view line;
};
using Steps = std::vector<Step>;

Lines whole_lines(std::string_view text) {
    Lines lines;
    for (; !text.empty(); text.remove_prefix(lines.back().size())) {
        lines.push_back(text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1));
    }
    return lines;
}

/// As many lines as possible stay. Between them those that go are first.
Steps steps_between(const Lines& old_lines, const Lines& new_lines) {
    const std::size_t rows = old_lines.size();
    const std::size_t columns = new_lines.size();
    // From each pair of places on: how many lines can stay, and whether that is so without the old
    // one.
    std::vector<bool> old_may_go(rows * columns);
    std::vector<std::size_t> below(columns + 1);
    std::vector<std::size_t> here(columns + 1);
    for (std::size_t i = rows; i-- > 0; std::swap(here, below)) {
        for (std::size_t j = columns; j-- > 0;) {
            here[j] =
                old_lines[i] == new_lines[j] ? below[j + 1] + 1 : std::max(below[j], here[j + 1]);
            old_may_go[i * columns + j] = below[j] >= here[j + 1];
        }
    }
    Steps steps;
    Steps come;
    for (std::size_t i = 0, j = 0; i < rows || j < columns;) {
        if (i < rows && j < columns && old_lines[i] == new_lines[j]) {
            steps.insert(steps.end(), come.begin(), come.end());
            come.clear();
            steps.push_back({' ', old_lines[i++]});
            ++j;
        } else if (i < rows && (j == columns || old_may_go[i * columns + j])) {
            steps.push_back({'-', old_lines[i++]});
        } else {
            come.push_back({'+', new_lines[j++]});
        }
    }
    steps.insert(steps.end(), come.begin(), come.end());
    return steps;
}

/// Which steps a diff shows: those that change something, and those around them.
std::vector<bool> steps_shown(const Steps& steps) {
    std::vector<bool> shown(steps.size());
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (steps[i].kind == ' ') continue;
        const std::size_t end = std::min(i + LINES_AROUND + 1, steps.size());
        for (std::size_t j = i - std::min(i, LINES_AROUND); j < end; ++j) shown[j] = true;
    }
    return shown;
}

/// So many lines after so many others.
std::string range(std::size_t before, std::size_t count) {
    const std::string begin = std::to_string(count == 0 ? before : before + 1);
    return count == 1 ? begin : begin + "," + std::to_string(count);
}

}  // namespace

std::string unified_diff(std::string_view old_text, std::string_view new_text,
                         const std::string& old_name, const std::string& new_name) {
    const Steps steps = steps_between(whole_lines(old_text), whole_lines(new_text));
    const std::vector<bool> shown = steps_shown(steps);
    std::string diff;
    std::size_t in_old = 0;
    std::size_t in_new = 0;
    for (std::size_t i = 0; i < steps.size(); ++i, ++in_old, ++in_new) {
        const std::size_t old_before = in_old;
        const std::size_t new_before = in_new;
        std::string lines;
        for (; i < steps.size() && shown[i]; ++i) {
            in_old += steps[i].kind != '+' ? 1U : 0U;
            in_new += steps[i].kind != '-' ? 1U : 0U;
            lines.append(1, steps[i].kind).append(steps[i].line);
            if (!steps[i].line.ends_with('\n')) lines.append(NO_NEWLINE_AT_END);
        }
        if (lines.empty()) continue;
        if (diff.empty()) diff = filled(DIFF_HEAD, old_name.c_str(), new_name.c_str());
        diff += filled(DIFF_HUNK, range(old_before, in_old - old_before).c_str(),
                       range(new_before, in_new - new_before).c_str()) +
                lines;
    }
    return diff;
}

std::string in_colours(std::string_view diff) {
    std::string coloured;
    const Lines lines = whole_lines(diff);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const char kind = i < 2 ? 'h' : lines[i].front();
        const char* colour = kind == 'h'   ? BOLD
                             : kind == '@' ? CYAN
                             : kind == '-' ? RED
                             : kind == '+' ? GREEN
                                           : PLAIN;
        const std::string_view text = lines[i].substr(0, lines[i].size() - 1);
        coloured.append(colour).append(harmless(text)).append(PLAIN).append("\n");
    }
    return coloured;
}

}  // namespace gatescope
