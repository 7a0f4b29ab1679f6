#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "logs/query_data.h"

namespace gatescope {

/// A test with a result without counts, and plain labels.
class PageText : public testing::Test {
  protected:
    PageText() {
        for (std::size_t day = 0; day < result.cell_time.size(); ++day) {
            result.cell_time[day] = "day " + std::to_string(day);
        }
    }

    QueryResult result;
};

}  // namespace gatescope
