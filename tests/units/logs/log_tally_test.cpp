#include "logs/log_tally.h"

#include "log_region.h"
#include "logs/shared_log.h"
#include "records/words.h"
#include "support/expect_gripe.h"
#include "support/few_descriptors.h"

namespace gatescope {
namespace {

/// The logs of a region, counted by query 1.
class LogTally : public LogRegion {
  protected:
    static RecordTally tally() {
        RecordQuery query;
        query.filters = {":", ":", ":", ":"};
        query.period.end_of_day_time = end_of_day_time;
        query.period.start_of_period_time = end_of_day_time - QUERY_DAYS * SECONDS_A_DAY;
        std::vector<std::string> paths;
        for (int i = 0; i < NUMBER_OF_LOG_FILES; ++i) paths.push_back(log_file_path(i));
        return tally_logs(query, paths);
    }
    static std::string said_on_standard_error() {
        testing::internal::CaptureStderr();
        tally();
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(LogTally, CountsALongRecordOnce) {
    for (const std::size_t size : {254U, 255U, 256U, 257U, 5000U, 65536U}) {
        const std::string head = record_at(noon(1), "S:");
        const std::string tail = "[1]-<->";
        const std::string record = head + std::string(size - head.size() - tail.size(), 'u') + tail;
        write_log(0, line(2, "D:ann[1]K<1>") + record + "\n" + line(2, "D:ann[1]K<1>"));
        const RecordTally counted = tally();
        EXPECT_EQ(counted.rows[1][ALLOWED], 1u) << size;
        EXPECT_EQ(counted.rows[2][DENIED], 2u) << size;
    }
}

TEST_F(LogTally, SearchesTheWholeOfALongRecord) {
    // A record inside a record is part of its text.
    write_log(0, record_at(noon(3), "X:" + std::string(10000, 'u') + line(5, "S:ann[1]-<->")));
    const RecordTally counted = tally();
    EXPECT_EQ(counted.rows[3][ALLOWED], 1u);
    EXPECT_EQ(counted.rows[5][ALLOWED], 0u);
}

TEST_F(LogTally, SplitsWordsLongerThanTheLimit) {
    write_log(0, std::string(WORD_LIMIT, 'y') + line(2, "S:a[1]-<->"));
    EXPECT_EQ(tally().rows[2][ALLOWED], 1u);
}

TEST_F(LogTally, NamesUnopenedLogsAndCountsTheOthers) {
    write_log(4, line(1, "S:a[1]-<->"));
    std::filesystem::create_directory(log_file_path(3));
    std::filesystem::create_symlink("logging_20.txt", log_file_path(20));
    EXPECT_EQ(said_on_standard_error(),
              "gatescope: the log file (" + log_file_path(3) +
                  ") was left out: Not a regular file\ngatescope: the log file (" +
                  log_file_path(20) + ") was left out: Too many levels of symbolic links\n");
    EXPECT_EQ(tally().rows[1][ALLOWED], 1u);
}

TEST_F(LogTally, GripesIfDescriptorsAreLacking) {
    for (int i = 0; i < NUMBER_OF_LOG_FILES; ++i) write_log(i, line(1, "S:a[1]-<->"));
    {
        const FewDescriptors one(1);
        EXPECT_EQ(tally().rows[1][ALLOWED], 21u);
    }
    EXPECT_GRIPE(
        {
            // Static, to be destroyed before the leak checker runs, which needs descriptors.
            static const FewDescriptors none(0);
            tally();
        },
        "ERROR: The log file (" + log_file_path(0) +
            ") could not be read to its end: Too many open files.  The file is as it was.");
}

TEST_F(LogTally, TellsResourceShortagesFromFaultsOfAFile) {
    for (const int error : {EMFILE, ENFILE, ENOMEM})
        EXPECT_TRUE(is_resource_shortage(error)) << error;
    for (const int error : {0, ENOENT, EACCES, EISDIR, EINVAL, ELOOP, EIO, ENXIO}) {
        EXPECT_FALSE(is_resource_shortage(error)) << error;
    }
}

TEST_F(LogTally, SkipsMissingLogsSilently) {
    write_log(4, line(1, "S:a[1]-<->"));
    std::filesystem::create_symlink("nowhere", log_file_path(5));
    EXPECT_EQ(said_on_standard_error(), "");
}

}  // namespace
}  // namespace gatescope
