#include <fcntl.h>
#include <gtest/gtest.h>

#include "base/descriptor.h"
#include "base/platform.h"
#include "base/run_identity.h"
#include "faults/in_child.h"
#include "policy/gatebits_file.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

// A process that is stopped during a change must not block others without a message.
TEST(LockedGatebitsFile, ReportsFileLockedForTooLong) {
    ASSERT_EQ(LOCK_PATIENCE, std::chrono::seconds(10));
    const ScratchDirectory directory;
    const std::string file = directory / "gatebits.txt";
    write_file(file, "one;\n");
    const Descriptor other_process(open(file.c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(lock_exclusively(other_process.get()), 0);
    const Ended ended = in_child([&] {
        TEMP_DIR = directory / "";
        change(
            file, {Gatebits(std::string()), no_part},
            [](const Gatebits& now) { return set_a_line(now, 1, "two;"); }, {},
            std::chrono::seconds(1));
    });
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(ended.said, "ERROR: Could not write the file (" + file +
                              "): another process has held its lock for more than 1 seconds.  (" +
                              file + ") is unchanged.\n");
    EXPECT_EQ(file_text(file), "one;\n");
    EXPECT_EQ(directory.names(), std::set<std::string>{"gatebits.txt"});
}

}  // namespace
}  // namespace gatescope
