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

namespace gatescope {
namespace {

using Words = std::vector<std::string>;

Words words_of(std::string_view text) {
    Words words;
    const char* at = text.data();
    while (true) {
        const std::string_view word = next_word(&at, text.data() + text.size());
        if (word.empty()) return words;
        words.emplace_back(word);
    }
}

/// The words as the C library reads them, as the log files have always been read.
Words words_of_the_c_library(const std::string& path) {
    Words words;
    FILE* stream = std::fopen(path.c_str(), "r");
    std::string buffer(WORD_LIMIT + 1, '\0');
    // NULs may stand in the word, so what is compared is the C text.
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
    /// As read by ranges of `size` bytes, the last of them without an end.
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

TEST(NextWord, AnyWhiteSpaceSeparates) {
    EXPECT_EQ(words_of(" a\tb\nc\vd\fe\rf  "), (Words{"a", "b", "c", "d", "e", "f"}));
}

TEST(NextWord, OtherControlCharactersDoNot) {
    EXPECT_EQ(words_of("a\x01z\x1f\x7f\xa0 b"), (Words{"a\x01z\x1f\x7f\xa0", "b"}));
}

TEST(NextWord, LongWordsComeInPieces) {
    const std::string long_word(2 * WORD_LIMIT + 1, 'x');
    EXPECT_EQ(words_of(" " + long_word + " y"),
              (Words{std::string(65536, 'x'), std::string(65536, 'x'), "x", "y"}));
    EXPECT_EQ(words_of(std::string(65536, 'x') + " y"), (Words{std::string(65536, 'x'), "y"}));
}

TEST(NextWord, EndsAtTheFirstWhiteSpaceWhereverThatStands) {
    for (const char white : {' ', '\t', '\n', '\v', '\f', '\r'}) {
        for (std::size_t size = 1; size < 300; ++size) {
            for (const char other : {'x', '\0', '\x08', '\x0e', '\x1f', '!', '\x80', '\xff'}) {
                const std::string word(size, other);
                const std::string text = word + white + std::string(100, 'y') + white + 'z';
                ASSERT_EQ(words_of(text), (Words{word, std::string(100, 'y'), "z"}))
                    << size << " of " << static_cast<int>(other);
            }
        }
    }
}

TEST(NextWord, NulsBelongToTheWord) {
    const std::string text("a\0b c", 5);
    EXPECT_EQ(words_of(text), (Words{std::string("a\0b", 3), "c"}));
}

TEST(NextWord, NothingButWhiteSpaceHoldsNoWord) {
    EXPECT_EQ(words_of(" \n\r\n"), Words{});
    EXPECT_EQ(words_of(""), Words{});
}

TEST_F(LogReaderOnFiles, WordsAcrossReadsStayWhole) {
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

TEST_F(LogReaderOnFiles, AFileMayEndInAWord) {
    write_log(0, "one two");
    EXPECT_EQ(words_read(log_file_path(0)), (Words{"one", "two"}));
}

TEST_F(LogReaderOnFiles, ReadingMayStartAnywhere) {
    write_log(0, "one two three");
    EXPECT_EQ(words_read(log_file_path(0), 4), (Words{"two", "three"}));
    EXPECT_EQ(words_read(log_file_path(0), 5), (Words{"wo", "three"}));
    EXPECT_EQ(words_read(log_file_path(0), 13), Words{});
    EXPECT_EQ(words_read(log_file_path(0), 100), Words{});
}

TEST_F(LogReaderOnFiles, ALogMayBeLongerThan32BitsCount) {
    static_assert(sizeof(off_t) == 8 && sizeof(std::time_t) == 8);
    constexpr std::uintmax_t FAR = std::uintmax_t{5} << 30;
    write_log(0, "one");
    std::filesystem::resize_file(log_file_path(0), FAR);
    std::ofstream(log_file_path(0), std::ios::app) << " two three";
    EXPECT_EQ(words_read(log_file_path(0), static_cast<off_t>(FAR)), (Words{"two", "three"}));
}

TEST_F(LogReaderOnFiles, RangesHandOutEachWordOnceWhereverTheyMeet) {
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

TEST_F(LogReaderOnFiles, RangesHandOutEachWordOnceAcrossReadsToo) {
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

TEST_F(LogReaderOnFiles, AWordThatGoesOnAfterItsRangeComesInPiecesAsLargeAsAnyOther) {
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

TEST_F(LogReaderOnFiles, WordsWithoutEndAreHandedOutOnceByRanges) {
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

TEST_F(LogReaderOnFiles, AnEmptyFileHasNoPieces) {
    write_log(0, "");
    EXPECT_EQ(words_read(log_file_path(0)), Words{});
}

TEST_F(LogReaderOnFiles, WhatIsNoRegularFileIsNotOpened) {
    std::filesystem::create_directory(log_file_path(0));
    EXPECT_EQ(reason_not_to_open(log_file_path(0)), "Not a regular file");
    ASSERT_EQ(mkfifo(log_file_path(1).c_str(), 0600), 0);
    EXPECT_EQ(reason_not_to_open(log_file_path(1)), "Not a regular file");
}

TEST_F(LogReaderOnFiles, AMissingFileIsNotOpenedAndNoFault) {
    EXPECT_EQ(reason_not_to_open(log_file_path(0)), "");
    std::filesystem::create_symlink("nowhere", log_file_path(1));
    EXPECT_EQ(reason_not_to_open(log_file_path(1)), "");
    EXPECT_EQ(reason_not_to_open(log_file_path(1) + "/below"), "");
    write_log(2, "a file");
    EXPECT_EQ(reason_not_to_open(log_file_path(2) + "/below"), "");
}

TEST_F(LogReaderOnFiles, WhatCannotBeOpenedHasAReason) {
    std::filesystem::create_symlink("logging_3.txt", log_file_path(3));
    EXPECT_EQ(reason_not_to_open(log_file_path(3)), "Too many levels of symbolic links");
}

TEST_F(LogReaderOnFiles, ALogThatIsHeldWhileItIsRewrittenIsWaitedFor) {
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

// Whoever may write to the directory could hold up a job for ever.
TEST_F(LogReaderOnFiles, APipeThatTakesThePlaceOfAHeldLogIsNotWaitedFor) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(0, "old");
    static std::string log;
    static std::string pipe;
    log = log_file_path(0);
    pipe = log_file_path(1);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const Descriptor holder(open(log.c_str(), O_RDWR | O_CLOEXEC));
    // The holder is told in the moment when somebody else asks for the log.
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

TEST_F(LogReaderOnFiles, LinksToLogsAreFollowed) {
    write_file(logging_dir + "/elsewhere", "word");
    std::filesystem::create_symlink(logging_dir + "/elsewhere", log_file_path(0));
    EXPECT_EQ(words_read(log_file_path(0)), Words{"word"});
}

TEST_F(LogReaderOnFiles, AReadErrorIsKept) {
    // Reading address 0 of this process is a file that opens and cannot be read.
    std::filesystem::create_symlink("/proc/self/mem", log_file_path(4));
    const Descriptor log = opened(log_file_path(4));
    LogReader reader;
    reader.start(log.get());
    std::string_view piece;
    EXPECT_FALSE(reader.next(&piece));
    EXPECT_EQ(reader.error(), EIO);
    EXPECT_FALSE(reader.next(&piece));
}

TEST_F(LogReaderOnFiles, AReadErrorEndsTheProgramAndNamesTheFile) {
    std::filesystem::create_symlink("/proc/self/mem", log_file_path(4));
    EXPECT_GRIPE(get_query_data(record_query(1, 1, {}, set_time_values()), logging_dir),
                 "ERROR: The log file (" + log_file_path(4) +
                     ") could not be read to its end: Input/output error.  The file is as it was.");
}

}  // namespace
}  // namespace gatescope
