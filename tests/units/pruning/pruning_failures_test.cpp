#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <functional>

#include "messages/log_texts.h"
#include "support/failing_sync.h"
#include "support/needs.h"
#include "units/pruning/pruning_region.h"

namespace gatescope {

// System calls that fail during a pruning, and changes by other processes between its calls.

namespace {

/// Functions called before a system call with its file name (the second of two). They return 0, or
/// the errno with which the call fails instead.
struct Calls {
    std::function<int(const std::string& name)> link;
    std::function<int(const std::string& name)> unlink;
    std::function<int(const std::string& name)> rename;
    std::function<int(const std::string& name)> lstat;
};
Calls& before() {
    static Calls calls;
    return calls;
}

/// Fails with `error` if it is not 0; else the result of `call`.
template <typename Call>
int fail_or_call(int error, const Call& call) {
    if (error == 0) return static_cast<int>(call());
    errno = error;
    return -1;
}

/// The sum of the nanosleep arguments of this process and its children, in nanoseconds.
std::atomic<long long>& requested_sleep() {
    static void* const shared = mmap(nullptr, sizeof(std::atomic<long long>),
                                     PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return *static_cast<std::atomic<long long>*>(shared);
}

int error_before(const std::function<int(const std::string&)>& what, const char* name) {
    return what ? what(name) : 0;
}

}  // namespace
}  // namespace gatescope

using gatescope::before;
using gatescope::error_before;
using gatescope::fail_or_call;
using gatescope::requested_sleep;

// These replace functions of the C library. They are defined outside the namespace, because on
// 32-bit machines the headers give some of them other symbol names there.
extern "C" {

int linkat(int one, const char* from, int other, const char* to, int flags) noexcept {
    return fail_or_call(error_before(before().link, to),
                        [&] { return syscall(SYS_linkat, one, from, other, to, flags); });
}
int unlinkat(int directory, const char* name, int flags) noexcept {
    return fail_or_call(error_before(before().unlink, name),
                        [&] { return syscall(SYS_unlinkat, directory, name, flags); });
}
int fstatat(int directory, const char* name, struct stat* status, int flags) noexcept {
    // No direct system call: on 32-bit machines it has another name and another struct.
    const std::string place =
        directory == AT_FDCWD ? "" : "/proc/self/fd/" + std::to_string(directory) + "/";
    const auto look = (flags & AT_SYMLINK_NOFOLLOW) != 0 ? lstat : stat;
    return fail_or_call(error_before(before().lstat, name),
                        [&] { return look((place + name).c_str(), status); });
}
int nanosleep(const timespec* wished, timespec* left) {
    requested_sleep() += wished->tv_sec * 1'000'000'000LL + wished->tv_nsec;
    errno = clock_nanosleep(CLOCK_MONOTONIC, 0, wished, left);
    return errno == 0 ? 0 : -1;
}
int renameat(int one, const char* from, int other, const char* to) noexcept {
    return fail_or_call(error_before(before().rename, to),
                        [&] { return syscall(SYS_renameat2, one, from, other, to, 0); });
}
}

namespace gatescope {
namespace {

class PruningFailures : public Pruning {
  protected:
    void TearDown() override {
        before() = {};
        good_syncs = -1;
        Pruning::TearDown();
    }
    /// The path of the only file whose name begins with `prefix`.
    static std::string only_file(const std::string& prefix) {
        std::string found;
        for (const auto& [name, text] : all_files()) {
            if (!name.starts_with(prefix)) continue;
            EXPECT_EQ(found, "");
            found = logging_dir + "/" + name;
        }
        return found;
    }
    static constexpr char NO_ROOM[] = "No space left on device";
};

TEST_F(PruningFailures, AbortsWithoutATokenBeforeAnyChange) {
    write_log(0, old(1));
    fs::create_directory(pruning_token_path());
    EXPECT_GRIPE(prune(), "Could not create needed pruning token");
    EXPECT_EQ(file_text(log_file_path(0)), old(1));
}

TEST_F(PruningFailures, RemovesANewTokenThatCannotBeWritten) {
    write_log(0, old(1));
    const auto prune_without_room = [] {
        limit_file_size(45);
        prune();
    };
    EXPECT_GRIPE(prune_without_room(), "Could not create needed pruning token");
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", old(1)}}));
}

TEST_F(PruningFailures, KeepsAnExistingTokenAndReportsItsEffect) {
    const std::string earlier(4000, '\n');
    write_file(pruning_token_path(), earlier);
    EXPECT_EXIT(
        {
            ZUL_PREFER_GUI = 0;
            limit_file_size(earlier.size());
            prune();
        },
        testing::ExitedWithCode(99),
        "The pruning token \\(" + pruning_token_path() +
            "\\) stays.  As long as it stands, log writers go on into companion files");
    EXPECT_EQ(file_text(pruning_token_path()), earlier);
}

TEST_F(PruningFailures, AbortsWithoutAScratchFileAndReportsTheToken) {
    write_log(0, old(1));
    write_file(pruning_scratch_path() + "/inside", "");
    EXPECT_GRIPE(prune(), "Could not create needed pruning file");
    EXPECT_EXIT(
        {
            ZUL_PREFER_GUI = 0;
            prune();
        },
        testing::ExitedWithCode(99), "The pruning token \\(" + pruning_token_path() + "\\) stays");
    EXPECT_EQ(file_text(log_file_path(0)), old(1));
    EXPECT_TRUE(fs::exists(pruning_token_path()));
    EXPECT_TRUE(fs::exists(pruning_scratch_path() + "/inside"));
}

TEST_F(PruningFailures, AbortsOnAScratchFileThatIsASymbolicLink) {
    write_log(0, old(1));
    write_file(elsewhere("secret"), "a text");
    fs::create_symlink("elsewhere/secret", pruning_scratch_path());
    EXPECT_GRIPE(prune(), "Could not create needed pruning file");
    EXPECT_EQ(file_text(elsewhere("secret")), "a text");
    EXPECT_TRUE(fs::is_symlink(pruning_scratch_path()));
}

// It happens after the first check, and after the removal of the token, so the log is skipped.
TEST_F(PruningFailures, ReportsAScratchFileThatBecomesASymbolicLink) {
    write_log(0, fresh(1));
    before().unlink = [](const std::string& name) {
        if (name != "logging_pruning_token.txt") return 0;
        write_file(pruning_companion_path(0), fresh(2));
        fs::create_symlink("elsewhere", pruning_scratch_path());
        return 0;
    };
    const std::string reason = std::string("pruning_.txt: ") + IS_A_SYMBOLIC_LINK;
    EXPECT_EQ(output_of_prune(), not_merged(taken(0), reason) + result(0, 1));
    EXPECT_EQ(file_text(taken(0)), fresh(2));
    EXPECT_TRUE(fs::is_symlink(pruning_scratch_path()));
}

TEST_F(PruningFailures, AbortsBesideAnotherPruning) {
    NEEDS(GATESCOPE_HAS_FLOCK, "flock");
    write_log(0, old(1));
    const int other = open(logging_dir.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    EXPECT_GRIPE(prune(),
                 "ERROR: The logs of the Gatewarden Region (east) are being pruned by another "
                 "process.  Nothing was changed.");
    close(other);
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", old(1)}}));
    EXPECT_EQ(output_of_prune(), result(1, 1));
}

TEST_F(PruningFailures, SkipsALogWithoutRoomAndPrunesTheOthers) {
    std::string log = old(1);
    for (int i = 0; i < 400; ++i) log += fresh(i % 100);
    write_log(0, log);
    write_log(1, old(1) + fresh(1));
    const auto prune_without_room = [] {
        limit_file_size(4096);
        prune();
        std::fflush(stdout);
        std::exit(0);
    };
    EXPECT_EXIT(
        {
            send_standard_output_to_death_test();
            prune_without_room();
        },
        testing::ExitedWithCode(0),
        testing::Eq(skipped(log_file_path(0), "pruning_.txt: File too large") + result(1, 2)));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", log}, {"logging_1.txt", fresh(1)}}));
    EXPECT_EQ(output_of_prune(), result(1, 402));
}

// As on a network file system that repeats the call.
TEST_F(PruningFailures, ToleratesALinkWhoseReplyIsLost) {
    write_log(3, old(1) + fresh(1));
    before().link = [](const std::string& second) {
        EXPECT_EQ(syscall(SYS_linkat, AT_FDCWD, log_file_path(3).c_str(), AT_FDCWD,
                          (logging_dir + "/" + second).c_str(), 0),
                  0);
        return EEXIST;
    };
    EXPECT_EQ(output_of_prune(), result(1, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1)}}));
}

TEST_F(PruningFailures, SkipsALogThatCannotBeHardLinked) {
    write_log(3, old(1) + fresh(1));
    write_log(4, fresh(1));
    ASSERT_EQ(chmod(log_file_path(4).c_str(), 0666), 0);
    before().link = [](const std::string&) { return EPERM; };
    EXPECT_EQ(output_of_prune(),
              skipped(log_file_path(3), "Operation not permitted") + result(0, 1));
    EXPECT_EQ(all_files(),
              (Files{{"logging_3.txt", old(1) + fresh(1)}, {"logging_4.txt", fresh(1)}}));
}

// Otherwise a crash could leave neither the old text nor the new one on the disk.
TEST_F(PruningFailures, KeepsTheLogWhenTheScratchFileCannotBeSynced) {
    write_log(0, old(1) + fresh(1));
    good_syncs = 0;
    before().unlink = [](const std::string& name) {
        // After each attempt.
        if (name == "pruning_.txt") good_syncs = 0;
        return 0;
    };
    EXPECT_EQ(output_of_prune(),
              skipped(log_file_path(0), "pruning_.txt: Input/output error") + result(0, 0));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", old(1) + fresh(1)}}));
}

TEST_F(PruningFailures, RetriesASkippedLogWithoutTheToken) {
    write_log(0, old(1) + fresh(1));
    good_syncs = 0;
    EXPECT_EQ(output_of_prune(), result(1, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1)}}));
}

// The files that the ready file includes are needed until its name is on the disk.
TEST_F(PruningFailures, RemovesNothingBeforeTheCommitIsSynced) {
    write_log(0, old(1) + fresh(1));
    write_file(pruning_companion_path(0), fresh(2));
    before().rename = [](const std::string& name) {
        // The next sync is that of the directory, which includes the ready file's name.
        if (name.starts_with("logging_0.txt.ready_")) good_syncs = 0;
        return 0;
    };
    before().unlink = [](const std::string& name) {
        if (name != "logging_0.txt.taken_0") return 0;
        EXPECT_FALSE(fs::exists(pruning_token_path()));
        return 0;
    };
    // The second attempt, after the removal of the token, succeeds.
    EXPECT_EQ(output_of_prune(), result(1, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(PruningFailures, KeepsAReadyFileThatCannotBeRenamedForTheNextRun) {
    write_log(0, old(1) + fresh(1));
    write_file(pruning_companion_path(0), fresh(2));
    before().rename = [](const std::string& name) { return name == "logging_0.txt" ? EIO : 0; };
    const std::string said = output_of_prune();
    const std::string ready = only_file("logging_0.txt.ready_");
    const std::string reason = ready.substr(ready.rfind('/') + 1) + ": Input/output error";
    // It is committed and counted; the next run only renames it.
    EXPECT_EQ(said, not_merged(old_file(0, (old(1) + fresh(1)).size()), reason) +
                        not_merged(ready, reason) + result(1, 3));
    EXPECT_EQ(file_text(log_file_path(0)), old(1) + fresh(1));
    EXPECT_EQ(file_text(ready), fresh(1) + fresh(2));
    before() = {};
    EXPECT_EQ(output_of_prune(), result(0, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(PruningFailures, MergesATakenFileThatCannotBeRemovedOnce) {
    write_log(0, old(1) + fresh(1));
    write_file(pruning_companion_path(0), old(2) + fresh(2));
    before().unlink = [](const std::string& name) {
        return name == "logging_0.txt.taken_0" ? EIO : 0;
    };
    write_log(1, old(1));
    EXPECT_TRUE(output_of_prune().ends_with(result(3, 5)));
    EXPECT_EQ(file_text(log_file_path(0)), old(1) + fresh(1));
    fs::remove(log_file_path(1));
    before() = {};
    EXPECT_EQ(output_of_prune(), result(0, 2));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

TEST_F(PruningFailures, MergesWhatIsAppendedDuringTheRename) {
    write_log(0, old(1) + fresh(1));
    before().rename = [](const std::string& name) {
        if (name != "logging_0.txt") return 0;
        before() = {};
        std::ofstream(log_file_path(0), std::ios::app) << old(2) + fresh(2);
        return 0;
    };
    EXPECT_EQ(output_of_prune(), result(2, 4));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2)}}));
}

// The process writes the first piece just before the new text is renamed over the log.
TEST_F(PruningFailures, KeepsARecordInTwoPiecesWholeDuringTheRename) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(0, old(1) + fresh(1));
    write_file(pruning_companion_path(0), fresh(2));
    std::unique_ptr<SlowWriter> writer;
    std::unique_ptr<Later> rest;
    before().rename = [&](const std::string& name) {
        if (name != "logging_0.txt" || writer) return 0;
        writer = std::make_unique<SlowWriter>(log_file_path(0));
        writer->write(fresh(3).substr(0, 15));
        rest = std::make_unique<Later>([&] {
            writer->write(fresh(3).substr(15));
            writer->end();
        });
        return 0;
    };
    output_of_prune();
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2) + fresh(3)}}));
}

TEST_F(PruningFailures, LosesNoTextOfALogThatIsRotatedMeanwhile) {
    write_log(0, old(1) + fresh(1));
    before().link = [](const std::string& name) {
        if (!name.starts_with("logging_0.txt.old_")) return 0;
        before().link = {};
        fs::rename(log_file_path(0), logging_dir + "/rotated");
        write_log(0, fresh(5));
        return 0;
    };
    EXPECT_EQ(output_of_prune(), result(1, 3));
    EXPECT_EQ(all_files(),
              (Files{{"logging_0.txt", fresh(5) + fresh(1)}, {"rotated", old(1) + fresh(1)}}));
}

TEST_F(PruningFailures, CountsNoNegativeTotalOfALogRotatedBetweenThePasses) {
    write_log(0, fresh(1) + fresh(2) + fresh(3));
    before().unlink = [](const std::string& name) {
        if (name != "logging_pruning_token.txt") return 0;
        fs::rename(log_file_path(0), logging_dir + "/rotated");
        write_file(pruning_companion_path(0), fresh(5) + old(5));
        return 0;
    };
    EXPECT_EQ(output_of_prune(), result(1, 3));
    EXPECT_EQ(file_text(log_file_path(0)), fresh(5));
}

TEST_F(PruningFailures, LeavesSkippedLogsOutOfTheCounts) {
    write_log(0, old(1) + fresh(1));
    write_log(1, old(1) + fresh(1));
    before().rename = [](const std::string& name) {
        return name.starts_with("logging_0.txt.ready_") ? ENOSPC : 0;
    };
    const std::string said = output_of_prune();
    EXPECT_TRUE(said.ends_with(std::string(": ") + NO_ROOM + ".\n" + result(1, 2))) << said;
    before() = {};
    EXPECT_EQ(output_of_prune(), result(1, 3));
}

TEST_F(PruningFailures, KeepsATakenFileThatCannotBeExamined) {
    write_log(0, fresh(1));
    write_file(taken(0), fresh(2));
    write_file(pruning_companion_path(0), fresh(3));
    before().lstat = [](const std::string& name) {
        return name == "logging_0.txt.taken_0" ? EIO : 0;
    };
    const std::string said = output_of_prune();
    EXPECT_EQ(said.find(skipped(log_file_path(0), "logging_0.txt.taken_0: Input/output error")), 0u)
        << said;
    before() = {};
    EXPECT_EQ(output_of_prune(), result(0, 3));
    EXPECT_EQ(all_files(), (Files{{"logging_0.txt", fresh(1) + fresh(2) + fresh(3)}}));
}

TEST_F(PruningFailures, KeepsACompanionThatCannotBeRenamed) {
    write_log(0, old(1) + fresh(1));
    write_file(pruning_companion_path(0), fresh(2));
    before().rename = [](const std::string& name) {
        return name == "logging_0.txt.taken_0" ? EACCES : 0;
    };
    EXPECT_EQ(output_of_prune(),
              skipped(log_file_path(0), "logging__0.txt: Permission denied") + result(0, 0));
    EXPECT_EQ(file_text(pruning_companion_path(0)), fresh(2));
    before() = {};
    EXPECT_EQ(output_of_prune(), result(1, 3));
}

// The timeout for all logs together, and as long again for companions and replaced logs.
TEST_F(PruningFailures, WaitsOnceForAllLogsOfAnotherUser) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    patience.writer_timeout = std::chrono::milliseconds(400);
    const auto plant = [](const std::string& path, const std::string& text) {
        write_file(path, text);
        EXPECT_EQ(chmod(path.c_str(), 0666), 0);
        set_owner(path, OTHER_USER);
    };
    for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
        plant(log_file_path(number), old(1) + fresh(1));
        plant(pruning_companion_path(number), fresh(2));
    }
    // Companions created after the removal of the token.
    before().unlink = [&](const std::string& name) {
        if (name != "logging_pruning_token.txt") return 0;
        for (int number = 0; number < NUMBER_OF_LOG_FILES; ++number) {
            write_file(pruning_companion_path(number), fresh(3));
        }
        return 0;
    };
    requested_sleep() = 0;
    EXPECT_EQ(output_of_prune_as(OPERATOR), result(21, 84));
    const std::chrono::nanoseconds slept(requested_sleep());
    EXPECT_GE(slept, patience.writer_timeout);
    EXPECT_LE(slept, 2 * patience.writer_timeout + 2 * patience.pause);
    EXPECT_EQ(all_files().size(), 21u);
}

// Leases of another user's files are unavailable, so open writers are not detected.
TEST_F(PruningFailures, KeepsARecordInTwoPiecesWholeInALogOfAnotherUser) {
    if (!is_root()) GTEST_SKIP() << "needs root";
    patience.writer_timeout = std::chrono::milliseconds(400);
    ASSERT_EQ(chmod(logging_dir.c_str(), 0777), 0);
    write_log(3, fresh(1));
    ASSERT_EQ(chmod(log_file_path(3).c_str(), 0666), 0);
    std::string said;
    {
        const Later writing([] {
            while (!fs::exists(pruning_token_path())) usleep(100);
            // By then companions have been renamed for the first time.
            usleep(100'000);
            write_file(pruning_companion_path(3), fresh(2));
            EXPECT_EQ(chmod(pruning_companion_path(3).c_str(), 0666), 0);
            while (fs::exists(pruning_token_path())) usleep(100);
            const SlowWriter writer(log_file_path(3));
            writer.write(fresh(4).substr(0, 15));
            usleep(1'500'000);
            writer.write(fresh(4).substr(15));
            writer.end();
        });
        usleep(200'000);
        said = output_of_prune_as(OPERATOR);
    }
    EXPECT_NE(said.find("Somebody keeps it open for writing"), std::string::npos) << said;
    output_of_prune();
    EXPECT_EQ(all_files(), (Files{{"logging_3.txt", fresh(1) + fresh(4) + fresh(2)}}));
}

}  // namespace
}  // namespace gatescope
