#include "history/changes.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/expect_gripe.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

namespace fs = std::filesystem;

class PastChanges : public testing::Test {
  protected:
    /// A line of the history.
    std::string line(const std::string& of_file, const std::string& saved) const {
        return R"({"time":"t","operator":"ann","uid":1,"host":"h","file":")" + of_file +
               R"(","action":"A08","item":"i","from":null,"to":"x","saved":)" + saved + "}\n";
    }
    void use_lines(const std::string& lines) const { stage.write("changes.jsonl", lines); }
    History history() const { return read_history(stage.path()); }

    ScratchDirectory stage;
    const std::string file = stage / "gatebits.txt";
};
using PastChangesDeathTest = PastChanges;

TEST_F(PastChanges, AreNumberedByTheirLines) {
    use_lines(line("/a", "null") + line("/b", "\"saved\""));
    const History read = history();
    ASSERT_EQ(read.changes.size(), 2u);
    EXPECT_EQ(read.changes[0].number, 1);
    EXPECT_EQ(read.changes[0].text("file"), "/a");
    EXPECT_FALSE(read.changes[0].has("saved"));
    EXPECT_EQ(read.changes[0].text("saved"), "");
    EXPECT_EQ(read.changes[1].number, 2);
    EXPECT_EQ(read.changes[1].text("saved"), "saved");
}

TEST_F(PastChangesDeathTest, ALineOfSomethingElseIsNamed) {
    use_lines(line("/a", "null") + "no record\n" + line("/b", "\"saved\""));
    EXPECT_GRIPE(history(), "line 2 of (" + stage / "changes.jsonl" + ") holds no record");
}

TEST_F(PastChanges, ALineWithoutAnEndIsOfNoChange) {
    const std::string whole = line("/b", "null");
    use_lines(line("/a", "null") + whole.substr(0, 30));
    EXPECT_EQ(history().changes.size(), 1u);
    use_lines(whole.substr(0, whole.size() - 1));
    EXPECT_TRUE(history().changes.empty());
}

TEST_F(PastChanges, TheTextAfterOneIsThatBeforeTheNextOfTheSameFile) {
    stage.write("first", "1");
    stage.write("other", "of another");
    stage.write("second", "2");
    stage.write("gatebits.txt", "now");
    use_lines(line(file, "\"first\"") + line("/other", "\"other\"") + line(file, "\"second\""));
    const History read = history();
    EXPECT_EQ(text_before(read, read.changes[0]).name, "first");
    EXPECT_EQ(text_before(read, read.changes[0]).text, "1");
    EXPECT_EQ(text_after(read, read.changes[0]).name, "second");
    EXPECT_EQ(text_after(read, read.changes[0]).text, "2");
    EXPECT_EQ(text_after(read, read.changes[2]).name, file);
    EXPECT_EQ(text_after(read, read.changes[2]).text, "now");
}

TEST_F(PastChanges, BeforeAFileThereWasNoText) {
    stage.write("gatebits.txt", "now");
    use_lines(line(file, "null") + line(file, "null"));
    const History read = history();
    EXPECT_EQ(text_before(read, read.changes[0]).name, "/dev/null");
    EXPECT_EQ(text_before(read, read.changes[0]).text, "");
}

TEST_F(PastChangesDeathTest, WhatCannotBeReadIsNamedWithTheReason) {
    EXPECT_GRIPE(history(),
                 "(" + stage / "changes.jsonl" + ") cannot be read: No such file or directory");
    ASSERT_EQ(mkfifo((stage / "changes.jsonl").c_str(), 0666), 0);
    EXPECT_GRIPE(history(), "(" + stage / "changes.jsonl" + ") cannot be read: Invalid argument");
    fs::remove(stage / "changes.jsonl");

    use_lines(line(file, "\"gone\"") + line(file, "null"));
    const History read = history();
    EXPECT_GRIPE(text_before(read, read.changes[0]),
                 "(" + stage / "gone" + ") cannot be read: No such file or directory");
    EXPECT_GRIPE(text_after(read, read.changes[0]),
                 "what (" + file +
                     ") held afterwards is not known: before change 2 there was no file any more");
}

TEST_F(PastChangesDeathTest, ARecordLeadsToNoOtherDirectory) {
    stage.write("secret", "secret");
    stage.write("history/changes.jsonl", line(file, "\"../secret\""));
    const History read = read_history(stage / "history");
    EXPECT_GRIPE(text_before(read, read.changes[0]),
                 "(" + stage / "history/secret" + ") cannot be read: No such file or directory");
}

}  // namespace
}  // namespace gatescope
