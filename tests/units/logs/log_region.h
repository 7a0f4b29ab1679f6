#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>

#include "dialog/messages.h"
#include "logs/log_files.h"
#include "logs/query_data.h"
#include "records/query_period.h"
#include "support/scratch_directory.h"

namespace gatescope {

/// A test with an empty logging directory, and messages on standard output.
class LogRegion : public testing::Test {
  protected:
    void SetUp() override {
        logging_dir = directory_.path();
        ZUL_PREFER_GUI = 0;
        filter_by();
        end_of_day_time = set_time_values().end_of_day_time;
    }

    void filter_by(const std::string& one = ":", const std::string& two = ":",
                   const std::string& three = ":", const std::string& four = ":") {
        filters_ = {one, two, three, four};
    }

    static std::string log_file_path(int number) {
        return gatescope::log_file_path(logging_dir, number);
    }
    static std::string pruning_companion_path(int number) {
        return gatescope::pruning_companion_path(logging_dir, number);
    }
    static std::string pruning_scratch_path() {
        return gatescope::pruning_scratch_path(logging_dir);
    }
    static std::string pruning_token_path() { return gatescope::pruning_token_path(logging_dir); }

    /// Whether the system has leases, by which other openers of a file are detected.
    static bool has_leases() {
        if (!GATESCOPE_HAS_LEASES) return false;
        const std::string path = logging_dir + "/leases";
        const int writer = open(path.c_str(), O_WRONLY | O_CREAT, 0600);
        const int reader = open(path.c_str(), O_RDONLY);
        const bool refuses = fcntl(reader, F_SETLEASE, F_RDLCK) != 0 && errno == EAGAIN;
        close(writer);
        const bool grants = fcntl(reader, F_SETLEASE, F_RDLCK) == 0;
        close(reader);
        std::filesystem::remove(path);
        return refuses && grants;
    }

    static void write_log(int number, std::string_view text) {
        write_file(log_file_path(number), text);
    }

    /// Noon of the day `days_ago` days ago.
    static std::int64_t noon(std::int64_t days_ago) {
        return end_of_day_time - SECONDS_A_DAY / 2 - days_ago * SECONDS_A_DAY;
    }
    /// A record at `time`, without a line end.
    static std::string record_at(std::int64_t time, const std::string& rest) {
        return std::to_string(time) + ":" + rest;
    }
    /// A line with a record of noon(days_ago).
    static std::string line(std::int64_t days_ago, const std::string& rest) {
        return record_at(noon(days_ago), rest) + "\n";
    }

    /// Sets `result` to that of the query; returns its advice, one message per line.
    std::string advice_of_query(int query) {
        const RecordQuery asked = record_query(query, GATEWARDEN_IS, filters_, set_time_values());
        testing::internal::CaptureStdout();
        result = get_query_data(asked, logging_dir);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        std::string lines;
        for (const std::string& advice : result.advice) lines += advice + "\n";
        return lines;
    }

    static inline std::string logging_dir;
    static inline std::int64_t end_of_day_time;
    int GATEWARDEN_IS = 1;
    QueryResult result;

  private:
    ScratchDirectory directory_;
    std::array<std::string, 4> filters_;
};

}  // namespace gatescope
