#include "policy/history.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "base/json.h"
#include "base/temporary_files.h"
#include "support/expect_gripe.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::MatchesRegex;

constexpr char OLD_TEXT[] = "old text\n";

constexpr std::chrono::seconds AT_ONCE(0);

class HistoryTest : public testing::Test {
  protected:
    HistoryTest() {
        fs::create_directory(directory);
        setenv("CLEARCASE_USER", "DOMAIN\\Ann", 1);
        setenv("ZUL_GATESCOPE_HISTORY", directory.c_str(), 1);
        stage.write("gatebits.txt", OLD_TEXT);
    }
    ~HistoryTest() override {
        unsetenv("CLEARCASE_USER");
        unsetenv("ZUL_GATESCOPE_HISTORY");
    }

    /// Records a change that is then taken for made.
    void record(const RecordedChange& change = {"A08", "Item", "O", "S"},
                const std::optional<std::string>& old_text = OLD_TEXT) const {
        record_change(file, old_text, change, AT_ONCE);
    }
    static std::string told(const std::string& path, const std::string& reason) {
        return "ERROR: The change was not made, because it could not be recorded in (" + path +
               "): " + reason + ".";
    }

    std::vector<std::string> records() const {
        std::vector<std::string> found;
        std::istringstream lines(file_text(changes));
        for (std::string line; std::getline(lines, line);) found.push_back(line);
        return found;
    }
    /// What the record of that number, from 0, says.
    std::string said(std::size_t number, const std::string& member) const {
        return json_text(records().at(number), member).value_or("nothing");
    }

    /// The names in the directory, but that of the lines.
    std::vector<std::string> saved_names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(directory)) {
            if (entry.path() != changes) names.push_back(entry.path().filename());
        }
        return names;
    }

    static mode_t mode_of(const std::string& path) {
        struct stat status = {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status.st_mode & 07777;
    }

    ScratchDirectory stage;
    const std::string directory = stage / "history";
    const std::string changes = directory + "/changes.jsonl";
    const std::string file = stage / "gatebits.txt";
};

TEST_F(HistoryTest, ALineSaysWhoChangedWhatWhenAndWhere) {
    setenv("TZ", "XXX-5:30", 1);
    tzset();
    record({"A08", "Region Logging Personality", "O", "S"});
    unsetenv("TZ");
    tzset();
    const std::string line = file_text(changes);
    EXPECT_THAT(line,
                MatchesRegex(
                    "\\{\"time\":\"[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\+05:30\","
                    "\"operator\":\"ann\",\"uid\":[0-9]+,\"host\":\"[^\"]+\","
                    "\"file\":\"/[^\"]+/gatebits[.]txt\",\"action\":\"A08\","
                    "\"item\":\"Region Logging Personality\",\"from\":\"O\",\"to\":\"S\","
                    "\"saved\":\"gatebits[.]txt[.][0-9]{8}T[0-9]{6}Z-[0-9]+[.]txt\"\\}\n"));
    EXPECT_THAT(line, HasSubstr(",\"uid\":" + std::to_string(getuid()) + ","));
    EXPECT_EQ(said(0, "file"), fs::canonical(file).string());
    std::string host(256, '\0');
    gethostname(host.data(), host.size());
    EXPECT_EQ(said(0, "host"), host.substr(0, host.find('\0')));
    EXPECT_THAT(said(0, "saved"), HasSubstr("Z-" + std::to_string(getpid())));
}

TEST_F(HistoryTest, TheLocalTimeIsThatOfTheSavedName) {
    setenv("TZ", "UTC0", 1);
    tzset();
    record();
    unsetenv("TZ");
    tzset();
    std::string time = said(0, "time");
    for (const char mark : {'-', ':'}) std::erase(time, mark);
    EXPECT_EQ(said(0, "saved").find("." + time.substr(0, 15) + "Z-"),
              std::string("gatebits.txt").size());
    EXPECT_EQ(time.substr(15), "+0000");
}

TEST_F(HistoryTest, TheOldTextIsSavedByteForByte) {
    const std::string odd("\0\xFF\r\nno end", 10);
    record({"A08", "Item", "a", "b"}, odd);
    EXPECT_EQ(file_text(directory + "/" + said(0, "saved")), odd);
}

TEST_F(HistoryTest, WhatIsNotThereIsNull) {
    record({"A26", "Item", std::nullopt, std::nullopt}, std::nullopt);
    EXPECT_THAT(file_text(changes), HasSubstr("\"from\":null,\"to\":null,\"saved\":null}"));
    EXPECT_TRUE(saved_names().empty());
}

TEST_F(HistoryTest, ChangesOfOneSecondAreSavedUnderNamesOfTheirOwn) {
    record({"A08", "Item", "a", "b"}, "first");
    record({"A08", "Item", "b", "c"}, "second");
    EXPECT_EQ(file_text(directory + "/" + said(0, "saved")), "first");
    EXPECT_EQ(file_text(directory + "/" + said(1, "saved")), "second");
}

TEST_F(HistoryTest, TheRealNameOfALinkIsRecorded) {
    fs::create_directory(stage / "links");
    fs::create_symlink("../gatebits.txt", stage / "links/other.txt");
    record_change(stage / "links/other.txt", OLD_TEXT, {"A08", "Item", "O", "S"});
    EXPECT_EQ(said(0, "file"), fs::canonical(file).string());
    EXPECT_TRUE(said(0, "saved").starts_with("gatebits.txt."));
}

TEST_F(HistoryTest, ItemsAreNamedWithoutTheirDots) {
    record({"A05", "UNIX Policy Depot...", "", ""});
    record({"A27", "Copy of a...b", "", ""});
    EXPECT_EQ(said(0, "item"), "UNIX Policy Depot");
    EXPECT_EQ(said(1, "item"), "Copy of a...b");
}

TEST_F(HistoryTest, WithoutTheVariableThereIsNone) {
    unsetenv("ZUL_GATESCOPE_HISTORY");
    record();
    EXPECT_FALSE(fs::exists(changes));
    EXPECT_TRUE(saved_names().empty());
}

TEST_F(HistoryTest, WhoMayUseTheDirectoryMayUseItsFilesWhateverTheUmask) {
    const mode_t before = umask(0077);
    chmod(file.c_str(), 0664);
    for (const auto& [of_directory, of_lines, of_saved] :
         {std::tuple(0700u, 0600u, 0400u), std::tuple(0770u, 0660u, 0440u),
          std::tuple(0755u, 0644u, 0444u)}) {
        fs::remove_all(directory);
        fs::create_directory(directory);
        chmod(directory.c_str(), of_directory);
        record();
        EXPECT_EQ(mode_of(changes), of_lines);
        EXPECT_EQ(mode_of(directory + "/" + saved_names().at(0)), of_saved);
    }
    umask(before);
    EXPECT_EQ(umask(before), before);
}

TEST_F(HistoryTest, AnOldTextIsNotOpenToMoreThanThePolicyFile) {
    chmod(file.c_str(), 0640);
    chmod(directory.c_str(), 0755);
    record();
    EXPECT_EQ(mode_of(directory + "/" + saved_names().at(0)), 0440u);
}

TEST_F(HistoryTest, ARecordIsNotAppendedToATornLine) {
    record();
    const std::string torn = file_text(changes) + "{\"time\":\"2026-11";
    write_file(changes, torn);
    HistoryRecord one = record_change(file, OLD_TEXT, {"A08", "Item", "O", "S"}, AT_ONCE);
    EXPECT_TRUE(file_text(changes).starts_with(torn + "\n{\"time\":\""));
    EXPECT_EQ(records().size(), 3u);
    one.take_back();
    EXPECT_EQ(file_text(changes), torn);
}

TEST_F(HistoryTest, ARecordIsTakenBackWithItsText) {
    record();
    const std::string before = file_text(changes);
    HistoryRecord one = record_change(file, OLD_TEXT, {"A08", "Item", "O", "S"}, AT_ONCE);
    EXPECT_EQ(records().size(), 2u);
    one.take_back();
    EXPECT_EQ(file_text(changes), before);
    EXPECT_EQ(saved_names().size(), 1u);
    // Nothing is left to be taken back.
    record();
    one.take_back();
    EXPECT_EQ(records().size(), 2u);
}

TEST_F(HistoryTest, NothingIsTakenBackWhereThereIsNone) {
    unsetenv("ZUL_GATESCOPE_HISTORY");
    record_change(file, OLD_TEXT, {"A08", "Item", "O", "S"}).take_back();
}

TEST_F(HistoryTest, OneAfterTheOther) {
    {
        const auto first = record_change(file, OLD_TEXT, {"A08", "Item", "O", "S"}, AT_ONCE);
        EXPECT_GRIPE(record(),
                     told(changes, "another process has held its lock for more than 0 seconds"));
        EXPECT_EQ(saved_names().size(), 1u);
    }
    record();
    EXPECT_EQ(records().size(), 2u);
}

TEST_F(HistoryTest, OtherLinesThatWereMovedAwayMeanwhileAreLeftAlone) {
    record();
    const Descriptor old_lines(open(changes.c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(flock(old_lines.get(), LOCK_EX), 0);
    fs::rename(changes, changes + ".of_2025");
    record();
    EXPECT_EQ(records().size(), 1u);
}

TEST_F(HistoryTest, ADirectoryThatIsNotThere) {
    fs::remove(directory);
    EXPECT_GRIPE(record(), told(directory, "No such file or directory"));
    EXPECT_FALSE(fs::exists(directory));
    write_file(directory, "");
    EXPECT_GRIPE(record(), told(changes, "Not a directory"));
    setenv("ZUL_GATESCOPE_HISTORY", "", 1);
    EXPECT_GRIPE(record(), told("", "No such file or directory"));
}

TEST_F(HistoryTest, LinesThatAreALinkOrAPipeOrAnothersAreRefused) {
    stage.write("elsewhere", "kept");
    fs::create_symlink("../elsewhere", changes);
    EXPECT_GRIPE(record(), told(changes, "Not a regular file"));
    fs::remove(changes);
    fs::create_symlink("../nowhere", changes);
    EXPECT_GRIPE(record(), told(changes, "Not a regular file"));
    fs::remove(changes);
    ASSERT_EQ(mkfifo(changes.c_str(), 0666), 0);
    EXPECT_GRIPE(record(), told(changes, "Not a regular file"));
    fs::remove(changes);
    fs::create_hard_link(stage / "elsewhere", changes);
    EXPECT_GRIPE(record(), told(changes, "it has a second name"));
    fs::remove(changes);
    fs::create_directory(changes);
    EXPECT_GRIPE(record(), told(changes, "Is a directory"));
    EXPECT_EQ(stage.read("elsewhere"), "kept");
    EXPECT_FALSE(fs::exists(stage / "nowhere"));
    EXPECT_TRUE(saved_names().empty());
}

}  // namespace
}  // namespace gatescope
