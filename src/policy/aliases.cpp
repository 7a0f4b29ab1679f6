#include "policy/aliases.h"

#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "base/filled.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "messages/alias_texts.h"
#include "messages/environment.h"
#include "messages/policy_texts.h"

namespace gatescope {
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

/// The aliases of a file up to the first faulty alias line.
struct ParsedAliases {
    std::vector<Definition> definitions;
    /// Number of alias lines before a faulty one. A rewrite moves these only, so that the lines
    /// from the faulty one on are kept.
    std::size_t lines = 0;
    /// The message about the faulty line; empty if there is none.
    std::string fault;
};

std::optional<std::string> value_of(const std::string& name,
                                    const std::vector<Definition>& definitions) {
    for (const Definition& alias : definitions) {
        if (alias.name == name) return alias.value;
    }
    return std::nullopt;
}

/// The message about a faulty definition that follows `others`; empty if it is valid.
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

ParsedAliases aliases_in(const std::vector<std::string>& lines) {
    ParsedAliases aliases;
    for (const std::string& line : lines) {
        if (!is_alias_line(line)) continue;
        const std::string text(without_leading_blanks(line));
        const Definition alias = definition_in(text);
        if (!alias.name.empty()) {
            aliases.fault = fault_of(alias, aliases.definitions, text.c_str());
            if (!aliases.fault.empty()) return aliases;
            aliases.definitions.push_back(alias);
        }
        ++aliases.lines;
    }
    return aliases;
}

std::string alias_line(const std::string& name, const std::string& value) {
    return filled(ALIAS_LINE, ALIAS_LOCATER, name.c_str(), value.c_str());
}

/// The alias lines of the new file.
std::vector<std::string> alias_lines_after(const AliasChange& change,
                                           const std::vector<Definition>& definitions) {
    const bool removes = change.mode == AliasMode::REMOVE || change.mode == AliasMode::REMOVE_ALL;
    std::vector<std::string> lines;
    for (const Definition& alias : definitions) {
        const bool is_named = alias.name == change.name;
        if (removes && is_named) continue;
        const bool is_changed = change.mode == AliasMode::CHANGE && is_named;
        lines.push_back(alias_line(alias.name, is_changed ? change.value : alias.value));
    }
    if (change.mode == AliasMode::ADD) lines.push_back(alias_line(change.name, change.value));
    return lines;
}

/// "~name", which the caller passes for REMOVE_REFERENCES.
std::string reference_of(const AliasChange& change) {
    return change.mode == AliasMode::REMOVE_REFERENCES ? change.name : "~" + change.name;
}

/// Removes the references from `line` and returns their number. A blank that ends a reference is
/// removed with it; a ';' also ends the field, and is kept.
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

/// The lines of the file except the first `alias_lines` alias lines, without references if the
/// change removes them.
std::vector<std::string> other_lines_after(const AliasChange& change, const Gatebits& gatebits,
                                           std::size_t alias_lines) {
    const bool removes =
        change.mode == AliasMode::REMOVE_ALL || change.mode == AliasMode::REMOVE_REFERENCES;
    std::vector<std::string> lines;
    std::size_t passed = 0;
    for (const std::string& line : gatebits.lines()) {
        if (is_alias_line(line) && ++passed <= alias_lines) continue;
        lines.push_back(line);
        if (removes && is_significant(line)) {
            cut_references(reference_of(change), &lines.back());
        }
    }
    return lines;
}

int count_references(const std::string& reference, const Gatebits& gatebits) {
    int count = 0;
    for (std::string line : gatebits.lines()) {
        if (is_significant(line)) count += cut_references(reference, &line);
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

}  // namespace

int build_alias_list(const Gatebits& gatebits, Aliases* aliases) {
    const ParsedAliases parsed = aliases_in(gatebits.lines());
    aliases->ALIAS_NAME.fill("");
    aliases->ALIAS.fill("");
    for (std::size_t i = 0; i < parsed.definitions.size(); ++i) {
        aliases->ALIAS_NAME[i] = parsed.definitions[i].name;
        aliases->ALIAS[i] = parsed.definitions[i].value;
        aliases->number_of_aliases = static_cast<std::uint8_t>(i + 1);
    }
    if (!parsed.fault.empty()) advise(parsed.fault);
    return aliases->number_of_aliases;
}

std::vector<std::string> definition_of(const std::string& name, const Gatebits& gatebits) {
    const auto value = value_of(name, aliases_in(gatebits.lines()).definitions);
    return value ? std::vector<std::string>{*value} : std::vector<std::string>();
}

Rewrite add_change_remove_an_alias(const Gatebits& gatebits, const AliasChange& change) {
    const ParsedAliases parsed = aliases_in(gatebits.lines());
    if (change.mode == AliasMode::ADD && parsed.definitions.size() >= MAX_ALIASES) {
        return {ChangeResult::CHANGED_MEANWHILE};
    }
    std::vector<std::string> lines = alias_lines_after(change, parsed.definitions);
    const std::vector<std::string> others = other_lines_after(change, gatebits, parsed.lines);
    lines.insert(lines.end(), others.begin(), others.end());
    return {ChangeResult::WRITTEN, Gatebits(std::move(lines))};
}

std::string report_of_alias_change(const Gatebits& before, const AliasChange& change) {
    const std::string reference = reference_of(change);
    const auto sentence = [&](const ReferenceTexts& texts) {
        return reference_sentence(texts, count_references(reference, before), reference);
    };
    switch (change.mode) {
        case AliasMode::REMOVE:
            return filled(DEFINITION_REMOVED, change.name.c_str()) +
                   sentence(REFERENCES_STILL_EXIST);
        case AliasMode::REMOVE_ALL:
            return filled(DEFINITION_REMOVED, change.name.c_str()) +
                   sentence(REFERENCES_ALSO_REMOVED);
        case AliasMode::REMOVE_REFERENCES:
            return sentence(REFERENCES_REMOVED);
        case AliasMode::CHANGE:
            if (std::getenv(ENV_VERBOSITY) == nullptr) return "";
            return filled(DEFINITION_CHANGED, change.name.c_str()) + sentence(REFERENCES_EFFECTED);
        default:
            return "";
    }
}

}  // namespace gatescope
