#include "base/directory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "support/scratch_directory.h"

namespace gatescope {

namespace fs = std::filesystem;

namespace {

class Directories : public testing::Test {
  protected:
    void SetUp() override {
        scratch_.write("file", "text");
        ASSERT_EQ(chmod(scratch_.path().c_str(), 0777), 0);
        ASSERT_EQ(chmod((scratch_ / "file").c_str(), 0666), 0);
    }
    [[nodiscard]] int check_replaceable(const std::string& name) const {
        return Directory(scratch_.path()).check_replaceable(name, "trial");
    }
    /// The same for a user who owns nothing here.
    [[nodiscard]] int may_another_replace(const std::string& name) const {
        const pid_t child = fork();
        if (child == 0) _exit(setuid(12345) == 0 ? check_replaceable(name) : 255);
        int status = 0;
        waitpid(child, &status, 0);
        return WEXITSTATUS(status);
    }

    ScratchDirectory scratch_;
};

TEST_F(Directories, AllowsReplacementAndRemovesTheTrial) {
    EXPECT_EQ(check_replaceable("file"), 0);
    EXPECT_FALSE(fs::exists(scratch_ / "trial"));
    EXPECT_EQ(fs::hard_link_count(scratch_ / "file"), 1u);
}

TEST_F(Directories, KeepsAnExistingTrial) {
    scratch_.write("trial", "mine");
    EXPECT_EQ(check_replaceable("file"), 0);
    EXPECT_EQ(file_text(scratch_ / "trial"), "mine");
}

TEST_F(Directories, RefusesAMissingName) {
    EXPECT_EQ(check_replaceable("none"), ENOENT);
}

TEST_F(Directories, RefusesFilesOfOthersInAStickyDirectory) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
    EXPECT_EQ(may_another_replace("file"), 0);
    ASSERT_EQ(chmod(scratch_.path().c_str(), 01777), 0);
    EXPECT_EQ(may_another_replace("file"), EPERM);
    EXPECT_EQ(check_replaceable("file"), 0);
    ASSERT_EQ(chown((scratch_ / "file").c_str(), 12345, 12345), 0);
    EXPECT_EQ(may_another_replace("file"), 0);
    EXPECT_FALSE(fs::exists(scratch_ / "trial"));
}

}  // namespace
}  // namespace gatescope
