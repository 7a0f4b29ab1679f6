// With strict quoting the checker and the browser get any path as one argument, unchanged; without
// it the shell expands paths.

#include <gtest/gtest.h>

#include <filesystem>

#include "scenes/region.h"

namespace gatescope {

namespace fs = std::filesystem;

namespace {

const std::string HOSTILE = "a b $(touch trace) `touch trace`&touch trace&\"' *";

/// A region whose policy file, checker, browser and depot are in a directory of this name. Checker
/// and browser record the number of their arguments, and the first.
Region region_in(const std::string& directory) {
    const std::string there = "{stage}/" + directory;
    const std::string recorder = "#!/bin/sh\nprintf '%s %s\\n' $# \"$1\" >{stage}/recorded\n";
    Region east = a_region()
                      .with_env("ZUL_GATESCOPE_GATEBITS_FILE", there + "/gatebits.txt")
                      .with_line(2, ";" + there + "/depot;O;")
                      .with_variable(0, there + "/gatewarden")
                      .with_variable(2, there + "/browser")
                      .with_file(directory + "/gatewarden", recorder)
                      .with_file(directory + "/browser", recorder);
    for (const char* name : {"/gatewarden", "/browser"}) {
        fs::permissions(east.path(directory + name), fs::perms(0755));
    }
    fs::create_directories(east.path(directory + "/depot/log"));
    fs::create_directories(east.path(directory + "/depot/query_results"));
    east.write_file(directory + "/gatebits.txt", east.gatebits());
    return east;
}

std::string recorded(const Region& east) {
    return east.file("recorded");
}

TEST(StrictQuotingOfPaths, PassesPathsAsOneArgument) {
    Region east = region_in(HOSTILE);
    east.set_env("ZUL_GATESCOPE_STRICT_QUOTING", "yes");
    EXPECT_EQ(east.run({"A=23", "R=n"}).status, 110);
    EXPECT_EQ(recorded(east), "2 " + east.path(HOSTILE) + "/gatebits.txt\n");

    east.cancels();
    fs::remove(east.path("recorded"));
    EXPECT_EQ(east.run({"A=11", "R=n"}).status, 110);
    EXPECT_EQ(recorded(east), "2 " + east.path(HOSTILE) + "/gatebits.txt\n");

    EXPECT_EQ(east.run({"Q=1", "C=*", "U=*", "R=n"}).status, 110);
    const std::string results = HOSTILE + "/depot/query_results";
    EXPECT_EQ(recorded(east),
              "1 " + east.path(results) + "/" + east.files_in(results).at(0) + "\n");
    EXPECT_FALSE(east.has_file("trace"));
}

TEST(StrictQuotingOfPaths, ShellExpandsPathsWhenOff) {
    Region east = region_in("a $(touch trace) b");
    EXPECT_EQ(east.run({"A=23", "R=n"}).status, 110);
    EXPECT_TRUE(east.has_file("trace"));
    EXPECT_EQ(recorded(east), "");
}

TEST(StrictQuotingOfPaths, StartsProgramWithBackslashesInPathWhenOff) {
    Region east = region_in(R"(a\\b\c)");
    EXPECT_EQ(east.run({"A=23", "R=n"}).status, 110);
    EXPECT_TRUE(recorded(east).starts_with("2 ")) << recorded(east);
}

}  // namespace
}  // namespace gatescope
