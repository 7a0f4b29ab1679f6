#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "matches.h"

namespace gatescope {

// Runs the unit program with the example filter of CONTRIBUTING.md.

namespace {

/// The exit status of the unit program that CONTRIBUTING.md names, run with a filter.
int unit_program_with_filter(const std::string& filter) {
    const std::string command = POLICY_UNITS " --gtest_brief=1 --gtest_filter='" + filter + "'";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

TEST(Contributing, ExampleFilterMatchesTests) {
    std::ostringstream text;
    text << std::ifstream(DOCUMENTS_DIRECTORY "/CONTRIBUTING.md").rdbuf();
    const auto filters = matches(text.str(), "policy_units .*--gtest_filter='([^']+)'");
    ASSERT_EQ(filters.size(), 1U);
    EXPECT_EQ(unit_program_with_filter(filters.front()), 0);
}

TEST(UnitProgram, FailsWhenFilterMatchesNoTest) {
    EXPECT_EQ(unit_program_with_filter("NoSuchSuite.*"), 1);
}

}  // namespace gatescope
