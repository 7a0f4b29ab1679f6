#include <gtest/gtest.h>

#include "scenes/region.h"

namespace gatescope {
namespace {

constexpr char USAGE_TEXT[] =
    "Usage for gatescope Version " GATESCOPE_VERSION
    " (build: 20200630.09:37a)\n\n"
    "gatescope -ver | -help | {F=gatebits_file {Q=query_number | A=action_number} \n"
    "{C=command} {U=user} {K=key_number} {B=bit_number} {D=y|n} {R=y|n}}\n\n\n"
    "Where:\n\n"
    "-ver displays the version of gatescope\n"
    "-help displays this dialog\n\n"
    "gatebits_file is the path to a valid 'gatebits_file' for Gatewarden\n"
    "query_number = [1..6]\n"
    "action_number = [1..29]\n"
    "command = clearcase triggerable command (i.e.'checkin' , 'rmelem') or '*' for all commands.\n"
    "user = any username or '*' for all users.\n"
    "key_number = number [0..] or '*' for all keys.\n"
    "bit_number = number [0..23] or '*' for all bits.\n"
    "D = 'y' to display the graph after building or 'n' to not display the graph.  The default is "
    "'y'.\n"
    "R = 'y' to ask for more queries or actions after completing one or 'n' to exit after the "
    "first completed one (intended for scheduled jobs).\n"
    "      The default is 'y'.\n\n"
    "For any argument without a default Gatescope will ask the operator as needed.\n"
    "Any argument:value not needed for a choosen query or action will be ignored.\n";

std::string unknown(const std::string& argument) {
    return "ERROR: Unknown parameter (" + argument + ") invalid.";
}
std::string duplicate(const std::string& letter) {
    return "ERROR: Duplicate parameter '" + letter + "' defined.";
}
std::string incomplete(const std::string& argument) {
    return "ERROR: Incomplete parameter '" + argument + "' defined.";
}
std::string bad_query(const std::string& argument) {
    return "ERROR: Query parameter (" + argument +
           ") invalid.  Query parameter must be between 1 and 6 inclusive.";
}
std::string bad_action(const std::string& argument) {
    return "ERROR: Action parameter (" + argument +
           ") invalid.  Action parameter must be between 1 and 29 inclusive.";
}
std::string bad_command(const std::string& argument) {
    return "ERROR: Command parameter (" + argument +
           ") invalid.\n\nCommand must be a triggerable command (i.e. 'checkin' 'rmelem') or a '*' "
           "for (all comands).";
}
std::string bad_bit(const std::string& argument) {
    return "ERROR: Bit parameter (" + argument +
           ") invalid.  Bit parameter must be between 0 and 23 inclusive or '*' for all.";
}
std::string bit_with_letters(const std::string& argument) {
    return "ERROR: Bit parameter (" + argument +
           ") invalid.  Bit value contains illegal characters.  Bit parameter must be between 0 "
           "and 23 inclusive or '*' for all.";
}
std::string bad_key(const std::string& argument) {
    return "ERROR: Key parameter (" + argument +
           ") invalid (contains invalid characters).  Key must be set to a number >= 0 or '*' for "
           "all.";
}
std::string bad_display(const std::string& argument) {
    return "ERROR: Display parameter (" + argument +
           ") invalid.  Display must be set to 'y' or 'n'. Default is 'y'";
}
std::string bad_repeat(const std::string& argument) {
    return "ERROR: Repeat parameter (" + argument +
           ") invalid.  Repeat must be set to 'y' or 'n'. Default is 'y'";
}
const std::string EXCLUSIVE =
    "ERROR: Action parameter and Query parameter are mutually exclusive.  Nothing done.";

struct ArgumentCase {
    const char* name;
    Args args;
    /// Of a refused command line.
    std::string message = {};
};

class RefusedCommandLine : public testing::TestWithParam<ArgumentCase> {};

TEST_P(RefusedCommandLine, EndsWithItsMessageAndStatus99) {
    Region east = a_region().without_dialogs();
    const Result result = east.run(GetParam().args);
    EXPECT_EQ(result.out, GetParam().message + "\n");
    EXPECT_EQ(result.status, 99);
    EXPECT_TRUE(result.calls.empty());
}

INSTANTIATE_TEST_SUITE_P(
    CommandLine, RefusedCommandLine,
    testing::Values(
        ArgumentCase{"NoEqualsSign", {"checkin"}, unknown("checkin")},
        ArgumentCase{"SingleCharacter", {"Q"}, unknown("Q")},
        ArgumentCase{"EmptyArgument", {""}, unknown("")},
        ArgumentCase{"LowerCaseLetter", {"a=3"}, unknown("a=3")},
        ArgumentCase{"UnknownLetter", {"Z=3"}, unknown("Z=3")},
        ArgumentCase{"HelpIsNoOptionBesideOthers", {"-help", "Q=1"}, unknown("-help")},
        ArgumentCase{"VerIsNoOptionBesideOthers", {"R=n", "-ver"}, unknown("-ver")},
        ArgumentCase{"UnknownOption", {"-verbose"}, unknown("-verbose")},
        ArgumentCase{"OptionNotTheOnlyOne", {"-kudos", "-kudos"}, unknown("-kudos")},
        ArgumentCase{"NothingAfterTheEquals", {"Q="}, incomplete("Q=")},
        ArgumentCase{"NothingAfterAnUnknownLetter", {"z="}, incomplete("z=")},
        ArgumentCase{"QueryZero", {"Q=0"}, bad_query("Q=0")},
        ArgumentCase{"QuerySeven", {"Q=7"}, bad_query("Q=7")},
        ArgumentCase{"QueryWord", {"Q=all"}, bad_query("Q=all")},
        ArgumentCase{"QueryMinus", {"Q=-1"}, bad_query("Q=-1")},
        ArgumentCase{"QueryPlus", {"Q=+1"}, bad_query("Q=+1")},
        ArgumentCase{"QueryBlank", {"Q= 1"}, bad_query("Q= 1")},
        ArgumentCase{"QueryHuge", {"Q=4294967297"}, bad_query("Q=4294967297")},
        ArgumentCase{"QueryHuger", {"Q=99999999999999999999"}, bad_query("Q=99999999999999999999")},
        ArgumentCase{"ActionZero", {"A=0"}, bad_action("A=0")},
        ArgumentCase{"ActionThirty", {"A=30"}, bad_action("A=30")},
        ArgumentCase{"ActionWord", {"A=x"}, bad_action("A=x")},
        ArgumentCase{"ActionMinus", {"A=-2"}, bad_action("A=-2")},
        ArgumentCase{"ActionHuge", {"A=4294967298"}, bad_action("A=4294967298")},
        ArgumentCase{"QueryThenAction", {"Q=1", "A=2"}, EXCLUSIVE},
        ArgumentCase{"ActionThenQuery", {"A=2", "Q=1"}, EXCLUSIVE},
        ArgumentCase{"QueryThenBadAction", {"Q=1", "A=99"}, EXCLUSIVE},
        ArgumentCase{"ActionTwice", {"A=2", "A=2"}, duplicate("A")},
        ArgumentCase{"ActionTwiceTheSecondBad", {"A=2", "A=99"}, duplicate("A")},
        ArgumentCase{"QueryTwice", {"Q=1", "Q=2"}, duplicate("Q")},
        ArgumentCase{"QueryTwiceBesideAction", {"Q=1", "Q=2", "A=2"}, duplicate("Q")},
        ArgumentCase{"CommandTwice", {"C=checkin", "C=*"}, duplicate("C")},
        ArgumentCase{"UserTwice", {"U=one", "U=two"}, duplicate("U")},
        ArgumentCase{"DisplayTwice", {"D=y", "D=n"}, duplicate("D")},
        ArgumentCase{"DisplayAfterRepeat", {"R=n", "D=y"}, duplicate("D")},
        ArgumentCase{"DisplayAfterRepeatIsNotLookedAt", {"R=n", "D=maybe"}, duplicate("D")},
        ArgumentCase{"FileTwice", {"F=gatebits.txt", "F=gatebits.txt"}, duplicate("F")},
        ArgumentCase{"FileTwiceTheSecondUnreadable", {"F=gatebits.txt", "F=none"}, duplicate("F")},
        ArgumentCase{"CommandInUpperCase", {"C=Checkin"}, bad_command("C=Checkin")},
        ArgumentCase{"CommandCutShort", {"C=mkbl_"}, bad_command("C=mkbl_")},
        ArgumentCase{"CommandStarAndMore", {"C=*x"}, bad_command("C=*x")},
        ArgumentCase{"CommandOfACommaOnly", {"C=,"}, bad_command("C=,")},
        ArgumentCase{"BitTwiceShowsTheLetter", {"B=1", "B=2"}, bad_bit("B")},
        ArgumentCase{"BitStarAndMore", {"B=*1"}, bad_bit("B=*1")},
        ArgumentCase{"BitAboveTheHighest", {"B=24"}, bad_bit("B=24")},
        ArgumentCase{"BitHuge", {"B=99999999999999999999"}, bad_bit("B=99999999999999999999")},
        ArgumentCase{"BitWithALetter", {"B=2a"}, bit_with_letters("B=2a")},
        ArgumentCase{"BitMinus", {"B=-1"}, bit_with_letters("B=-1")},
        ArgumentCase{"KeyTwiceSpeaksOfABit", {"K=1", "K=*"}, bad_bit("K")},
        ArgumentCase{"KeyStarAndMore", {"K=*1"}, bad_key("K=*1")},
        ArgumentCase{"KeyWithALetter", {"K=1a"}, bad_key("K=1a")},
        ArgumentCase{"KeyMinus", {"K=-1"}, bad_key("K=-1")},
        ArgumentCase{"DisplayWord", {"D=yes"}, bad_display("D=yes")},
        ArgumentCase{"DisplayOtherLetter", {"D=J"}, bad_display("D=J")},
        ArgumentCase{"RepeatWord", {"R=no"}, bad_repeat("R=no")},
        ArgumentCase{"RepeatOtherLetter", {"R=x"}, bad_repeat("R=x")},
        ArgumentCase{"TheFirstFaultEnds", {"R=x", "Q=0", "nonsense"}, bad_repeat("R=x")},
        ArgumentCase{"PercentSignsInTheArgument", {"C=100%d%s%n%%"}, bad_command("C=100%d%s%n%")}),
    [](const testing::TestParamInfo<ArgumentCase>& row) { return row.param.name; });

TEST(CommandLine, ListsOptionsOnStandardErrorAfterUnknownOption) {
    for (const std::string option : {"--help", "-h", "--version", "-V", "-verbose"}) {
        Region east = a_region().without_dialogs();
        const Result result = east.run({option});
        EXPECT_EQ(result.status, 99);
        EXPECT_EQ(result.out, unknown(option) + "\n");
        EXPECT_EQ(
            result.err,
            "gatescope: the options are -ver, -help, -general_test, -kudos and -data_gen, the "
            "parameters F=, Q=, A=, C=, U=, K=, B=, D= and R=; see gatescope(1)\n");
    }
}

TEST(CommandLine, ListsNoOptionsAfterOtherUnknownWord) {
    Region east = a_region().without_dialogs();
    EXPECT_EQ(east.run({"checkin"}).err, "");
}

TEST(CommandLine, LeavesErrorBoxOnScreen) {
    Region east = a_region();
    const Result result = east.run({"Q=9"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.dialogs(), Dialogs{griped(bad_query("Q=9"))});
}

TEST(CommandLine, ShowsUsageAsError) {
    Region east = a_region();
    const Result result = east.run({"-help"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.dialogs(), Dialogs{griped(USAGE_TEXT)});
}

TEST(CommandLine, PrintsUsageWithoutDialogs) {
    Region east = a_region().without_dialogs();
    const Result result = east.run({"-help"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.out, std::string(USAGE_TEXT) + "\n");
}

TEST(CommandLine, PrintsVersionWithoutDialogs) {
    Region east = a_region().without_dialogs();
    const Result result = east.run({"-ver"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out.substr(0, result.out.find('\n')),
              "gatescope version (" GATESCOPE_VERSION ").");
}

TEST(CommandLine, ShowsVersionInBoxWithoutWaiting) {
    Region east = a_region();
    const Result result = east.run({"-ver"});
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.dialogs().size(), 1u);
    const std::string text = result.dialogs().front().args.back();
    EXPECT_EQ(result.dialogs().front(), advised(text));
    EXPECT_TRUE(text.starts_with("gatescope version (" GATESCOPE_VERSION ").")) << text;
}

TEST(CommandLine, ShowsCreditsAndEndsWithZero) {
    Region east = a_region();
    const Result result = east.run({"-kudos"});
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.dialogs().size(), 1u);
    EXPECT_EQ(result.dialogs().front(), advised(result.dialogs().front().args.back()));
}

TEST(CommandLine, EndsWithZeroOnIdentify) {
    Region east = a_region().without_gatebits_file();
    const Result result = east.run({"-identify_self_as_gatescope"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(result.calls.empty());
}

TEST(CommandLine, RefusesActionThreeAfterLoadingRegion) {
    Region east = a_region().without_dialogs();
    const Result result = east.run({"A=3"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.out, "incomplete query coding in gatescope:main\n");

    Region west = a_region().without_dialogs().with_line(3, ";");
    EXPECT_EQ(west.run({"A=3"}).out,
              "ERROR: Missing or mangled parent gatebits file definition - missing data or "
              "semicolon(s) ';'\n");
}

// An accepted command line reaches the main menu, which is cancelled.

class AcceptedCommandLine : public testing::TestWithParam<ArgumentCase> {};

TEST_P(AcceptedCommandLine, ReachesTheMainMenu) {
    Region east = a_region();
    east.cancels();
    const Result result = east.run(GetParam().args);
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.dialogs().size(), 1u);
    EXPECT_EQ(result.dialogs().front().args.back(), "Select Query or Action for (east)");
}

INSTANTIATE_TEST_SUITE_P(
    CommandLine, AcceptedCommandLine,
    testing::Values(
        ArgumentCase{"Nothing", {}}, ArgumentCase{"AllBitsAndKeys", {"B=*", "K=*"}},
        ArgumentCase{"HighestBit", {"B=23"}}, ArgumentCase{"BitWithLeadingZeros", {"B=0007"}},
        ArgumentCase{"HugeKey", {"K=99999999999999999999999"}},
        ArgumentCase{"LastCommands", {"C=mkbl_complete"}}, ArgumentCase{"AllCommands", {"C=*"}},
        ArgumentCase{"TwoNeighboursOfTheListAsOneValue", {"C=checkin,checkout"}},
        ArgumentCase{"AnyUser", {"U=No Such User;*"}}, ArgumentCase{"DisplayInUpperCase", {"D=Y"}},
        ArgumentCase{"DisplayBeforeRepeat", {"D=y", "R=Y"}},
        ArgumentCase{"RepeatTwice", {"R=n", "R=y"}}, ArgumentCase{"FileNamed", {"F=gatebits.txt"}},
        ArgumentCase{"FileNamedAgainAfterAnUnreadableOne", {"F=none", "F=gatebits.txt"}}),
    [](const testing::TestParamInfo<ArgumentCase>& row) { return row.param.name; });

}  // namespace
}  // namespace gatescope
