#pragma once

#include <gtest/gtest.h>

#include <string>

#include "base/run_identity.h"
#include "dialog/messages.h"
#include "main/startup.h"
#include "messages/identity.h"
#include "scenes/region.h"
#include "support/expect_gripe.h"

namespace gatescope {

/// A fixture with a temporary region: stand-ins replace the dialogs and other programs, and the
/// region's gatebits file is in use.
class OnStage : public testing::Test {
  protected:
    explicit OnStage(const RegionPlan& plan = a_region()) : region(plan) {
        region.enter();
        unsetenv("ZUL_GATESCOPE_VERBOSITY");
        unsetenv("ZUL_GATESCOPE_CSV");
        verify_set_tempdir();
        ZUL_PREFER_GUI = 1;
        ZUL_REMOTE_CLIENT_USER = 0;
    }

    /// Replaces the text of the region's gatebits file.
    void use_gatebits(const std::string& text) const { region.write_file("gatebits.txt", text); }

    std::string path(const std::string& name) const { return region.path(name); }

    /// The standard output of `call`.
    template <typename Call>
    static std::string printed_by(Call call) {
        testing::internal::CaptureStdout();
        call();
        return testing::internal::GetCapturedStdout();
    }

    Region region;
    /// The gatebits file in use.
    std::string gatebits_file = region.gatebits_path();
};

}  // namespace gatescope
