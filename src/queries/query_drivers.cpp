#include "queries/query_drivers.h"

#include <array>
#include <span>
#include <string>
#include <vector>

#include "base/filled.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "logs/query_data.h"
#include "messages/bit_names.h"
#include "messages/query_texts.h"
#include "policy/gatebits_file.h"
#include "queries/parameters.h"
#include "report/graph.h"
#include "report/page.h"

namespace gatescope {
namespace {

constexpr auto COMMAND = Parameter::COMMAND;
constexpr auto USER = Parameter::USER;
constexpr auto BIT = Parameter::BIT;
constexpr auto KEY = Parameter::KEY;

// The fixed filters of the queries.

const char* any_command(int /*edition*/) {
    return "[";
}
const char* bit_records(int /*edition*/) {
    return ":B:";
}
const char* key_denials(int edition) {
    return edition == 1 ? "]K<" : "]C<";
}

// The beginnings of the titles; `subject` is the value of the query's first parameter.

std::string title_1(const std::string& subject, int /*edition*/) {
    return subject == ALL ? TITLE_Q1_ALL : filled(TITLE_Q1_ONE, subject.c_str());
}

std::string title_2(const std::string& subject, int /*edition*/) {
    if (subject == ALL) return TITLE_Q2_ALL;
    const int bit = static_cast<int>(leading_number(subject.c_str()));
    return filled(TITLE_Q2_ONE, bit, GATEWARDEN_BITS_DESC.at(static_cast<std::size_t>(bit)));
}

std::string title_3(const std::string& subject, int edition) {
    const bool lite = edition == 0;
    if (subject == ALL) return lite ? TITLE_Q3_LITE_ALL : TITLE_Q3_ALL;
    const long long key = leading_number(subject.c_str());
    return lite ? filled(TITLE_Q3_LITE_ONE, key) : filled(TITLE_Q3_ONE, key);
}

std::string title_4(const std::string& /*subject*/, int /*edition*/) {
    return TITLE_Q4;
}

std::string title_5(const std::string& /*subject*/, int edition) {
    return edition == 0 ? TITLE_Q5_LITE : TITLE_Q5;
}

std::string title_6(const std::string& subject, int /*edition*/) {
    return subject == ALL ? TITLE_Q6_ALL : filled(TITLE_Q6_ONE, subject.c_str());
}

struct Query {
    std::string (*title)(const std::string& subject, int edition);
    /// Whether the beginning of the title names the first parameter.
    bool has_subject;
    /// In the order in which they are asked for.
    std::array<Parameter, 3> all_parameters;
    std::size_t number_of_parameters;
    /// The filter in slot 0, and the slot of the first parameter. If that is 0 too, the filter of a
    /// value replaces the fixed one.
    const char* (*fixed_filter)(int edition);
    std::size_t first_parameter_slot;

    [[nodiscard]] std::span<const Parameter> parameters() const {
        return {all_parameters.data(), number_of_parameters};
    }
};

/// In the order of their numbers.
constexpr std::array<Query, 6> QUERIES = {{
    {title_1, true, {COMMAND, USER}, 2, any_command, 0},
    {title_2, true, {BIT, USER}, 2, bit_records, 1},
    {title_3, true, {KEY, USER, COMMAND}, 3, key_denials, 1},
    {title_4, false, {USER}, 1, bit_records, 1},
    {title_5, false, {USER, COMMAND}, 2, key_denials, 1},
    {title_6, true, {COMMAND, USER}, 2, any_command, 0},
}};

/// The values of the query's parameters; empty if the operator cancelled a dialog.
std::vector<std::string> ask_for_values(const Query& query, const Options& options, int edition) {
    std::vector<std::string> values;
    for (const Parameter parameter : query.parameters()) {
        const auto value = value_of(parameter, options, edition);
        if (!value) return {};
        values.push_back(*value);
    }
    return values;
}

std::array<std::string, 4> filters_of(const Query& query, const std::vector<std::string>& values,
                                      int edition) {
    std::array<std::string, 4> filters;
    filters.fill(ANY_LOG_ENTRY);
    filters[0] = query.fixed_filter(edition);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string filter = filter_for(query.parameters()[i], values[i]);
        if (!filter.empty()) filters.at(query.first_parameter_slot + i) = filter;
    }
    return filters;
}

std::string title_part(Parameter parameter, const std::string& value) {
    if (parameter == USER) {
        return value == ALL ? TITLE_FOR_ALL_USERS : filled(TITLE_FOR_USER, value.c_str());
    }
    return value == ALL ? TITLE_FOR_ALL_COMMANDS : filled(TITLE_FOR_COMMAND, value.c_str());
}

/// The heading of the page; special characters of HTML in the values are escaped.
std::string title_of(const Query& query, std::vector<std::string> values, int edition) {
    for (std::string& value : values) value = text_in_page(value);
    std::string title = query.title(values.front(), edition);
    for (std::size_t i = query.has_subject ? 1 : 0; i < values.size(); ++i) {
        title += title_part(query.parameters()[i], values[i]);
    }
    return title;
}

/// The lines of the command keys up to `highest_key`.
KeyLines key_lines(const std::string& gatebits_file, int highest_key) {
    if (highest_key < 1) return {};
    const Gatebits gatebits = read_gatebits(gatebits_file);
    KeyLines lines;
    for (int key = 1; key <= highest_key; ++key) {
        lines.push_back(get_a_line(gatebits, FIRST_KEY_LINE + key - 1));
    }
    return lines;
}

/// Asks for the parameters, counts the records, and makes and shows the page.
void run(int number, const Options& options, const QueriedRegion& region) {
    const auto asked = ask_for_query(number, options, region.edition);
    if (!asked) return;
    const RecordQuery query =
        record_query(number, region.edition, asked->filters, set_time_values());
    const QueryResult result = get_query_data(query, region.logging_dir);
    for (const std::string& advice : result.advice) advise(advice);
    const KeyLines keys =
        key_lines(region.page.ENTERPRIZE_PERMISSION_FILE, result.highest_key_read);
    Make_Graph({asked->graph_title, result, keys}, region.page, options.displays());
}

}  // namespace

std::optional<AskedQuery> ask_for_query(int number, const Options& options, int edition) {
    const Query& query = QUERIES.at(static_cast<std::size_t>(number) - 1);
    const std::vector<std::string> values = ask_for_values(query, options, edition);
    if (values.empty()) return std::nullopt;
    return AskedQuery{filters_of(query, values, edition), title_of(query, values, edition)};
}

void Q_1(const Options& options, const QueriedRegion& region) {
    run(1, options, region);
}
void Q_2(const Options& options, const QueriedRegion& region) {
    run(2, options, region);
}
void Q_3(const Options& options, const QueriedRegion& region) {
    run(3, options, region);
}
void Q_4(const Options& options, const QueriedRegion& region) {
    run(4, options, region);
}
void Q_5(const Options& options, const QueriedRegion& region) {
    run(5, options, region);
}
void Q_6(const Options& options, const QueriedRegion& region) {
    run(6, options, region);
}

bool Q_during_install(bool during_install) {
    if (!during_install) return false;
    advise_wait(NO_QUERIES_DURING_INSTALL);
    return true;
}

}  // namespace gatescope
