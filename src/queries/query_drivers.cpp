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
#include "policy/edition.h"
#include "queries/parameters.h"
#include "report/graph.h"

namespace {

constexpr auto COMMAND = Parameter::COMMAND;
constexpr auto USER = Parameter::USER;
constexpr auto BIT = Parameter::BIT;
constexpr auto KEY = Parameter::KEY;

const std::array<std::string*, 4> FILTER_SLOTS = {&GLOBAL_TEST_STRING_1, &GLOBAL_TEST_STRING_2,
                                                  &GLOBAL_TEST_STRING_3, &GLOBAL_TEST_STRING_4};

const char* any_command() {
    return ANY_COMMAND;
}
const char* bit_records() {
    return BIT_RECORDS;
}
const char* key_denials() {
    return GATEWARDEN_IS == 1 ? KEY_DENIALS : CPD_DENIALS;
}

// How the titles begin; `subject` is the value of the parameter that the query is about.

std::string title_1(const std::string& subject) {
    return subject == ALL ? TITLE_Q1_ALL : filled(TITLE_Q1_ONE, subject.c_str());
}

std::string title_2(const std::string& subject) {
    if (subject == ALL) return TITLE_Q2_ALL;
    const int bit = static_cast<int>(leading_number(subject.c_str()));
    return filled(TITLE_Q2_ONE, bit, GATEWARDEN_BITS_DESC.at(static_cast<std::size_t>(bit)));
}

std::string title_3(const std::string& subject) {
    const bool lite = GATEWARDEN_IS == 0;
    if (subject == ALL) return lite ? TITLE_Q3_LITE_ALL : TITLE_Q3_ALL;
    const long key = leading_number(subject.c_str());
    return lite ? filled(TITLE_Q3_LITE_ONE, key) : filled(TITLE_Q3_ONE, key);
}

std::string title_4(const std::string& /*subject*/) {
    return TITLE_Q4;
}

std::string title_5(const std::string& /*subject*/) {
    return GATEWARDEN_IS == 0 ? TITLE_Q5_LITE : TITLE_Q5;
}

std::string title_6(const std::string& subject) {
    return subject == ALL ? TITLE_Q6_ALL : filled(TITLE_Q6_ONE, subject.c_str());
}

struct Query {
    int number;
    std::string (*title)(const std::string& subject);
    /// Whether the first parameter is the subject, which the title begins with.
    bool has_subject;
    /// In the order in which they are asked for.
    std::array<Parameter, 3> parameters;
    std::size_t number_of_parameters;
    /// What fills the first filter slot, and the slot (from 0) of the first parameter; where they
    /// are the same, a value takes the place of the fixed filter.
    const char* (*fixed_filter)();
    std::size_t first_parameter_slot;

    [[nodiscard]] std::span<const Parameter> asked() const {
        return {parameters.data(), number_of_parameters};
    }
};

constexpr std::array<Query, 6> QUERIES = {{
    {1, title_1, true, {COMMAND, USER}, 2, any_command, 0},
    {2, title_2, true, {BIT, USER}, 2, bit_records, 1},
    {3, title_3, true, {KEY, USER, COMMAND}, 3, key_denials, 1},
    {4, title_4, false, {USER}, 1, bit_records, 1},
    {5, title_5, false, {USER, COMMAND}, 2, key_denials, 1},
    {6, title_6, true, {COMMAND, USER}, 2, any_command, 0},
}};

/// The values of the query's parameters; empty when the operator cancelled one.
std::vector<std::string> ask_for_values(const Query& query, const Options& options) {
    std::vector<std::string> values;
    for (const Parameter parameter : query.asked()) {
        const auto value = value_of(parameter, options);
        if (!value) return {};
        values.push_back(*value);
    }
    return values;
}

/// A slot without a filter keeps the one that every record passes.
void set_filters(const Query& query, const std::vector<std::string>& values) {
    *FILTER_SLOTS[0] = query.fixed_filter();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string filter = filter_for(query.asked()[i], values[i]);
        if (!filter.empty()) *FILTER_SLOTS.at(query.first_parameter_slot + i) = filter;
    }
}

std::string title_part(Parameter parameter, const std::string& value) {
    if (parameter == USER) {
        return value == ALL ? TITLE_FOR_ALL_USERS : filled(TITLE_FOR_USER, value.c_str());
    }
    return value == ALL ? TITLE_FOR_ALL_COMMANDS : filled(TITLE_FOR_COMMAND, value.c_str());
}

std::string title_of(const Query& query, const std::vector<std::string>& values) {
    std::string title = query.title(values.front());
    for (std::size_t i = query.has_subject ? 1 : 0; i < values.size(); ++i) {
        title += title_part(query.asked()[i], values[i]);
    }
    return title;
}

void run(const Query& query, const Options& options) {
    const std::vector<std::string> values = ask_for_values(query, options);
    if (values.empty()) return;
    set_filters(query, values);
    graph_title = title_of(query, values);
    get_query_data(query.number);
    Make_Graph(query.number, options.displays());
}

}  // namespace

void Q_1(const Options& options) {
    run(QUERIES[0], options);
}
void Q_2(const Options& options) {
    run(QUERIES[1], options);
}
void Q_3(const Options& options) {
    run(QUERIES[2], options);
}
void Q_4(const Options& options) {
    run(QUERIES[3], options);
}
void Q_5(const Options& options) {
    run(QUERIES[4], options);
}
void Q_6(const Options& options) {
    run(QUERIES[5], options);
}

int Q_during_install(bool during_install) {
    if (!during_install) return 0;
    advise_wait(NO_QUERIES_DURING_INSTALL);
    return 1;
}
