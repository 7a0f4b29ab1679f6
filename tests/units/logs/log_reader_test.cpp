#include "logs/log_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <random>
#include <thread>
#include <vector>

#include "base/process_end.h"
#include "log_region.h"

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
    std::string buffer(256, '\0');
    while (true) {
        int length = 0;
        if (std::fscanf(stream, "%255s%n", buffer.data(), &length) != 1) break;
        // %n counts the white space in front too, and NULs may stand in the word, so what is
        // compared is the C text.
        words.emplace_back(buffer.c_str());
    }
    std::fclose(stream);
    return words;
}

class LogReaderOnFiles : public LogRegion {
  protected:
    static Words words_read(const std::string& path) {
        Words words;
        EXPECT_TRUE(open_log_stream(path));
        LogReader reader;
        reader.start(fileno(LOGGING_STREAM), path);
        for (std::string_view piece; reader.next(&piece);) {
            for (const std::string& word : words_of(piece)) words.push_back(word);
        }
        close_log_stream();
        return words;
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
              (Words{std::string(255, 'x'), std::string(255, 'x'), "x", "y"}));
    EXPECT_EQ(words_of(std::string(255, 'x') + " y"), (Words{std::string(255, 'x'), "y"}));
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
    for (const int longest : {40, 255, 300, 5000, 400000}) {
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

TEST_F(LogReaderOnFiles, TheEndIsKnownWithThePieceThatReachesIt) {
    write_log(0, std::string(300, 'x') + " " + std::string(200'000, 'y'));
    ASSERT_TRUE(open_log_stream(log_file_path(0)));
    LogReader reader;
    reader.start(fileno(LOGGING_STREAM), log_file_path(0));
    std::string_view piece;
    ASSERT_TRUE(reader.next(&piece));
    EXPECT_FALSE(reader.at_end());
    while (!reader.at_end() && reader.next(&piece)) {
    }
    EXPECT_EQ(piece.back(), 'y');
    // Only what was read when the end was seen.
    EXPECT_FALSE(reader.next(&piece));
    close_log_stream();
}

TEST_F(LogReaderOnFiles, AnEmptyFileHasNoPieces) {
    write_log(0, "");
    EXPECT_EQ(words_read(log_file_path(0)), Words{});
}

TEST_F(LogReaderOnFiles, WhatIsNoRegularFileIsNotOpened) {
    EXPECT_FALSE(open_log_stream(logging_dir + "/missing.txt"));
    std::filesystem::create_directory(log_file_path(0));
    EXPECT_FALSE(open_log_stream(log_file_path(0)));
    ASSERT_EQ(mkfifo(log_file_path(1).c_str(), 0600), 0);
    EXPECT_FALSE(open_log_stream(log_file_path(1)));
    EXPECT_EQ(LOGGING_STREAM, nullptr);
}

TEST_F(LogReaderOnFiles, ALogThatIsHeldWhileItIsRewrittenIsWaitedFor) {
    if (!has_leases()) GTEST_SKIP() << "no leases here";
    write_log(0, "old");
    const int holder = open(log_file_path(0).c_str(), O_RDWR | O_CLOEXEC);
    std::signal(SIGIO, SIG_IGN);
    ASSERT_EQ(fcntl(holder, F_SETLEASE, F_WRLCK), 0);
    std::thread rewriting([&] {
        usleep(50'000);
        EXPECT_EQ(pwrite(holder, "new", 3, 0), 3);
        close(holder);
    });
    EXPECT_EQ(words_read(log_file_path(0)), Words{"new"});
    rewriting.join();
}

TEST_F(LogReaderOnFiles, LinksToLogsAreFollowed) {
    write_file(logging_dir + "/elsewhere", "word");
    std::filesystem::create_symlink(logging_dir + "/elsewhere", log_file_path(0));
    EXPECT_EQ(words_read(log_file_path(0)), Words{"word"});
}

TEST_F(LogReaderOnFiles, AReadErrorEndsTheProgramAndNamesTheFile) {
    // Reading address 0 of this process is a file that opens and cannot be read.
    std::filesystem::create_symlink("/proc/self/mem", log_file_path(4));
    EXPECT_EXIT(
        {
            std::fclose(stdout);
            stdout = stderr;
            get_query_data(1);
        },
        testing::ExitedWithCode(99), "ERROR: The log file \\(.*logging_4.txt\\) could not be read");
}

}  // namespace
