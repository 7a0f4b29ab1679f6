#include "history/line_diff.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "support/scratch_directory.h"

namespace gatescope {
namespace {

const std::string HEAD = "--- old\n+++ new\n";

std::string diff(const std::string& old_text, const std::string& new_text) {
    return unified_diff(old_text, new_text, HEAD);
}

TEST(LineDiff, TextsThatAreTheSameHaveNone) {
    EXPECT_EQ(diff("", ""), "");
    EXPECT_EQ(diff("a\nb", "a\nb"), "");
}

TEST(LineDiff, AChangedLineStandsBetweenThreeOthers) {
    EXPECT_EQ(diff("1\n2\n3\n4\n5\n6\n7\n8\n9\n", "1\n2\n3\n4\nfive\n6\n7\n8\n9\n"),
              HEAD + "@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+five\n 6\n 7\n 8\n");
}

TEST(LineDiff, AllAndNothing) {
    EXPECT_EQ(diff("", "a\nb\n"), HEAD + "@@ -0,0 +1,2 @@\n+a\n+b\n");
    EXPECT_EQ(diff("a\n", ""), HEAD + "@@ -1 +0,0 @@\n-a\n");
}

TEST(LineDiff, WhatGoesStandsBeforeWhatComes) {
    EXPECT_EQ(diff("a\nb\nk\n", "x\ny\nz\nk\n"),
              HEAD + "@@ -1,3 +1,4 @@\n-a\n-b\n+x\n+y\n+z\n k\n");
}

TEST(LineDiff, AMissingNewlineIsSaid) {
    const std::string none = "\\ No newline at end of file\n";
    EXPECT_EQ(diff("a", "a\n"), HEAD + "@@ -1 +1 @@\n-a\n" + none + "+a\n");
    EXPECT_EQ(diff("a\nb", "c\nb"), HEAD + "@@ -1,2 +1,2 @@\n-a\n+c\n b\n" + none);
}

TEST(LineDiff, ChangesThatAreFarApartHaveHunksOfTheirOwn) {
    const std::string six = "1\n2\n3\n4\n5\n6\n";
    EXPECT_EQ(diff("a\n" + six + "b\n", "x\n" + six + "y\n"),
              HEAD + "@@ -1,8 +1,8 @@\n-a\n+x\n 1\n 2\n 3\n 4\n 5\n 6\n-b\n+y\n");
    EXPECT_EQ(diff("a\n" + six + "7\nb\n", "x\n" + six + "7\ny\n"),
              HEAD + "@@ -1,4 +1,4 @@\n-a\n+x\n 1\n 2\n 3\n@@ -6,4 +6,4 @@\n 5\n 6\n 7\n-b\n+y\n");
}

TEST(LineDiff, BytesStayWhatTheyAre) {
    EXPECT_EQ(diff(std::string("a\0b\r\n", 5), "\xFF\n"),
              HEAD + "@@ -1 +1 @@\n-" + std::string("a\0b\r\n", 5) + "+\xFF\n");
}

TEST(LineDiff, ColoursAreOfTheKindOfLineAndNotOfItsText) {
    EXPECT_EQ(for_terminal(HEAD + "@@ -1,2 +1,2 @@\n--- a\n+++ b\n @\n", true),
              "\033[1m--- old\033[m\n\033[1m+++ new\033[m\n\033[36m@@ -1,2 +1,2 @@\033[m\n"
              "\033[31m--- a\033[m\n\033[32m+++ b\033[m\n\033[m @\033[m\n");
    EXPECT_EQ(for_terminal("", true), "");
    const std::string odd = HEAD + "@@ -1 +1 @@\n-\033c\ta\n\\ No\n";
    EXPECT_EQ(for_terminal(odd, true).substr(50), "\033[31m-?c\ta\033[m\n\033[m\\ No\033[m\n");
    EXPECT_EQ(for_terminal(odd, false), HEAD + "@@ -1 +1 @@\n-?c\ta\n\\ No\n");
}

/// Texts of few different lines, so that many of them stay.
std::string some_lines(std::mt19937* random) {
    std::string text;
    for (auto lines = (*random)() % 30; lines > 0; --lines) {
        text += static_cast<char>('a' + (*random)() % 4);
        text += '\n';
    }
    if (!text.empty() && (*random)() % 4 == 0) text.pop_back();
    return text;
}

/// How many lines go and come.
long changes_in(const std::string& diff) {
    long changes = 0;
    for (std::size_t at = 0; (at = diff.find('\n', at)) != std::string::npos; ++at) {
        changes += diff[at + 1] == '-' || diff[at + 1] == '+';
    }
    return changes;
}

/// What others make of our diffs, where they are installed.
TEST(LineDiff, PatchMakesTheNewTextOfItAndNoOtherIsShorter) {
    if (std::system("patch --version >/dev/null 2>&1 && diff --version >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "patch or diff is not installed";
    }
    ScratchDirectory stage;
    std::mt19937 random(1);
    for (int i = 0; i < 100; ++i) {
        const std::string old_text = some_lines(&random);
        const std::string new_text = some_lines(&random);
        if (old_text == new_text) continue;
        stage.write("old", old_text);
        stage.write("new", new_text);
        const std::string ours = diff(old_text, new_text);
        stage.write("diff", ours);
        std::system(("cd " + stage.path() +
                     " && diff -d -u old new >theirs; "
                     "patch -s -f -o patched old <diff >said 2>&1")
                        .c_str());
        ASSERT_EQ(stage.read("patched"), new_text) << ours << stage.read("said");
        ASSERT_EQ(changes_in(ours), changes_in(stage.read("theirs"))) << ours;
    }
}

/// That many lines, of one letter each.
std::string lines_from(char first, int number) {
    std::string text;
    for (int i = 0; i < number; ++i) text += {static_cast<char>(first + i % 25), '\n'};
    return text;
}

TEST(LineDiff, OfThousandsOfLinesThoseThatStayAreFound) {
    EXPECT_EQ(changes_in(diff(lines_from('A', 500) + "k\n" + lines_from('A', 500),
                              lines_from('a', 500) + "k\n" + lines_from('a', 500))),
              1000 + 1 + 1000);
}

}  // namespace
}  // namespace gatescope
