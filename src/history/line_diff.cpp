#include "history/line_diff.h"

#include <algorithm>
#include <span>
#include <vector>

#include "base/filled.h"
#include "messages/history_texts.h"

namespace {

constexpr std::ptrdiff_t LINES_AROUND = 3;
/// Where more pairs of lines than this would have to be compared (thousands of lines that all
/// differ), all of the old ones go and all of the new ones come.
constexpr std::size_t MOST_PAIRS = 25'000'000;

/// With their newlines.
using Lines = std::vector<std::string_view>;
using SomeLines = std::span<const std::string_view>;

/// A line that stays (' '), goes ('-') or comes ('+').
struct Step {
    char kind;
    std::string_view line;
};
using Steps = std::vector<Step>;

Lines whole_lines(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        lines.push_back(text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1));
        text.remove_prefix(lines.back().size());
    }
    return lines;
}

void add_steps(char kind, SomeLines lines, Steps* steps) {
    for (const std::string_view line : lines) steps->push_back({kind, line});
}

/// As few lines as possible go and come. Of each change those that go are first.
void add_fewest_steps(SomeLines old_lines, SomeLines new_lines, Steps* steps) {
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
    std::size_t i = 0;
    std::size_t j = 0;
    std::size_t come_from = 0;
    while (i < rows && j < columns) {
        if (old_lines[i] == new_lines[j]) {
            add_steps('+', new_lines.subspan(come_from, j - come_from), steps);
            come_from = ++j;
            steps->push_back({' ', old_lines[i++]});
        } else if (old_may_go[i * columns + j]) {
            steps->push_back({'-', old_lines[i++]});
        } else {
            ++j;
        }
    }
    add_steps('-', old_lines.subspan(i), steps);
    add_steps('+', new_lines.subspan(come_from), steps);
}

Steps steps_between(const Lines& old_lines, const Lines& new_lines) {
    const auto first =
        std::mismatch(old_lines.begin(), old_lines.end(), new_lines.begin(), new_lines.end());
    const auto last = std::mismatch(old_lines.rbegin(), std::reverse_iterator(first.first),
                                    new_lines.rbegin(), std::reverse_iterator(first.second));
    const SomeLines old_part(first.first, last.first.base());
    const SomeLines new_part(first.second, last.second.base());
    Steps steps;
    add_steps(' ', {old_lines.begin(), first.first}, &steps);
    if (new_part.empty() || old_part.size() <= MOST_PAIRS / new_part.size()) {
        add_fewest_steps(old_part, new_part, &steps);
    } else {
        add_steps('-', old_part, &steps);
        add_steps('+', new_part, &steps);
    }
    add_steps(' ', {last.first.base(), old_lines.end()}, &steps);
    return steps;
}

/// The lines of one of the two texts that a hunk shows.
struct Range {
    std::size_t before = 0;
    std::size_t count = 0;
};

std::string as_text(const Range& range) {
    const std::string begin = std::to_string(range.count == 0 ? range.before : range.before + 1);
    return range.count == 1 ? begin : begin + "," + std::to_string(range.count);
}

}  // namespace

std::string unified_diff(std::string_view old_text, std::string_view new_text,
                         const std::string& old_name, const std::string& new_name) {
    const Steps steps = steps_between(whole_lines(old_text), whole_lines(new_text));
    const auto changes = [](const Step& step) { return step.kind != ' '; };
    std::string diff;
    Range in_old;
    Range in_new;
    for (auto done = steps.begin();;) {
        const auto first = std::find_if(done, steps.end(), changes);
        if (first == steps.end()) return diff;
        auto last = first;
        for (auto at = first; at != steps.end() && at - last <= 2 * LINES_AROUND + 1; ++at) {
            if (changes(*at)) last = at;
        }
        const auto skipped = std::max<std::ptrdiff_t>(first - done - LINES_AROUND, 0);
        const auto end = last + 1 + std::min(steps.end() - last - 1, LINES_AROUND);
        in_old = {in_old.before + in_old.count + static_cast<std::size_t>(skipped)};
        in_new = {in_new.before + in_new.count + static_cast<std::size_t>(skipped)};
        std::string lines;
        for (auto at = done + skipped; at != end; ++at) {
            in_old.count += at->kind != '+' ? 1U : 0U;
            in_new.count += at->kind != '-' ? 1U : 0U;
            lines.append(1, at->kind).append(at->line);
            if (!at->line.ends_with('\n')) lines.append(NO_NEWLINE_AT_END);
        }
        if (diff.empty()) diff = filled(DIFF_HEAD, old_name.c_str(), new_name.c_str());
        diff += filled(DIFF_HUNK, as_text(in_old).c_str(), as_text(in_new).c_str()) + lines;
        done = end;
    }
}

std::string in_colours(std::string_view diff) {
    std::string coloured;
    int number = 0;
    for (const std::string_view line : whole_lines(diff)) {
        const char kind = line.front();
        const char* colour = ++number <= 2 ? BOLD
                             : kind == '@' ? CYAN
                             : kind == '-' ? RED
                             : kind == '+' ? GREEN
                                           : "";
        coloured.append(colour).append(line.substr(0, line.find('\n')));
        coloured.append(*colour != '\0' ? PLAIN : "").append("\n");
    }
    return coloured;
}
