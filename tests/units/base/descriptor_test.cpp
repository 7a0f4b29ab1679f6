#include "base/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace gatescope {
namespace {

bool is_open(int number) {
    return fcntl(number, F_GETFD) != -1;
}

Descriptor an_open_file() {
    return Descriptor(open("/dev/null", O_RDWR | O_CLOEXEC));
}

TEST(DescriptorTest, IsClosedWhenItsOwnerGoes) {
    int number;
    {
        const Descriptor file = an_open_file();
        ASSERT_TRUE(file);
        number = file.get();
        EXPECT_TRUE(is_open(number));
    }
    EXPECT_FALSE(is_open(number));
}

TEST(DescriptorTest, AMoveLeavesNothingBehind) {
    Descriptor one = an_open_file();
    const int number = one.get();
    Descriptor other(std::move(one));
    EXPECT_FALSE(one);  // NOLINT(bugprone-use-after-move): what is left is the point
    EXPECT_EQ(other.get(), number);
    Descriptor third;
    third = std::move(other);
    EXPECT_EQ(third.get(), number);
    EXPECT_TRUE(is_open(number));
}

TEST(DescriptorTest, AFailedCloseIsTold) {
    Descriptor file = an_open_file();
    EXPECT_EQ(file.close(), 0);
    EXPECT_FALSE(file);
    EXPECT_EQ(file.close(), 0);
    Descriptor gone = an_open_file();
    ::close(gone.get());
    EXPECT_EQ(gone.close(), EBADF);
    EXPECT_FALSE(gone);
}

TEST(DescriptorTest, TheReasonOfAFailureOutlivesIt) {
    errno = ENOSPC;
    { Descriptor gone(12345); }
    EXPECT_EQ(errno, ENOSPC);
}

}  // namespace
}  // namespace gatescope
