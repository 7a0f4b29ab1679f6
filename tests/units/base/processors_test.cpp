#include "base/processors.h"

#include <gtest/gtest.h>
#include <sched.h>

#include "support/needs.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

/// The files of a system with cgroups.
class ControlGroups : public testing::Test {
  protected:
    void put(const std::string& path, const std::string& text) const {
        write_file(root_.path() + path, text);
    }
    int granted() const { return processors_granted(root_ / "membership", root_.path()); }

  private:
    ScratchDirectory root_;
};

TEST_F(ControlGroups, GrantAllWithoutALimit) {
    EXPECT_EQ(granted(), -1);
    put("/membership", "0::/\n");
    EXPECT_EQ(granted(), -1);
    put("/cpu.max", "max 100000\n");
    EXPECT_EQ(granted(), -1);
}

TEST_F(ControlGroups, GrantTheQuotaRoundedUp) {
    put("/membership", "0::/\n");
    put("/cpu.max", "150000 100000\n");
    EXPECT_EQ(granted(), 2);
    put("/cpu.max", "1000 100000\n");
    EXPECT_EQ(granted(), 1);
    put("/cpu.max", "400000 100000\n");
    EXPECT_EQ(granted(), 4);
}

TEST_F(ControlGroups, GrantNoMoreThanThoseAbove) {
    put("/membership", "0::/jobs/night/one\n");
    put("/jobs/night/one/cpu.max", "400000 100000\n");
    put("/jobs/cpu.max", "300000 100000\n");
    EXPECT_EQ(granted(), 3);
    put("/jobs/night/one/cpu.max", "200000 100000\n");
    EXPECT_EQ(granted(), 2);
}

TEST_F(ControlGroups, AreReadAtTheRootInAContainer) {
    put("/membership", "0::/outside/name\n");
    put("/cpu.max", "200000 100000\n");
    EXPECT_EQ(granted(), 2);
}

TEST_F(ControlGroups, IgnoreVersion1) {
    put("/membership", "3:cpu,cpuacct:/box\n0::/jobs\n");
    put("/box/cpu.max", "100000 100000\n");
    EXPECT_EQ(granted(), -1);
    put("/jobs/cpu.max", "200000 100000\n");
    EXPECT_EQ(granted(), 2);
}

TEST(UsableProcessors, AreThoseOfTheAffinity) {
    NEEDS(GATESCOPE_HAS_AFFINITY, "affinities");
    cpu_set_t before;
    ASSERT_EQ(sched_getaffinity(0, sizeof before, &before), 0);
    EXPECT_GE(usable_processors(), 1);
    EXPECT_LE(usable_processors(), CPU_COUNT(&before));
    cpu_set_t one;
    CPU_ZERO(&one);
    for (std::size_t i = 0; CPU_COUNT(&one) == 0; ++i) {
        if (CPU_ISSET(i, &before)) CPU_SET(i, &one);
    }
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    EXPECT_EQ(usable_processors(), 1);
    EXPECT_EQ(sched_setaffinity(0, sizeof before, &before), 0);
}

}  // namespace
}  // namespace gatescope
