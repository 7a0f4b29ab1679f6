#include "base/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace gatescope {
namespace {

bool is_open(int number) {
    return fcntl(number, F_GETFD) != -1;
}

Descriptor open_null_device() {
    return Descriptor(open("/dev/null", O_RDWR | O_CLOEXEC));
}

TEST(DescriptorTest, ClosesTheFileInItsDestructor) {
    int number;
    {
        const Descriptor file = open_null_device();
        ASSERT_TRUE(file);
        number = file.get();
        EXPECT_TRUE(is_open(number));
    }
    EXPECT_FALSE(is_open(number));
}

TEST(DescriptorTest, IsEmptyAfterAMove) {
    Descriptor one = open_null_device();
    const int number = one.get();
    Descriptor other(std::move(one));
    EXPECT_FALSE(one);  // NOLINT(bugprone-use-after-move): the state after a move is tested
    EXPECT_EQ(other.get(), number);
    Descriptor third;
    third = std::move(other);
    EXPECT_EQ(third.get(), number);
    EXPECT_TRUE(is_open(number));
}

TEST(DescriptorTest, ReturnsTheErrnoOfAFailedClose) {
    Descriptor file = open_null_device();
    EXPECT_EQ(file.close(), 0);
    EXPECT_FALSE(file);
    EXPECT_EQ(file.close(), 0);
    Descriptor gone = open_null_device();
    ::close(gone.get());
    EXPECT_EQ(gone.close(), EBADF);
    EXPECT_FALSE(gone);
}

TEST(DescriptorTest, LeavesErrnoUnchanged) {
    errno = ENOSPC;
    { Descriptor gone(12345); }
    EXPECT_EQ(errno, ENOSPC);
}

}  // namespace
}  // namespace gatescope
