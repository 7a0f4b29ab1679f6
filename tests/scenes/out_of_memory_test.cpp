// A failed allocation ends the program with its error; no file is damaged or left behind.

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
    /// The answer is larger than the limit on the process's memory.
    static void answer_with_a_gigabyte(Region& east) {
        east.answers({.kind = "list",
                      .meanwhile = "for f in tmp/*_result_*; do truncate -s 1G \"$f\"; done"});
    }
    static constexpr char LIMIT[] = "ulimit -v 150000";
};

TEST_F(OutOfMemory, EndsEditWithErrorAndKeepsFile) {
    Region east = a_region();
    const std::string before = east.gatebits();
    answer_with_a_gigabyte(east);
    const Result result = east.run_after(LIMIT, {"A=8", "R=n"});
    EXPECT_EQ(result.status, 99) << result.err;
    EXPECT_EQ(result.dialogs().back(), griped(NO_MEMORY));
    EXPECT_EQ(east.gatebits(), before);
}

TEST_F(OutOfMemory, PrintsErrorWithoutDialogs) {
    Region east = a_region().without_dialogs();
    answer_with_a_gigabyte(east);
    const Result result = east.run_after(LIMIT, {"A=8", "R=n"});
    EXPECT_EQ(result.status, 99) << result.err;
    EXPECT_EQ(result.out, NO_MEMORY + "\n");
}

}  // namespace
}  // namespace gatescope
