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

struct Refusal {
    const char* name;
    Args args;
    std::string message;
};

class RefusedCommandLine : public testing::TestWithParam<Refusal> {};

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
        Refusal{"NoEqualsSign", {"checkin"}, unknown("checkin")},
        Refusal{"SingleCharacter", {"Q"}, unknown("Q")},
        Refusal{"EmptyArgument", {""}, unknown("")},
        Refusal{"LowerCaseLetter", {"a=3"}, unknown("a=3")},
        Refusal{"UnknownLetter", {"Z=3"}, unknown("Z=3")},
        Refusal{"HelpIsNoOptionBesideOthers", {"-help", "Q=1"}, unknown("-help")},
        Refusal{"VerIsNoOptionBesideOthers", {"R=n", "-ver"}, unknown("-ver")},
        Refusal{"UnknownOption", {"-verbose"}, unknown("-verbose")},
        Refusal{"OptionNotTheOnlyOne", {"-kudos", "-kudos"}, unknown("-kudos")},
        Refusal{"NothingAfterTheEquals", {"Q="}, incomplete("Q=")},
        Refusal{"NothingAfterAnUnknownLetter", {"z="}, incomplete("z=")},
        Refusal{"QueryZero", {"Q=0"}, bad_query("Q=0")},
        Refusal{"QuerySeven", {"Q=7"}, bad_query("Q=7")},
        Refusal{"QueryWord", {"Q=all"}, bad_query("Q=all")},
        Refusal{"QueryMinus", {"Q=-1"}, bad_query("Q=-1")},
        Refusal{"QueryPlus", {"Q=+1"}, bad_query("Q=+1")},
        Refusal{"QueryBlank", {"Q= 1"}, bad_query("Q= 1")},
        Refusal{"QueryHuge", {"Q=4294967297"}, bad_query("Q=4294967297")},
        Refusal{"QueryHuger", {"Q=99999999999999999999"}, bad_query("Q=99999999999999999999")},
        Refusal{"ActionZero", {"A=0"}, bad_action("A=0")},
        Refusal{"ActionThirty", {"A=30"}, bad_action("A=30")},
        Refusal{"ActionWord", {"A=x"}, bad_action("A=x")},
        Refusal{"ActionMinus", {"A=-2"}, bad_action("A=-2")},
        Refusal{"ActionHuge", {"A=4294967298"}, bad_action("A=4294967298")},
        Refusal{"QueryThenAction", {"Q=1", "A=2"}, EXCLUSIVE},
        Refusal{"ActionThenQuery", {"A=2", "Q=1"}, EXCLUSIVE},
        Refusal{"QueryThenBadAction", {"Q=1", "A=99"}, EXCLUSIVE},
        Refusal{"ActionTwice", {"A=2", "A=2"}, duplicate("A")},
        Refusal{"ActionTwiceTheSecondBad", {"A=2", "A=99"}, duplicate("A")},
        Refusal{"QueryTwice", {"Q=1", "Q=2"}, duplicate("Q")},
        Refusal{"QueryTwiceBesideAction", {"Q=1", "Q=2", "A=2"}, duplicate("Q")},
        Refusal{"CommandTwice", {"C=checkin", "C=*"}, duplicate("C")},
        Refusal{"UserTwice", {"U=one", "U=two"}, duplicate("U")},
        Refusal{"DisplayTwice", {"D=y", "D=n"}, duplicate("D")},
        Refusal{"DisplayAfterRepeat", {"R=n", "D=y"}, duplicate("D")},
        Refusal{"DisplayAfterRepeatIsNotLookedAt", {"R=n", "D=maybe"}, duplicate("D")},
        Refusal{"FileTwice", {"F=gatebits.txt", "F=gatebits.txt"}, duplicate("F")},
        Refusal{"FileTwiceTheSecondUnreadable", {"F=gatebits.txt", "F=none"}, duplicate("F")},
        Refusal{"CommandInUpperCase", {"C=Checkin"}, bad_command("C=Checkin")},
        Refusal{"CommandCutShort", {"C=mkbl_"}, bad_command("C=mkbl_")},
        Refusal{"CommandStarAndMore", {"C=*x"}, bad_command("C=*x")},
        Refusal{"CommandOfACommaOnly", {"C=,"}, bad_command("C=,")},
        Refusal{"BitTwiceShowsTheLetter", {"B=1", "B=2"}, bad_bit("B")},
        Refusal{"BitStarAndMore", {"B=*1"}, bad_bit("B=*1")},
        Refusal{"BitAboveTheHighest", {"B=24"}, bad_bit("B=24")},
        Refusal{"BitHuge", {"B=99999999999999999999"}, bad_bit("B=99999999999999999999")},
        Refusal{"BitWithALetter", {"B=2a"}, bit_with_letters("B=2a")},
        Refusal{"BitMinus", {"B=-1"}, bit_with_letters("B=-1")},
        Refusal{"KeyTwiceSpeaksOfABit", {"K=1", "K=*"}, bad_bit("K")},
        Refusal{"KeyStarAndMore", {"K=*1"}, bad_key("K=*1")},
        Refusal{"KeyWithALetter", {"K=1a"}, bad_key("K=1a")},
        Refusal{"KeyMinus", {"K=-1"}, bad_key("K=-1")},
        Refusal{"DisplayWord", {"D=yes"}, bad_display("D=yes")},
        Refusal{"DisplayOtherLetter", {"D=J"}, bad_display("D=J")},
        Refusal{"RepeatWord", {"R=no"}, bad_repeat("R=no")},
        Refusal{"RepeatOtherLetter", {"R=x"}, bad_repeat("R=x")},
        Refusal{"TheFirstFaultEnds", {"R=x", "Q=0", "nonsense"}, bad_repeat("R=x")},
        Refusal{"PercentSignsInTheArgument", {"C=100%d%s%n%%"}, bad_command("C=100%d%s%n%")}),
    [](const testing::TestParamInfo<Refusal>& row) { return row.param.name; });

TEST(CommandLine, AnUnknownOptionIsToldTheOptionsOnStandardError) {
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

TEST(CommandLine, AWordThatIsNoOptionIsToldNothingMore) {
    Region east = a_region().without_dialogs();
    EXPECT_EQ(east.run({"checkin"}).err, "");
}

TEST(CommandLine, AnErrorBoxStaysOnTheScreenAfterTheEnd) {
    Region east = a_region();
    const Result result = east.run({"Q=9"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.dialogs(), Dialogs{griped(bad_query("Q=9"))});
}

TEST(CommandLine, HelpShowsTheUsageAsAnError) {
    Region east = a_region();
    const Result result = east.run({"-help"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.dialogs(), Dialogs{griped(USAGE_TEXT)});
}

TEST(CommandLine, HelpGoesToStandardOutputWithoutDialogs) {
    Region east = a_region().without_dialogs();
    const Result result = east.run({"-help"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.out, std::string(USAGE_TEXT) + "\n");
}

TEST(CommandLine, VerShowsTheVersion) {
    Region east = a_region().without_dialogs();
    const Result result = east.run({"-ver"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out.substr(0, result.out.find('\n')),
              "gatescope version (" GATESCOPE_VERSION ").");
}

TEST(CommandLine, VerIsABoxThatNobodyWaitsFor) {
    Region east = a_region();
    const Result result = east.run({"-ver"});
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.dialogs().size(), 1u);
    const std::string text = result.dialogs().front().args.back();
    EXPECT_EQ(result.dialogs().front(), advised(text));
    EXPECT_TRUE(text.starts_with("gatescope version (" GATESCOPE_VERSION ").")) << text;
}

TEST(CommandLine, KudosShowsCreditsAndEndsWell) {
    Region east = a_region();
    const Result result = east.run({"-kudos"});
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.dialogs().size(), 1u);
    EXPECT_EQ(result.dialogs().front(), advised(result.dialogs().front().args.back()));
}

TEST(CommandLine, IdentifyDoesNothingElse) {
    Region east = a_region().without_gatebits_file();
    const Result result = east.run({"-identify_self_as_gatescope"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(result.calls.empty());
}

TEST(CommandLine, ActionThreeIsAnInternalFaultOnceTheRegionIsLoaded) {
    Region east = a_region().without_dialogs();
    const Result result = east.run({"A=3"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.out, "incomplete query coding in gatescope:main\n");

    Region west = a_region().without_dialogs().with_line(3, ";");
    EXPECT_EQ(west.run({"A=3"}).out,
              "ERROR: Missing or mangled parent gatebits file definition - missing data or "
              "semicolon(s) ';'\n");
}

// What is accepted comes as far as the main menu, which is cancelled.

class AcceptedCommandLine : public testing::TestWithParam<Refusal> {};

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
        Refusal{"Nothing", {}, ""}, Refusal{"AllBitsAndKeys", {"B=*", "K=*"}, ""},
        Refusal{"HighestBit", {"B=23"}, ""}, Refusal{"BitWithLeadingZeros", {"B=0007"}, ""},
        Refusal{"HugeKey", {"K=99999999999999999999999"}, ""},
        Refusal{"LastCommands", {"C=mkbl_complete"}, ""}, Refusal{"AllCommands", {"C=*"}, ""},
        Refusal{"TwoNeighboursOfTheListAsOneValue", {"C=checkin,checkout"}, ""},
        Refusal{"AnyUser", {"U=No Such User;*"}, ""}, Refusal{"DisplayInUpperCase", {"D=Y"}, ""},
        Refusal{"DisplayBeforeRepeat", {"D=y", "R=Y"}, ""},
        Refusal{"RepeatTwice", {"R=n", "R=y"}, ""}, Refusal{"FileNamed", {"F=gatebits.txt"}, ""},
        Refusal{"FileNamedAgainAfterAnUnreadableOne", {"F=none", "F=gatebits.txt"}, ""}),
    [](const testing::TestParamInfo<Refusal>& row) { return row.param.name; });

}  // namespace
}  // namespace gatescope
