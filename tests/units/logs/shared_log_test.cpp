#include "logs/shared_log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "support/few_descriptors.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

TEST(SharedLog, KeepsTheFileOpenFromTheFirstRangeToTheLast) {
    const ScratchDirectory directory;
    directory.write("log", "old");
    directory.write("other", "other");
    SharedLog log(directory.path("log"), 3);
    const int file = log.begin_range();
    ASSERT_NE(file, -1);
    EXPECT_EQ(log.begin_range(), file);
    log.end_range();
    log.end_range();
    std::filesystem::rename(directory.path("other"), directory.path("log"));
    EXPECT_EQ(log.begin_range(), file);
    struct stat status = {};
    ASSERT_EQ(fstat(file, &status), 0);
    EXPECT_EQ(status.st_size, 3);
    log.end_range();
    EXPECT_EQ(fcntl(file, F_GETFD), -1) << "still open after its last range";
}

TEST(SharedLog, OpensTheFileWithTheFirstRange) {
    const ScratchDirectory directory;
    directory.write("log", "text");
    const FewDescriptors none(0);
    SharedLog log(directory.path("log"), 1);
    EXPECT_EQ(log.begin_range(), -1);
    EXPECT_EQ(log.error(), EMFILE);
}

TEST(SharedLog, TriesToOpenOnce) {
    const ScratchDirectory directory;
    SharedLog log(directory.path("log"), 2);
    EXPECT_EQ(log.begin_range(), -1);
    directory.write("log", "text");
    EXPECT_EQ(log.begin_range(), -1);
    EXPECT_EQ(log.error(), ENOENT);
}

TEST(SharedLog, OpensRegularFilesOnly) {
    const ScratchDirectory directory;
    SharedLog log(directory.path(), 1);
    EXPECT_EQ(log.begin_range(), -1);
    EXPECT_EQ(log.error(), EISDIR);
}

}  // namespace
}  // namespace gatescope
