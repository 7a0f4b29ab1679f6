// The plan of the house: includes run downwards only.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const fs::path SOURCE = fs::path(SOURCE_DIRECTORY) / "src";

/// The files of a folder that stand on another floor than the rest of it, without their suffixes.
struct Floor {
    int number;
    const char* folder;
    std::set<std::string> files;
};
const std::vector<Floor> EXCEPTIONS = {
    {6, "dialog", {"confirmations"}},
    {2, "dialog", {"messages", "clearprompt"}},
    {2,
     "base",
     {"process_end", "signals", "temporary_files", "child", "filled", "answer_file", "replace_file",
      "file_identity", "standard_streams", "search_path"}}};
const std::vector<Floor> FOLDERS = {{8, "main", {}},   {7, "actions", {}}, {7, "queries", {}},
                                    {6, "report", {}}, {5, "policy", {}},  {5, "logs", {}},
                                    {4, "dialog", {}}, {3, "base", {}},    {1, "messages", {}}};

/// The floor of a file, given below src/; 0 when it stands on none.
int floor_of(const fs::path& file) {
    const std::string folder = file.parent_path();
    const std::string subject = file.stem();
    for (const Floor& floor : EXCEPTIONS) {
        if (folder == floor.folder && floor.files.count(subject) > 0) return floor.number;
    }
    for (const Floor& floor : FOLDERS) {
        if (folder == floor.folder) return floor.number;
    }
    return 0;
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
    EXPECT_EQ(floor_of("main/main.cpp"), 8);
    EXPECT_EQ(floor_of("base/text.h"), 3);
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
