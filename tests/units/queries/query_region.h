#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "base/filled.h"
#include "logs/query_data.h"
#include "queries/options.h"
#include "queries/query_drivers.h"
#include "units/on_stage.h"

namespace gatescope {

/// A test with the region "east", and options without display.
class QueryRegion : public OnStage {
  protected:
    QueryRegion() : OnStage(a_region().with_gatebits("gatewarden;;;east;\n")) {
        // Else messages would be shown in the background, beyond the end of the test.
        ZUL_REMOTE_CLIENT_USER = 1;
        options.selected_display = "n";
    }

    /// Sets the operator's answers to the next text prompts and lists.
    void operator_answers(const std::vector<std::string>& answers) {
        for (const std::string& answer : answers) region.answers({.outfile = answer});
    }

    void command_line_gives_command(const std::string& command) {
        options.command_selected = true;
        options.selected_command = command;
    }
    void command_line_gives_user(const std::string& user) {
        options.user_selected = true;
        options.selected_user = user;
    }
    void command_line_gives_bit(int bit) {
        options.bit_selected = true;
        options.selected_bit = bit;
    }
    void command_line_gives_key(long long key) {
        options.key_selected = true;
        options.selected_key = key;
    }

    /// Writes a log of today's records, given without their time.
    void write_log(const std::vector<std::string>& records) {
        const std::int64_t time = set_time_values().end_of_day_time;
        std::string log;
        for (const std::string& record : records) log += std::to_string(time) + record + "\n";
        region.write_file("depot/log/logging_0.txt", log);
    }

    /// Sets `graph_title`, `filters` and `result` of query 1 to 6 by the options and the operator's
    /// answers; false if a dialog was cancelled.
    bool ask(int number) {
        const auto asked = ask_for_query(number, options, GATEWARDEN_IS);
        if (!asked) return false;
        graph_title = asked->graph_title;
        filters = asked->filters;
        result = get_query_data(record_query(number, GATEWARDEN_IS, filters, set_time_values()),
                                path("depot/log"));
        return true;
    }

    [[nodiscard]] QueriedRegion queried() const {
        return {GATEWARDEN_IS,
                path("depot/log"),
                {"east", region.gatebits_path(), path("depot/query_results"), ""}};
    }

    /// Runs a driver as the main loop does.
    void run(void (*driver)(const Options&, const QueriedRegion&)) {
        printed_by([&] { driver(options, queried()); });
    }

    /// The dialogs since the last call, and those of them that are not messages.
    [[nodiscard]] Dialogs asked() { return region.shown_so_far().dialogs(); }
    [[nodiscard]] Dialogs questions() {
        Dialogs found = asked();
        std::erase_if(found, [](const Dialog& one) { return one.args.front() == "yes_no"; });
        return found;
    }

    Options options;
    int GATEWARDEN_IS = 1;
    std::string graph_title;
    std::array<std::string, 4> filters;
    QueryResult result;
};

}  // namespace gatescope
