#pragma once

#include <gtest/gtest.h>

namespace gatescope {

/// Skips the test if the program is built without `feature`, a GATESCOPE_HAS_... of
/// cmake/Platform.cmake; `what` names it.
#define NEEDS(feature, what) \
    if (!(feature)) GTEST_SKIP() << "built without " what

}  // namespace gatescope
