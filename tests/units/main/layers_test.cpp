// The folders of src are layers; includes go downwards only.

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

/// The layers, lowest first.
const std::vector<std::string> LAYERS = {"messages", "base",    "dialog",  "policy",
                                         "records",  "logs",    "pruning", "report",
                                         "queries",  "actions", "main",    "history"};

/// The layer of a file, given relative to src/, from 1; 0 when its folder is unknown.
int layer_of(const fs::path& file) {
    const auto found = std::find(LAYERS.begin(), LAYERS.end(), file.parent_path());
    return found == LAYERS.end() ? 0 : static_cast<int>(found - LAYERS.begin()) + 1;
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

/// The project's own files that `file` includes.
std::vector<fs::path> includes_of(const fs::path& file) {
    static const std::regex include("^\\s*#\\s*include\\s*\"([^\"]+)\".*");
    std::vector<fs::path> included;
    std::smatch match;
    for (const std::string& line : lines_of(file)) {
        if (std::regex_match(line, match, include)) included.emplace_back(match[1].str());
    }
    return included;
}

TEST(Layers, TestReadsAllSources) {
    EXPECT_GT(sources().size(), 50u);
    EXPECT_EQ(layer_of("main/main.cpp"), 11);
    EXPECT_EQ(layer_of("base/text.h"), 2);
    EXPECT_EQ(layer_of("elsewhere/x.h"), 0);
    EXPECT_FALSE(includes_of("main/main.cpp").empty());
}

TEST(Layers, EveryFileIsInAKnownFolder) {
    for (const fs::path& file : sources()) EXPECT_NE(layer_of(file), 0) << file;
}

/// Whether a line is neither code nor the declaration of main.
bool needs_no_namespace(const std::string& line) {
    return line.empty() || line.starts_with('#') || line.starts_with('/') ||
           line.starts_with(' ') || line.starts_with('}') || line.starts_with("int main(");
}

TEST(Layers, EverySourceIsInTheNamespace) {
    for (const fs::path& file : sources()) {
        const std::vector<std::string> lines = lines_of(file);
        const bool has_code = !std::ranges::all_of(lines, needs_no_namespace);
        EXPECT_EQ(std::ranges::count(lines, "namespace gatescope {"), has_code) << file;
    }
}

TEST(Layers, IncludesGoDownwardsOnly) {
    for (const fs::path& file : sources()) {
        for (const fs::path& included : includes_of(file)) {
            EXPECT_TRUE(fs::exists(SOURCE / included)) << file << " includes " << included;
            EXPECT_LE(layer_of(included), layer_of(file)) << file << " includes " << included;
        }
    }
}

TEST(Layers, NoFileIsTooLong) {
    constexpr std::size_t LONGEST = 350;
    for (const fs::path& file : sources()) EXPECT_LE(lines_of(file).size(), LONGEST) << file;
}

/// A header and its implementation are one subject.
std::string subject_of(fs::path file) {
    return file.replace_extension();
}

/// Describes a cycle of includes through `start`; empty without one.
std::string cycle_from(const std::string& start,
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

/// Within a folder too, where the order of layers does not exclude it.
TEST(Layers, IncludesHaveNoCycle) {
    std::map<std::string, std::set<std::string>> included;
    for (const fs::path& file : sources()) {
        auto& subjects = included[subject_of(file)];
        for (const fs::path& other : includes_of(file)) {
            if (subject_of(other) != subject_of(file)) subjects.insert(subject_of(other));
        }
    }
    for (const auto& [subject, others] : included) EXPECT_EQ(cycle_from(subject, included), "");
}

TEST(Layers, NoTwoFoldersIncludeEachOther) {
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

TEST(Layers, MessagesContainNoCode) {
    // Constants have no parentheses outside their texts and comments.
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

TEST(Layers, MessagesIncludeNothingButMessages) {
    for (const fs::path& file : sources()) {
        if (file.parent_path() != "messages") continue;
        for (const fs::path& included : includes_of(file)) {
            EXPECT_EQ(included.parent_path(), "messages") << file;
        }
    }
}

TEST(Layers, MessagesAreConstants) {
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
