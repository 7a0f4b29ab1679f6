#include "history/changes.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/expect_gripe.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

namespace fs = std::filesystem;

class ChangesTest : public testing::Test {
  protected:
    /// A line of the history.
    std::string line(const std::string& of_file, const std::string& saved) const {
        return R"({"time":"t","operator":"ann","uid":1,"host":"h","file":")" + of_file +
               R"(","action":"A08","item":"i","from":null,"to":"x","saved":)" + saved + "}\n";
    }
    void use_lines(const std::string& lines) const { stage.write("changes.jsonl", lines); }
    PastChanges history(const std::optional<std::string>& of_file = std::nullopt) const {
        return read_history(stage.path(), of_file);
    }
    /// The numbers of the changes that are read, and what is said of other lines.
    std::string numbers_and_notes() const {
        testing::internal::CaptureStderr();
        std::string numbers;
        for (const PastChange& change : history()) {
            numbers += std::to_string(change.number) + " ";
        }
        return numbers + testing::internal::GetCapturedStderr();
    }
    std::string note_of(int number) const {
        return "gatescope-history: line " + std::to_string(number) + " of (" +
               stage / "changes.jsonl" + ") is not a complete record\n";
    }

    ScratchDirectory stage;
    const std::string file = stage / "gatebits.txt";
};
using ChangesDeathTest = ChangesTest;

TEST_F(ChangesTest, AreNumberedByTheirLines) {
    use_lines(line("/a", "null") + line("/b", "\"saved\""));
    const PastChanges read = history();
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[0].number, 1);
    EXPECT_EQ(read[0].text("file"), "/a");
    EXPECT_EQ(read[0].value("saved"), std::nullopt);
    EXPECT_EQ(read[0].text("saved"), "");
    EXPECT_EQ(read[1].number, 2);
    EXPECT_EQ(read[1].value("saved"), "saved");
    const PastChanges of_one = history("/b");
    ASSERT_EQ(of_one.size(), 1u);
    EXPECT_EQ(of_one[0].number, 2);
}

TEST_F(ChangesTest, SkipsALineWithoutACompleteRecordAndReportsIt) {
    const std::string whole = line("/a", "null");
    const std::string saved = line("/a", "\"a}b\"");
    // Other texts, other forms of JSON, and what a line may end in when it was not finished.
    for (const std::string& other : std::vector<std::string>{
             "\n", "no record\n", std::string("\0\0\n", 3), "{}\n",
             whole.substr(0, whole.size() - 1) + "\r\n",
             "{\"time\": \"t\", \"file\": \"/a\", \"saved\": null}\n", line("a", "null"),
             whole.substr(0, 30) + "\n", saved.substr(0, saved.find('}') + 1) + "\n",
             saved.substr(0, saved.size() - 2) + "\n", "{\"saved\":null}\n"}) {
        use_lines(whole + other + saved);
        EXPECT_EQ(numbers_and_notes(), "1 3 " + note_of(2)) << other;
    }
}

TEST_F(ChangesTest, ALineWithoutAnEndIsOfNoChange) {
    const std::string whole = line("/b", "null");
    use_lines(line("/a", "null") + whole.substr(0, 30));
    EXPECT_EQ(numbers_and_notes(), "1 " + note_of(2));
    use_lines(whole.substr(0, whole.size() - 1));
    EXPECT_EQ(numbers_and_notes(), note_of(1));
    use_lines("");
    EXPECT_EQ(numbers_and_notes(), "");
}

TEST_F(ChangesTest, TheTextAfterOneIsThatBeforeTheNextOfTheSameFile) {
    stage.write("first", "1");
    stage.write("other", "of another");
    stage.write("second", "2");
    stage.write("gatebits.txt", "now");
    use_lines(line(file, "\"first\"") + line("/other", "\"other\"") + line(file, "\"second\""));
    const PastChanges read = history();
    EXPECT_EQ(text_before(read[0]), "1");
    EXPECT_EQ(text_after(read[0], read), "2");
    EXPECT_EQ(text_after(read[2], read), "now");
}

TEST_F(ChangesTest, BeforeAFileThereWasNoText) {
    stage.write("gatebits.txt", "now");
    use_lines(line(file, "null") + line(file, "null"));
    const PastChanges read = history();
    EXPECT_EQ(text_before(read[0]), "");
}

TEST_F(ChangesDeathTest, WhatCannotBeReadIsNamedWithTheReason) {
    EXPECT_GRIPE(history(),
                 "(" + stage / "changes.jsonl" + ") cannot be read: No such file or directory");
    ASSERT_EQ(mkfifo((stage / "changes.jsonl").c_str(), 0666), 0);
    EXPECT_GRIPE(history(), "(" + stage / "changes.jsonl" + ") cannot be read: Invalid argument");
    fs::remove(stage / "changes.jsonl");
    stage.write("elsewhere", "");
    fs::create_symlink("elsewhere", stage / "changes.jsonl");
    EXPECT_GRIPE(history(), "(" + stage / "changes.jsonl" +
                                ") cannot be read: Too many levels of symbolic links");
    fs::remove(stage / "changes.jsonl");

    use_lines(line(file, "\"gone\"") + line(file, "null"));
    const PastChanges read = history();
    EXPECT_GRIPE(text_before(read[0]),
                 "(" + stage / "gone" + ") cannot be read: No such file or directory");
    EXPECT_GRIPE(text_after(read[0], read),
                 "what (" + file +
                     ") held afterwards is not known: before change 2 there was no file any more");
}

TEST_F(ChangesDeathTest, ARecordLeadsToNoOtherDirectory) {
    stage.write("secret", "secret");
    stage.write("history/changes.jsonl", line(file, "\"../secret\""));
    const PastChanges read = read_history(stage / "history", std::nullopt);
    EXPECT_GRIPE(text_before(read[0]),
                 "(" + stage / "history/secret" + ") cannot be read: No such file or directory");
}

}  // namespace
}  // namespace gatescope
