#pragma once

#include <gmock/gmock-matchers.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "base/run_identity.h"
#include "dialog/messages.h"
#include "main/startup.h"
#include "messages/identity.h"
#include "policy/gatebits_file.h"
#include "policy/tool_variables.h"
#include "scenes/region.h"

/// A test whose functions run on a stage: dialogs and other programs are played by stand-ins, the
/// gatebits file in use is the region's.
class OnStage : public testing::Test {
  protected:
    explicit OnStage(const RegionPlan& plan = a_region()) : region(plan) {
        region.enter();
        verify_set_tempdir();
        ENTERPRIZE_PERMISSION_FILE = region.gatebits_path();
        GS_VAR.fill("");
        ZUL_PREFER_GUI = 1;
        ZUL_REMOTE_CLIENT_USER = 0;
    }

    /// Puts another gatebits file in place of the region's.
    void use_gatebits(const std::string& text) const { region.write_file("gatebits.txt", text); }

    Region region;
};

/// The statement ends the process through gripe with this message; what is said of the reason on
/// standard error comes before it.
#define EXPECT_GRIPE(statement, message)        \
    EXPECT_EXIT(                                \
        {                                       \
            ZUL_PREFER_GUI = 0;                 \
            dup2(STDERR_FILENO, STDOUT_FILENO); \
            statement;                          \
        },                                      \
        testing::ExitedWithCode(99), testing::EndsWith(std::string() + (message) + "\n"))
