// Verify, switch, create and copy a gatebits file, and the guided walks.

#include <gtest/gtest.h>

#include <filesystem>

#include "scenes/actions.h"

namespace gatescope {
namespace {

const std::string OTHER_REGION =
    "gatewarden;;;west;\n;{stage}/depot;O;\n;;\n;;\n; ;\n; ;\n;;;\nD;0;\n";

Dialog chooser(const Region& region) {
    return file_dialog_in(region.path(""));
}

/// The title of the main menu, which names the region in use.
std::string region_in_use(const Dialog& menu) {
    return menu.args.back();
}

// A23.

TEST(Verify, ShowsNothingForFileWithoutErrors) {
    Region east = a_region();
    const Result result = east.run({"A=23", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_TRUE(result.dialogs().empty());
    EXPECT_EQ(result.calls_of("gatewarden"), (std::vector<Args>{{east.gatebits_path(), "-check"}}));
}

TEST(Verify, ShowsRawStatusOnErrors) {
    Region east = a_region();
    east.checker_ends_with({1});
    EXPECT_EQ(east.run({"A=23", "R=n"}).dialogs(),
              Dialogs{asked("Error return code=256 returned from " + east.checker_path() + " " +
                                east.gatebits_path() + " -check...",
                            "abort", "abort")});
}

TEST(Verify, ShowsNothingToInstaller) {
    Region east = a_region();
    east.checker_ends_with({1});
    const Result result = east.run({"-during_install", "A=23", "R=n"});
    EXPECT_TRUE(result.dialogs().empty());
    EXPECT_EQ(result.calls_of("gatewarden").size(), 1u);
}

TEST(Verify, UsesCheckerBesideTheProgramWhenConfiguredOneIsMissing) {
    Region east = a_region().with_variable(0, "/none/checker");
    EXPECT_EQ(east.run({"A=23", "R=n"}).calls_of("gatewarden").size(), 1u);
    EXPECT_NE(east.gatebits().find("check=/none/checker\n"), std::string::npos);
}

TEST(Verify, SaysThatNoCheckerWasFound) {
    Region east = a_region().with_variable(0, "/none/checker").without_checker();
    EXPECT_EQ(east.run({"A=23", "R=n"}).dialogs(),
              Dialogs{advised("#!gatescope_unix_gatewarden_check=" + east.checker_path() +
                              " \ndefined in east could not be found..")});
}

// A25.

TEST(Switch, LoadsFileWithoutErrors) {
    Region east = a_region().with_file("west.txt", OTHER_REGION);
    const std::string west = east.path("west.txt");
    east.chooses_file(west + "\n").cancels();
    const Result result = east.run({"A=25"});
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.dialogs().size(), 3u);
    EXPECT_EQ(result.dialogs()[0], chooser(east));
    EXPECT_EQ(result.dialogs()[1], advised_and_waited("The new gatebits_file (" + west +
                                                      ") was loaded and currently has no errors."));
    EXPECT_EQ(region_in_use(result.dialogs()[2]), "Select Query or Action for (west)");
    EXPECT_EQ(result.calls_of("gatewarden"), (std::vector<Args>{{west, "-error_only"}}));
}

TEST(Switch, WarnsOfErrorsInNewFile) {
    Region east = a_region().with_file("west.txt", OTHER_REGION);
    east.checker_ends_with({2});
    east.chooses_file(east.path("west.txt")).cancels();
    const Dialogs dialogs = east.run({"A=25"}).dialogs();
    EXPECT_EQ(dialogs.at(1),
              advised_and_waited("WARNING: New gatebits_file (" + east.path("west.txt") +
                                 ") has errors.\n\nThese should be addressed..."));
    EXPECT_EQ(region_in_use(dialogs.at(2)), "Select Query or Action for (west)");
}

TEST(Switch, DoesNothingWhenCancelled) {
    Region east = a_region();
    east.cancels();
    const Result result = east.run({"A=25", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs(), Dialogs{chooser(east)});
}

TEST(Switch, AsksAgainForMissingFile) {
    Region east = a_region().with_file("west.txt", OTHER_REGION);
    const Dialog retry = asked("That file doe not already exist, Retry?", "yes", "yes,no");
    east.chooses_file("/none").answers_yes().chooses_file(east.path("west.txt"));
    const Dialogs dialogs = east.run({"A=25", "R=n"}).dialogs();
    ASSERT_EQ(dialogs.size(), 4u);
    EXPECT_EQ(dialogs[1], retry);
    east.chooses_file("/none").answers_no();
    EXPECT_EQ(east.run({"A=25", "R=n"}).dialogs(), (Dialogs{chooser(east), retry}));
}

TEST(Switch, UsesFileWithoutLoadingItWithoutChecker) {
    Region east = a_region().with_file("west.txt", OTHER_REGION).without_checker();
    east.chooses_file(east.path("west.txt"));
    east.operator_picks("A25 - Switch to another Gatebits file").cancels().cancels();
    const Dialogs dialogs = east.run({"A=25"}).dialogs();
    ASSERT_EQ(dialogs.size(), 5u);
    EXPECT_EQ(region_in_use(dialogs[2]), "Select Query or Action for (east)");
}

// A26.

std::string template_with(const std::string& unix_checker, const std::string& windows_checker) {
    const std::string row(54, '#');
    return "#!gatescope_unix_gatewarden_check=" + unix_checker +
           "\n#!gatescope_windows_gatewarden_check=" + windows_checker +
           "\n#!gatescope_unix_browser=/net/machine/browser\n"
           "#!gatescope_windows_browser=C:\\Program Files\\Internet Explorer\\IEXPLORE.EXE\n"
           "#!gatescope_relocated_logging_dir_unix=\n#!gatescope_relocated_logging_dir_windows=\n"
           "#!gatescope_relocated_results_dir_unix=\n#!gatescope_relocated_results_dir_windows=\n" +
           row + "\n# Gatewarden Region Information.\n" + row +
           "\ngatewarden;;;{region Name};\n;;O;\n;;\n;;\n; ;\n; ;\n;;;\nD;000000000000000000000000;"
           "\n" +
           row + "\n# Any Valid Keys follow.\n" + row + "\n\n" + row +
           "\n# Generated by gatescope Rel " GATESCOPE_VERSION "\n" + row + "\n";
}

Dialog asked_what_to_populate() {
    return asked(
        "You should populate some fields in the file now.\n\nYou can select to prompted for all "
        "fields now or just the most critical ones.\n\nYou can skip any portion you are not ready "
        "to complete now\n\n What would you like to do?\n\nPrompt me for all fields (YES)\nPrompt "
        "me for just lritical ones (No)\nI'll do them later (Abort)");
}

Dialog asked_new_or_existing() {
    return asked(
        "That file already exist, Open a new one or use the existing one? \n\nOpen New (Yes) Open "
        "Existing (No)?");
}

Dialog asked_for_another_location() {
    return asked(
        "You do not have write permission to that directory, Would you like to try another "
        "location?",
        "yes", "yes,no");
}

TEST(Create, WritesTemplate) {
    Region east = a_region().with_variable(1, "W:\\checker.exe");
    const std::string before = east.gatebits();
    east.chooses_file(east.path("new.txt")).aborts().cancels();
    const Result result = east.run({"A=26"});
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.dialogs().size(), 3u);
    EXPECT_EQ(result.dialogs()[0], chooser(east));
    EXPECT_EQ(result.dialogs()[1], asked_what_to_populate());
    EXPECT_EQ(region_in_use(result.dialogs()[2]), "Select Query or Action for ({region Name})");
    EXPECT_EQ(east.file("new.txt"), template_with(east.checker_path(), "W:\\checker.exe"));
    EXPECT_EQ(east.gatebits(), before);
    EXPECT_TRUE(result.calls_of("gatewarden").empty());
}

TEST(Create, ReplacesMissingCheckerByTheOneBesideTheProgram) {
    Region east = a_region().with_variable(0, "/none").without_checker();
    east.chooses_file(east.path("new.txt")).aborts();
    east.run({"A=26", "R=n"});
    EXPECT_EQ(east.file("new.txt"), template_with(east.checker_path(), ""));
}

TEST(Create, CreatesFileAtStartWhenThereIsNone) {
    Region east = a_region().without_gatebits_file();
    east.answers_yes().chooses_file(east.path("new.txt")).aborts().cancels();
    const Result result = east.run();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs().at(2), asked_what_to_populate());
    EXPECT_EQ(east.file("new.txt"), template_with(east.checker_path(), ""));
}

TEST(Create, DoesNothingWhenCancelled) {
    Region east = a_region();
    east.cancels();
    EXPECT_EQ(east.run({"A=26", "R=n"}).dialogs(), Dialogs{chooser(east)});
}

TEST(Create, UsesExistingFileUnchangedOnNo) {
    Region east = a_region().with_file("west.txt", OTHER_REGION);
    const std::string west = east.file("west.txt");
    east.chooses_file(east.path("west.txt")).answers_no().cancels();
    const Dialogs dialogs = east.run({"A=26"}).dialogs();
    ASSERT_EQ(dialogs.size(), 3u);
    EXPECT_EQ(dialogs[1], asked_new_or_existing());
    EXPECT_EQ(region_in_use(dialogs[2]), "Select Query or Action for (west)");
    EXPECT_EQ(east.file("west.txt"), west);
}

TEST(Create, AsksForAnotherNameOnYes) {
    Region east = a_region().with_file("west.txt", OTHER_REGION);
    east.chooses_file(east.path("west.txt")).answers_yes();
    east.chooses_file(east.path("new.txt")).aborts();
    EXPECT_EQ(
        east.run({"A=26", "R=n"}).dialogs(),
        (Dialogs{chooser(east), asked_new_or_existing(), chooser(east), asked_what_to_populate()}));
}

TEST(Create, KeepsFileInUseOnAbort) {
    Region east = a_region().with_file("west.txt", OTHER_REGION);
    east.chooses_file(east.path("west.txt")).aborts().cancels();
    const Dialogs dialogs = east.run({"A=26"}).dialogs();
    EXPECT_EQ(region_in_use(dialogs.at(2)), "Select Query or Action for (east)");
}

TEST(Create, AsksForAnotherLocationWhenDirectoryCannotBeWritten) {
    Region east = a_region();
    east.chooses_file(east.path("none/new.txt")).answers_yes();
    east.chooses_file(east.path("none/new.txt")).answers_no();
    EXPECT_EQ(east.run({"A=26", "R=n"}).dialogs(),
              (Dialogs{chooser(east), asked_for_another_location(), chooser(east),
                       asked_for_another_location()}));
}

TEST(Create, AsksForAnotherLocationWhenNameIsTooLong) {
    Region east = a_region();
    east.chooses_file(east.path(std::string(256, 'n'))).answers_no();
    const Result result = east.run({"A=26", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs(), (Dialogs{chooser(east), asked_for_another_location()}));
}

TEST(Create, CreatesTargetOfDanglingLink) {
    Region east = a_region();
    std::filesystem::create_symlink(east.path("elsewhere.txt"), east.path("link.txt"));
    east.chooses_file(east.path("link.txt")).aborts();
    EXPECT_EQ(east.run({"A=26", "R=n"}).dialogs(),
              (Dialogs{chooser(east), asked_what_to_populate()}));
    EXPECT_EQ(east.file("elsewhere.txt"), template_with(east.checker_path(), ""));
}

TEST(Create, KeepsCheckerFoundOnSearchPath) {
    Region east = a_region().with_variable(0, "gatewarden");
    east.chooses_file(east.path("new.txt")).aborts();
    east.run({"A=26", "R=n"});
    EXPECT_EQ(east.file("new.txt"), template_with("gatewarden", ""));
}

// A27.

Dialog copied(const std::string& source, const std::string& destination,
              const std::string& verdict) {
    return advised_and_waited("The gatebits file:\n\t(" + source + ")\n\nwas copied to:\n\t(" +
                              destination + ")\n\nNew file loaded.\n\n" + verdict);
}

Dialog asked_for_another_destination() {
    return asked(
        "That file exist already, Can't copy over existing gatebits files in this manner. Do you "
        "want to choose another destination location?",
        "yes", "yes,no");
}

TEST(Copy, CopiesEveryByteAndLoadsCopy) {
    const std::string odd = "# odd\n\n" + OTHER_REGION + "  \nno newline at the end";
    Region east = a_region().with_file("west.txt", odd);
    const std::string source = east.path("west.txt");
    const std::string destination = east.path("copy.txt");
    east.chooses_file(source).chooses_file(destination).cancels();
    const Result result = east.run({"A=27"});
    ASSERT_EQ(result.dialogs().size(), 4u);
    EXPECT_EQ(result.dialogs()[0], chooser(east));
    EXPECT_EQ(result.dialogs()[1], chooser(east));
    EXPECT_EQ(result.dialogs()[2], copied(source, destination,
                                          "The new gatebits_file (" + destination +
                                              ") was loaded and currently has no errors."));
    EXPECT_EQ(region_in_use(result.dialogs()[3]), "Select Query or Action for (west)");
    EXPECT_EQ(east.file("copy.txt"), east.staged(odd));
    EXPECT_EQ(east.file("west.txt"), east.staged(odd));
    EXPECT_EQ(result.calls_of("gatewarden"), (std::vector<Args>{{destination, "-error_only"}}));
}

TEST(Copy, WarnsOfErrorsInCopy) {
    Region east = a_region();
    east.checker_ends_with({1});
    const std::string destination = east.path("copy.txt");
    east.chooses_file(east.gatebits_path()).chooses_file(destination);
    EXPECT_EQ(east.run({"A=27", "R=n"}).dialogs().back(),
              copied(east.gatebits_path(), destination,
                     "WARNING: New gatebits_file (" + destination +
                         ") has errors.\n\nThese should be addressed..."));
    EXPECT_EQ(east.file("copy.txt"), east.gatebits());
}

TEST(Copy, NeverOverwritesADestination) {
    Region east = a_region().with_file("west.txt", OTHER_REGION);
    const std::string west = east.file("west.txt");
    east.chooses_file(east.gatebits_path()).chooses_file(east.path("west.txt")).answers_yes();
    east.chooses_file(east.path("west.txt")).answers_no();
    EXPECT_EQ(east.run({"A=27", "R=n"}).dialogs(),
              (Dialogs{chooser(east), chooser(east), asked_for_another_destination(), chooser(east),
                       asked_for_another_destination()}));
    EXPECT_EQ(east.file("west.txt"), west);
}

TEST(Copy, CreatesTargetOfDanglingLink) {
    Region east = a_region();
    std::filesystem::create_symlink(east.path("elsewhere.txt"), east.path("link.txt"));
    east.chooses_file(east.gatebits_path()).chooses_file(east.path("link.txt"));
    EXPECT_EQ(east.run({"A=27", "R=n"}).dialogs().size(), 3u);
    EXPECT_EQ(east.file("elsewhere.txt"), east.gatebits());
}

TEST(Copy, AsksAgainForMissingSource) {
    Region east = a_region();
    const Dialog retry = asked("That file does not exist, Do you want to retry?", "yes", "yes,no");
    east.chooses_file("/none").answers_yes().chooses_file("/none").answers_no();
    EXPECT_EQ(east.run({"A=27", "R=n"}).dialogs(),
              (Dialogs{chooser(east), retry, chooser(east), retry}));
}

TEST(Copy, KeepsSourceInUseWhenDestinationIsCancelled) {
    Region east = a_region().with_file("west.txt", OTHER_REGION);
    east.chooses_file(east.path("west.txt")).cancels().cancels();
    const Dialogs dialogs = east.run({"A=27"}).dialogs();
    ASSERT_EQ(dialogs.size(), 3u);
    EXPECT_EQ(region_in_use(dialogs[2]), "Select Query or Action for (west)");
}

TEST(Copy, DoesNothingWhenSourceIsCancelled) {
    Region east = a_region();
    east.cancels();
    EXPECT_EQ(east.run({"A=27", "R=n"}).dialogs(), Dialogs{chooser(east)});
}

TEST(Copy, AsksForSourceAgainWhenDestinationCannotBeCreated) {
    Region east = a_region();
    east.chooses_file(east.gatebits_path()).chooses_file(east.path("none/x.txt")).answers_yes();
    east.chooses_file(east.gatebits_path()).chooses_file(east.path("none/x.txt")).answers_no();
    EXPECT_EQ(east.run({"A=27", "R=n"}).dialogs(),
              (Dialogs{chooser(east), chooser(east), asked_for_another_location(), chooser(east),
                       chooser(east), asked_for_another_location()}));
    east.chooses_file(east.gatebits_path()).chooses_file(east.path(std::string(256, 'n')));
    east.answers_no();
    EXPECT_EQ(east.run({"A=27", "R=n"}).dialogs().back(), asked_for_another_location());
}

TEST(Copy, EndsWith99OnDamagedSource) {
    Region east = a_region().with_file("bad.txt", "gatewarden;\n");
    east.chooses_file(east.path("bad.txt"));
    const Result result = east.run({"A=27", "R=n"});
    EXPECT_EQ(result.status, 99);
}

TEST(Copy, CopiesWithoutChecker) {
    Region east = a_region().without_checker();
    east.chooses_file(east.gatebits_path()).chooses_file(east.path("copy.txt"));
    EXPECT_EQ(east.run({"A=27", "R=n"}).dialogs().size(), 3u);
    EXPECT_EQ(east.file("copy.txt"), east.gatebits());
}

// The guided walks. A cancelled step leads to the next.

/// The beginning of each dialog's text.
std::vector<std::string> subjects(const Dialogs& dialogs) {
    std::vector<std::string> texts;
    for (const Dialog& dialog : dialogs) texts.push_back(dialog.args.back().substr(0, 36));
    return texts;
}

using Words = std::vector<std::string>;

TEST(Walk, AsksForImportantFields) {
    Region east = a_region().with_line(2, "W:depot;{stage}/depot;O;");
    for (int i = 0; i < 6; ++i) east.cancels();
    const Result result = east.run({"A=28", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(
        subjects(result.dialogs()),
        (Words{"Change the value of #!gatescope_unix", "Input a Windows Policy Depot (i.e. \\",
               "Input a UNIX Policy Depot (i.e. /net", "Input a Windows Parent Gatebits File",
               "Input a UNIX Parent Gatebits File (i", "Current bit state: (0000000000000000"}));
    const Words checks = checks_of(east, result);
    EXPECT_EQ(checks.size(), 2u + 2u + 1u + 1u + 2u + 1u);
    EXPECT_EQ(checks.back(), "-check");
}

TEST(Walk, AsksForEveryField) {
    Region east = a_region().with_line(2, "W:depot;{stage}/depot;O;");
    for (int i = 0; i < 23; ++i) east.cancels();
    const Result result = east.run({"A=29", "R=n"});
    EXPECT_EQ(
        subjects(result.dialogs()),
        (Words{"Change the value of #!gatescope_unix",  "Change the value of #!gatescope_wind",
               "Change the value of #!gatescope_unix",  "Change the value of #!gatescope_wind",
               "Change the value of #!gatescope_relo",  "Change the value of #!gatescope_relo",
               "Change the value of #!gatescope_relo",  "Change the value of #!gatescope_relo",
               "Input a Windows Policy Depot (i.e. \\", "Input a UNIX Policy Depot (i.e. /net",
               "Input a Windows Parent Gatebits File",  "Input a UNIX Parent Gatebits File (i",
               "Select a Region Logging Personality.",  "Input an optional Windows Region Not",
               "Input an optional UNIX Region Notify",  "Input a Region Restricted Access Lis",
               "Input a Region Special Access List (",  "Input a MOTD (i.e. Any String not co",
               "Input a MOTD Restriction List (i.e. ",  "Select Per-VOB Functionality Bits.  ",
               "Current bit state: (0000000000000000",  "Input an alias name (i.e. some_alias",
               "Creating value for New Command Key 0"}));
    EXPECT_EQ(checks_of(east, result).back(), "-check");
}

TEST(Walk, IsOfferedForANewFile) {
    Region all = a_region();
    all.chooses_file(all.path("new.txt")).answers_yes();
    for (int i = 0; i < 10; ++i) all.cancels();
    // The parents and the notify programs need a depot.
    all.answers_no().answers_no().cancels().answers_no().answers_no();
    for (int i = 0; i < 8; ++i) all.cancels();
    const Dialogs dialogs = all.run({"A=26", "R=n"}).dialogs();
    EXPECT_EQ(dialogs.size(), 25u);
    Region important = a_region();
    important.chooses_file(important.path("new.txt")).answers_no();
    important.cancels().cancels().cancels().answers_no().answers_no().cancels();
    const Result result = important.run({"A=26", "R=n"});
    EXPECT_EQ(result.dialogs().size(), 8u);
    EXPECT_EQ(result.calls_of("gatewarden").back(), (Args{important.path("new.txt"), "-check"}));
}

TEST(Walk, WritesConfirmedValues) {
    Region east = a_region();
    const std::string before = east.gatebits();
    east.cancels().types("W:depot").answers_yes().cancels().types("W:p").answers_yes();
    east.cancels().cancels();
    east.run({"A=28", "R=n"});
    EXPECT_EQ(east.gatebits(), with_replaced(before, "\n;" + east.path("depot") + ";O;\n;;\n",
                                             "\nW:depot;" + east.path("depot") + ";O;\nW:p;;\n"));
}

}  // namespace
}  // namespace gatescope
