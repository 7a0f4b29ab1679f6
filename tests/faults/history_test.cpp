#include "policy/history.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <functional>

#include "faults/in_child.h"
#include "faults/small_disk.h"
#include "support/scratch_directory.h"

namespace gatescope {

// Histories that cannot be written. Records are made in children: the names of saved texts contain
// the process id, so a test can compute them.

namespace {

namespace fs = std::filesystem;
using testing::MatchesRegex;

const RecordedChange CHANGE = {"A08", "Item", "O", "S"};

class UnfitHistory : public testing::Test {
  protected:
    UnfitHistory() {
        fs::create_directory(directory);
        stage.write("gatebits.txt", "old text\n");
        setenv("ZUL_GATESCOPE_HISTORY", directory.c_str(), 1);
    }
    ~UnfitHistory() override { unsetenv("ZUL_GATESCOPE_HISTORY"); }

    void record(const std::string& old_text = "old text\n") const {
        record_change(stage / "gatebits.txt", old_text, CHANGE, std::chrono::seconds(0));
    }
    /// The error for a file of the history, as a regular expression.
    [[nodiscard]] std::string message(const std::string& file, const std::string& reason) const {
        return "ERROR: The change was not made, because it could not be recorded in [(]" +
               directory + file + "[)]: " + reason + "[.]\n";
    }

    ScratchDirectory stage;
    const std::string directory = stage / "history";
    const std::string changes = directory + "/changes.jsonl";
    const std::string saved = "/gatebits[.]txt[.][0-9]+T[0-9]+Z-[0-9]+[.]txt";
};

/// The names for texts that this process saves in the next 10 seconds.
std::vector<std::string> next_names(const std::string& directory) {
    std::vector<std::string> names;
    for (int second = 0; second < 10; ++second) {
        const std::time_t time = std::time(nullptr) + second;
        std::array<char, 64> utc;
        std::strftime(utc.data(), utc.size(), "/gatebits.txt.%Y%m%dT%H%M%SZ-", std::gmtime(&time));
        names.push_back(directory + utc.data() + std::to_string(getpid()) + ".txt");
    }
    return names;
}

TEST_F(UnfitHistory, LeavesFileUnderSavedNameAlone) {
    stage.write("elsewhere", "kept");
    const std::vector<std::function<void(const std::string& name)>> plants = {
        [](const std::string& name) { fs::create_symlink("../elsewhere", name); },
        [](const std::string& name) { fs::create_symlink("../nowhere", name); },
        [](const std::string& name) { fs::create_hard_link("elsewhere", name); },
        [](const std::string& name) { mkfifo(name.c_str(), 0666); },
        [](const std::string& name) { fs::create_directory(name); }};
    fs::current_path(stage.path());
    for (const auto& plant : plants) {
        const Ended ended = in_child([&] {
            for (const std::string& name : next_names(directory)) plant(name);
            record();
        });
        EXPECT_EQ(ended.status, 99);
        EXPECT_THAT(ended.said, MatchesRegex(message(saved, "File exists")));
        EXPECT_EQ(file_text(changes), "");
        for (const auto& entry : fs::directory_iterator(directory)) fs::remove(entry.path());
    }
    fs::current_path("/");
    EXPECT_EQ(stage.read("elsewhere"), "kept");
    EXPECT_FALSE(fs::exists(stage / "nowhere"));
}

TEST_F(UnfitHistory, NamesUnwritableDirectory) {
    if (!can_become_nobody()) GTEST_SKIP() << "needs the right to become another user";
    Ended ended = in_child_of_nobody([&] { record(); });
    EXPECT_EQ(ended.status, 99);
    EXPECT_THAT(ended.said, MatchesRegex(message("/changes.jsonl", "Permission denied")));

    // The records are writable, the directory is not.
    write_file(changes, "");
    chmod(changes.c_str(), 0666);
    ended = in_child_of_nobody([&] { record(); });
    EXPECT_THAT(ended.said, MatchesRegex(message(saved, "Permission denied")));

    // The directory is writable, the records are another user's.
    chmod(directory.c_str(), 0777);
    chmod(changes.c_str(), 0644);
    ended = in_child_of_nobody([&] { record(); });
    EXPECT_THAT(ended.said, MatchesRegex(message("/changes.jsonl", "Permission denied")));
    EXPECT_EQ(file_text(changes), "");

    chmod(changes.c_str(), 0666);
    ended = in_child_of_nobody([&] { record(); });
    EXPECT_EQ(ended.status, 0) << ended.said;
}

TEST_F(UnfitHistory, LeavesNothingOnFullDisk) {
    const SmallDisk disk(directory, 100000);
    if (!disk.is_mounted()) GTEST_SKIP() << "needs the right to mount";
    EXPECT_EQ(in_child([&] { record(); }).status, 0);
    const std::string before = file_text(changes);
    fill_up(directory + "/filler");
    Ended ended = in_child([&] { record(std::string(20000, 'x')); });
    EXPECT_EQ(ended.status, 99);
    EXPECT_THAT(ended.said, MatchesRegex(message(saved, "No space left on device")));
    // Space for a text but not for a record: the last page of the records is full.
    const auto size = fs::file_size(directory + "/filler");
    fs::resize_file(directory + "/filler", size - 4096);
    std::string lines = before + std::string(4096 - before.size() - 1, ' ') + "\n";
    write_file(changes, lines);
    ended = in_child([&] { record(); });
    EXPECT_EQ(ended.status, 99);
    EXPECT_THAT(ended.said, MatchesRegex(message("/changes.jsonl", "No space left on device")));
    EXPECT_EQ(file_text(changes), lines);
    EXPECT_EQ(std::distance(fs::directory_iterator(directory), {}), 3)
        << "records, filler, one text";
}

}  // namespace
}  // namespace gatescope
