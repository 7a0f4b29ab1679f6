#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "base/run_identity.h"
#include "dialog/messages.h"
#include "policy/gatebits_file.h"

/// A test with a directory of its own, a gatebits file in use there, and a clearprompt that ends
/// with the status that the test asks for and shows nothing. Messages are printed, so that
/// testing::internal::CaptureStdout sees them.
class ScratchRegion : public testing::Test {
  protected:
    ScratchRegion() {
        std::string pattern = (std::filesystem::temp_directory_path() / "unit_XXXXXX").string();
        directory_ = mkdtemp(pattern.data());
        ENTERPRIZE_PERMISSION_FILE = path("gatebits.txt");
        GLOBAL_PID_STRING = "1";
        TEMP_DIR = directory_;
        ZUL_PREFER_GUI = 0;
        write("clearprompt", "#!/bin/sh\nexit ${CLEARPROMPT_STATUS:-2}\n");
        std::filesystem::permissions(path("clearprompt"), std::filesystem::perms::owner_all);
        setenv("PATH", (directory_ + ":/usr/bin:/bin").c_str(), 1);
        unsetenv("CLEARPROMPT_STATUS");
        unsetenv("ZUL_GATESCOPE_VERBOSITY");
    }
    ~ScratchRegion() override {
        setenv("PATH", path_before_.c_str(), 1);
        ZUL_PREFER_GUI = 1;
        std::filesystem::remove_all(directory_);
    }

    std::string path(const std::string& name) const { return directory_ + "/" + name; }

    void write(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
    }

    std::string read(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    void gatebits_are(const std::string& text) const { write("gatebits.txt", text); }
    std::string gatebits() const { return read("gatebits.txt"); }

    /// Exit status of every question from now on: 0 yes, 1 no, 2 abort.
    static void questions_end_with(int status) {
        setenv("CLEARPROMPT_STATUS", std::to_string(status).c_str(), 1);
    }

    /// What `call` prints.
    template <typename Call>
    static std::string printed_by(Call call) {
        testing::internal::CaptureStdout();
        call();
        return testing::internal::GetCapturedStdout();
    }

  private:
    std::string path_before_ = std::getenv("PATH");
    std::string directory_;
};

/// For death tests: ends as a gripe of `text` ends, its words on standard error.
#define EXPECT_GRIPE(statement, text)           \
    EXPECT_EXIT(                                \
        {                                       \
            dup2(STDERR_FILENO, STDOUT_FILENO); \
            statement;                          \
        },                                      \
        testing::ExitedWithCode(99), testing::HasSubstr(text))
