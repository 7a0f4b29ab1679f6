#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "actions/requests.h"
#include "messages/arguments.h"
#include "messages/bit_names.h"
#include "messages/command_names.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

using Words = std::vector<std::string>;

constexpr char DEFAULT_BREAKS[] = " \t\n\"'><=;|&(:";
constexpr char BREAKS_WITHOUT_EQUALS[] = " \t\n\"'><;|&(:";

/// Values of COMP_TYPE: the kind of completion.
constexpr char TAB[] = "9";
constexpr char INSERT_ALL[] = "42";
constexpr char MENU[] = "37";

std::string quoted_for_shell(const std::string& text) {
    std::string word = "'";
    for (const char character : text)
        word += character == '\'' ? "'\\''" : std::string(1, character);
    return word + "'";
}

/// Runs a script in bash and returns the lines that it prints.
Words bash(const std::string& script) {
    FILE* output = popen(("bash --norc --noprofile -c " + quoted_for_shell(script)).c_str(), "r");
    std::string text;
    std::array<char, 4096> part{};
    for (std::size_t n = 0; (n = std::fread(part.data(), 1, part.size(), output)) > 0;) {
        text.append(part.data(), n);
    }
    EXPECT_EQ(pclose(output), 0);
    Words lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const auto end = text.find('\n', begin);
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

struct Setting {
    std::string breaks = DEFAULT_BREAKS;
    std::string key = TAB;
    std::string directory = "/";
};

/// The completions that Tab offers at the end of `line`.
Words offered(const std::string& line, const Setting& setting = {}) {
    const auto broken = line.find_last_of(setting.breaks);
    const std::string typed = line.substr(broken + 1);
    return bash("cd " + quoted_for_shell(setting.directory) + " && source " +
                quoted_for_shell(COMPLETION_SCRIPT) + " && COMP_LINE=" + quoted_for_shell(line) +
                " COMP_POINT=" + std::to_string(line.size()) + " COMP_TYPE=" + setting.key +
                " COMP_WORDBREAKS=" + quoted_for_shell(setting.breaks) +
                " && _gatescope gatescope " + quoted_for_shell(typed) +
                " '' && if ((${#COMPREPLY[@]})); then printf '%s\\n' \"${COMPREPLY[@]}\"; fi");
}

Words titled(RequestKind kind) {
    Words words;
    for (const Request& request : all_requests()) {
        if (request.kind != kind) continue;
        words.push_back(std::to_string(request.number) + " - " +
                        std::string(request.label).substr(6));
    }
    return words;
}

Words commands(const std::string& prefix = "") {
    Words words;
    for (const auto command : TRIGGERABLE_COMMANDS) words.push_back(prefix + std::string(command));
    return words;
}

/// All first arguments of an operator: parameters, switches, options.
Words all_arguments() {
    Words words;
    for (const auto kind : {ArgumentKind::PARAMETER, ArgumentKind::SWITCH, ArgumentKind::OPTION}) {
        for (const KnownArgument& argument : KNOWN_ARGUMENTS) {
            if (argument.kind != kind || argument.for_installer) continue;
            words.emplace_back(argument.spelling);
        }
    }
    return words;
}

Words with(Words words, const std::string& last) {
    words.push_back(last);
    return words;
}

}  // namespace

TEST(Completion, OffersEveryArgumentOfAnOperatorAtTheStart) {
    EXPECT_EQ(offered("gatescope "), all_arguments());
}

TEST(Completion, OffersOptionsOnlyAsTheFirstArgument) {
    EXPECT_EQ(offered("gatescope -"),
              (Words{"-data_gen", "-ver", "-help", "-general_test", "-kudos"}));
    EXPECT_EQ(offered("gatescope Q=1 -"), Words{"-data_gen"});
    EXPECT_EQ(offered("gatescope -data_gen -"), Words{});
}

TEST(Completion, OffersNothingAfterAnOption) {
    EXPECT_EQ(offered("gatescope -ver "), Words{});
}

TEST(Completion, OffersEveryQueryWithItsTitle) {
    EXPECT_EQ(offered("gatescope Q="), titled(RequestKind::QUERY));
}

TEST(Completion, OffersEveryActionWithItsTitle) {
    EXPECT_EQ(offered("gatescope A="), titled(RequestKind::ACTION));
}

TEST(Completion, OffersTitlesOfMatchingActions) {
    const Words offers = offered("gatescope A=2");
    ASSERT_EQ(offers.size(), 11U);
    EXPECT_EQ(offers.front(), "2 - Modify Current Gatebits file... (A03-A23)");
    EXPECT_EQ(offers.back(), "29 - Guide through ALL Gatebits file fields");
}

TEST(Completion, CompletesToNumberAloneWhenOnlyOneMatches) {
    EXPECT_EQ(offered("gatescope A=13"), Words{"13"});
    EXPECT_EQ(offered("gatescope Q=6"), Words{"6"});
}

TEST(Completion, OffersNothingForInvalidNumbers) {
    EXPECT_EQ(offered("gatescope A=3"), Words{});
    EXPECT_EQ(offered("gatescope Q=7"), Words{});
}

TEST(Completion, OffersNumbersWithoutTitlesForInsertAllAndMenu) {
    for (const char* key : {INSERT_ALL, MENU}) {
        EXPECT_EQ(offered("gatescope Q=", {.key = key}), (Words{"1", "2", "3", "4", "5", "6"}));
    }
}

TEST(Completion, OffersEveryCommandAndAsterisk) {
    EXPECT_EQ(offered("gatescope C="), with(commands(), "\\*"));
}

TEST(Completion, OffersMatchingCommands) {
    EXPECT_EQ(offered("gatescope Q=1 C=check"), (Words{"checkin", "checkout"}));
    EXPECT_EQ(offered("gatescope Q=1 C=mkbl"), (Words{"mkbl", "mkbl_complete"}));
}

TEST(Completion, IsCaseSensitive) {
    EXPECT_EQ(offered("gatescope C=Check"), Words{});
}

TEST(Completion, QuotesAsterisk) {
    EXPECT_EQ(offered("gatescope C=\\"), with(commands(), "\\*"));
    EXPECT_EQ(offered("gatescope C=\\*"), Words{"\\*"});
    EXPECT_EQ(offered("gatescope K="), Words{"\\*"});
}

TEST(Completion, OffersEveryBitWithItsName) {
    Words wanted;
    for (const char* name : GATEWARDEN_BITS_DESC) {
        wanted.push_back(std::to_string(wanted.size()) + " - " + name);
    }
    EXPECT_EQ(offered("gatescope Q=2 B="), with(wanted, "\\*"));
    EXPECT_EQ(offered("gatescope Q=2 B=23"), Words{"23"});
}

TEST(Completion, OffersYesAndNo) {
    EXPECT_EQ(offered("gatescope Q=1 D="), (Words{"y", "n"}));
    EXPECT_EQ(offered("gatescope Q=1 R="), (Words{"y", "n"}));
    EXPECT_EQ(offered("gatescope Q=1 R=n"), Words{"n"});
}

TEST(Completion, OffersLocalUsers) {
    EXPECT_EQ(offered("gatescope U=roo"), Words{"root"});
}

TEST(Completion, OffersNoParameterTwice) {
    const Words offers = offered("gatescope F=a C=lock ");
    EXPECT_EQ(offers, (Words{"Q=", "A=", "U=", "K=", "B=", "D=", "R=", "-data_gen"}));
}

TEST(Completion, OffersNoActionBesideAQuery) {
    EXPECT_EQ(offered("gatescope Q=1 A"), Words{});
    EXPECT_EQ(offered("gatescope A=1 Q"), Words{});
}

TEST(Completion, OffersNoDisplayAfterARepeat) {
    EXPECT_EQ(offered("gatescope D=n R"), Words{"R="});
    EXPECT_EQ(offered("gatescope R=n D"), Words{});
}

TEST(Completion, OffersFiles) {
    const ScratchDirectory directory;
    directory.write("gatebits.txt", "text\n");
    directory.write("gate keeper.txt", "text\n");
    directory.write("other.txt", "text\n");
    EXPECT_EQ(offered("gatescope F=gateb", {.directory = directory.path()}), Words{"gatebits.txt"});
    EXPECT_EQ(offered("gatescope F=o", {.directory = directory.path()}), Words{"other.txt"});
    EXPECT_EQ(offered("gatescope F=zzz", {.directory = directory.path()}), Words{});
}

TEST(Completion, OffersFilesWithBlanks) {
    const ScratchDirectory directory;
    directory.write("gate keeper.txt", "text\n");
    // The shell passes the word from its last break; a quoted blank is none.
    Setting setting = {.directory = directory.path()};
    setting.breaks = "=";
    EXPECT_EQ(offered("gatescope F=gate\\ k", setting), Words{"gate keeper.txt"});
    EXPECT_EQ(offered("gatescope F=\"gate k", setting), Words{"gate keeper.txt"});
}

TEST(Completion, OffersRestOfFileNameSplitByBash) {
    const ScratchDirectory directory;
    directory.write("a=b=c.txt", "text\n");
    EXPECT_EQ(offered("gatescope F=a=b", {.directory = directory.path()}), Words{"b=c.txt"});
}

TEST(Completion, CompletesWhereBashDoesNotBreakAtEqualsSigns) {
    const ScratchDirectory directory;
    directory.write("gatebits.txt", "text\n");
    Setting setting = {.directory = directory.path()};
    setting.breaks = BREAKS_WITHOUT_EQUALS;
    EXPECT_EQ(offered("gatescope F=gateb", setting), Words{"F=gatebits.txt"});
    EXPECT_EQ(offered("gatescope C=", setting), with(commands("C="), "C=\\*"));
    EXPECT_EQ(offered("gatescope A=13", setting), Words{"A=13"});
    EXPECT_EQ(offered("gatescope A=", setting), titled(RequestKind::ACTION));
}

TEST(Completion, IgnoresTextAfterCursor) {
    EXPECT_EQ(bash("source " + quoted_for_shell(COMPLETION_SCRIPT) +
                   " && COMP_LINE='gatescope Q= R=n' COMP_POINT=12 COMP_TYPE=42"
                   " && _gatescope gatescope '' '=' && printf '%s\\n' \"${COMPREPLY[@]}\""),
              (Words{"1", "2", "3", "4", "5", "6"}));
}

}  // namespace gatescope
