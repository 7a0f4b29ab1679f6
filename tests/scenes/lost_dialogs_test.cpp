// Without clearprompt the texts of dialogs go to standard error. Exit statuses, standard output and
// effects are unchanged.

#include <gtest/gtest.h>

#include <filesystem>

#include "scenes/region.h"

namespace gatescope {
namespace {

const std::string NOT_FOUND = "gatescope: clearprompt could not be started (it was not found)";

/// Standard error without the shell's own message, since shells differ.
std::string notes_in(const Result& result) {
    const auto begin = result.err.find("gatescope: ");
    return begin == std::string::npos ? "" : result.err.substr(begin);
}

RegionPlan region_without_clearprompt() {
    return a_region().with_env("PATH", "/usr/bin:/bin");
}

TEST(LostDialogs, ReportsTextOfError) {
    Region east = region_without_clearprompt();
    const Result result = east.run({"Q=9"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, NOT_FOUND +
                              "; this could not be shown:\nERROR: Query parameter (Q=9) invalid.  "
                              "Query parameter must be between 1 and 6 inclusive.\n");
}

TEST(LostDialogs, ReportsTextOfEachKindOfDialog) {
    struct Case {
        Args args;
        int status;
        std::string said;
    };
    const std::vector<Case> cases = {
        {{"-ver"}, 0, "; this could not be shown:\ngatescope version (" GATESCOPE_VERSION ")."},
        {{"F=/nowhere"},
         1,
         "; this could not be asked, which counts as abort:\nThe gatebits file (/nowhere)\n passed "
         "in at the command line does not exist or could not be read."},
        {{"A=8", "R=n"},
         110,
         "; this could not be asked, which counts as cancelled:\nSelect a "
         "Region Logging Personality...  Currently = O"},
        {{"R=n"},
         0,
         "; this could not be asked, which counts as cancelled:\nSelect Query or "
         "Action for (east)"},
        {{"Q=1", "C=*", "R=n"},
         110,
         "; this could not be asked, which counts as cancelled:\nInput "
         "user to display usage for"},
    };
    for (const Case& row : cases) {
        Region east = region_without_clearprompt();
        const Result result = east.run(row.args);
        EXPECT_EQ(result.status, row.status) << row.said;
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(result.err.starts_with(NOT_FOUND + row.said)) << result.err;
        EXPECT_EQ(result.err.find("not found\n"), std::string::npos) << result.err;
    }
}

TEST(LostDialogs, ReportsShellsStatusWhenClearpromptCannotBeExecuted) {
    Region east = a_region();
    std::filesystem::remove(east.path("bin/clearprompt"));
    east.write_file("bin/clearprompt", "#!/nowhere/shell\n");
    std::filesystem::permissions(east.path("bin/clearprompt"), std::filesystem::perms(0755));
    const Result result = east.run({"A=8", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(notes_in(result).find("gatescope: clearprompt could not be started (the shell ended "
                                    "with status 127); this could not be asked"),
              0u)
        << result.err;
}

TEST(LostDialogs, ReportsNothingForCancelledDialog) {
    Region east = a_region();
    east.cancels();
    EXPECT_EQ(east.run({"A=8", "R=n"}).err, "");
}

TEST(Reasons, NameFileAndErrorOnStandardError) {
    struct Case {
        Args args;
        std::string message;
        std::string reason;
    };
    const std::vector<Case> cases = {
        {{"F={stage}/depot", "A=8", "R=n"},
         "ERROR: Read failure on enterprise permissions file...",
         "{stage}/depot: Is a directory"},
        {{"A=1", "R=n"},
         "Could not create needed pruning token",
         "{stage}/depot/log/logging_pruning_token.txt: No such file or directory"},
        {{"-data_gen"},
         "could not make needed logging_file",
         "{stage}/depot/log/logging_20.txt: No such file or directory"},
    };
    for (const Case& row : cases) {
        Region east = a_region().without_dialogs();
        std::filesystem::remove_all(east.path("depot/log"));
        std::filesystem::remove_all(east.path("depot/query_results"));
        Args args = row.args;
        for (std::string& argument : args) argument = east.staged(argument);
        const Result result = east.run(args);
        EXPECT_EQ(result.status, 99);
        EXPECT_EQ(result.out, east.staged(row.message) + "\n");
        EXPECT_NE(result.err.find(east.staged(row.reason) + "\n"), std::string::npos) << result.err;
    }
}

TEST(Reasons, NamePageThatCannotBeCreated) {
    Region east = a_region().without_dialogs();
    std::filesystem::remove_all(east.path("depot/query_results"));
    const Result result = east.run({"Q=1", "C=*", "U=*", "D=n", "R=n"});
    EXPECT_EQ(result.status, 99);
    EXPECT_NE(result.err.find("_Q01.html: No such file or directory"), std::string::npos)
        << result.err;
}

}  // namespace
}  // namespace gatescope
