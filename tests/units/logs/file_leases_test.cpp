#include "logs/file_leases.h"

#include <fcntl.h>
#include <unistd.h>

#include <thread>

#include "log_region.h"

namespace {

constexpr Patience SHORT = {20, 20};
constexpr Patience LONG = {5000, 20};

class FileLeases : public LogRegion {
  protected:
    void SetUp() override {
        LogRegion::SetUp();
        write_log(0, "text");
        path_ = log_file_path(0);
    }
    int opened(int flags) const {
        const int file = open(path_.c_str(), flags | O_CLOEXEC);
        EXPECT_NE(file, -1);
        return file;
    }
    std::string path_;
};

TEST_F(FileLeases, AWriterRefusesBothUntilItIsGone) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    const int file = opened(O_RDONLY);
    EXPECT_TRUE(writers_have_gone(file, SHORT));
    const int writer = opened(O_WRONLY);
    EXPECT_FALSE(writers_have_gone(file, SHORT));
    std::thread closing([&] {
        usleep(50'000);
        close(writer);
    });
    EXPECT_TRUE(writers_have_gone(file, LONG));
    closing.join();
    close(file);
}

TEST_F(FileLeases, AReaderRefusesOnlyTheOneForWriting) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    const int file = opened(O_RDWR);
    const int reader = opened(O_RDONLY);
    EXPECT_EQ(take_lease(file, F_WRLCK, SHORT), REFUSED);
    close(file);
    EXPECT_TRUE(writers_have_gone(reader, SHORT));
    close(reader);
}

TEST_F(FileLeases, WhoOpensTheFileWaitsUntilItIsClosed) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    const int file = opened(O_RDWR);
    ASSERT_EQ(take_lease(file, F_WRLCK, SHORT), GRANTED);
    EXPECT_EQ(open(path_.c_str(), O_RDONLY | O_NONBLOCK), -1);
    close(file);
    close(opened(O_RDONLY | O_NONBLOCK));
}

TEST_F(FileLeases, WhereThereAreNoneThatIsSaid) {
    const int file = open("/dev/null", O_RDONLY);
    EXPECT_EQ(take_lease(file, F_RDLCK, SHORT), NOT_KNOWN_HERE);
    EXPECT_TRUE(writers_have_gone(file, SHORT));
    close(file);
}

}  // namespace
