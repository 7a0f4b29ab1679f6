#include "logs/range_tally.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <string>

#include "logs/log_reader.h"
#include "support/few_descriptors.h"
#include "support/scratch_directory.h"
#include "units/records/tallies.h"

namespace gatescope {
namespace {

RecordQuery query_of(int number) {
    RecordQuery query;
    query.query = number;
    query.period.end_of_day_time = PERIOD_END;
    query.period.start_of_period_time = PERIOD_END - QUERY_DAYS * SECONDS_A_DAY;
    return query;
}

/// Writes the logs into the directory.
std::vector<LogToCount> logs_with(const ScratchDirectory& directory,
                                  const std::vector<std::string>& texts) {
    std::vector<LogToCount> logs;
    for (const std::string& text : texts) {
        const std::string name = std::to_string(logs.size());
        directory.write(name, text);
        logs.push_back({directory.path(name), static_cast<off_t>(text.size())});
    }
    return logs;
}

RecordTally counted_by_the_plain_rule(const RecordQuery& query,
                                      const std::vector<std::string>& texts) {
    RecordTally tally;
    for (const std::string& text : texts) {
        const char* at = text.data();
        const char* const end = at + text.size();
        for (auto word = next_word(&at, end); !word.empty(); word = next_word(&at, end)) {
            count_word(query, word, &tally);
        }
    }
    return tally;
}

RangeTally tally(const RecordQuery& query, const std::vector<LogToCount>& logs, int threads,
                 off_t range_size) {
    Progress progress(0);
    return tally_ranges(query, logs, threads, range_size, &progress);
}

/// Mostly records, some malformed ones, and a few words longer than many ranges.
std::string random_log(std::mt19937& random, std::size_t lines, std::size_t longest_word) {
    std::string text;
    for (std::size_t line = random() % lines; line > 0; --line) {
        const auto age = static_cast<std::int64_t>(random() % (125 * SECONDS_A_DAY));
        const std::string number = std::to_string(random() % 60);
        text += std::to_string(PERIOD_END - age) + ":" + "SDBP"[random() % 4] + ":user" + number +
                "[" + number + "]" + "KBad-"[random() % 5] + "<" + number + ">";
        if (random() % 20 == 0) text.resize(text.size() - random() % 12);
        if (random() % 50 == 0) text.append(random() % longest_word, 'w');
        text += std::vector<std::string>{"\n", "\n", "\n", "\r\n", " ", "\n\n\n", ""}[random() % 7];
    }
    return text;
}

/// Returns the number of records counted.
std::int64_t expect_the_same_for_any_threads(std::mt19937& random,
                                             const std::vector<std::string>& texts,
                                             off_t range_size) {
    const ScratchDirectory directory;
    const std::vector<LogToCount> logs = logs_with(directory, texts);
    const RecordQuery query = query_of(static_cast<int>(1 + random() % 6));
    const RecordTally plain = counted_by_the_plain_rule(query, texts);
    for (const int threads : {1, 2, 3, 16}) {
        EXPECT_TRUE(same_counts(tally(query, logs, threads, range_size).tally, plain))
            << threads << " threads, ranges of " << range_size;
    }
    std::int64_t counted = 0;
    for (const auto& row : plain.rows) counted += row[ALLOWED] + row[DENIED];
    return counted;
}

TEST(RangeTally, IsTheSameIfEveryWordCrossesARange) {
    std::mt19937 random(13);
    std::int64_t counted = 0;
    for (int round = 0; round < 60; ++round) {
        std::vector<std::string> texts(1 + random() % 3);
        for (std::string& text : texts) text = random_log(random, 20, 200);
        counted += expect_the_same_for_any_threads(random, texts, 1 + round % 30);
    }
    EXPECT_GT(counted, 200);
}

TEST(RangeTally, IsTheSameIfWordsAreLongerThanRanges) {
    std::mt19937 random(14);
    std::int64_t counted = 0;
    for (int round = 0; round < 6; ++round) {
        std::vector<std::string> texts(1 + random() % 4);
        for (std::string& text : texts) text = random_log(random, 200, 100000);
        const auto size = static_cast<off_t>(1000 + random() % 30000);
        counted += expect_the_same_for_any_threads(random, texts,
                                                   round == 0 ? LogReader::TO_THE_END : size);
    }
    EXPECT_GT(counted, 200);
}

const std::string LINE = "1794700000:S:ann[1]-<->\n";

TEST(RangeTally, CountsRecordsAppendedAfterTheSizeWasRead) {
    const ScratchDirectory directory;
    std::vector<LogToCount> logs = logs_with(directory, {LINE + LINE});
    logs[0].size = 30;
    EXPECT_EQ(tally(query_of(1), logs, 2, 10).tally.rows[1][ALLOWED], 2u);
}

TEST(RangeTally, CountsALogTruncatedAfterItsSizeWasRead) {
    const ScratchDirectory directory;
    std::vector<LogToCount> logs = logs_with(directory, {LINE, LINE});
    logs[0].size = 300;
    const RangeTally all = tally(query_of(1), logs, 2, 10);
    EXPECT_EQ(all.tally.rows[1][ALLOWED], 2u);
    EXPECT_EQ(all.error, 0);
}

TEST(RangeTally, ReportsUnopenedLogsAndCountsTheOthers) {
    const ScratchDirectory directory;
    std::vector<LogToCount> logs = logs_with(directory, {LINE, LINE, LINE, LINE});
    logs[1].path = directory.path();
    logs[2].path = directory.path("none");
    for (const int threads : {1, 3}) {
        const RangeTally all = tally(query_of(1), logs, threads, 10);
        EXPECT_EQ(all.tally.rows[1][ALLOWED], 2u);
        EXPECT_EQ(all.error, 0);
        EXPECT_EQ(all.not_opened, (std::vector<int>{0, EISDIR, ENOENT, 0}));
    }
}

TEST(RangeTally, NeedsOneDescriptorPerThread) {
    const ScratchDirectory directory;
    const std::vector<LogToCount> logs =
        logs_with(directory, std::vector<std::string>(21, LINE + LINE + LINE));
    for (const int threads : {1, 4}) {
        const FewDescriptors few(static_cast<rlim_t>(threads));
        for (const off_t size : {off_t{10}, LogReader::TO_THE_END}) {
            const RangeTally all = tally(query_of(1), logs, threads, size);
            EXPECT_EQ(all.error, 0);
            EXPECT_EQ(all.tally.rows[1][ALLOWED], 63u) << threads << " threads";
        }
    }
}

// The undefined behaviour sanitizer needs a descriptor to check the object of a new thread.
#if defined(__has_feature)
#if __has_feature(undefined_behavior_sanitizer)
#define THREADS_NEED_DESCRIPTORS
#endif
#endif
#ifdef THREADS_NEED_DESCRIPTORS
constexpr int MAX_THREADS_WITHOUT_DESCRIPTORS = 1;
#else
constexpr int MAX_THREADS_WITHOUT_DESCRIPTORS = 3;
#endif

TEST(RangeTally, ReportsALackOfDescriptorsAsAnError) {
    const ScratchDirectory directory;
    const std::vector<LogToCount> logs = logs_with(directory, {LINE, LINE});
    for (int threads = 1; threads <= MAX_THREADS_WITHOUT_DESCRIPTORS; ++threads) {
        const FewDescriptors none(0);
        const RangeTally all = tally(query_of(1), logs, threads, 10);
        EXPECT_EQ(all.error, EMFILE);
        EXPECT_LT(all.unread, 2u);
    }
}

TEST(RangeTally, ReportsTheFirstLogThatCannotBeRead) {
    const ScratchDirectory directory;
    std::vector<LogToCount> logs = logs_with(directory, {LINE, LINE, LINE, LINE});
    // It can be opened, but a read at offset 0 fails.
    for (const std::size_t place : {1U, 3U}) logs[place].path = "/proc/self/mem";
    for (const int threads : {1, 3}) {
        const RangeTally all = tally(query_of(1), logs, threads, 10);
        EXPECT_EQ(all.error, EIO);
        EXPECT_TRUE(all.unread == 1 || all.unread == 3);
    }
    EXPECT_EQ(tally(query_of(1), logs, 1, 10).unread, 1u);
}

TEST(RangeTally, CountsWithFewerThreadsIfNoMoreCanBeStarted) {
    const ScratchDirectory directory;
    const std::vector<LogToCount> logs = logs_with(directory, {LINE, LINE, LINE});
    // In a child process: the limit applies to all threads of a user, but not to root.
    const pid_t child = fork();
    if (child == 0) {
        const rlimit none = {0, 0};
        const bool limited =
            setrlimit(RLIMIT_NPROC, &none) == 0 && (getuid() != 0 || setuid(65534) == 0);
        const RangeTally all = tally(query_of(1), logs, 16, 10);
        _exit(limited && all.error == 0 && all.tally.rows[1][ALLOWED] == 3 ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace gatescope
