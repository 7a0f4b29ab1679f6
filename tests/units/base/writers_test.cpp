#include "base/writers.h"

#include <chrono>
#include <csignal>

#include "units/pruning/pruning_region.h"

namespace gatescope {
namespace {

class WaitForWriters : public Pruning {
  protected:
    void SetUp() override {
        Pruning::SetUp();
        if (!has_leases()) GTEST_SKIP() << "no leases here";
        write_log(0, "text");
        file_ = Descriptor(open(log_file_path(0).c_str(), O_RDONLY | O_CLOEXEC));
        ASSERT_TRUE(file_);
    }
    static std::chrono::steady_clock::time_point in(int milliseconds) {
        return std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    }
    Descriptor file_;
};

TEST_F(WaitForWriters, ReturnsAtOnceWithoutAWriter) {
    const WriterCheck check = wait_for_writers(file_, in(60'000));
    EXPECT_EQ(check.writers, Writers::NONE);
    EXPECT_EQ(check.status.st_size, 4);
}

TEST_F(WaitForWriters, WaitsForAWriterToClose) {
    const SlowWriter writer(log_file_path(0));
    const Later more([&] {
        writer.write("more");
        writer.end();
    });
    const WriterCheck check = wait_for_writers(file_, in(60'000));
    EXPECT_EQ(check.writers, Writers::NONE);
    EXPECT_EQ(check.status.st_size, 8);
}

TEST_F(WaitForWriters, ReportsAWriterAtTheDeadline) {
    const SlowWriter writer(log_file_path(0));
    const WriterCheck check = wait_for_writers(file_, in(20));
    EXPECT_EQ(check.writers, Writers::PRESENT);
    EXPECT_EQ(check.status.st_size, 4);
    writer.end();
}

TEST_F(WaitForWriters, LeavesNoLeaseBehind) {
    wait_for_writers(file_, in(20));
    const int writer = open(log_file_path(0).c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_NE(writer, -1);
    close(writer);
}

TEST(WaitForWritersWithoutLeases, WaitsUntilTheDeadline) {
    // Devices have no leases.
    const Descriptor file(open("/dev/null", O_RDONLY | O_CLOEXEC));
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
    EXPECT_EQ(wait_for_writers(file, deadline).writers, Writers::UNKNOWN);
    EXPECT_GE(std::chrono::steady_clock::now(), deadline);
}

}  // namespace
}  // namespace gatescope
