// The plan of the house: includes run downwards only.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace gatescope {

namespace fs = std::filesystem;

namespace {

const fs::path SOURCE = fs::path(SOURCE_DIRECTORY) / "src";

/// A folder is a floor; from the ground up.
const std::vector<std::string> FLOORS = {"messages", "base",    "dialog", "policy",
                                         "logs",     "pruning", "report", "queries",
                                         "actions",  "main",    "history"};

/// The floor of a file, given below src/, from 1; 0 when it stands on none.
int floor_of(const fs::path& file) {
    const auto found = std::find(FLOORS.begin(), FLOORS.end(), file.parent_path());
    return found == FLOORS.end() ? 0 : static_cast<int>(found - FLOORS.begin()) + 1;
}

std::vector<fs::path> sources() {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(SOURCE)) {
        const auto suffix = entry.path().extension();
        if (suffix == ".cpp" || suffix == ".h") files.push_back(fs::relative(entry.path(), SOURCE));
    }
    return files;
}

std::vector<std::string> lines_of(const fs::path& file) {
    std::ifstream stream(SOURCE / file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

/// The house's own files that `file` includes.
std::vector<fs::path> includes_of(const fs::path& file) {
    static const std::regex include("^\\s*#\\s*include\\s*\"([^\"]+)\".*");
    std::vector<fs::path> included;
    std::smatch match;
    for (const std::string& line : lines_of(file)) {
        if (std::regex_match(line, match, include)) included.emplace_back(match[1].str());
    }
    return included;
}

TEST(Floors, TheWholeHouseIsSeen) {
    EXPECT_GT(sources().size(), 50u);
    EXPECT_EQ(floor_of("main/main.cpp"), 10);
    EXPECT_EQ(floor_of("base/text.h"), 2);
    EXPECT_EQ(floor_of("elsewhere/x.h"), 0);
    EXPECT_FALSE(includes_of("main/main.cpp").empty());
}

TEST(Floors, EveryFileStandsOnOne) {
    for (const fs::path& file : sources()) EXPECT_NE(floor_of(file), 0) << file;
}

TEST(Floors, IncludesRunDownwardsOnly) {
    for (const fs::path& file : sources()) {
        for (const fs::path& included : includes_of(file)) {
            EXPECT_TRUE(fs::exists(SOURCE / included)) << file << " includes " << included;
            EXPECT_LE(floor_of(included), floor_of(file)) << file << " includes " << included;
        }
    }
}

TEST(Floors, NoFileIsTooLongToRead) {
    constexpr std::size_t LONGEST = 350;
    for (const fs::path& file : sources()) EXPECT_LE(lines_of(file).size(), LONGEST) << file;
}

/// A header and its implementation are one.
std::string subject_of(fs::path file) {
    return file.replace_extension();
}

/// A subject's way back to itself, if there is one, over what it includes.
std::string circle_from(const std::string& start,
                        const std::map<std::string, std::set<std::string>>& included) {
    std::vector<std::string> to_visit = {start};
    std::set<std::string> seen;
    while (!to_visit.empty()) {
        const std::string subject = to_visit.back();
        to_visit.pop_back();
        for (const std::string& next : included.at(subject)) {
            if (next == start) return start + " includes ... " + subject + " includes " + start;
            if (seen.insert(next).second) to_visit.push_back(next);
        }
    }
    return "";
}

/// With floors that hold, no two folders include each other; so neither do two files of two
/// folders, and those of one folder may not either.
TEST(Floors, NoFileIncludesItselfByAnyWay) {
    std::map<std::string, std::set<std::string>> included;
    for (const fs::path& file : sources()) {
        auto& subjects = included[subject_of(file)];
        for (const fs::path& other : includes_of(file)) {
            if (subject_of(other) != subject_of(file)) subjects.insert(subject_of(other));
        }
    }
    for (const auto& [subject, others] : included) EXPECT_EQ(circle_from(subject, included), "");
}

TEST(Floors, NoTwoFoldersIncludeEachOther) {
    std::set<std::pair<std::string, std::string>> pairs;
    for (const fs::path& file : sources()) {
        for (const fs::path& other : includes_of(file)) {
            if (file.parent_path() != other.parent_path()) {
                pairs.emplace(file.parent_path(), other.parent_path());
            }
        }
    }
    EXPECT_GT(pairs.size(), 10u);
    for (const auto& [from, to] : pairs) EXPECT_EQ(pairs.count({to, from}), 0u) << from << to;
}

TEST(Floors, MessagesHoldNoCode) {
    // A table has no parentheses outside its texts and comments, other than an attribute's.
    static const std::regex text("\"([^\"\\\\]|\\\\.)*\"");
    static const std::regex comment("//.*");
    static const std::regex words_of_code("\\b(if|for|while|return|switch|operator)\\b|[()]");
    static const std::regex assertion("static_assert\\s*\\([^;]*\\);");
    for (const fs::path& file : sources()) {
        if (file.parent_path() != "messages") continue;
        EXPECT_EQ(file.extension(), ".h") << file;
        std::string rest;
        for (const std::string& line : lines_of(file)) {
            rest += std::regex_replace(std::regex_replace(line, text, "T"), comment, "") + "\n";
        }
        rest = std::regex_replace(rest, assertion, "");
        std::smatch found;
        EXPECT_FALSE(std::regex_search(rest, found, words_of_code))
            << file << ": " << found.str() << " in "
            << found.prefix().str().substr(static_cast<std::size_t>(
                   std::max<std::ptrdiff_t>(0, found.prefix().length() - 80)));
    }
}

TEST(Floors, MessagesIncludeNothingButMessages) {
    for (const fs::path& file : sources()) {
        if (file.parent_path() != "messages") continue;
        for (const fs::path& included : includes_of(file)) {
            EXPECT_EQ(included.parent_path(), "messages") << file;
        }
    }
}

TEST(Floors, MessagesAreConstants) {
    static const std::regex declaration("^(inline|static|extern|const|char|std::|int )");
    for (const fs::path& file : sources()) {
        if (file.parent_path() != "messages") continue;
        for (const std::string& line : lines_of(file)) {
            if (std::regex_search(line, declaration)) {
                EXPECT_TRUE(line.starts_with("inline constexpr ")) << file << ": " << line;
            }
        }
    }
}

}  // namespace
}  // namespace gatescope
