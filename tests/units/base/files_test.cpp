#include "base/files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <thread>
#include <utility>

#include "base/descriptor.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

/// Called after the next fstatat.
std::function<void()>& after_next_stat() {
    static std::function<void()> action;
    return action;
}

}  // namespace
}  // namespace gatescope

/// Replaces the C library's function, so that a test can act between it and the next call. Outside
/// of the namespace, where 32-bit machines have another symbol for it.
extern "C" int fstatat(int directory, const char* path, struct stat* status, int flags) noexcept {
    const int no_link = (flags & AT_SYMLINK_NOFOLLOW) != 0 ? O_NOFOLLOW : 0;
    const gatescope::Descriptor file(openat(directory, path, O_PATH | O_CLOEXEC | no_link));
    const int result = file ? fstat(file.get(), status) : -1;
    const int reason = errno;
    const auto action = std::exchange(gatescope::after_next_stat(), nullptr);
    if (action) action();
    errno = reason;
    return result;
}

namespace gatescope {
namespace {

using namespace std::chrono_literals;

class OpenRegularFile : public testing::Test {
  protected:
    OpenRegularFile() { directory_.write("file", "text\n"); }
    ~OpenRegularFile() override { after_next_stat() = nullptr; }

    std::string path(const std::string& name) const { return directory_.path(name); }

    /// The file with a read lease, for which writers wait; nothing where there are no leases.
    Descriptor leased() const {
        Descriptor file(open(path("file").c_str(), O_RDONLY | O_CLOEXEC));
        fcntl(file.get(), F_SETSIG, SIGURG);
        if (fcntl(file.get(), F_SETLEASE, F_RDLCK) != 0) return {};
        return file;
    }

    ScratchDirectory directory_;
};

TEST_F(OpenRegularFile, WaitsForALease) {
    Descriptor theirs = leased();
    if (!theirs) GTEST_SKIP() << "the file system has no leases";
    const auto begin = std::chrono::steady_clock::now();
    std::thread owner([&] {
        std::this_thread::sleep_for(50ms);
        theirs.close();
    });
    const Descriptor ours(open_regular_file(path("file"), O_WRONLY));
    owner.join();
    EXPECT_TRUE(ours);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 50ms);
}

// Else a user who may write to the directory could block a job.
TEST_F(OpenRegularFile, DoesNotWaitForAPipeThatReplacesTheFile) {
    const Descriptor theirs = leased();
    if (!theirs) GTEST_SKIP() << "the file system has no leases";
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0666), 0);
    after_next_stat() = [&] { std::filesystem::rename(path("pipe"), path("file")); };
    alarm(20);
    EXPECT_EQ(open_regular_file(path("file"), O_WRONLY), -1);
    EXPECT_EQ(errno, ENXIO);
    alarm(0);
    EXPECT_FALSE(after_next_stat()) << "fstatat was called";
}

TEST_F(OpenRegularFile, RefusesOtherKindsOfFiles) {
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0666), 0);
    EXPECT_EQ(open_regular_file(path("pipe"), O_RDONLY), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(open_regular_file(path(""), O_RDONLY), -1);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(open_regular_file(path("none"), O_RDONLY), -1);
    EXPECT_EQ(errno, ENOENT);
}

}  // namespace
}  // namespace gatescope
