#include "logs/progress.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <termios.h>

#include <cstdlib>
#include <string>

#include "base/descriptor.h"

namespace gatescope {
namespace {

using namespace std::chrono_literals;

/// A test with a pseudo-terminal.
class ProgressOnTerminal : public testing::Test {
  protected:
    void SetUp() override {
        screen_ = Descriptor(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
        ASSERT_TRUE(screen_);
        ASSERT_EQ(grantpt(screen_.get()), 0);
        ASSERT_EQ(unlockpt(screen_.get()), 0);
        terminal_ = Descriptor(open(ptsname(screen_.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
        ASSERT_TRUE(terminal_);
    }
    int terminal() const { return terminal_.get(); }
    /// The text written since the last call.
    std::string shown() const {
        std::string text;
        pollfd ready = {screen_.get(), POLLIN, 0};
        while (poll(&ready, 1, 100) == 1) {
            char bytes[4096];
            const ssize_t got = read(screen_.get(), bytes, sizeof bytes);
            if (got <= 0) break;
            text.append(bytes, static_cast<std::size_t>(got));
        }
        return text;
    }

  private:
    Descriptor screen_;
    Descriptor terminal_;
};

TEST_F(ProgressOnTerminal, DrawsALineAndWipesItAtTheEnd) {
    std::string line;
    {
        Progress progress(40'000'000, terminal(), 0ms);
        progress.add(9'000'000);
        progress.advance(1'000'000);
        line = shown();
        EXPECT_TRUE(line.starts_with("\r10 of 40 MB, ")) << line;
        EXPECT_TRUE(line.ends_with(" s left\r")) << line;
        // No second line before the interval has passed.
        progress.advance(1'000'000);
        EXPECT_EQ(shown(), "");
    }
    EXPECT_EQ(shown(), "\r" + std::string(line.size() - 2, ' ') + "\r");
}

TEST_F(ProgressOnTerminal, WipesALineOnce) {
    Progress progress(40'000'000, terminal(), 0ms);
    progress.advance(1'000'000);
    shown();
    progress.wipe();
    EXPECT_NE(shown(), "");
    progress.wipe();
    EXPECT_EQ(shown(), "");
}

TEST_F(ProgressOnTerminal, RaisesTheTotalIfALogGrows) {
    Progress progress(1'000'000, terminal(), 0ms);
    progress.advance(3'000'000);
    EXPECT_TRUE(shown().starts_with("\r3 of 3 MB, 0 s left"));
}

TEST_F(ProgressOnTerminal, DrawsNothingBeforeTheDelay) {
    {
        Progress progress(40'000'000, terminal(), 1h);
        progress.advance(30'000'000);
    }
    EXPECT_EQ(shown(), "");
}

TEST(ProgressWithoutTerminal, DrawsNothing) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const Descriptor out(ends[0]);
    Descriptor in(ends[1]);
    {
        Progress progress(40'000'000, in.get(), 0ms);
        progress.advance(30'000'000);
    }
    in.close();
    char byte;
    EXPECT_EQ(read(out.get(), &byte, 1), 0);
}

}  // namespace
}  // namespace gatescope
