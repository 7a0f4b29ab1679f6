#include "policy/aliases.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <vector>

#include "base/filled.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "messages/alias_texts.h"
#include "messages/environment.h"
#include "messages/policy_texts.h"
#include "policy/gatebits_file.h"

namespace {

/// ALIAS_LOCATER, name, value.
constexpr char ALIAS_LINE[] = "%s%s %s";

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

/// The aliases of a file up to the first alias line with a fault.
struct AliasesRead {
    std::vector<Definition> definitions;
    /// Alias lines that they stand for. Lines after a faulty one are not among them, so a rewrite
    /// leaves those where they are instead of losing them.
    std::size_t lines = 0;
    /// What to tell the operator of the faulty line; empty when there is none.
    std::string fault;
};

std::optional<std::string> value_of(const std::string& name,
                                    const std::vector<Definition>& definitions) {
    for (const Definition& alias : definitions) {
        if (alias.name == name) return alias.value;
    }
    return std::nullopt;
}

/// What is wrong with the definition that comes after `others`; empty when nothing.
std::string fault_of(const Definition& alias, const std::vector<Definition>& others,
                     const char* line) {
    if (others.size() >= MAX_ALIASES) return filled(TOO_MANY_ALIASES, MAX_ALIASES, line);
    if (alias.name.size() > MAX_ALIAS_NAME) {
        return filled(ALIAS_NAME_TOO_LONG, MAX_ALIAS_NAME, line);
    }
    if (!holds_only(alias.name.c_str(), VALID_ALIAS_NAME_CHAR)) {
        return filled(ALIAS_NAME_INVALID, line);
    }
    if (value_of(alias.name, others)) return filled(ALIAS_NAME_DUPLICATE, line);
    if (alias.value.size() > MAX_ALIAS_VALUE) {
        return filled(ALIAS_VALUE_TOO_LONG, MAX_ALIAS_VALUE, line);
    }
    return "";
}

AliasesRead aliases_in(const std::vector<std::string>& lines) {
    AliasesRead read;
    for (const std::string& line : lines) {
        if (!is_alias_line(line)) continue;
        const std::string text(without_leading_blanks(line));
        const Definition alias = definition_in(text);
        if (!alias.name.empty()) {
            read.fault = fault_of(alias, read.definitions, text.c_str());
            if (!read.fault.empty()) return read;
            read.definitions.push_back(alias);
        }
        ++read.lines;
    }
    return read;
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

/// What the tables, and so the operator, know of the alias.
std::optional<std::string> value_shown(const std::string& name, const Aliases& aliases) {
    const auto begin = aliases.ALIAS_NAME.begin();
    const auto end = begin + aliases.number_of_aliases;
    const auto found = std::find(begin, end, name);
    if (name.empty() || found == end) return std::nullopt;
    return aliases.ALIAS[static_cast<std::size_t>(found - begin)];
}

/// The alias lines of the new file.
std::vector<std::string> alias_lines_after(const Change& change,
                                           const std::vector<Definition>& definitions) {
    std::vector<std::string> lines;
    for (const Definition& alias : definitions) {
        const bool named = alias.name == change.name;
        if (change.mode == REMOVE_ALIAS && named) continue;
        const bool changed = change.mode == CHANGE_ALIAS && named;
        lines.push_back(alias_line(alias.name, changed ? change.value : alias.value));
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
        const char next = end < line->size() ? (*line)[end] : '\0';
        if (next != ' ' && next != ';') {
            ++at;
            continue;
        }
        rest += line->substr(from, at - from);
        if (next == ';') rest += ';';
        from = at = end + 1;
        ++count;
    }
    *line = rest + line->substr(from);
    return count;
}

/// Appends the lines of the file but the first `alias_lines` alias lines; the number of references
/// found in them.
int append_other_lines(const Change& change, const std::vector<std::string>& file,
                       std::size_t alias_lines, std::vector<std::string>* lines) {
    int count = 0;
    std::size_t passed = 0;
    for (const std::string& line : file) {
        if (is_alias_line(line) && ++passed <= alias_lines) continue;
        std::string kept = line;
        if (is_significant(line) && change.references != References::LEFT_ALONE) {
            count += cut_references(reference_of(change), &kept);
        }
        lines->push_back(change.references == References::REMOVED ? kept : line);
    }
    return count;
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

int build_alias_list(const std::string& gatebits_file, Aliases* aliases) {
    const AliasesRead read = aliases_in(read_gatebits_lines(gatebits_file));
    aliases->ALIAS_NAME.fill("");
    aliases->ALIAS.fill("");
    for (std::size_t i = 0; i < read.definitions.size(); ++i) {
        aliases->ALIAS_NAME[i] = read.definitions[i].name;
        aliases->ALIAS[i] = read.definitions[i].value;
        aliases->number_of_aliases = static_cast<std::uint8_t>(i + 1);
    }
    if (!read.fault.empty()) advise(read.fault);
    return aliases->number_of_aliases;
}

ChangeResult add_change_remove_an_alias(const std::string& gatebits_file, char mode,
                                        const std::string& name, const std::string& value,
                                        const Aliases& shown) {
    const Change change = change_for(mode, name, value);
    int count = 0;
    ChangeResult result = ChangeResult::CHANGED_MEANWHILE;
    change_gatebits_lines(gatebits_file, [&](std::vector<std::string>* lines) {
        const AliasesRead now = aliases_in(*lines);
        if (value_of(name, now.definitions) != value_shown(name, shown)) return false;
        if (mode == ADD_ALIAS && now.definitions.size() >= MAX_ALIASES) return false;
        std::vector<std::string> changed = alias_lines_after(change, now.definitions);
        count = append_other_lines(change, *lines, now.lines, &changed);
        *lines = changed;
        result = ChangeResult::WRITTEN;
        return true;
    });
    if (result != ChangeResult::WRITTEN) return result;
    const std::string report = report_of(change, count);
    if (!report.empty()) advise_wait(report);
    return result;
}
