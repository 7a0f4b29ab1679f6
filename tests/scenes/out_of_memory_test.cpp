// Memory that cannot be had ends the program with its error, and nothing is torn or left behind.

#include <gtest/gtest.h>

#include "scenes/region.h"

namespace gatescope {
namespace {

const std::string NO_MEMORY = "ERROR:  Unable to malloc needed memory.";

class OutOfMemory : public testing::Test {
  protected:
    void SetUp() override {
        if (PROGRAM_HAS_SANITIZERS)
            GTEST_SKIP() << "the sanitizer needs more memory than a limit leaves";
    }
    /// The operator's answer is larger than what a process may have.
    static void answer_with_a_gigabyte(Region& east) {
        east.answers({.kind = "list",
                      .meanwhile = "for f in tmp/*_result_*; do truncate -s 1G \"$f\"; done"});
    }
    static constexpr char LIMIT[] = "ulimit -v 150000";
};

TEST_F(OutOfMemory, InAnEditIsAnErrorAndChangesNothing) {
    Region east = a_region();
    const std::string before = east.gatebits();
    answer_with_a_gigabyte(east);
    const Result result = east.run_after(LIMIT, {"A=8", "R=n"});
    EXPECT_EQ(result.status, 99) << result.err;
    EXPECT_EQ(result.dialogs().back(), griped(NO_MEMORY));
    EXPECT_EQ(east.gatebits(), before);
}

TEST_F(OutOfMemory, IsPrintedWithoutDialogs) {
    Region east = a_region().without_dialogs();
    answer_with_a_gigabyte(east);
    const Result result = east.run_after(LIMIT, {"A=8", "R=n"});
    EXPECT_EQ(result.status, 99) << result.err;
    EXPECT_EQ(result.out, NO_MEMORY + "\n");
}

}  // namespace
}  // namespace gatescope
