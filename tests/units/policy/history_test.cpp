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
#include "support/scratch_directory.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::MatchesRegex;

constexpr char OLD_TEXT[] = "old text\n";

class History : public testing::Test {
  protected:
    History() {
        setenv("CLEARCASE_USER", "DOMAIN\\Ann", 1);
        fs::create_directory(directory);
        stage.write("gatebits.txt", OLD_TEXT);
    }
    ~History() override { unsetenv("CLEARCASE_USER"); }

    /// What write returns; with nothing to take back afterwards.
    std::string recorded(const RecordedChange& what = {"A08", "Item", "O", "S"},
                         const std::optional<std::string>& old_text = OLD_TEXT) const {
        HistoryEntry entry;
        return entry.write(directory, file, old_text, what, std::chrono::seconds(0));
    }

    std::vector<JsonObject> records() const {
        std::vector<JsonObject> objects;
        std::istringstream lines(file_text(changes));
        for (std::string line; std::getline(lines, line);) {
            const auto object = read_json_object(line);
            EXPECT_TRUE(object) << line;
            objects.push_back(object.value_or(JsonObject()));
        }
        return objects;
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

TEST_F(History, ALineSaysWhoChangedWhatWhenAndWhere) {
    setenv("TZ", "XXX-5:30", 1);
    tzset();
    ASSERT_EQ(recorded({"A08", "Region Logging Personality", "O", "S"}), "");
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
    const auto record = records().at(0);
    EXPECT_EQ(record.at("uid"), std::to_string(getuid()));
    EXPECT_EQ(record.at("file"), fs::canonical(file).string());
    std::string host(256, '\0');
    gethostname(host.data(), host.size());
    EXPECT_EQ(record.at("host"), host.substr(0, host.find('\0')));
    EXPECT_THAT(record.at("saved").value_or(""), HasSubstr("Z-" + std::to_string(getpid())));
}

TEST_F(History, TheLocalTimeIsThatOfTheSavedName) {
    setenv("TZ", "UTC0", 1);
    tzset();
    ASSERT_EQ(recorded(), "");
    unsetenv("TZ");
    tzset();
    std::string time = records().at(0).at("time").value_or("");
    for (const char mark : {'-', ':'}) std::erase(time, mark);
    EXPECT_EQ(records().at(0).at("saved").value_or("").find("." + time.substr(0, 15) + "Z-"),
              std::string("gatebits.txt").size());
    EXPECT_EQ(time.substr(15), "+0000");
}

TEST_F(History, TheOldTextIsSavedByteForByte) {
    const std::string odd("\0\xFF\r\nno end", 10);
    ASSERT_EQ(recorded({"A08", "Item", "a", "b"}, odd), "");
    EXPECT_EQ(file_text(directory + "/" + *records().at(0).at("saved")), odd);
}

TEST_F(History, WhatIsNotThereIsNull) {
    ASSERT_EQ(recorded({"A26", "Item", std::nullopt, std::nullopt}, std::nullopt), "");
    EXPECT_THAT(file_text(changes), HasSubstr("\"from\":null,\"to\":null,\"saved\":null}"));
    EXPECT_TRUE(saved_names().empty());
}

TEST_F(History, ChangesOfOneSecondAreSavedUnderNamesOfTheirOwn) {
    ASSERT_EQ(recorded({"A08", "Item", "a", "b"}, "first"), "");
    ASSERT_EQ(recorded({"A08", "Item", "b", "c"}, "second"), "");
    EXPECT_EQ(file_text(directory + "/" + *records().at(0).at("saved")), "first");
    EXPECT_EQ(file_text(directory + "/" + *records().at(1).at("saved")), "second");
}

TEST_F(History, TheRealNameOfALinkIsRecorded) {
    fs::create_directory(stage / "links");
    fs::create_symlink("../gatebits.txt", stage / "links/other.txt");
    HistoryEntry entry;
    ASSERT_EQ(entry.write(directory, stage / "links/other.txt", OLD_TEXT, {"A08", "I", "", ""}),
              "");
    EXPECT_EQ(records().at(0).at("file"), fs::canonical(file).string());
    EXPECT_TRUE(records().at(0).at("saved")->starts_with("gatebits.txt."));
}

TEST_F(History, RelativePathsAreMadeAbsolute) {
    const fs::path before = fs::current_path();
    fs::current_path(stage.path());
    EXPECT_EQ(absolute_path("gatebits.txt"), fs::canonical(file));
    EXPECT_EQ(absolute_path("history/../new.txt"), (fs::canonical(stage.path()) / "new.txt"));
    EXPECT_EQ(absolute_path("new.txt"), (fs::canonical(stage.path()) / "new.txt"));
    fs::current_path(before);
}

TEST_F(History, WhoMayUseTheDirectoryMayUseItsFilesWhateverTheUmask) {
    const mode_t before = umask(0077);
    chmod(file.c_str(), 0664);
    for (const auto& [of_directory, of_lines, of_saved] :
         {std::tuple(0700u, 0600u, 0400u), std::tuple(0770u, 0660u, 0440u),
          std::tuple(0755u, 0644u, 0444u)}) {
        fs::remove_all(directory);
        fs::create_directory(directory);
        chmod(directory.c_str(), of_directory);
        ASSERT_EQ(recorded(), "");
        EXPECT_EQ(mode_of(changes), of_lines);
        EXPECT_EQ(mode_of(directory + "/" + saved_names().at(0)), of_saved);
    }
    umask(before);
    EXPECT_EQ(umask(before), before);
}

TEST_F(History, AnOldTextIsNotOpenToMoreThanThePolicyFile) {
    chmod(file.c_str(), 0640);
    chmod(directory.c_str(), 0755);
    ASSERT_EQ(recorded(), "");
    EXPECT_EQ(mode_of(directory + "/" + saved_names().at(0)), 0440u);
}

TEST_F(History, ALineThatWasNotFinishedGoesAndNothingElse) {
    ASSERT_EQ(recorded(), "");
    const std::string first = file_text(changes);
    write_file(changes, first + "{\"time\":\"2026-11");
    ASSERT_EQ(recorded(), "");
    EXPECT_TRUE(file_text(changes).starts_with(first + "{\"time\":\""));
    EXPECT_EQ(records().size(), 2u);

    write_file(changes, "{\"time\":\"2026-11");
    ASSERT_EQ(recorded(), "");
    EXPECT_EQ(records().size(), 1u);
}

TEST_F(History, ARecordIsTakenBackWithItsText) {
    ASSERT_EQ(recorded(), "");
    const std::string before = file_text(changes);
    HistoryEntry entry;
    ASSERT_EQ(entry.write(directory, file, OLD_TEXT, {"A08", "Item", "O", "S"}), "");
    EXPECT_EQ(records().size(), 2u);
    entry.take_back();
    EXPECT_EQ(file_text(changes), before);
    EXPECT_EQ(saved_names().size(), 1u);
    // Nothing is left to be taken back.
    entry.take_back();
    ASSERT_EQ(recorded(), "");
    EXPECT_EQ(records().size(), 2u);
}

TEST_F(History, WhatWasNotWrittenIsNotTakenBack) {
    ASSERT_EQ(recorded(), "");
    const std::string before = file_text(changes);
    HistoryEntry entry;
    entry.take_back();
    EXPECT_NE(entry.write(stage / "nowhere", file, OLD_TEXT, {"A08", "Item", "O", "S"}), "");
    entry.take_back();
    EXPECT_EQ(file_text(changes), before);
}

TEST_F(History, OneAfterTheOther) {
    HistoryEntry first;
    ASSERT_EQ(first.write(directory, file, OLD_TEXT, {"A08", "Item", "O", "S"}), "");
    EXPECT_EQ(recorded(), changes + ": another process has held its lock for more than 0 seconds");
    EXPECT_EQ(saved_names().size(), 1u);
    first = {};
    EXPECT_EQ(recorded(), "");
}

TEST_F(History, OtherLinesThatWereMovedAwayMeanwhileAreLeftAlone) {
    ASSERT_EQ(recorded(), "");
    const Descriptor old_lines(open(changes.c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(flock(old_lines.get(), LOCK_EX), 0);
    fs::rename(changes, changes + ".of_2025");
    EXPECT_EQ(recorded(), "");
    EXPECT_EQ(records().size(), 1u);
}

TEST_F(History, ADirectoryThatIsNotThere) {
    fs::remove(directory);
    EXPECT_EQ(recorded(), changes + ": No such file or directory");
    EXPECT_FALSE(fs::exists(directory));
    write_file(directory, "");
    EXPECT_EQ(recorded(), changes + ": Not a directory");
}

TEST_F(History, LinesThatAreALinkOrAPipeOrAnothersAreRefused) {
    stage.write("elsewhere", "kept");
    fs::create_symlink("../elsewhere", changes);
    EXPECT_EQ(recorded(), changes + ": Not a regular file");
    fs::remove(changes);
    fs::create_symlink("../nowhere", changes);
    EXPECT_EQ(recorded(), changes + ": Not a regular file");
    fs::remove(changes);
    ASSERT_EQ(mkfifo(changes.c_str(), 0666), 0);
    EXPECT_EQ(recorded(), changes + ": Not a regular file");
    fs::remove(changes);
    fs::create_hard_link(stage / "elsewhere", changes);
    EXPECT_EQ(recorded(), changes + ": it has a second name");
    fs::remove(changes);
    fs::create_directory(changes);
    EXPECT_EQ(recorded(), changes + ": Is a directory");
    EXPECT_EQ(stage.read("elsewhere"), "kept");
    EXPECT_FALSE(fs::exists(stage / "nowhere"));
    EXPECT_TRUE(saved_names().empty());
}

/// The names that a text may be saved under in the next seconds.
std::vector<std::string> coming_names() {
    std::vector<std::string> names;
    for (int second = 0; second < 10; ++second) {
        const std::time_t time = std::time(nullptr) + second;
        std::array<char, 64> utc;
        std::strftime(utc.data(), utc.size(), "%Y%m%dT%H%M%SZ", std::gmtime(&time));
        names.push_back(std::string("gatebits.txt.") + utc.data() + "-" + std::to_string(getpid()) +
                        ".txt");
    }
    return names;
}

TEST_F(History, WhatIsPlantedUnderASavedNameIsRefused) {
    stage.write("elsewhere", "kept");
    const auto plants = {+[](const std::string& name) { fs::create_symlink("../elsewhere", name); },
                         +[](const std::string& name) { fs::create_symlink("../nowhere", name); },
                         +[](const std::string& name) { ASSERT_EQ(mkfifo(name.c_str(), 0666), 0); },
                         +[](const std::string& name) { fs::create_directory(name); }};
    for (const auto& plant : plants) {
        const auto names = coming_names();
        for (const std::string& name : names) plant(directory + "/" + name);
        EXPECT_THAT(recorded(),
                    MatchesRegex(directory + "/gatebits[.]txt[.].*: Not a regular file"));
        EXPECT_EQ(file_text(changes), "");
        for (const std::string& name : names) fs::remove(directory + "/" + name);
    }
    EXPECT_EQ(stage.read("elsewhere"), "kept");
    EXPECT_FALSE(fs::exists(stage / "nowhere"));
}

TEST_F(History, FilesUnderAllSavedNamesStayWhatTheyAre) {
    const auto names = coming_names();
    for (const std::string& name : names) write_file(directory + "/" + name, "kept");
    EXPECT_THAT(recorded(), HasSubstr(": File exists"));
    for (const std::string& name : names) EXPECT_EQ(file_text(directory + "/" + name), "kept");
    EXPECT_EQ(file_text(changes), "");
}

}  // namespace
