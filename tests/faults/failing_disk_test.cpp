#include <gtest/gtest.h>

#include <filesystem>

#include "base/replace_file.h"
#include "base/temporary_files.h"
#include "faults/in_child.h"
#include "policy/history.h"
#include "policy/write_failure.h"
#include "support/failing_sync.h"
#include "support/scratch_directory.h"

namespace gatescope {

// A disk on which writing succeeds and fsync fails.

namespace {

constexpr char OLD_TEXT[] = "old line one\nold line two\n";
constexpr char NEW_TEXT[] = "new line one\nnew line two\nnew line three\n";

class FailingDisk : public testing::Test {
  protected:
    FailingDisk() { directory.write("file", OLD_TEXT); }

    /// Replaces the file; the sync after the next `good` fails.
    [[nodiscard]] Ended replaced(int good) const {
        return in_child([&] {
            write_file(copy, NEW_TEXT);
            remember_temporary_file(copy);
            good_syncs = good;
            if (const auto failure = replace_file(file, NEW_TEXT, copy))
                gripe_not_replaced(*failure, file, copy);
        });
    }
    [[nodiscard]] std::string error_text(const std::string& state) const {
        return "ERROR: Could not write the file (" + file + "): Input/output error.  " + state +
               "\n";
    }

    ScratchDirectory directory;
    ScratchDirectory temporary;
    const std::string file = directory / "file";
    const std::string copy = temporary / "copy";
};

TEST_F(FailingDisk, KeepsOldTextWhenNewTextIsNotSynced) {
    const Ended ended = replaced(0);
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(ended.said, error_text("(" + file + ") is unchanged."));
    EXPECT_EQ(file_text(file), OLD_TEXT);
    EXPECT_EQ(directory.names(), std::set<std::string>{"file"});
    EXPECT_EQ(temporary.names(), std::set<std::string>());
}

TEST_F(FailingDisk, ReportsDirectoryThatIsNotSynced) {
    const Ended ended = replaced(1);
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(ended.said,
              error_text("(" + file +
                         ") holds its complete new text, but may not have reached the disk yet."));
    EXPECT_EQ(file_text(file), NEW_TEXT);
}

TEST_F(FailingDisk, KeepsOldTextInPlaceUntilCopyIsSynced) {
    std::filesystem::create_hard_link(file, directory / "other");
    for (const int good : {0, 1}) {
        const Ended ended = replaced(good);
        EXPECT_EQ(ended.status, 99) << good;
        EXPECT_EQ(ended.said, error_text("(" + file + ") is unchanged.")) << good;
        // Space was allocated, but its sync failed.
        EXPECT_EQ(file_text(file), OLD_TEXT) << good;
    }
}

TEST_F(FailingDisk, KeepsNewTextInCopyWhenRewriteIsNotSynced) {
    std::filesystem::create_hard_link(file, directory / "other");
    const Ended ended = replaced(2);
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(
        ended.said,
        error_text("(" + file + ") may be damaged.  Its complete new text is in (" + copy + ")."));
    EXPECT_EQ(file_text(copy), NEW_TEXT);
}

TEST_F(FailingDisk, RefusesChangeWhoseRecordIsNotSynced) {
    std::filesystem::create_directory(directory / "history");
    setenv("ZUL_GATESCOPE_HISTORY", (directory / "history").c_str(), 1);
    // The syncs of the text, of the directory and of the lines.
    for (const int good : {0, 1, 2}) {
        const Ended ended = in_child([&] {
            good_syncs = good;
            record_change(file, OLD_TEXT, {"A08", "Item", "O", "S"});
        });
        EXPECT_EQ(ended.status, 99) << good;
        EXPECT_TRUE(ended.said.ends_with("): Input/output error.\n")) << ended.said;
        EXPECT_EQ(file_text(directory / "history/changes.jsonl"), "") << good;
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory / "history"), {}), 1);
    }
    EXPECT_EQ(in_child([&] {
                  good_syncs = 3;
                  record_change(file, OLD_TEXT, {"A08", "Item", "O", "S"});
              }).status,
              0);
    unsetenv("ZUL_GATESCOPE_HISTORY");
}

}  // namespace
}  // namespace gatescope
