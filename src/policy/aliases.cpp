#include "policy/aliases.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "base/filled.h"
#include "base/process_end.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "messages/alias_texts.h"
#include "messages/environment.h"
#include "messages/policy_texts.h"
#include "policy/gatebits_file.h"

std::array<std::string, MAX_ALIASES> ALIAS_NAME;
std::array<std::string, MAX_ALIASES> ALIAS;
std::uint8_t number_of_aliases = 0;

namespace {

/// Alias lines of the file that the tables stand for. Lines behind a faulty one are not among
/// them, so a rewrite leaves those where they are instead of losing them.
std::size_t alias_lines_read = 0;

bool is_alias_line(std::string_view line) {
    return without_leading_blanks(line).starts_with(ALIAS_LOCATER);
}

struct Definition {
    std::string name;
    std::string value;
};

Definition definition_in(std::string_view line) {
    const std::string words = words_joined(line.substr(std::string_view(ALIAS_LOCATER).size()));
    const auto blank = words.find(' ');
    if (blank == std::string::npos) return {words, ""};
    return {words.substr(0, blank), words.substr(blank + 1)};
}

bool is_read_already(const std::string& name, int count) {
    const auto end = ALIAS_NAME.begin() + count;
    return std::find(ALIAS_NAME.begin(), end, name) != end;
}

/// What is wrong with the definition when `count` others were read before it; empty when nothing.
std::string fault_of(const Definition& alias, int count, const char* line) {
    if (count >= MAX_ALIASES) return filled(TOO_MANY_ALIASES, MAX_ALIASES, line);
    if (alias.name.size() > MAX_ALIAS_NAME) {
        return filled(ALIAS_NAME_TOO_LONG, MAX_ALIAS_NAME, line);
    }
    if (!healthy(alias.name.c_str(), VALID_ALIAS_NAME_CHAR)) {
        return filled(ALIAS_NAME_INVALID, line);
    }
    if (is_read_already(alias.name, count)) return filled(ALIAS_NAME_DUPLICATE, line);
    if (alias.value.size() > MAX_ALIAS_VALUE) {
        return filled(ALIAS_VALUE_TOO_LONG, MAX_ALIAS_VALUE, line);
    }
    return "";
}

/// What a mode does with the references to its alias.
enum class References { LEFT_ALONE, COUNTED, REMOVED };

struct Change {
    char mode;
    std::string name;
    std::string value;
    References references;
};

/// The change that the arguments ask for; gripes for an unknown mode.
Change change_for(char mode, const std::string& name, const std::string& value) {
    switch (mode) {
        case ADD_ALIAS:
            return {mode, name, value, References::LEFT_ALONE};
        case CHANGE_ALIAS:
            return {mode, name, value, References::COUNTED};
        case REMOVE_ALIAS:
            return {mode, name, value,
                    value == REFERENCES_TOO ? References::REMOVED : References::COUNTED};
        case REMOVE_ALIAS_REFERENCES:
            return {mode, name, value, References::REMOVED};
        default:
            gripe_uncoded("add_change_remove_an_alias");
    }
}

std::string alias_line(const std::string& name, const std::string& value) {
    return filled(ALIAS_LINE, ALIAS_LOCATER, name.c_str(), value.c_str());
}

/// The alias lines of the new file.
std::vector<std::string> alias_lines_after(const Change& change) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < number_of_aliases; ++i) {
        const bool named = ALIAS_NAME[i] == change.name;
        if (ALIAS_NAME[i].empty() || (change.mode == REMOVE_ALIAS && named)) continue;
        const bool changed = change.mode == CHANGE_ALIAS && named;
        lines.push_back(alias_line(ALIAS_NAME[i], changed ? change.value : ALIAS[i]));
    }
    if (change.mode == ADD_ALIAS) lines.push_back(alias_line(change.name, change.value));
    return lines;
}

/// "~name": in mode REMOVE_ALIAS_REFERENCES the caller's text is that already.
std::string reference_of(const Change& change) {
    return change.mode == REMOVE_ALIAS_REFERENCES ? change.name : "~" + change.name;
}

/// Counts the references in `line` and cuts them out of it. A reference goes with the blank that
/// ends it; a ';' that ends it also ends the field, and stays.
int cut_references(const std::string& reference, std::string* line) {
    int count = 0;
    std::string rest;
    std::size_t from = 0;
    for (std::size_t at = line->find(reference); at != std::string::npos;
         at = line->find(reference, at)) {
        const std::size_t end = at + reference.size();
        const char behind = end < line->size() ? (*line)[end] : '\0';
        if (behind != ' ' && behind != ';') {
            ++at;
            continue;
        }
        rest += line->substr(from, at - from);
        if (behind == ';') rest += ';';
        from = at = end + 1;
        ++count;
    }
    *line = rest + line->substr(from);
    return count;
}

/// The lines behind the alias lines of the new file; `*count` is the number of references found.
std::vector<std::string> other_lines_after(const Change& change, int* count) {
    std::vector<std::string> lines;
    std::size_t alias_lines = 0;
    for (const std::string& line : read_gatebits_lines()) {
        if (is_alias_line(line) && ++alias_lines <= alias_lines_read) continue;
        std::string kept = line;
        if (is_significant(line) && change.references != References::LEFT_ALONE) {
            *count += cut_references(reference_of(change), &kept);
        }
        lines.push_back(change.references == References::REMOVED ? kept : line);
    }
    return lines;
}

std::string reference_sentence(const ReferenceTexts& texts, int count,
                               const std::string& reference) {
    const char* tail = count == 0 ? texts.none : count == 1 ? texts.one : texts.several;
    if (tail == nullptr) return "";
    const std::string number = count == 0 ? "No" : std::to_string(count);
    return filled(REFERENCE_SENTENCE, texts.lead, number.c_str(), texts.adjective,
                  (reference + " ").c_str(), tail);
}

/// What the operator is told; empty when nothing.
std::string report_of(const Change& change, int count) {
    const std::string reference = reference_of(change);
    switch (change.mode) {
        case REMOVE_ALIAS:
            return filled(DEFINITION_REMOVED, change.name.c_str()) +
                   reference_sentence(change.references == References::REMOVED
                                          ? REFERENCES_ALSO_REMOVED
                                          : REFERENCES_STILL_EXIST,
                                      count, reference);
        case REMOVE_ALIAS_REFERENCES:
            return reference_sentence(REFERENCES_REMOVED, count, reference);
        case CHANGE_ALIAS:
            if (std::getenv(ENV_VERBOSITY) == nullptr) return "";
            return filled(DEFINITION_CHANGED, change.name.c_str()) +
                   reference_sentence(REFERENCES_EFFECTED, count, reference);
        default:
            return "";
    }
}

}  // namespace

int build_alias_list() {
    ALIAS_NAME.fill("");
    ALIAS.fill("");
    alias_lines_read = 0;
    int count = 0;
    for (const std::string& line : read_gatebits_lines()) {
        if (!is_alias_line(line)) continue;
        const std::string text(without_leading_blanks(line));
        const Definition alias = definition_in(text);
        if (!alias.name.empty()) {
            const std::string fault = fault_of(alias, count, text.c_str());
            if (!fault.empty()) {
                advise(fault);
                break;
            }
            ALIAS_NAME[static_cast<std::size_t>(count)] = alias.name;
            ALIAS[static_cast<std::size_t>(count)] = alias.value;
            number_of_aliases = static_cast<std::uint8_t>(++count);
        }
        ++alias_lines_read;
    }
    return number_of_aliases;
}

int add_change_remove_an_alias(char mode, const std::string& name, const std::string& value) {
    const Change change = change_for(mode, name, value);
    int count = 0;
    std::vector<std::string> lines = alias_lines_after(change);
    const std::vector<std::string> others = other_lines_after(change, &count);
    lines.insert(lines.end(), others.begin(), others.end());
    write_gatebits_lines(lines);
    TMSG = report_of(change, count);
    if (!TMSG.empty()) advise_wait(TMSG);
    return 0;
}
