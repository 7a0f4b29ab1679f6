#include "dialog/process_end.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <set>

#include "base/child.h"
#include "base/filled.h"
#include "base/signals.h"
#include "base/temporary_files.h"
#include "dialog/answer_file.h"
#include "messages/startup_texts.h"
#include "units/on_stage.h"

namespace gatescope {
namespace {

class ProcessEnd : public OnStage {
  protected:
    /// The wait status of a child process that calls `act`.
    static int in_a_child(const std::function<void()>& act) {
        const pid_t child = fork();
        if (child == 0) {
            act();
            _exit(77);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    }
    std::string at(const std::string& name) const { return region.path("tmp/" + name); }
};
using ProcessEndDeathTest = ProcessEnd;

TEST_F(ProcessEnd, CleanExitEndsWithItsStatusAndRemovesTemporaryFiles) {
    const int status = in_a_child([&] {
        close(create_temporary_file(at("scratch")));
        clean_exit(7);
    });
    EXPECT_EQ(WEXITSTATUS(status), 7);
    EXPECT_TRUE(region.files_in("tmp").empty());
}

TEST_F(ProcessEnd, SignalsRemoveTemporaryFilesAndStillEndTheProcess) {
    std::set<int> tried;
    for (int number = 1; number <= SIGRTMAX; ++number) {
        // These stop a process, and the test would wait for it.
        if (number == SIGSTOP || number == SIGTSTP || number == SIGTTIN || number == SIGTTOU) {
            continue;
        }
        const rlimit no_core = {0, 0};
        const int alone = in_a_child([&] {
            setrlimit(RLIMIT_CORE, &no_core);
            signal(number, SIG_DFL);
            raise(number);
        });
        // SIGXFSZ becomes an error of write, and SIGKILL cannot be caught.
        if (!WIFSIGNALED(alone) || number == SIGKILL || number == SIGXFSZ) continue;
        tried.insert(number);
        const int status = in_a_child([&] {
            setrlimit(RLIMIT_CORE, &no_core);
            signal(number, SIG_DFL);
            install_signal_cleanup();
            close(create_temporary_file(at("scratch")));
            raise(number);
        });
        EXPECT_TRUE(WIFSIGNALED(status)) << number;
        EXPECT_EQ(WTERMSIG(status), number);
        EXPECT_TRUE(region.files_in("tmp").empty()) << number;
    }
    // At least these; real-time signals differ by system.
    for (const int number :
         {SIGHUP, SIGINT, SIGQUIT, SIGILL, SIGTRAP, SIGABRT, SIGBUS, SIGFPE, SIGUSR1, SIGSEGV,
          SIGUSR2, SIGPIPE, SIGALRM, SIGTERM, SIGXCPU, SIGVTALRM, SIGPROF, SIGSYS}) {
        EXPECT_TRUE(tried.contains(number)) << number;
    }
}

TEST_F(ProcessEnd, EarlierSignalHandlersStay) {
    const int status = in_a_child([&] {
        signal(SIGSEGV, [](int) { _exit(5); });
        install_signal_cleanup();
        raise(SIGSEGV);
    });
    EXPECT_EQ(WEXITSTATUS(status), 5);
}

TEST_F(ProcessEnd, AllTemporaryFilesAreRemovedExceptForgottenOnes) {
    const auto end = [&](const std::function<void()>& end_of_process) {
        in_a_child([&] {
            install_signal_cleanup();
            for (int i = 0; i < 100; ++i) close(create_temporary_file(at(std::to_string(i))));
            forget_temporary_file(at("50"));
            close(create_temporary_file(at("last")));
            end_of_process();
        });
        EXPECT_EQ(region.files_in("tmp"), std::vector<std::string>{"50"});
        unlink_remove(at("50"));
    };
    end([] { clean_exit(0); });
    end([] { raise(SIGTERM); });
}

TEST_F(ProcessEnd, FilesForSignalsAreRemovedBySignalsOnly) {
    const auto make = [&] {
        close(create_temporary_file(at("sign")));
        forget_temporary_file(at("sign"));
        remember_file_removed_on_signal(at("sign"));
    };
    in_a_child([&] {
        make();
        clean_exit(7);
    });
    EXPECT_FALSE(region.files_in("tmp").empty());
    in_a_child([&] {
        install_signal_cleanup();
        make();
        raise(SIGTERM);
    });
    EXPECT_TRUE(region.files_in("tmp").empty());
    in_a_child([&] {
        install_signal_cleanup();
        make();
        forget_temporary_file(at("sign"));
        raise(SIGTERM);
    });
    EXPECT_FALSE(region.files_in("tmp").empty());
}

TEST_F(ProcessEnd, IgnoredSignalsStayIgnored) {
    const int status = in_a_child([&] {
        signal(SIGHUP, SIG_IGN);
        install_signal_cleanup();
        raise(SIGHUP);
        _exit(5);
    });
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 5);
}

TEST_F(ProcessEnd, ForgottenFilesStay) {
    in_a_child([&] {
        close(create_temporary_file(at("kept")));
        forget_temporary_file(at("kept"));
        clean_exit(0);
    });
    EXPECT_EQ(region.files_in("tmp"), std::vector<std::string>{"kept"});
}

TEST_F(ProcessEnd, TemporaryFilesArePrivateAndReplaceLinks) {
    region.write_file("victim", "precious");
    ASSERT_EQ(symlink(region.path("victim").c_str(), at("scratch").c_str()), 0);
    const int file = create_temporary_file(at("scratch"));
    ASSERT_NE(file, -1);
    struct stat status = {};
    fstat(file, &status);
    EXPECT_EQ(status.st_mode & 07777, mode_t{0600});
    EXPECT_EQ(write(file, "x", 1), 1);
    close(file);
    EXPECT_EQ(region.file("victim"), "precious");
    remove_temporary_file(at("scratch"));
    EXPECT_FALSE(region.has_file("tmp/scratch"));
}

TEST_F(ProcessEnd, AnswerFileDistinguishesEmptyFromUnwritten) {
    const AnswerFile answer(at("answer"));
    EXPECT_FALSE(answer.content().has_value());
    EXPECT_EQ(run_in_shell(": > '" + at("answer") + "'"), 0);
    EXPECT_EQ(answer.content(), "");
    EXPECT_EQ(run_in_shell("printf 'a\\nb' > '" + at("answer") + "'"), 0);
    EXPECT_EQ(answer.content(), "a\nb");
    EXPECT_EQ(answer.content(2), "a\n");
    EXPECT_EQ(run_in_shell("rm '" + at("answer") + "'"), 0);
    EXPECT_FALSE(answer.content().has_value());
}

TEST_F(ProcessEnd, AnswerFileIgnoresADirectory) {
    const AnswerFile answer(at("answer"));
    EXPECT_EQ(run_in_shell("cd '" + region.path("tmp") + "' && rm answer && mkdir answer"), 0);
    EXPECT_FALSE(answer.content().has_value());
    EXPECT_EQ(run_in_shell("rmdir '" + at("answer") + "'"), 0);
}

TEST_F(ProcessEndDeathTest, AnswerFileFailsOnASymbolicLink) {
    const AnswerFile answer(at("answer"));
    EXPECT_EQ(run_in_shell("ln -sf /etc/passwd '" + at("answer") + "'"), 0);
    bool failed = false;
    EXPECT_FALSE(answer.content(100, &failed).has_value());
    EXPECT_TRUE(failed);
    EXPECT_GRIPE(static_cast<void>(answer.content()),
                 filled(CANNOT_READ_ANSWER, at("answer").c_str(), std::strerror(ELOOP)));
}

TEST_F(ProcessEnd, RunInShellReturnsTheWaitStatus) {
    EXPECT_EQ(run_in_shell("exit 0"), 0);
    EXPECT_EQ(run_in_shell("exit 1"), 256);
    EXPECT_EQ(run_in_shell("kill -TERM $$"), 15);
}

}  // namespace
}  // namespace gatescope
