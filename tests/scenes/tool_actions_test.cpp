// The tool's own settings, and pruning the logs.

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>

#include "scenes/actions.h"

namespace gatescope {
namespace {

const std::string BROWSER = "#!gatescope_unix_browser=";
const std::string RESULTS = "#!gatescope_relocated_results_dir_unix=";

Dialog setting_list(const Region& region) {
    return listed("Select Gatescope Variable to View/Change",
                  "00 gatescope_unix_gatewarden_check=" + region.checker_path() +
                      ",01 gatescope_windows_gatewarden_check=,02 gatescope_unix_browser=" +
                      region.path("bin/browser") +
                      ",03 gatescope_windows_browser=,04 gatescope_relocated_logging_dir_unix=,05 "
                      "gatescope_relocated_logging_dir_windows=,06 "
                      "gatescope_relocated_results_dir_unix=,07 "
                      "gatescope_relocated_results_dir_windows=");
}

Dialog setting_prompt(const std::string& prefix, const std::string& value) {
    return prompted("Change the value of " + prefix + " ...", value);
}

Dialog asked_to_set(const std::string& prefix, const std::string& value) {
    return asked("Confirm addition/change of: Gatescope Variable\n\n    " + prefix + value, "no");
}

std::string browser_entry(const Region& region) {
    return "02 gatescope_unix_browser=" + region.path("bin/browser");
}

TEST(Settings, WriteConfirmedValue) {
    Region east = a_region();
    const std::string before = east.gatebits();
    east.operator_picks(browser_entry(east)).types("/new/browser").answers_yes();
    const Result result = east.run({"A=24", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs(),
              (Dialogs{setting_list(east), setting_prompt(BROWSER, east.path("bin/browser")),
                       asked_to_set(BROWSER, "/new/browser")}));
    EXPECT_EQ(east.gatebits(),
              with_replaced(before, BROWSER + east.path("bin/browser"), BROWSER + "/new/browser"));
    EXPECT_TRUE(result.calls_of("gatewarden").empty());
}

TEST(Settings, ReportValueWithTwoEqualsSigns) {
    Region east = a_region().with_env("ZUL_GATESCOPE_VERBOSITY", "");
    east.operator_picks(browser_entry(east)).types("/b").answers_yes();
    EXPECT_EQ(east.run({"A=24", "R=n"}).dialogs().at(3),
              asked("Successfully added Gatescope Variable\n\n    #!gatescope_unix_browser==/b",
                    "yes", "yes"));
}

TEST(Settings, OfferEnteredValueAfterDecline) {
    Region east = a_region();
    east.operator_picks(browser_entry(east)).types("/one").answers_no();
    east.types("/two").answers_yes();
    EXPECT_EQ(east.run({"A=24", "R=n"}).dialogs(),
              (Dialogs{setting_list(east), setting_prompt(BROWSER, east.path("bin/browser")),
                       asked_to_set(BROWSER, "/one"), setting_prompt(BROWSER, "/one"),
                       asked_to_set(BROWSER, "/two")}));
    EXPECT_NE(east.gatebits().find(BROWSER + "/two\n"), std::string::npos);
}

TEST(Settings, WriteNothingWhenAbortedOrCancelled) {
    Region east = a_region();
    const std::string before = east.gatebits();
    east.operator_picks(browser_entry(east)).types("/one").aborts();
    EXPECT_EQ(east.run({"A=24", "R=n"}).dialogs().size(), 3u);
    east.operator_picks(browser_entry(east)).cancels();
    EXPECT_EQ(east.run({"A=24", "R=n"}).dialogs().size(), 2u);
    east.answers({.kind = "list", .outfile = ""}).cancels();
    EXPECT_EQ(east.run({"A=24", "R=n"}).dialogs(),
              (Dialogs{setting_list(east), setting_list(east)}));
    EXPECT_EQ(east.gatebits(), before);
}

TEST(Settings, MoveToTheTopInTheOrderOfTheTable) {
    Region east = a_region().without_variables().with_line_on_top(
        "# c\n\n#!gatescope_relocated_results_dir_unix={stage}/depot/query_results\n"
        "#!gatescope_foreign=x\n  #!gatescope_windows_browser=IE");
    const std::string results = east.path("depot/query_results");
    const std::string rest = east.staged(
        "gatewarden;;;east;\n;{stage}/depot;O;\n;;\n;;\n; ;\n; ;\n;;;\n"
        "D;000000000000000000000000;\n");
    EXPECT_EQ(east.gatebits(), "# c\n\n" + RESULTS + results +
                                   "\n#!gatescope_foreign=x\n  #!gatescope_windows_browser=IE\n" +
                                   rest);
    east.operator_picks("00 gatescope_unix_gatewarden_check=").types("/c").answers_yes();
    east.run({"A=24", "R=n"});
    EXPECT_EQ(east.gatebits(),
              "#!gatescope_unix_gatewarden_check=/c\n#!gatescope_windows_gatewarden_check=\n"
              "#!gatescope_unix_browser=\n#!gatescope_windows_browser=IE\n"
              "#!gatescope_relocated_logging_dir_unix=\n"
              "#!gatescope_relocated_logging_dir_windows=\n" +
                  RESULTS + results + "\n#!gatescope_relocated_results_dir_windows=\n" +
                  "# c\n#!gatescope_foreign=x\n" + rest);
}

TEST(Settings, EndWithInternalErrorOnPickWithoutNumber) {
    for (const char* pick : {"nonsense", "08 x"}) {
        Region east = a_region();
        east.answers({.kind = "list", .outfile = pick});
        const Result result = east.run({"A=24", "R=n"});
        EXPECT_EQ(result.status, 99);
        EXPECT_EQ(result.dialogs().back(), griped("Internal error in A_24")) << pick;
    }
}

TEST(Settings, ApplyToNextRequest) {
    Region east = a_region().with_log(0, "1<old\n").with_file("logs/logging_0.txt", "1<old\n");
    east.operator_picks("04 gatescope_relocated_logging_dir_unix=").types(east.path("logs"));
    east.answers_yes().operator_picks("A01 - Prune Log Files").cancels();
    EXPECT_EQ(east.run({"A=24"}).status, 0);
    EXPECT_EQ(east.file("logs/logging_0.txt"), "");
    EXPECT_EQ(east.log(0), "1<old\n");
}

TEST(Settings, DoNotKeepFallbackOfChecker) {
    Region east = a_region().with_variable(0, "/none/checker");
    // The check keeps the fallback in memory; a later change of another setting must not write it.
    east.operator_picks("A24 - Configure Gatescope");
    east.operator_picks(browser_entry(east)).types("/b").answers_yes().cancels();
    east.run({"A=23"});
    EXPECT_TRUE(east.gatebits().starts_with("#!gatescope_unix_gatewarden_check=/none/checker\n"));
}

// The settings in a guided walk.

TEST(Settings, OfferStoredValueAfterDeclineInWalk) {
    Region east = a_region().with_line(2, "W:depot;{stage}/depot;O;");
    const std::string prefix = "#!gatescope_unix_gatewarden_check=";
    east.types("/x").answers_no().types("/y").aborts();
    for (int i = 0; i < 5; ++i) east.cancels();
    const Dialogs dialogs = east.run({"A=28", "R=n"}).dialogs();
    EXPECT_EQ(dialogs.at(0), setting_prompt(prefix, east.checker_path()));
    EXPECT_EQ(dialogs.at(1), asked_to_set(prefix, "/x"));
    EXPECT_EQ(dialogs.at(2), dialogs.at(0));
    EXPECT_EQ(dialogs.at(3), asked_to_set(prefix, "/y"));
    EXPECT_TRUE(dialogs.at(4).args.back().starts_with("Input a Windows Policy Depot"));
}

TEST(Settings, AreWrittenInWalk) {
    Region east = a_region().with_line(2, "W:depot;{stage}/depot;O;");
    const std::string before = east.gatebits();
    east.cancels().types("W:c").answers_yes().cancels().types("W:b").answers_yes();
    for (int i = 0; i < 19; ++i) east.cancels();
    east.run({"A=29", "R=n"});
    EXPECT_EQ(east.gatebits(), with_replaced(with_replaced(before, "windows_gatewarden_check=\n",
                                                           "windows_gatewarden_check=W:c\n"),
                                             "windows_browser=\n", "windows_browser=W:b\n"));
}

// A01.

TEST(Prune, KeepsTheLast120DaysAndMergesTheCompanions) {
    const std::string now = std::to_string(time(nullptr));
    const std::string old = std::to_string(time(nullptr) - 122L * 86400);
    Region east = a_region()
                      .with_log(0, old + "<a\n" + now + "<b\n")
                      .with_log(20, now + "<c\n")
                      .with_file("depot/log/logging__20.txt", now + "<d\n" + old + "<e\n");
    const Result result = east.run({"A=1", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs(),
              Dialogs{advised("2 of 5 log entries were removed from the Gatewarden LOGS for the "
                              "Gatewarden Region (east).\n\n120 days of data retained.")});
    EXPECT_EQ(east.log(0), now + "<b\n");
    EXPECT_EQ(east.log(20), now + "<c\n" + now + "<d\n");
    EXPECT_EQ(east.files_in("depot/log"),
              (std::vector<std::string>{"logging_0.txt", "logging_20.txt"}));
}

TEST(Prune, HoldsNoLockWhileTheResultIsShown) {
    // The program waits for a remote client's box.
    Region east = a_region().with_env("ZUL_USING_CCRC", "yes").with_log(0, "");
    east.program_answers("box", {.meanwhile = "flock --nonblock depot/log touch unlocked"});
    const Result result = east.run({"A=1", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(
        result.dialogs(),
        Dialogs{advised_and_waited("0 of 0 log entries were removed from the Gatewarden LOGS for "
                                   "the Gatewarden Region (east).\n\n120 days of data retained.")});
    EXPECT_TRUE(std::filesystem::exists(east.path("unlocked")));
}

}  // namespace
}  // namespace gatescope
