// The main function of every test program. It fails if the filter matches no test, since a run
// without tests would otherwise look like one in which all pass.

#include <gtest/gtest.h>

#include <cstdio>

int main(int argument_count, char** arguments) {
    testing::InitGoogleTest(&argument_count, arguments);
    const int status = RUN_ALL_TESTS();
    if (status != 0 || testing::GTEST_FLAG(list_tests)) return status;
    if (testing::UnitTest::GetInstance()->test_to_run_count() > 0) return 0;
    std::fprintf(stderr, "No test matches the filter %s\n", testing::GTEST_FLAG(filter).c_str());
    return 1;
}
