#include "base/whole_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <thread>

#include "base/descriptor.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

class WholeFile : public testing::Test {
  protected:
    Descriptor opened(const std::string& name, int flags) const {
        return Descriptor(open((directory / name).c_str(), flags | O_CLOEXEC, 0600));
    }
    ScratchDirectory directory;
};

TEST_F(WholeFile, IsReadToItsEndOrToTheLimit) {
    const std::string text(100000, 'x');
    directory.write("file", text);
    std::string bytes = "before ";
    EXPECT_EQ(read_whole(opened("file", O_RDONLY).get(), std::string::npos, &bytes), 0);
    EXPECT_EQ(bytes, "before " + text);
    for (const std::size_t limit : {0u, 1u, 32768u, 32769u, 99999u}) {
        std::string some;
        EXPECT_EQ(read_whole(opened("file", O_RDONLY).get(), limit, &some), 0);
        EXPECT_EQ(some.size(), limit);
    }
}

TEST_F(WholeFile, IsCompleteAfterPartialReadsAndWrites) {
    std::array<int, 2> ends;
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const Descriptor out(ends[0]);
    Descriptor in(ends[1]);
    const std::string text(200000, 'x');
    // More than the pipe's capacity, so both take several calls.
    std::thread writer([&] {
        EXPECT_EQ(write_all(in.get(), text), 0);
        in.close();
    });
    std::string bytes;
    EXPECT_EQ(read_whole(out.get(), std::string::npos, &bytes), 0);
    writer.join();
    EXPECT_EQ(bytes, text);
}

TEST_F(WholeFile, IsWrittenAndClosed) {
    const int file = opened("file", O_WRONLY | O_CREAT).release();
    EXPECT_EQ(write_sync_close(file, "text"), 0);
    EXPECT_EQ(fcntl(file, F_GETFD), -1);
    EXPECT_EQ(directory.read("file"), "text");
}

TEST_F(WholeFile, ReturnsTheErrnoOfAFailure) {
    std::string bytes;
    EXPECT_EQ(read_whole(opened("", O_RDONLY).get(), 1, &bytes), EISDIR);
    const Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(write_all(full.get(), "text"), ENOSPC);
    EXPECT_EQ(write_and_sync(full.get(), "text"), ENOSPC);
    const int duplicate = dup(full.get());
    EXPECT_EQ(write_sync_close(duplicate, "text"), ENOSPC);
    EXPECT_EQ(fcntl(duplicate, F_GETFD), -1);
}

}  // namespace
}  // namespace gatescope
