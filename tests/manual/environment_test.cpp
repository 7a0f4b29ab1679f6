#include "messages/environment.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "matches.h"

namespace gatescope {

// Compares the environment variables that the sources read with the table.

namespace {

using Names = std::set<std::string>;

/// Names that the program computes at run time, by the argument of getenv.
const std::map<std::string, Names> COMPUTED = {
    {"variable", {"tmp", "temp"}},
    {R"(filled("%s_%c%c%c%c", prefix, 'U', 'S', 'E', 'R').c_str())",
     {"CLEARCASE_USER", "AUTH_USER", "LOGON_USER", "REMOTE_USER", "UNMAPPED_REMOTE_USER"}},
    {"hidden_e_var_name.c_str()",
     {"CLEARCASE_VIEW_KIND", "ZUL_USING_CCRC", "ATRIA_WEB_CLEARPROMPT"}}};

std::string all_sources() {
    std::ostringstream text;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SOURCE_DIRECTORY)) {
        if (entry.is_regular_file()) text << std::ifstream(entry.path()).rdbuf();
    }
    return text.str();
}

/// The arguments of all calls of getenv.
std::vector<std::string> getenv_calls(const std::string& source) {
    const std::string call = "getenv(";
    std::vector<std::string> found;
    for (auto at = source.find(call); at != std::string::npos; at = source.find(call, at)) {
        at += call.size();
        const auto begin = at;
        for (int depth = 1; depth > 0 && at < source.size(); ++at) {
            depth += (source[at] == '(') - (source[at] == ')');
        }
        found.push_back(source.substr(begin, at - begin - 1));
    }
    return found;
}

/// The names that a call may read: a literal, a constant's text, or a computed one.
Names names_read_by(const std::string& argument, const std::string& source) {
    const auto computed = COMPUTED.find(argument);
    if (computed != COMPUTED.end()) return computed->second;
    const auto literal = matches(argument, "^\"([^\"]+)\"$");
    if (!literal.empty()) return {literal.front()};
    if (!matches(argument, "^[A-Za-z_]+$").empty()) {
        const auto text = matches(source, "constexpr char " + argument + "\\[\\] = \"([^\"]+)\"");
        if (!text.empty()) return {text.front()};
    }
    ADD_FAILURE() << "getenv(" << argument << "): unknown variable";
    return {};
}

Names names_in_the_table() {
    Names names;
    for (const EnvironmentVariable& variable : ENVIRONMENT) names.insert(variable.name);
    return names;
}

}  // namespace

TEST(Environment, TableListsExactlyTheVariablesOfTheSources) {
    const std::string source = all_sources();
    Names read;
    for (const std::string& argument : getenv_calls(source)) {
        read.merge(names_read_by(argument, source));
    }
    EXPECT_EQ(read, names_in_the_table());
}

TEST(Environment, ProgramFileHidesNamesOfClientsVariables) {
    std::ostringstream bytes;
    bytes << std::ifstream(PROGRAM, std::ios::binary).rdbuf();
    ASSERT_NE(bytes.str().find("ZUL_PREFER_NO_GUI"), std::string::npos);
    for (const std::string& name : COMPUTED.at("hidden_e_var_name.c_str()")) {
        EXPECT_EQ(bytes.str().find(name), std::string::npos) << name;
    }
}

TEST(Environment, IsReadByGetenvOnly) {
    EXPECT_EQ(matches(all_sources(), "secure_getenv|environ *\\["), std::vector<std::string>{});
}

}  // namespace gatescope
