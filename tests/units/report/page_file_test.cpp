#include "report/page_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <thread>

#include "base/descriptor.h"
#include "base/platform.h"
#include "dialog/messages.h"
#include "faults/small_disk.h"
#include "support/expect_gripe.h"
#include "support/limit_file_size.h"
#include "support/scratch_directory.h"

namespace gatescope {

namespace fs = std::filesystem;
using testing::Eq;
using testing::ExitedWithCode;

namespace {

class PageFile : public testing::Test {
  protected:
    PageFile() { ZUL_PREFER_GUI = 0; }
    ~PageFile() override { ZUL_PREFER_GUI = 1; }

    std::string page() const { return directory.path("page.html"); }

    /// Appends with a short timeout, for death tests.
    void append_briefly(const std::string& text) const {
        alarm(10);
        append_page(page(), text, std::chrono::milliseconds(50));
    }
    void expect_refused() const {
        EXPECT_GRIPE(append_briefly("page"),
                     "Could not create/open results file (" + page() + ")\n");
    }
    /// The message for a page that could not be written.
    std::string write_failure(const std::string& reason, const std::string& state) const {
        return "ERROR: The results file (" + page() + ") could not be written (" + reason + ").  " +
               state + "\n";
    }

    ScratchDirectory directory;
};

TEST_F(PageFile, CreatesThenAppends) {
    append_page(page(), "one\n");
    append_page(page(), "two\n");
    EXPECT_EQ(directory.read("page.html"), "one\ntwo\n");
}

TEST_F(PageFile, KeepsPagesOfConcurrentProcessesApart) {
    constexpr std::size_t SIZE = 300001;
    for (char letter = 'a'; letter < 'i'; ++letter) {
        if (fork() != 0) continue;
        for (int i = 0; i < 5; ++i) append_page(page(), std::string(SIZE, letter));
        _exit(0);
    }
    for (int status = 0; wait(&status) > 0;) EXPECT_EQ(status, 0);
    const std::string all = directory.read("page.html");
    ASSERT_EQ(all.size(), 40 * SIZE);
    for (std::size_t at = 0; at < all.size(); at += SIZE) {
        // npos, the largest number, at the last page.
        ASSERT_GE(all.find_first_not_of(all[at], at), at + SIZE) << "a page begins at " << at;
    }
}

/// Creates page.html, else page1.html and so on.
void create_numbered_page(const ScratchDirectory& directory, const std::string& text) {
    int others = 0;
    create_page(directory.path("page.html"), text,
                [&] { return directory.path("page" + std::to_string(++others) + ".html"); });
}

TEST_F(PageFile, CreatesAPageUnderTheFirstFreeName) {
    for (const char* text : {"one\n", "two\n", "three\n"}) create_numbered_page(directory, text);
    EXPECT_EQ(directory.read("page.html"), "one\n");
    EXPECT_EQ(directory.read("page1.html"), "two\n");
    EXPECT_EQ(directory.read("page2.html"), "three\n");
}

TEST_F(PageFile, LeavesExistingFilesUnchangedWhenCreating) {
    directory.write("victim", "as it was");
    fs::create_symlink("victim", page());
    fs::create_symlink("nothing", directory.path("page1.html"));
    fs::create_directory(directory.path("page2.html"));
    ASSERT_EQ(mkfifo(directory.path("page3.html").c_str(), 0600), 0);
    create_numbered_page(directory, "page");
    EXPECT_EQ(directory.read("page4.html"), "page");
    EXPECT_EQ(directory.read("victim"), "as it was");
    EXPECT_FALSE(fs::exists(directory.path("nothing")));
}

TEST_F(PageFile, GripesIfNoNameIsFree) {
    directory.write("page.html", "before");
    EXPECT_GRIPE(
        create_page(
            page(), "page", [&] { return page(); }, std::chrono::milliseconds(50)),
        write_failure("Other queries have its name", "It is as it was before this query."));
    EXPECT_EQ(directory.read("page.html"), "before");
}

TEST_F(PageFile, RemovesACreatedPageThatDoesNotFit) {
    EXPECT_GRIPE(
        {
            limit_file_size(6000);
            create_numbered_page(directory, std::string(100000, 'x'));
        },
        write_failure("File too large", "It is as it was before this query."));
    EXPECT_FALSE(fs::exists(page()));
    fs::remove_all(directory.path());
    EXPECT_GRIPE(create_numbered_page(directory, "page"),
                 "Could not create/open results file (" + page() + ")\n");
}

TEST_F(PageFile, RefusesASymbolicLink) {
    directory.write("victim", "as it was");
    fs::create_symlink("victim", page());
    expect_refused();
    EXPECT_EQ(directory.read("victim"), "as it was");
    fs::remove(page());
    fs::create_symlink("nothing", page());
    expect_refused();
    EXPECT_FALSE(fs::exists(directory.path("nothing")));
}

TEST_F(PageFile, RefusesAFileWithTwoHardLinks) {
    directory.write("victim", "as it was");
    fs::create_hard_link(directory.path("victim"), page());
    expect_refused();
    EXPECT_EQ(directory.read("victim"), "as it was");
}

TEST_F(PageFile, RefusesAFifoWithoutWaiting) {
    ASSERT_EQ(mkfifo(page().c_str(), 0600), 0);
    expect_refused();
    const Descriptor reader(open(page().c_str(), O_RDONLY | O_NONBLOCK));
    expect_refused();
    char byte;
    EXPECT_EQ(read(reader.get(), &byte, 1), 0);
}

TEST_F(PageFile, RefusesDirectoriesAndSockets) {
    fs::create_directory(page());
    expect_refused();
    fs::remove(page());
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, page().c_str(), sizeof address.sun_path - 1);
    const Descriptor server(socket(AF_UNIX, SOCK_STREAM, 0));
    ASSERT_EQ(bind(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    expect_refused();
}

TEST_F(PageFile, PrintsTheReasonOnStandardError) {
    fs::create_directory(page());
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            append_briefly("page");
        },
        ExitedWithCode(99),
        Eq("gatescope: " + page() + ": Is a directory\nCould not create/open results file (" +
           page() + ")\n\n"));
}

TEST_F(PageFile, RemovesAnAppendedPageThatDoesNotFit) {
    const std::string before(4000, 'b');
    append_page(page(), before);
    EXPECT_GRIPE(
        {
            limit_file_size(6000);
            append_briefly(std::string(100000, 'x'));
        },
        write_failure("File too large", "It is as it was before this query."));
    EXPECT_EQ(directory.read("page.html"), before);
}

TEST_F(PageFile, RemovesANewFileWhosePageDoesNotFit) {
    EXPECT_GRIPE(
        {
            limit_file_size(6000);
            append_briefly(std::string(100000, 'x'));
        },
        write_failure("File too large", "It is as it was before this query."));
    EXPECT_FALSE(fs::exists(page()));
}

TEST_F(PageFile, LeavesNoPartialPageOnAFullDisk) {
    const SmallDisk disk(directory.path(), 65536);
    if (!disk.is_mounted()) GTEST_SKIP() << "needs the right to mount";
    const std::string before(4096, 'b');
    append_page(page(), before);
    EXPECT_GRIPE(append_briefly(std::string(100000, 'x')),
                 write_failure("No space left on device", "It is as it was before this query."));
    EXPECT_EQ(directory.read("page.html"), before);
}

TEST_F(PageFile, CreatesAFileRemovedWhileWaitingForItsLock) {
    Descriptor first(open(page().c_str(), O_RDWR | O_CREAT, 0600));
    ASSERT_EQ(lock_exclusively(first.get()), 0);
    std::thread second([&] { append_page(page(), "second"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    fs::remove(page());
    first.close();
    second.join();
    EXPECT_EQ(directory.read("page.html"), "second");
}

TEST_F(PageFile, GripesIfTheLockIsNotReleased) {
    directory.write("page.html", "before");
    const Descriptor keeper(open(page().c_str(), O_RDWR));
    ASSERT_EQ(lock_exclusively(keeper.get()), 0);
    EXPECT_GRIPE(append_briefly("page"), write_failure("Another process keeps its lock",
                                                       "It is as it was before this query."));
    EXPECT_EQ(directory.read("page.html"), "before");
}

}  // namespace
}  // namespace gatescope
