#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "actions/requests.h"
#include "matches.h"
#include "messages/arguments.h"
#include "messages/bit_names.h"
#include "messages/command_names.h"
#include "messages/environment.h"
#include "messages/identity.h"
#include "messages/policy_texts.h"

namespace gatescope {
namespace {

using Lines = std::vector<std::string>;
using Names = std::set<std::string>;

Lines lines_of(const std::string& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    Lines lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

/// The lines between one ".Sh" and the next.
Lines section(const std::string& page, const std::string& heading) {
    Lines found;
    bool inside = false;
    for (const std::string& line : lines_of(std::string(MANUAL_DIRECTORY "/") + page)) {
        if (line.starts_with(".Sh ")) {
            inside = line == ".Sh " + heading;
        } else if (inside) {
            found.push_back(line);
        }
    }
    EXPECT_FALSE(found.empty()) << page << " has no section " << heading;
    return found;
}

/// The rest of each line that begins with `macro`.
std::vector<std::string> operands(const Lines& lines, const std::string& macro) {
    std::vector<std::string> found;
    for (const std::string& line : lines) {
        if (line.starts_with(macro)) found.push_back(line.substr(macro.size()));
    }
    return found;
}

/// The tag of each item with the line after it.
std::set<std::pair<std::string, std::string>> items(const Lines& lines, const std::string& macro) {
    std::set<std::pair<std::string, std::string>> found;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
        if (lines[i].starts_with(macro)) found.emplace(lines[i].substr(macro.size()), lines[i + 1]);
    }
    return found;
}

std::string without_number(std::string_view label) {
    return std::string(label.substr(std::string_view("A01 - ").size()));
}

void expect_requests(RequestKind kind, const std::string& heading, const std::string& letter) {
    std::set<std::pair<std::string, std::string>> wanted;
    for (const Request& request : all_requests()) {
        if (request.kind != kind) continue;
        wanted.emplace(letter + std::to_string(request.number), without_number(request.label));
    }
    EXPECT_EQ(items(section("gatescope.1", heading), ".It Cm "), wanted);
}

/// "F= Ns Ar file" and "-ver" as they are typed.
std::string spelling(const std::string& operand) {
    return operand.substr(0, operand.find(' '));
}

}  // namespace

TEST(ManualPage, ListsExactlyTheKnownArguments) {
    Names wanted;
    for (const KnownArgument& argument : KNOWN_ARGUMENTS) wanted.emplace(argument.spelling);
    Names found;
    for (const auto& tag : operands(section("gatescope.1", "DESCRIPTION"), ".It Cm ")) {
        EXPECT_TRUE(found.insert(spelling(tag)).second) << tag << " stands twice";
    }
    EXPECT_EQ(found, wanted);
}

TEST(ManualPage, SynopsisShowsEveryArgumentOfAnOperator) {
    const Lines synopsis = section("gatescope.1", "SYNOPSIS");
    std::string all;
    for (const std::string& line : synopsis) all += line + " ";
    Names known;
    for (const KnownArgument& argument : KNOWN_ARGUMENTS) {
        known.emplace(argument.spelling);
        if (argument.for_installer) continue;
        EXPECT_NE(all.find(argument.spelling), std::string::npos) << argument.spelling;
    }
    const auto arguments = matches(all, "(-[a-z_]+|[A-Z]=)");
    EXPECT_GT(arguments.size(), 10U);
    for (const std::string& argument : arguments) {
        EXPECT_TRUE(known.contains(argument)) << argument;
    }
}

TEST(ManualPage, ListsEveryQueryWithItsTitle) {
    expect_requests(RequestKind::QUERY, "QUERIES", "Q=");
}

TEST(ManualPage, ListsEveryActionWithItsTitle) {
    expect_requests(RequestKind::ACTION, "ACTIONS", "A=");
}

TEST(ManualPage, ListsTitlesOfLiteEdition) {
    const auto found = operands(section("gatescope.1", "QUERIES"), ".Pq lite edition: ");
    std::vector<std::string> wanted;
    for (const Request& request : all_requests()) {
        if (request.lite_label != nullptr) wanted.push_back(without_number(request.lite_label));
    }
    EXPECT_EQ(found, wanted);
}

TEST(ManualPage, ListsGuardedActions) {
    std::vector<std::string> wanted;
    for (const Request& request : all_requests()) {
        if (request.guarded) wanted.push_back(std::to_string(request.number));
    }
    for (const std::string& line : section("gatescope.1", "ACTIONS")) {
        if (!line.starts_with("Actions 4, ")) continue;
        EXPECT_EQ(matches(line, "[0-9]+"), wanted);
        return;
    }
    FAIL() << "no line lists them";
}

TEST(ManualPage, ListsEveryBit) {
    std::set<std::pair<std::string, std::string>> wanted;
    int number = 0;
    for (const char* name : GATEWARDEN_BITS_DESC) {
        wanted.emplace(std::to_string(number++), std::string(".Dv ") + name);
    }
    EXPECT_EQ(items(section("gatescope.1", "BITS"), ".It "), wanted);
}

TEST(ManualPage, ListsEveryCommandInOrder) {
    std::vector<std::string> found;
    for (const auto& command : operands(section("gatescope.1", "COMMANDS"), ".Cm ")) {
        found.push_back(spelling(command));
    }
    const std::vector<std::string> wanted(TRIGGERABLE_COMMANDS.begin(), TRIGGERABLE_COMMANDS.end());
    EXPECT_EQ(found, wanted);
}

TEST(ManualPage, ListsExactlyTheKnownVariables) {
    Names wanted;
    for (const EnvironmentVariable& variable : ENVIRONMENT) wanted.insert(variable.name);
    Names found;
    for (const auto& tag : operands(section("gatescope.1", "ENVIRONMENT"), ".It Ev ")) {
        EXPECT_TRUE(found.insert(tag).second) << tag << " stands twice";
    }
    EXPECT_EQ(found, wanted);
}

TEST(ManualPage, MentionsOnlyKnownVariables) {
    Names known;
    for (const EnvironmentVariable& variable : ENVIRONMENT) known.insert(variable.name);
    for (const char* page : {"gatescope.1", "gatescope-files.5"}) {
        for (const std::string& line : lines_of(std::string(MANUAL_DIRECTORY "/") + page)) {
            for (const std::string& name : matches(line, "Ev ([A-Za-z_]+)")) {
                EXPECT_TRUE(known.contains(name)) << name;
            }
        }
    }
}

TEST(ManualPage, ListsExitStatuses) {
    const auto found = operands(section("gatescope.1", "EXIT STATUS"), ".It ");
    EXPECT_EQ(found, (std::vector<std::string>{"0", "1", "99", "110"}));
}

TEST(ManualPage, ExplainsTrustInPolicyFile) {
    const Lines security = section("gatescope.1", "SECURITY CONSIDERATIONS");
    EXPECT_EQ(operands(security, ".Ss "),
              (std::vector<std::string>{"What reaches the shell",
                                        "Why the policy file must be trusted", "Strict quoting"}));
}

TEST(ManualPage, ListsSettingsInOrder) {
    const auto found = operands(section("gatescope-files.5", "GATEBITS FILE"), ".It Li ");
    const std::vector<std::string> wanted(GS_VAR_NAME.begin(), GS_VAR_NAME.end());
    EXPECT_EQ(found, wanted);
}

}  // namespace gatescope
