#include "logs/log_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <fstream>
#include <random>
#include <thread>
#include <vector>

#include "log_region.h"
#include "support/expect_gripe.h"
#include "units/records/words_of.h"

namespace gatescope {
namespace {

/// The words as the C library reads them, which defines the words of a log.
Words words_of_the_c_library(const std::string& path) {
    Words words;
    FILE* stream = std::fopen(path.c_str(), "r");
    std::string buffer(WORD_LIMIT + 1, '\0');
    // Only the text before a NUL is compared.
    while (std::fscanf(stream, "%65536s", buffer.data()) == 1) words.emplace_back(buffer.c_str());
    std::fclose(stream);
    return words;
}

class LogReaderOnFiles : public LogRegion {
  protected:
    static Descriptor opened(const std::string& path) {
        std::string reason;
        Descriptor log = open_log(path, &reason);
        EXPECT_TRUE(log) << reason;
        return log;
    }
    static void add_words(LogReader& reader, Words* words) {
        for (std::string_view piece; reader.next(&piece);) {
            for (const std::string& word : words_of(piece)) words->push_back(word);
        }
        EXPECT_EQ(reader.error(), 0);
    }
    static Words words_read(const std::string& path, off_t from = 0) {
        Words words;
        const Descriptor log = opened(path);
        LogReader reader;
        reader.start(log.get(), from);
        add_words(reader, &words);
        return words;
    }
    /// The words read by ranges of `size` bytes, the last of which extends to the end.
    static Words words_read_by_ranges(const std::string& path, off_t size) {
        Words words;
        const Descriptor log = opened(path);
        const auto end = static_cast<off_t>(std::filesystem::file_size(path));
        LogReader reader;
        for (off_t from = 0; from == 0 || from < end; from += size) {
            reader.start_range(log.get(), from,
                               from + size < end ? from + size : LogReader::TO_THE_END);
            add_words(reader, &words);
        }
        return words;
    }
    static std::string reason_not_to_open(const std::string& path) {
        std::string reason = "some old reason";
        EXPECT_FALSE(open_log(path, &reason));
        return reason;
    }
};

TEST_F(LogReaderOnFiles, KeepsWordsAcrossReadsWhole) {
    std::mt19937 random(1);
    for (const int longest : {40, 5000, 65536, 66000, 400000}) {
        std::string text;
        while (text.size() < 700000) {
            text.append(1 + random() % static_cast<unsigned>(longest), "abcdefgh"[random() % 8]);
            text.append(1 + random() % 3, " \n\r\t\v\f"[random() % 6]);
        }
        write_log(0, text);
        EXPECT_EQ(words_read(log_file_path(0)), words_of_the_c_library(log_file_path(0)))
            << "words of up to " << longest;
    }
}

TEST_F(LogReaderOnFiles, ReadsAWordAtTheEndOfTheFile) {
    write_log(0, "one two");
    EXPECT_EQ(words_read(log_file_path(0)), (Words{"one", "two"}));
}

TEST_F(LogReaderOnFiles, StartsAtAnyOffset) {
    write_log(0, "one two three");
    EXPECT_EQ(words_read(log_file_path(0), 4), (Words{"two", "three"}));
    EXPECT_EQ(words_read(log_file_path(0), 5), (Words{"wo", "three"}));
    EXPECT_EQ(words_read(log_file_path(0), 13), Words{});
    EXPECT_EQ(words_read(log_file_path(0), 100), Words{});
}

TEST_F(LogReaderOnFiles, CanEndBeforeTheEndOfTheFile) {
    // Longer than what is read at once.
    std::string text;
    for (int i = 0; text.size() < 300'000; ++i) text += std::to_string(i) + "\n";
    write_log(0, text);
    const Descriptor log = opened(log_file_path(0));
    LogReader reader;
    for (const off_t end : {0, 1, 2, 64, 131'072, 131'073, 250'001, 299'999}) {
        for (const off_t from : {0, 1, 2}) {
            Words words;
            reader.start(log.get(), from, end);
            add_words(reader, &words);
            const auto size = static_cast<std::size_t>(std::max<off_t>(end - from, 0));
            EXPECT_EQ(words, words_of(text.substr(static_cast<std::size_t>(from), size))) << end;
        }
    }
    // Not so for what is read next.
    Words words;
    reader.start(log.get());
    add_words(reader, &words);
    EXPECT_EQ(words, words_of(text));
}

TEST_F(LogReaderOnFiles, ReadsLogsOfMoreThanFourGigabytes) {
    static_assert(sizeof(off_t) == 8 && sizeof(std::time_t) == 8);
    constexpr std::uintmax_t FAR = std::uintmax_t{5} << 30;
    write_log(0, "one");
    std::filesystem::resize_file(log_file_path(0), FAR);
    std::ofstream(log_file_path(0), std::ios::app) << " two three";
    EXPECT_EQ(words_read(log_file_path(0), static_cast<off_t>(FAR)), (Words{"two", "three"}));
}

TEST_F(LogReaderOnFiles, ReadsEachWordOnceByRangesOfAnySize) {
    const std::string path = log_file_path(0);
    for (const char* text : {"", "a", "\n", "ab", "a b", " a", "a ", "ab cd\n\nef  g hijklmnop\n",
                             "\n\n\n", "abcdefghijklmnop", "a\r\nb\r\nc\r\n"}) {
        write_log(0, text);
        const Words words = words_of(text);
        for (off_t size = 1; size < 20; ++size) {
            EXPECT_EQ(words_read_by_ranges(path, size), words) << "'" << text << "' by " << size;
        }
    }
}

TEST_F(LogReaderOnFiles, ReadsEachWordOnceByRangesAcrossReads) {
    std::mt19937 random(2);
    const std::string path = log_file_path(0);
    for (const int longest : {40, 66000, 400000}) {
        std::string text;
        while (text.size() < 1200000) {
            text.append(1 + random() % static_cast<unsigned>(longest), "abcdefgh"[random() % 8]);
            text.append(1 + random() % 3, " \n\r\t\v\f"[random() % 6]);
        }
        write_log(0, text);
        const Words words = words_of(text);
        for (const off_t size : {1000, 65536, 100003, 131072, 262144, 131071 + 4096, 999999}) {
            EXPECT_TRUE(words_read_by_ranges(path, size) == words)
                << "words of up to " << longest << " by " << size;
        }
    }
}

TEST_F(LogReaderOnFiles, ReadsALongWordAfterItsRangeInFewPieces) {
    write_log(0, std::string(4 << 20, 'w') + "\n");
    const Descriptor log = opened(log_file_path(0));
    LogReader reader;
    const auto pieces = [&] {
        int count = 0;
        for (std::string_view piece; reader.next(&piece);) ++count;
        return count;
    };
    reader.start(log.get());
    const int of_the_file = pieces();
    reader.start_range(log.get(), 0, 1000);
    EXPECT_LE(pieces(), of_the_file + 2);
}

TEST_F(LogReaderOnFiles, ReadsVeryLongWordsOnceByRanges) {
    std::mt19937 random(3);
    const std::string path = log_file_path(0);
    for (int round = 0; round < 10; ++round) {
        std::string text;
        while (text.size() < 300000) {
            text.append(1 + random() % 400000, "w\0"[random() % 2]);
            if (random() % 3 != 0) text += " \n\r\t\v\f"[random() % 6];
        }
        write_log(0, text);
        const auto size = static_cast<off_t>(1000 + random() % 200000);
        EXPECT_TRUE(words_read_by_ranges(path, size) == words_of(text)) << "by " << size;
    }
}

TEST_F(LogReaderOnFiles, ReturnsNoPieceOfAnEmptyFile) {
    write_log(0, "");
    EXPECT_EQ(words_read(log_file_path(0)), Words{});
}

TEST_F(LogReaderOnFiles, OpensRegularFilesOnly) {
    std::filesystem::create_directory(log_file_path(0));
    EXPECT_EQ(reason_not_to_open(log_file_path(0)), "Not a regular file");
    ASSERT_EQ(mkfifo(log_file_path(1).c_str(), 0600), 0);
    EXPECT_EQ(reason_not_to_open(log_file_path(1)), "Not a regular file");
}

TEST_F(LogReaderOnFiles, GivesNoReasonForAMissingFile) {
    EXPECT_EQ(reason_not_to_open(log_file_path(0)), "");
    std::filesystem::create_symlink("nowhere", log_file_path(1));
    EXPECT_EQ(reason_not_to_open(log_file_path(1)), "");
    EXPECT_EQ(reason_not_to_open(log_file_path(1) + "/below"), "");
    write_log(2, "a file");
    EXPECT_EQ(reason_not_to_open(log_file_path(2) + "/below"), "");
}

TEST_F(LogReaderOnFiles, GivesAReasonIfALogCannotBeOpened) {
    std::filesystem::create_symlink("logging_3.txt", log_file_path(3));
    EXPECT_EQ(reason_not_to_open(log_file_path(3)), "Too many levels of symbolic links");
}

TEST_F(LogReaderOnFiles, WaitsForALogUnderAWriteLease) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(0, "old");
    const int holder = open(log_file_path(0).c_str(), O_RDWR | O_CLOEXEC);
    const auto before = std::signal(SIGIO, SIG_IGN);
    ASSERT_EQ(fcntl(holder, F_SETLEASE, F_WRLCK), 0);
    std::thread rewriting([&] {
        usleep(50'000);
        EXPECT_EQ(pwrite(holder, "new", 3, 0), 3);
        close(holder);
    });
    EXPECT_EQ(words_read(log_file_path(0)), Words{"new"});
    rewriting.join();
    std::signal(SIGIO, before);
}

// Else a user who may write to the directory could block a job for ever.
TEST_F(LogReaderOnFiles, DoesNotWaitForAPipeThatReplacesALeasedLog) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(0, "old");
    static std::string log;
    static std::string pipe;
    log = log_file_path(0);
    pipe = log_file_path(1);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const Descriptor holder(open(log.c_str(), O_RDWR | O_CLOEXEC));
    // The lease holder gets the signal when another open of the log begins.
    const auto before = std::signal(SIGIO, [](int) {
        const int reason = errno;
        std::rename(pipe.c_str(), log.c_str());
        errno = reason;
    });
    ASSERT_EQ(fcntl(holder.get(), F_SETLEASE, F_WRLCK), 0);
    alarm(20);
    std::string reason;
    EXPECT_FALSE(open_log(log, &reason));
    alarm(0);
    EXPECT_NE(reason, "");
    EXPECT_TRUE(std::filesystem::is_fifo(log));
    std::signal(SIGIO, before);
}

TEST_F(LogReaderOnFiles, FollowsSymbolicLinks) {
    write_file(logging_dir + "/elsewhere", "word");
    std::filesystem::create_symlink(logging_dir + "/elsewhere", log_file_path(0));
    EXPECT_EQ(words_read(log_file_path(0)), Words{"word"});
}

TEST_F(LogReaderOnFiles, KeepsAReadError) {
    // /proc/self/mem can be opened, but a read at offset 0 fails.
    std::filesystem::create_symlink("/proc/self/mem", log_file_path(4));
    const Descriptor log = opened(log_file_path(4));
    LogReader reader;
    reader.start(log.get());
    std::string_view piece;
    EXPECT_FALSE(reader.next(&piece));
    EXPECT_EQ(reader.error(), EIO);
    EXPECT_FALSE(reader.next(&piece));
}

TEST_F(LogReaderOnFiles, GripesWithTheNameOfAnUnreadableLog) {
    std::filesystem::create_symlink("/proc/self/mem", log_file_path(4));
    EXPECT_GRIPE(get_query_data(record_query(1, 1, {}, set_time_values()), logging_dir),
                 "ERROR: The log file (" + log_file_path(4) +
                     ") could not be read to its end: Input/output error.  The file is as it was.");
}

}  // namespace
}  // namespace gatescope
