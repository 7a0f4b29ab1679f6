#include "dialog/toolkit.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "base/files.h"
#include "base/temporary_files.h"
#include "dialog/process_end.h"
#include "support/limit_file_size.h"
#include "units/on_stage.h"

namespace gatescope {
namespace {

class Files : public OnStage {
  protected:
    std::string content(const std::string& name) const { return region.file(name); }
    void put(const std::string& name, const std::string& bytes) { region.write_file(name, bytes); }
    std::string at(const std::string& name) const { return region.path(name); }
    mode_t mode_of(const std::string& name) const {
        struct stat status = {};
        stat(at(name).c_str(), &status);
        return status.st_mode & 07777;
    }
};
using FilesDeathTest = Files;

TEST_F(Files, OfAnyKindExist) {
    put("file", "");
    EXPECT_TRUE(this_file_exists(at("file")));
    EXPECT_TRUE(this_file_exists(at("depot")));
    EXPECT_TRUE(this_file_exists("/dev/null"));
    EXPECT_FALSE(this_file_exists(at("none")));
    EXPECT_FALSE(this_file_exists(""));
}

TEST_F(Files, TouchCreatesAndTruncates) {
    EXPECT_EQ(touch_file(at("new"), nullptr), 0);
    EXPECT_TRUE(region.has_file("new"));
    put("old", "some text");
    EXPECT_EQ(touch_file(at("old"), "50% %s"), 0);
    EXPECT_EQ(content("old"), "50% %s");
    EXPECT_EQ(touch_file(at("old"), nullptr), 0);
    EXPECT_EQ(content("old"), "");
}

TEST_F(Files, AppendKeepsTheOldText) {
    EXPECT_EQ(append_file(at("log"), "a"), 0);
    EXPECT_EQ(append_file(at("log"), nullptr), 0);
    EXPECT_EQ(append_file(at("log"), "b\n"), 0);
    EXPECT_EQ(content("log"), "ab\n");
}

TEST_F(Files, CopyReplacesTheDestination) {
    put("from", "line 1\nline 2\n");
    put("to", std::string(100000, 'x'));
    EXPECT_EQ(copy_file(at("from"), at("to")), 0);
    EXPECT_EQ(content("to"), "line 1\nline 2\n");
    EXPECT_EQ(content("from"), "line 1\nline 2\n");
}

TEST_F(Files, CopyEndsEachChunkOf30000BytesAtItsNul) {
    std::string text(70000, 'a');
    text[10000] = '\0';
    text[30000] = 'b';
    text[60000] = '\0';
    put("from", text);
    EXPECT_EQ(copy_file(at("from"), at("to")), 0);
    EXPECT_EQ(content("to"), std::string(10000, 'a') + "b" + std::string(29999, 'a'));
}

TEST_F(Files, MoveRemovesTheSource) {
    put("from", "text");
    move_file(at("from"), at("to"));
    EXPECT_EQ(content("to"), "text");
    EXPECT_FALSE(region.has_file("from"));
}

TEST_F(Files, MakePublicAndReadOnlySetTheMode) {
    put("file", "");
    EXPECT_EQ(make_public(at("file")), 0);
    EXPECT_EQ(mode_of("file"), mode_t{0666});
    EXPECT_EQ(make_fully_readable(at("file")), 0);
    EXPECT_EQ(mode_of("file"), mode_t{0444});
    EXPECT_NE(make_public(at("none")), 0);
    EXPECT_NE(make_fully_readable(at("none")), 0);
}

TEST_F(Files, CompareByAllBytes) {
    put("one", "text and more");
    put("two", "text and more");
    put("other", "text and mare");
    put("longer", "text and more.");
    put("empty", "");
    EXPECT_TRUE(cmp_files(at("one"), at("one")));
    EXPECT_TRUE(cmp_files(at("one"), at("two")));
    put("large", std::string(100000, 'x') + "a");
    put("large2", std::string(100000, 'x') + "b");
    EXPECT_FALSE(cmp_files(at("large"), at("large2")));
    EXPECT_FALSE(cmp_files(at("one"), at("longer")));
    EXPECT_FALSE(cmp_files(at("one"), at("none")));
    EXPECT_FALSE(cmp_files(at("none"), at("none")));
}

TEST_F(Files, CompareBytesAfterANul) {
    put("one", std::string("a\0b", 3));
    put("two", std::string("a\0c", 3));
    EXPECT_FALSE(cmp_files(at("one"), at("two")));
}

TEST_F(Files, CompareAsDifferentWhenEmpty) {
    put("empty", "");
    put("empty2", "");
    EXPECT_FALSE(cmp_files(at("empty"), at("empty2")));
    EXPECT_FALSE(cmp_files(at("empty"), at("empty")));
}

TEST_F(FilesDeathTest, FailuresNameTheFilesAndTheErrno) {
    put("from", "text");
    EXPECT_GRIPE(touch_file("/no/such/dir/x", "a"), "#1 Could not touch (/no/such/dir/x) with 2");
    EXPECT_GRIPE(append_file("/no/such/dir/x", "a"), "#1 Could not append (/no/such/dir/x) with 2");
    EXPECT_GRIPE(copy_file(at("from"), "/no/such/dir/x"),
                 "#1 Could not move (" + at("from") + ") to (/no/such/dir/x) with 2");
    EXPECT_GRIPE(copy_file(at("none"), at("to")),
                 "#2 Could not move (" + at("none") + ") to (" + at("to") + ") with 2");
    EXPECT_GRIPE(move_file(at("from"), at("depot")),
                 "#1 Could not move (" + at("from") + ") to (" + at("depot") + ") with 21");
}

TEST_F(FilesDeathTest, PipesAndDevicesAreRefused) {
    put("from", "text");
    ASSERT_EQ(mkfifo(at("pipe").c_str(), 0666), 0);
    EXPECT_GRIPE(touch_file(at("pipe"), "a"), "#1 Could not touch (" + at("pipe") + ") with 22");
    EXPECT_GRIPE(append_file(at("pipe"), "a"), "#1 Could not append (" + at("pipe") + ") with 22");
    EXPECT_GRIPE(copy_file(at("from"), at("pipe")),
                 "#1 Could not move (" + at("from") + ") to (" + at("pipe") + ") with 22");
    EXPECT_GRIPE(copy_file("/dev/zero", at("to")),
                 "#2 Could not move (/dev/zero) to (" + at("to") + ") with 22");
    EXPECT_FALSE(cmp_files(at("pipe"), at("pipe")));
}

TEST_F(FilesDeathTest, FailedMoveKeepsTheSource) {
    const std::string text(5000, 'x');
    put("from", text);
    EXPECT_GRIPE(
        {
            limit_file_size(4096);
            move_file(at("from"), at("to"));
        },
        "#1 Could not move (" + at("from") + ") to (" + at("to") + ") with 27");
    EXPECT_EQ(content("from"), text);
}

TEST_F(Files, UnlinkRemoveIgnoresFailures) {
    put("file", "");
    unlink_remove(at("file"));
    EXPECT_FALSE(region.has_file("file"));
    unlink_remove(at("file"));
}

TEST_F(Files, IsUcmVobReadsTheOutputOfCleartool) {
    region.program_answers("cleartool", {.out = "* /vobs/a  /store/a public (ucmvob)\n"});
    EXPECT_TRUE(is_ucm_vob("/vobs/a"));
    region.program_answers("cleartool", {.out = "* /vobs/b /store/b\nx (ucmvob,replicated)\ny\n"});
    EXPECT_TRUE(is_ucm_vob("/vobs/b"));
    region.program_answers("cleartool", {.out = "* /vobs/c /store/c public (replicated)\n"});
    EXPECT_FALSE(is_ucm_vob("/vobs/c"));
    EXPECT_EQ(
        region.shown_so_far().calls_of("cleartool"),
        (std::vector<Args>{{"lsvob", "/vobs/a"}, {"lsvob", "/vobs/b"}, {"lsvob", "/vobs/c"}}));
}

TEST_F(Files, IsUcmVobIsFalseWithoutCleartool) {
    setenv("PATH", "/nowhere", 1);
    EXPECT_FALSE(is_ucm_vob("/vobs/a 2>/dev/null"));
    region.enter();
}

}  // namespace
}  // namespace gatescope
