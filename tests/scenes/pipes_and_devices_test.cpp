// FIFOs without a reader or writer, and endless devices, under the names of files that the program
// opens: it neither blocks nor reads without end. (The stage fails a run that does not end.)

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>

#include "scenes/region.h"

namespace gatescope {
namespace {

const std::string PICK = "S - 'S'ucessful attempts only logged";

/// A shell function that creates a special file. The shell execs the program, so "$$" is the
/// program's process id.
using Planting = std::string;
const Planting PIPE = "plant() { rm -f \"$1\"; mkfifo \"$1\"; }\n";
const Planting ZERO = "plant() { rm -f \"$1\"; mknod \"$1\" c 1 5; }\n";

bool can_make_devices() {
    const std::string path = testing::TempDir() + "zero_" + std::to_string(getpid());
    const bool can =
        mknod(path.c_str(), S_IFCHR | 0600, makedev(1, 5)) == 0 && access(path.c_str(), R_OK) == 0;
    unlink(path.c_str());
    return can;
}

class PipesAndDevices : public testing::TestWithParam<Planting> {
  protected:
    void SetUp() override {
        if (GetParam() == ZERO && !can_make_devices()) {
            GTEST_SKIP() << "needs the right to make devices";
        }
    }
    static Result run_with_planted(Region& east, const std::string& names, const Args& args) {
        return east.run_after(GetParam() + "for name in " + names + "; do plant \"$name\"; done",
                              args);
    }
    static Region quiet_region() { return a_region().without_dialogs(); }
};

TEST_P(PipesAndDevices, AreRefusedAsPolicyFile) {
    Region east = quiet_region();
    for (const Args& args : {Args{"F={stage}/odd", "A=8", "R=n"}, Args{"F={stage}/odd", "A=23"},
                             Args{"F={stage}/odd", "Q=1", "C=*", "U=*", "D=n", "R=n"}}) {
        Args there = args;
        there.front() = east.staged(there.front());
        EXPECT_EQ(run_with_planted(east, "odd", there).status, 99) << there.at(1);
    }
    east.set_env("ZUL_GATESCOPE_GATEBITS_FILE", east.path("odd"));
    EXPECT_EQ(run_with_planted(east, "odd", {"A=1", "R=n"}).status, 99);
}

TEST_P(PipesAndDevices, AreRefusedAsFileToSwitchToOrCopy) {
    Region east = quiet_region();
    east.chooses_file(east.path("odd"));
    EXPECT_EQ(run_with_planted(east, "odd", {"A=25", "R=n"}).status, 99);
    east.chooses_file(east.path("odd"));
    EXPECT_EQ(run_with_planted(east, "odd", {"A=27", "R=n"}).status, 99);
}

TEST_P(PipesAndDevices, StayWhenNamedAsNewFile) {
    Region east = quiet_region();
    east.chooses_file(east.path("odd")).aborts();
    EXPECT_EQ(run_with_planted(east, "odd", {"A=26", "R=n"}).status, 110);
    east.chooses_file(east.gatebits_path()).chooses_file(east.path("odd")).answers_no();
    EXPECT_EQ(run_with_planted(east, "odd", {"A=27", "R=n"}).status, 110);
    struct stat status = {};
    EXPECT_EQ(stat(east.path("odd").c_str(), &status), 0);
    EXPECT_FALSE(S_ISREG(status.st_mode));
}

TEST_P(PipesAndDevices, AreReplacedAsUnfinishedNewFile) {
    Region east = quiet_region();
    east.chooses_file(east.path("new.txt")).aborts();
    EXPECT_EQ(run_with_planted(east, "\".gatescope_new_$$\"", {"A=26", "R=n"}).status, 110);
    EXPECT_NE(east.file("new.txt"), "");
}

TEST_P(PipesAndDevices, AreReplacedAsTemporaryFiles) {
    Region east = quiet_region();
    east.operator_picks(PICK).answers_yes();
    EXPECT_EQ(run_with_planted(east,
                               "tmp/junk_test_gatescope_$$.txt tmp/t_file_gatescope_$$.txt "
                               "tmp/gatewarden_select_result_$$_.txt",
                               {"A=8", "R=n"})
                  .status,
              110);
    EXPECT_EQ(east.field(2, 3), "S");
    east.types("new message").answers_yes();
    EXPECT_EQ(
        run_with_planted(east, "tmp/gatewarden_prompt_result_$$_.txt", {"A=13", "R=n"}).status,
        110);
    EXPECT_EQ(east.field(7, 2), "new message");
}

TEST_P(PipesAndDevices, CountAsCancelWhenDialogLeavesThemAsAnswer) {
    Region east = quiet_region();
    east.answers({.kind = "list",
                  .meanwhile = GetParam() + "for f in tmp/*_result_*; do plant \"$f\"; done"})
        .cancels();
    EXPECT_EQ(east.run({"A=8", "R=n"}).status, 110);
    EXPECT_EQ(east.field(2, 3), "O");
}

TEST_P(PipesAndDevices, AreSkippedAsLogs) {
    const std::string logs = "$(seq -f depot/log/logging_%g.txt 0 19)";
    Region east = quiet_region();
    const Args query = {"Q=1", "C=*", "U=*", "D=n", "R=n"};
    EXPECT_EQ(run_with_planted(east, logs, query).status, 110);
    EXPECT_EQ(run_with_planted(east, logs, {"A=1", "D=n", "R=n"}).status, 110);
    EXPECT_EQ(run_with_planted(east, "depot/log/logging_20.txt", {"-data_gen"}).status, 99);
    EXPECT_EQ(run_with_planted(east, "depot/log/logging_pruning_token.txt", {"A=1", "R=n"}).status,
              99);
}

TEST_P(PipesAndDevices, AreRefusedAsPage) {
    Region east = quiet_region();
    // The page has the second in its name.
    const std::string pages =
        "$(now=$(date +%s); for s in $(seq 0 70); do "
        "date -d @$((now + s)) +depot/query_results/%Y%m%d_%H%M%S_Q01.html; done)";
    EXPECT_EQ(run_with_planted(east, pages, {"Q=1", "C=*", "U=*", "D=n", "R=n"}).status, 99);
}

INSTANTIATE_TEST_SUITE_P(Planted, PipesAndDevices, testing::Values(PIPE, ZERO),
                         [](const testing::TestParamInfo<Planting>& row) {
                             return row.param == PIPE ? "Pipe" : "Device";
                         });

}  // namespace
}  // namespace gatescope
