#pragma once

#include <gtest/gtest.h>

namespace gatescope {

/// Skips the test where the program is built without what the test is about: a GATESCOPE_HAS_...
/// of cmake/Platform.cmake, and what it stands for.
#define NEEDS(feature, what) \
    if (!(feature)) GTEST_SKIP() << "built without " what

}  // namespace gatescope
