#pragma once

#include <fcntl.h>
#include <gmock/gmock-matchers.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "dialog/messages.h"

namespace gatescope {

/// For EXPECT_GRIPE: leaves a death test only what it prints on standard output to look at.
inline void hear_standard_output_alone() {
    ZUL_PREFER_GUI = 0;
    dup2(STDERR_FILENO, STDOUT_FILENO);
    dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
}

/// The statement ends the process as gripe does: with status 99, and with this message, whole and
/// alone, on standard output. The reasons that gripe may give on standard error are not looked at.
#define EXPECT_GRIPE(statement, message)  \
    EXPECT_EXIT(                          \
        {                                 \
            hear_standard_output_alone(); \
            statement;                    \
        },                                \
        testing::ExitedWithCode(99), testing::Eq(std::string() + (message) + "\n"))

}  // namespace gatescope
