#include "policy/new_gatebits_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "base/descriptor.h"
#include "base/platform.h"
#include "base/run_identity.h"
#include "support/expect_gripe.h"
#include "support/limit_file_size.h"
#include "support/scratch_directory.h"

namespace gatescope {
namespace {

class NewGatebitsFile : public testing::Test {
  protected:
    NewGatebitsFile() { GLOBAL_PID_STRING = "4711"; }

    std::string path(const std::string& name) const { return directory.path(name); }
    std::set<std::string> files() const { return directory.names(); }

    ScratchDirectory directory;
};

TEST_F(NewGatebitsFile, HasTheOperatorsDefaultPermissions) {
    const mode_t mask = umask(027);
    EXPECT_EQ(create_gatebits_file(path("new.txt"), "a\nb\n", {}), NewFile::CREATED);
    umask(mask);
    EXPECT_EQ(directory.read("new.txt"), "a\nb\n");
    struct stat status;
    ASSERT_EQ(stat(path("new.txt").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    EXPECT_EQ(files(), std::set<std::string>{"new.txt"});
}

TEST_F(NewGatebitsFile, DoesNotReplaceAnExistingFile) {
    directory.write("taken.txt", "theirs\n");
    EXPECT_EQ(create_gatebits_file(path("taken.txt"), "ours\n", {}), NewFile::EXISTS);
    EXPECT_EQ(directory.read("taken.txt"), "theirs\n");
    EXPECT_EQ(files(), std::set<std::string>{"taken.txt"});
}

TEST_F(NewGatebitsFile, IsCreatedAtTheEndOfDanglingLinks) {
    std::filesystem::create_directory(path("folder"));
    std::filesystem::create_symlink("folder/link.txt", path("first.txt"));
    std::filesystem::create_symlink(path("new.txt"), path("folder/link.txt"));
    EXPECT_EQ(create_gatebits_file(path("first.txt"), "ours\n", {}), NewFile::CREATED);
    EXPECT_TRUE(std::filesystem::is_symlink(path("first.txt")));
    EXPECT_FALSE(std::filesystem::is_symlink(path("new.txt")));
    EXPECT_EQ(directory.read("new.txt"), "ours\n");
    EXPECT_EQ(files(), (std::set<std::string>{"first.txt", "folder", "new.txt"}));
}

TEST_F(NewGatebitsFile, IsNotCreatedThroughLinksToAFileOrInACircle) {
    directory.write("taken.txt", "theirs\n");
    std::filesystem::create_symlink("taken.txt", path("link.txt"));
    EXPECT_EQ(create_gatebits_file(path("link.txt"), "ours\n", {}), NewFile::EXISTS);
    EXPECT_EQ(directory.read("taken.txt"), "theirs\n");
    std::filesystem::create_symlink("circle.txt", path("circle.txt"));
    EXPECT_EQ(create_gatebits_file(path("circle.txt"), "ours\n", {}), NewFile::NOT_CREATED);
    EXPECT_EQ(files(), (std::set<std::string>{"circle.txt", "link.txt", "taken.txt"}));
}

TEST_F(NewGatebitsFile, IsNotCreatedThroughAnotherUsersLinkInAWorldWritableDirectory) {
    std::filesystem::create_directory(path("open"));
    ASSERT_EQ(chmod(path("open").c_str(), 01777), 0);
    std::filesystem::create_symlink(path("new.txt"), path("open/link.txt"));
    if (lchown(path("open/link.txt").c_str(), 65534, 65534) != 0) GTEST_SKIP() << "needs root";
    EXPECT_EQ(create_gatebits_file(path("open/link.txt"), "ours\n", {}), NewFile::NOT_CREATED);
    EXPECT_EQ(files(), std::set<std::string>{"open"});
    ASSERT_EQ(chmod(path("open").c_str(), 0755), 0);
    EXPECT_EQ(create_gatebits_file(path("open/link.txt"), "ours\n", {}), NewFile::CREATED);
}

TEST_F(NewGatebitsFile, ReplacesALinkPlantedUnderTheUnfinishedName) {
    directory.write("victim.txt", "theirs\n");
    std::filesystem::create_symlink(path("victim.txt"), path(".gatescope_new_4711"));
    EXPECT_EQ(create_gatebits_file(path("new.txt"), "ours\n", {}), NewFile::CREATED);
    EXPECT_EQ(directory.read("victim.txt"), "theirs\n");
    EXPECT_EQ(files(), (std::set<std::string>{"new.txt", "victim.txt"}));
}

TEST_F(NewGatebitsFile, IsNotCreatedUnderAnImpossibleName) {
    for (const std::string& name : {std::string("none/new.txt"), std::string(256, 'n'),
                                    std::string(5000, 'n'), std::string("new.txt/")}) {
        EXPECT_EQ(create_gatebits_file(path(name), "ours\n", {}), NewFile::NOT_CREATED) << name;
    }
    EXPECT_EQ(files(), std::set<std::string>{});
}

TEST_F(NewGatebitsFile, LeavesNoPartialFileIfItCannotBeWritten) {
    const auto create_with_little_room = [this] {
        limit_file_size(4096);
        create_gatebits_file(path("new.txt"), std::string(4097, 'x'), {});
    };
    EXPECT_GRIPE(create_with_little_room(), "ERROR: Could not write the new gatebits file (" +
                                                path("new.txt") +
                                                "): File too large.  The file was not created.");
    EXPECT_EQ(files(), std::set<std::string>{});
}

TEST_F(NewGatebitsFile, CopiesAllBytes) {
    const std::string bytes("a\0b\n\n \xff", 7);
    directory.write("source.txt", bytes);
    EXPECT_EQ(bytes_to_copy(path("source.txt"), path("copy.txt")), bytes);
}

TEST_F(NewGatebitsFile, CopiesASourceAfterItsLockIsReleased) {
    directory.write("source.txt", "half");
    Descriptor theirs(open(path("source.txt").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(lock_exclusively(theirs.get()), 0);
    std::thread rewriter([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        directory.write("source.txt", "whole\n");
        theirs.close();
    });
    EXPECT_EQ(bytes_to_copy(path("source.txt"), path("copy.txt")), "whole\n");
    rewriter.join();
}

TEST_F(NewGatebitsFile, GripesIfTheSourceOfACopyCannotBeRead) {
    EXPECT_GRIPE(
        bytes_to_copy(path("none.txt"), path("copy.txt")),
        "#2 Could not move (" + path("none.txt") + ") to (" + path("copy.txt") + ") with 2");
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    const Descriptor writer(open(path("pipe").c_str(), O_RDWR | O_CLOEXEC));
    EXPECT_GRIPE(bytes_to_copy(path("pipe"), path("copy.txt")),
                 "#2 Could not move (" + path("pipe") + ") to (" + path("copy.txt") + ") with 22");
    EXPECT_GRIPE(bytes_to_copy("/dev/zero", path("copy.txt")),
                 "#2 Could not move (/dev/zero) to (" + path("copy.txt") + ") with 22");
    EXPECT_GRIPE(bytes_to_copy(path(""), path("copy.txt")),
                 "#2 Could not move (" + path("") + ") to (" + path("copy.txt") + ") with 21");
}

}  // namespace
}  // namespace gatescope
