#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "base/filled.h"
#include "base/options.h"
#include "base/run_identity.h"
#include "dialog/messages.h"
#include "logs/query_data.h"
#include "policy/gatebits_file.h"
#include "queries/query_drivers.h"

/// A test with a region of its own, where clearprompt is a script that writes down its arguments
/// and answers in the order in which the test says.
class QueryRegion : public testing::Test {
  protected:
    QueryRegion() {
        std::string pattern = (std::filesystem::temp_directory_path() / "queries_XXXXXX").string();
        directory_ = mkdtemp(pattern.data());
        for (const char* name : {"log", "results", "answers", "tmp"}) {
            std::filesystem::create_directory(path(name));
        }
        write("gatebits.txt", "gatewarden;;;east;\n");
        write("clearprompt", CLEARPROMPT_SCRIPT);
        std::filesystem::permissions(path("clearprompt"), std::filesystem::perms::owner_all);
        setenv("PATH", (directory_ + ":/usr/bin:/bin").c_str(), 1);
        setenv("STAGE", directory_.c_str(), 1);
        ENTERPRIZE_PERMISSION_FILE = path("gatebits.txt");
        TEMP_DIR = path("tmp");
        GLOBAL_PID_STRING = "1";
        ZUL_PREFER_GUI = 1;
        // No message may outlive the test in the background.
        ZUL_REMOTE_CLIENT_USER = 1;
        options.selected_display = "n";
    }
    ~QueryRegion() override { std::filesystem::remove_all(directory_); }

    /// The operator's answers to text prompts and lists, one a dialog; "CANCEL" cancels.
    void operator_answers(const std::vector<std::string>& answers) {
        for (const std::string& answer : answers) {
            write("answers/" + std::to_string(++answers_), answer);
        }
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
    void command_line_gives_key(long key) {
        options.key_selected = true;
        options.selected_key = key;
    }

    /// A log of today's records; each is what stands behind the time.
    void logged(const std::vector<std::string>& records) {
        const long time = set_time_values().end_of_day_time;
        std::string log;
        for (const std::string& record : records) log += std::to_string(time) + record + "\n";
        write("log/logging_0.txt", log);
    }

    /// What the options and the operator's answers make of query 1 to 6: `graph_title`, `filters`
    /// and `result`; false when a dialog was cancelled.
    bool ask(int number) {
        const auto asked = ask_for_query(number, options, GATEWARDEN_IS);
        if (!asked) return false;
        graph_title = asked->graph_title;
        filters = asked->filters;
        testing::internal::CaptureStdout();
        result = get_query_data(record_query(number, GATEWARDEN_IS, filters, set_time_values()),
                                path("log"));
        testing::internal::GetCapturedStdout();
        return true;
    }

    [[nodiscard]] QueriedRegion region() const {
        return {GATEWARDEN_IS, path("log"), {"east", path("gatebits.txt"), path("results"), ""}};
    }

    /// Runs a driver as the main loop does.
    void run(void (*driver)(const Options&, const QueriedRegion&)) {
        testing::internal::CaptureStdout();
        driver(options, region());
        testing::internal::GetCapturedStdout();
    }

    /// What the operator was asked: a line a dialog, its arguments in brackets.
    [[nodiscard]] std::string asked() const { return read("asked"); }

    [[nodiscard]] int pages() const {
        int number = 0;
        for ([[maybe_unused]] const auto& page :
             std::filesystem::directory_iterator(path("results"))) {
            ++number;
        }
        return number;
    }

    /// The text of the first page found.
    [[nodiscard]] std::string only_page() const {
        const std::filesystem::directory_iterator first(path("results"));
        return read("results/" + first->path().filename().string());
    }

    void gatebits_are(const std::string& text) const { write("gatebits.txt", text); }

    [[nodiscard]] std::string path(const std::string& name) const {
        return directory_ + "/" + name;
    }

    Options options;
    int GATEWARDEN_IS = 1;
    std::string graph_title;
    std::array<std::string, 4> filters;
    QueryResult result;

  private:
    static constexpr char CLEARPROMPT_SCRIPT[] =
        "#!/bin/sh\n"
        "[ \"$1\" = yes_no ] || file=$4\n"
        "printf '[%s]' \"$@\" >>\"$STAGE/asked\"\n"
        "echo >>\"$STAGE/asked\"\n"
        "[ -n \"$file\" ] || exit 0\n"
        "turn=$(($(cat \"$STAGE/turn\" 2>/dev/null || echo 0) + 1))\n"
        "echo $turn >\"$STAGE/turn\"\n"
        "answer=$(cat \"$STAGE/answers/$turn\") || exit 9\n"
        "[ \"$answer\" = CANCEL ] && exit 1\n"
        "printf '%s' \"$answer\" >\"$file\"\n";

    void write(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    std::string directory_;
    int answers_ = 0;
};
