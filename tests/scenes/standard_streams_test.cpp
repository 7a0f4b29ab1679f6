// With standard streams closed, no output for the operator gets into a file of the program. Each
// combination of closed streams is tried with free space, and on a full disk where this process may
// mount one.

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <functional>
#include <ostream>
#include <sstream>

#include "faults/small_disk.h"
#include "scenes/region.h"

namespace gatescope {

namespace fs = std::filesystem;

namespace {

struct Task {
    const char* name;
    Args args;
    std::function<void(Region&)> answer;
    /// Exit statuses with free space and on a full disk.
    int status;
    int status_when_full;
};

const std::vector<Task> TASKS = {
    {"Query", {"Q=1", "C=*", "U=*", "D=n", "R=n"}, [](Region&) {}, 110, 99},
    {"Edit",
     {"A=8", "R=n"},
     [](Region& east) {
         east.operator_picks("S - 'S'ucessful attempts only logged").answers_yes();
     },
     110,
     99},
    {"Pruning", {"A=1", "D=n", "R=n"}, [](Region&) {}, 110, 99},
    {"DemoData", {"-data_gen"}, [](Region&) {}, 0, 99},
};

void PrintTo(const Task& task, std::ostream* stream) {
    *stream << task.name;
}

constexpr int CLOSINGS = 8;

/// The shell command that closes the streams whose bits are set.
std::string closing_command(int streams) {
    std::string line = "exec";
    for (int stream = 0; stream < 3; ++stream) {
        if ((streams >> stream & 1) != 0) line += " " + std::to_string(stream) + ">&-";
    }
    return line;
}

const std::string OLD_LOG = std::to_string(std::time(nullptr) - 200 * 86400) + "S joe 2\n";
const std::string NEW_LOG = std::to_string(std::time(nullptr)) + "S joe 2\n";
const std::string LOG = "disk/depot/log/logging_0.txt";

/// A region whose policy file, logs and results are on one disk.
Region region_on_a_disk() {
    Region east = a_region().without_dialogs().with_env("ZUL_GATESCOPE_GATEBITS_FILE",
                                                        "{stage}/disk/gatebits.txt");
    fs::create_directory(east.path("disk"));
    return east;
}

void fill_the_disk(const Region& east) {
    fs::create_directories(east.path("disk/depot/log"));
    fs::create_directories(east.path("disk/depot/query_results"));
    std::string policy = east.gatebits();
    const std::string depot = east.path("depot");
    policy.replace(policy.find(depot), depot.size(), east.path("disk/depot"));
    east.write_file("disk/gatebits.txt", policy);
    east.write_file(LOG, OLD_LOG + NEW_LOG);
}

bool is_record(const std::string& line) {
    return line.empty() || line.find_first_not_of("0123456789") == 10;
}

/// The policy file, the log and the pages must hold only their own content.
void expect_own_content_only(const Region& east, const Task& task, const std::string& policy) {
    std::string changed = policy;
    changed.replace(changed.find(";O;"), 3, ";S;");
    const std::string now = east.file("disk/gatebits.txt");
    EXPECT_TRUE(now == policy || (task.name == std::string("Edit") && now == changed)) << now;
    std::istringstream log(east.file(LOG));
    for (std::string line; std::getline(log, line);) ASSERT_PRED1(is_record, line);
    for (const std::string& page : east.files_in("disk/depot/query_results")) {
        const std::string bytes = east.file("disk/depot/query_results/" + page);
        EXPECT_TRUE(bytes.empty() || bytes.front() == '<') << bytes.substr(0, 200);
        EXPECT_EQ(bytes.find("ERROR"), std::string::npos);
    }
}

class ClosedStreams : public testing::TestWithParam<Task> {
  protected:
    Result run(Region& east, int streams) const {
        fill_the_disk(east);
        return run_again(east, streams);
    }
    Result run_again(Region& east, int streams) const {
        const std::string policy = east.file("disk/gatebits.txt");
        GetParam().answer(east);
        const Result result = east.run_after(closing_command(streams), GetParam().args);
        expect_own_content_only(east, GetParam(), policy);
        return result;
    }
};

TEST_P(ClosedStreams, DoNotSendOutputToFiles) {
    for (int streams = 0; streams < CLOSINGS; ++streams) {
        SCOPED_TRACE(closing_command(streams));
        Region east = region_on_a_disk();
        EXPECT_EQ(run(east, streams).status, GetParam().status);
    }
}

TEST_P(ClosedStreams, DoNotSendOutputToFilesOnFullDisk) {
    for (int streams = 0; streams < CLOSINGS; ++streams) {
        SCOPED_TRACE(closing_command(streams));
        Region east = region_on_a_disk();
        const SmallDisk disk(east.path("disk"), 65536);
        if (!disk.is_mounted()) GTEST_SKIP() << "needs the right to mount";
        fill_the_disk(east);
        fill_up(east.path("disk/filler"));
        EXPECT_EQ(run_again(east, streams).status, GetParam().status_when_full);
        EXPECT_EQ(east.file(LOG).substr(0, OLD_LOG.size()), OLD_LOG);
    }
}

INSTANTIATE_TEST_SUITE_P(StandardStreams, ClosedStreams, testing::ValuesIn(TASKS),
                         [](const testing::TestParamInfo<Task>& row) { return row.param.name; });

TEST(StandardOutput, ReportsWriteErrorWithReason) {
    Region east = a_region().with_log(0, NEW_LOG).without_dialogs();
    const std::vector<Args> printing = {{"Q=1", "C=*", "U=*", "D=n", "R=n"},
                                        {"A=1", "D=n", "R=n"},
                                        {"A=1", "R=n"},
                                        {"-data_gen"},
                                        {"-ver"},
                                        {"-help"}};
    for (const Args& args : printing) {
        const Result result = east.run_after("exec >/dev/full", args);
        EXPECT_EQ(result.status, 99) << args.front();
        EXPECT_EQ(result.err,
                  "gatescope: standard output could not be written: No space left on device\n")
            << args.front();
    }
}

TEST(StandardOutput, IgnoresFullOutputWhenNothingIsPrinted) {
    Region east = a_region().without_dialogs();
    east.operator_picks("S - 'S'ucessful attempts only logged").answers_yes();
    EXPECT_EQ(east.run_after("exec >/dev/full", {"A=8", "R=n"}).status, 110);
}

}  // namespace
}  // namespace gatescope
