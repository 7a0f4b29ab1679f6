#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <thread>

#include "pruning/pruning.h"
#include "support/expect_gripe.h"
#include "support/limit_file_size.h"
#include "units/logs/log_region.h"

namespace gatescope {

namespace fs = std::filesystem;

class Pruning : public LogRegion {
  protected:
    void SetUp() override {
        LogRegion::SetUp();
        patience = {};
    }

    static inline Patience patience;
    /// For tests in which the timeout always expires.
    static constexpr Patience SHORT_PATIENCE = {std::chrono::milliseconds(50)};

    static void prune(int days = 120, bool display = false) {
        prune_logging_files({logging_dir, "east", display}, static_cast<std::uint8_t>(days),
                            patience);
    }
    static std::string output_of_prune(int days = 120, bool display = false) {
        testing::internal::CaptureStdout();
        prune(days, display);
        return testing::internal::GetCapturedStdout();
    }

    static std::string result(int removed, int total, int days = 120) {
        return std::to_string(removed) + " of " + std::to_string(total) + " log entries " +
               (removed == 1 ? "was" : "were") +
               " removed from the Gatewarden LOGS for the Gatewarden Region (east).\n\n" +
               std::to_string(days) + " days of data retained.";
    }

    static std::map<std::string, std::string> all_files() {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::directory_iterator(logging_dir)) {
            files[entry.path().filename()] = file_text(entry.path());
        }
        return files;
    }
    using Files = std::map<std::string, std::string>;

    static mode_t mode_of(const std::string& path) {
        struct stat status;
        return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }
    static void set_owner(const std::string& path, uid_t user) {
        ASSERT_EQ(lchown(path.c_str(), user, user), 0);
    }
    static bool is_root() { return geteuid() == 0; }
    /// A path in another directory than that of the logs.
    static std::string elsewhere(const std::string& name) {
        fs::create_directory(logging_dir + "/elsewhere");
        return logging_dir + "/elsewhere/" + name;
    }
    /// The line about a left-over that the next pruning merges.
    static std::string not_merged(const std::string& path, const std::string& reason) {
        return "The next pruning adds to its log what is left in (" + path + "): " + reason + ".\n";
    }
    static std::string taken(int number, int k = 0) {
        return log_file_path(number) + ".taken_" + std::to_string(k);
    }
    static std::string old_file(int number, std::size_t size) {
        return log_file_path(number) + ".old_" + std::to_string(size);
    }
    static ino_t inode_of(const std::string& path) {
        struct stat status;
        return stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
    }

    static std::string fresh(int number) { return line(number, "S:ann[2]-<->"); }
    static std::string old(int number) { return line(200 + number, "S:ann[2]-<->"); }
    static constexpr uid_t OPERATOR = 12345;
    static constexpr uid_t OTHER_USER = 12346;

    /// The output of a pruning by an ordinary user.
    static std::string output_of_prune_as(uid_t user) {
        const std::string path = testing::TempDir() + "output_" + std::to_string(getpid());
        const pid_t child = fork();
        if (child == 0) {
            stdout = std::freopen(path.c_str(), "w", stdout);
            if (setgid(user) != 0 || setuid(user) != 0) _exit(1);
            prune();
            std::fflush(stdout);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
        const std::string said = file_text(path);
        fs::remove(path);
        return said;
    }
    /// The line about a skipped log.
    static std::string skipped(const std::string& path, const std::string& reason) {
        return "The log file (" + path + ") was left as it is: " + reason + ".\n";
    }
};

/// Calls `work` in a thread after 100 ms; the destructor waits for its end.
class Later {
  public:
    template <typename Work>
    explicit Later(const Work& work)
        : thread_([work] {
              usleep(100'000);
              work();
          }) {}
    ~Later() { thread_.join(); }
    Later(const Later&) = delete;
    Later& operator=(const Later&) = delete;

  private:
    std::thread thread_;
};

/// A log writer that has opened its file and not closed it yet.
class SlowWriter {
  public:
    explicit SlowWriter(const std::string& path)
        : file_(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666)) {
        EXPECT_NE(file_, -1);
    }
    void write(const std::string& text) const {
        EXPECT_EQ(::write(file_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void end() const { EXPECT_EQ(close(file_), 0); }

  private:
    int file_;
};

}  // namespace gatescope
