#pragma once

#include <fcntl.h>
#include <gmock/gmock-matchers.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "dialog/messages.h"

namespace gatescope {

/// For EXPECT_GRIPE: a death test reads standard error, so standard output goes there, and standard
/// error to /dev/null.
inline void send_standard_output_to_death_test() {
    ZUL_PREFER_GUI = 0;
    dup2(STDERR_FILENO, STDOUT_FILENO);
    dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
}

/// Expects that the statement ends the process as gripe does: with status 99 and exactly this
/// message on standard output. Standard error is not compared.
#define EXPECT_GRIPE(statement, message)          \
    EXPECT_EXIT(                                  \
        {                                         \
            send_standard_output_to_death_test(); \
            statement;                            \
        },                                        \
        testing::ExitedWithCode(99), testing::Eq(std::string() + (message) + "\n"))

}  // namespace gatescope
