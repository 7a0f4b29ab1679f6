#include "report/csv.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <sstream>
#include <vector>

#include "dialog/messages.h"
#include "support/expect_gripe.h"
#include "support/limit_file_size.h"
#include "support/scratch_directory.h"

namespace gatescope {

namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

/// A test with the period that ends with 15 November 2026, in which summer time ends.
class Csv : public testing::Test {
  protected:
    Csv() {
        setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
        tzset();
        std::tm end = {};
        end.tm_year = 126;
        end.tm_mon = 10;
        end.tm_mday = 15;
        end.tm_hour = 23;
        end.tm_min = end.tm_sec = 59;
        end.tm_isdst = -1;
        result.asked.period.end_of_day_time = std::mktime(&end);
    }
    ~Csv() override {
        unsetenv("TZ");
        tzset();
    }

    /// The lines of a query's CSV file without their ends, which must be CR LF.
    std::vector<std::string> csv_lines(int query) {
        result.asked.query = query;
        const std::string csv = csv_of(result, lines);
        EXPECT_TRUE(csv.ends_with("\r\n"));
        std::vector<std::string> found;
        std::istringstream stream(csv);
        for (std::string line; std::getline(stream, line);) {
            EXPECT_TRUE(line.ends_with("\r")) << line;
            line.pop_back();
            found.push_back(line);
        }
        return found;
    }

    QueryResult result;
    KeyLines lines;
};

TEST_F(Csv, HasBothCountsPerDayForQueriesOneAndSix) {
    result.cell_success[0] = 7;
    result.cell_denied[0] = 4000000000;
    result.cell_success[119] = 1;
    for (const int query : {1, 6}) {
        const auto found = csv_lines(query);
        ASSERT_EQ(found.size(), 121U);
        EXPECT_EQ(found[0], "day,allowed,denied");
        EXPECT_EQ(found[1], "2026-07-19,1,0");
        EXPECT_EQ(found[119], "2026-11-14,0,0");
        EXPECT_EQ(found[120], "2026-11-15,7,4000000000");
    }
}

TEST_F(Csv, HasEachDayOnceAcrossTheEndOfSummerTime) {
    const auto found = csv_lines(1);
    EXPECT_EQ(found[99], "2026-10-25,0,0");
    for (std::size_t i = 2; i < found.size(); ++i) EXPECT_LT(found[i - 1], found[i]);
}

TEST_F(Csv, HasUsesForQueryTwoAndDenialsForQueryThree) {
    result.cell_success[1] = 5;
    result.cell_denied[1] = 6;
    EXPECT_EQ(csv_lines(2).front(), "day,count");
    EXPECT_EQ(csv_lines(2)[119], "2026-11-14,5");
    EXPECT_EQ(csv_lines(3).front(), "day,count");
    EXPECT_EQ(csv_lines(3)[119], "2026-11-14,6");
    EXPECT_EQ(csv_lines(3).size(), 121U);
}

TEST_F(Csv, HasAllBitsForQueryFour) {
    result.cell_success[23] = 9;
    const auto found = csv_lines(4);
    ASSERT_EQ(found.size(), 25U);
    EXPECT_EQ(found[0], "bit,name,uses");
    EXPECT_EQ(found[1], "0,BIT__AUTO_BRANCH_REMOVAL,0");
    EXPECT_EQ(found[24], "23,BIT__FORCE_CHECKOUTS_UNRESERVED,9");
}

TEST_F(Csv, HasTheKeyLinesUnchangedForQueryFive) {
    result.cell_success[0] = 8;
    result.cell_success[4] = 2;
    result.highest_key_read = 4;
    lines = {"lock;<a> & b;", "x, \"y\"", "  caf\xc3\xa9 \xff\r", std::nullopt};
    EXPECT_THAT(csv_lines(5),
                ElementsAre("key,line,denials", "1,lock;<a> & b;,0", "2,\"x, \"\"y\"\"\",0",
                            "3,\"  caf\xc3\xa9 \xff\r\",0", "4,,2"));
}

TEST_F(Csv, HasOnlyItsHeaderForQueryFiveWithoutDenials) {
    EXPECT_THAT(csv_lines(5), ElementsAre("key,line,denials"));
}

TEST_F(Csv, IsRequestedByYesInAnyCase) {
    unsetenv("ZUL_GATESCOPE_CSV");
    EXPECT_FALSE(csv_is_requested());
    for (const char* value : {"", "no", "yess", "1"}) {
        setenv("ZUL_GATESCOPE_CSV", value, 1);
        EXPECT_FALSE(csv_is_requested()) << value;
    }
    for (const char* value : {"yes", "Yes"}) {
        setenv("ZUL_GATESCOPE_CSV", value, 1);
        EXPECT_TRUE(csv_is_requested());
    }
    unsetenv("ZUL_GATESCOPE_CSV");
}

class CsvFile : public testing::Test {
  protected:
    CsvFile() { ZUL_PREFER_GUI = 0; }
    ~CsvFile() override { ZUL_PREFER_GUI = 1; }

    /// The message for a CSV file that could not be written.
    std::string write_failure(const std::string& reason) const {
        return "ERROR: The numbers of this query could not be written (" + path + "): " + reason +
               ".  Its page is whole.\n";
    }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(directory.path())) {
            found.push_back(entry.path().filename());
        }
        return found;
    }

    ScratchDirectory directory;
    const std::string path = directory.path("page.csv");
};

TEST_F(CsvFile, HasAPathBesideThePage) {
    EXPECT_EQ(csv_path("/a.html/20261115_000000_Q01.html"), "/a.html/20261115_000000_Q01.csv");
}

TEST_F(CsvFile, ReplacesAnExistingFile) {
    const mode_t mask = umask(022);
    store_csv(path, "one\r\n");
    store_csv(path, "two\r\n");
    umask(mask);
    EXPECT_EQ(directory.read("page.csv"), "two\r\n");
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0644U);
    EXPECT_THAT(names(), ElementsAre("page.csv"));
}

TEST_F(CsvFile, ReplacesSymbolicLinksAndFifos) {
    directory.write("victim", "as it was");
    fs::create_symlink("victim", path);
    store_csv(path, "numbers");
    EXPECT_EQ(directory.read("victim"), "as it was");
    EXPECT_FALSE(fs::is_symlink(path));
    fs::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    store_csv(path, "numbers");
    EXPECT_EQ(directory.read("page.csv"), "numbers");
}

TEST_F(CsvFile, IsThatOfOneOfSeveralConcurrentWriters) {
    constexpr std::size_t SIZE = 300000;
    for (char letter = 'a'; letter < 'i'; ++letter) {
        if (fork() != 0) continue;
        for (int i = 0; i < 5; ++i) store_csv(path, std::string(SIZE, letter));
        _exit(0);
    }
    for (int status = 0; wait(&status) > 0;) EXPECT_EQ(status, 0);
    const std::string all = directory.read("page.csv");
    EXPECT_EQ(all.size(), SIZE);
    EXPECT_EQ(all.find_first_not_of(all.front()), std::string::npos);
    EXPECT_THAT(names(), ElementsAre("page.csv"));
}

TEST_F(CsvFile, LeavesNoTemporaryFileIfItCannotBeRenamed) {
    fs::create_directory(path);
    EXPECT_GRIPE(store_csv(path, "numbers"), write_failure("Is a directory"));
    EXPECT_THAT(names(), ElementsAre("page.csv"));
}

TEST_F(CsvFile, DoesNotExistIfItDoesNotFit) {
    EXPECT_GRIPE(
        {
            limit_file_size(1000);
            store_csv(path, std::string(5000, 'x'));
        },
        write_failure("File too large"));
    EXPECT_TRUE(names().empty());
}

}  // namespace
}  // namespace gatescope
