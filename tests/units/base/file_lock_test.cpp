#include "base/file_lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>
#include <utility>

#include "base/platform.h"
#include "support/needs.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

/// Called just before the next lock is taken; returns the errno that flock fails with, or 0.
std::function<int()>& at_next_flock() {
    static std::function<int()> action;
    return action;
}

}  // namespace

/// Replaces the C library's function, so that a test can act between opening a file and locking it.
extern "C" int flock(int file, int operation) {
    const std::function<int()> action = std::exchange(at_next_flock(), nullptr);
    const int error = action ? action() : 0;
    if (error == 0) return static_cast<int>(syscall(SYS_flock, file, operation));
    errno = error;
    return -1;
}

namespace {

using namespace std::chrono_literals;

class FileLockTest : public testing::Test {
  protected:
    FileLockTest() { put("file"); }
    ~FileLockTest() override { at_next_flock() = nullptr; }

    std::string path(const std::string& name) const { return directory_.path(name); }
    void put(const std::string& name) const { directory_.write(name, "text\n"); }

    /// Whether another process could lock the file now.
    bool is_free(const std::string& name) const {
        const Descriptor file(open(path(name).c_str(), O_RDWR | O_CLOEXEC));
        return lock_exclusively(file.get()) == 0;
    }

    ScratchDirectory directory_;
};

TEST_F(FileLockTest, IsHeldUntilItsDestructor) {
    {
        const FileLock lock = lock_file(path("file"), 0ms);
        EXPECT_EQ(lock.state, LockState::HELD);
        EXPECT_FALSE(is_free("file"));
    }
    EXPECT_TRUE(is_free("file"));
}

TEST_F(FileLockTest, IsGivenUpAfterTheWaitForAnotherHolder) {
    const FileLock theirs = lock_file(path("file"), 0ms);
    EXPECT_EQ(lock_file(path("file"), 30ms).state, LockState::HELD_BY_ANOTHER);
}

// SECURITY.md warns of it.
TEST_F(FileLockTest, CanBeHeldWithReadPermissionAlone) {
    NEEDS(GATESCOPE_HAS_FLOCK, "flock");
    const Descriptor reader(open(path("file").c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(flock(reader.get(), LOCK_SH), 0);
    EXPECT_EQ(lock_file(path("file"), 30ms).state, LockState::HELD_BY_ANOTHER);
    const Descriptor lister(open(path("").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_EQ(flock(lister.get(), LOCK_SH), 0);
    EXPECT_FALSE(is_free(""));
}

TEST_F(FileLockTest, AppliesToAllNamesOfTheFile) {
    std::filesystem::create_symlink("file", path("link"));
    std::filesystem::create_hard_link(path("file"), path("other"));
    const FileLock lock = lock_file(path("link"), 0ms);
    EXPECT_FALSE(is_free("file"));
    EXPECT_EQ(lock_file(path("other"), 0ms).state, LockState::HELD_BY_ANOTHER);
}

TEST_F(FileLockTest, IsThatOfTheNewFileAfterAReplacementDuringTheWait) {
    FileLock theirs = lock_file(path("file"), 0ms);
    std::thread replacer([&] {
        std::this_thread::sleep_for(50ms);
        put("new");
        std::filesystem::rename(path("new"), path("file"));
        theirs = {};
    });
    const FileLock ours = lock_file(path("file"), 1min);
    replacer.join();
    EXPECT_EQ(ours.state, LockState::HELD);
    EXPECT_FALSE(is_free("file"));
}

// A process that opens the file just before a replacement and locks it just after has locked a file
// without a name.
TEST_F(FileLockTest, IsHeldByAnotherWhenTheReplacementIsLocked) {
    NEEDS(GATESCOPE_HAS_FLOCK, "flock");
    FileLock theirs;
    at_next_flock() = [&] {
        put("new");
        std::filesystem::rename(path("new"), path("file"));
        theirs = lock_file(path("file"), 0ms);
        return 0;
    };
    EXPECT_EQ(lock_file(path("file"), 30ms).state, LockState::HELD_BY_ANOTHER);
    EXPECT_EQ(theirs.state, LockState::HELD);
}

TEST_F(FileLockTest, IsThatOfAFileReplacedBetweenOpenAndLock) {
    NEEDS(GATESCOPE_HAS_FLOCK, "flock");
    at_next_flock() = [&] {
        put("new");
        std::filesystem::rename(path("new"), path("file"));
        return 0;
    };
    const FileLock lock = lock_file(path("file"), 1min);
    EXPECT_EQ(lock.state, LockState::HELD);
    EXPECT_FALSE(is_free("file"));
}

TEST_F(FileLockTest, IsUnavailableAtOnceOnAFileSystemWithoutLocks) {
    NEEDS(GATESCOPE_HAS_FLOCK, "flock");
    for (const int error : {ENOLCK, EOPNOTSUPP, ENOSYS, EINVAL}) {
        at_next_flock() = [&] { return error; };
        const FileLock lock = lock_file(path("file"), 1min);
        EXPECT_EQ(lock.state, LockState::UNAVAILABLE) << error;
        EXPECT_TRUE(lock.file) << error;
    }
}

TEST_F(FileLockTest, IsTakenAfterAnInterruptedCall) {
    NEEDS(GATESCOPE_HAS_FLOCK, "flock");
    at_next_flock() = [] { return EINTR; };
    EXPECT_EQ(lock_file(path("file"), 1min).state, LockState::HELD);
}

TEST_F(FileLockTest, IsUnavailableForMissingAndNonRegularFiles) {
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    for (const char* name : {"none", "fifo", ""}) {
        const FileLock lock = lock_file(path(name), 1min);
        EXPECT_EQ(lock.state, LockState::UNAVAILABLE) << name;
        EXPECT_FALSE(lock.file) << name;
    }
}

}  // namespace
}  // namespace gatescope
