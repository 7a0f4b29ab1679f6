#include "records/record_scan.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace gatescope {
namespace {

/// Bytes of which two thirds have a meaning in a scan.
std::string random_bytes(std::mt19937& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = random() % 3 == 0 ? static_cast<char>(random())
                                 : "0123456789:[]<>!/;@ \n\r\t\x1f\x7f\x80"[random() % 26];
    }
    return bytes;
}

/// Whether the operations of each instruction set return the same as the scalar ones.
template <class Function>
bool all_agree(const Function& function) {
    const auto expected = function(Scalar());
    return function(Sse2()) == expected &&
           (best_instruction_set() != InstructionSet::AVX2 || function(Avx2()) == expected);
}

TEST(InstructionSet, AllSetsFindTheSameBlanks) {
    std::mt19937 random(4);
    for (int round = 0; round < 20000; ++round) {
        const std::string bytes = random_bytes(random, BLOCK);
        EXPECT_TRUE(
            all_agree([&](auto operations) { return operations.blank_bits(bytes.data()); }));
    }
}

TEST(InstructionSet, AllSetsFindTheSameUserEnds) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string bytes(16, static_cast<char>(byte));
        const bool is_end = byte == ':' || byte == '[' || byte == '<';
        EXPECT_EQ(Scalar::user_end_bits(bytes.data()), is_end ? 0xFFFFU : 0U);
        EXPECT_TRUE(
            all_agree([&](auto operations) { return operations.user_end_bits(bytes.data()); }));
    }
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        const std::string bytes = random_bytes(random, 16);
        EXPECT_TRUE(
            all_agree([&](auto operations) { return operations.user_end_bits(bytes.data()); }));
    }
}

TEST(InstructionSet, AllSetsCompareTextsAlike) {
    std::mt19937 random(6);
    int same = 0;
    for (int round = 0; round < 20000; ++round) {
        const std::string text = random_bytes(random, 16);
        std::string mask(16, '\0');
        std::fill_n(mask.begin(), random() % 17, '\xff');
        std::string other_case(16, random() % 2 == 0 ? ' ' : '\0');
        std::string wanted = text;
        for (std::size_t i = 0; i < 16; ++i) {
            wanted[i] = static_cast<char>((text[i] | other_case[i]) & mask[i]);
        }
        if (random() % 2 == 0) wanted[random() % 16] ^= 0x41;
        same += Scalar::same_text(text.data(), wanted.data(), mask.data(), other_case.data());
        EXPECT_TRUE(all_agree([&](auto operations) {
            return operations.same_text(text.data(), wanted.data(), mask.data(), other_case.data());
        }));
    }
    EXPECT_GT(same, 5000);
    EXPECT_LT(same, 15000);
}

TEST(InstructionSet, AllSetsCountAndFindBitsAlike) {
    std::mt19937_64 random(9);
    for (int round = 0; round < 2000; ++round) {
        const std::uint64_t number = random() & random() << random() % 64;
        EXPECT_TRUE(all_agree([&](auto operations) { return operations.number_of_bits(number); }));
        if (number == 0) continue;
        EXPECT_TRUE(all_agree([&](auto operations) { return operations.lowest_bit(number); }));
    }
}

TEST(InstructionSet, AllSetsMatchRangesAlike) {
    const Ranges ranges = ranges_of("[0]*<00>");
    const auto are_in = [&](const std::string& text) {
        EXPECT_TRUE(
            all_agree([&](auto operations) { return operations.are_in(ranges, text.data()); }));
        return Scalar::are_in(ranges, text.data());
    };
    const std::string good = "anything[5]K<17>";
    EXPECT_TRUE(are_in("\xff\n  ':[0[9]\n<09>"));
    for (std::size_t place = 0; place < good.size(); ++place) {
        for (int byte = 0; byte < 256; ++byte) {
            std::string text = good;
            text[place] = static_cast<char>(byte);
            const bool digit = place == 9 || place == 13 || place == 14;
            const bool any = place < 8 || place == 11;
            EXPECT_EQ(are_in(text),
                      any || (digit ? byte >= '0' && byte <= '9' : text[place] == good[place]));
        }
    }
}

TEST(InstructionSet, AllSetsReadRecordHeadsAlike) {
    std::mt19937 random(7);
    int heads = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text = "0000000000:D:";
        for (std::size_t i = 0; i < TIME_DIGITS; ++i) text[i] = "0123456789"[random() % 10];
        text += random_bytes(random, 3);
        if (random() % 2 == 0) text[random() % HEAD_SIZE] = random_bytes(random, 1)[0];
        EXPECT_TRUE(all_agree(
            [&](auto operations) { return operations.are_in(CANONICAL_HEAD, text.data()); }));
        if (!Scalar::are_in(CANONICAL_HEAD, text.data())) continue;
        ++heads;
        EXPECT_TRUE(all_agree([&](auto operations) { return operations.time(text.data()); }));
        EXPECT_EQ(Scalar::time(text.data()), std::stoll(text));
        EXPECT_EQ(first_digits(text.data()), first_digits(std::stoll(text)));
    }
    EXPECT_GT(heads, 10000);
    EXPECT_LT(heads, 19000);
}

TEST(FirstDigits, GrowWithTheTime) {
    EXPECT_LT(first_digits("1699999999"), first_digits("1700000000"));
    EXPECT_LT(first_digits("0999999999"), first_digits("1000000000"));
    EXPECT_EQ(first_digits(std::int64_t{-1}), first_digits("0000000000"));
    EXPECT_EQ(first_digits(std::int64_t{10000000000}), first_digits("9999999999"));
}

#if defined(__x86_64__)
TEST(InstructionSet, SetsAreDistinctOnX8664) {
    EXPECT_FALSE((std::is_same_v<Sse2, Scalar>));
    EXPECT_FALSE((std::is_same_v<Avx2, Sse2>));
}

TEST(InstructionSet, BestSetIsAvx2IfTheProcessorSupportsIt) {
    std::ifstream processors("/proc/cpuinfo");
    std::string flags;
    while (std::getline(processors, flags) && flags.rfind("flags", 0) != 0) flags.clear();
    if (flags.empty()) GTEST_SKIP() << "/proc/cpuinfo names no flags";
    flags += ' ';
    bool has_avx2 = true;
    for (const char* needed : {" avx2 ", " bmi1 ", " bmi2 ", " popcnt "}) {
        has_avx2 = has_avx2 && flags.find(needed) != std::string::npos;
    }
    EXPECT_EQ(best_instruction_set(), has_avx2 ? InstructionSet::AVX2 : InstructionSet::SSE2);
}
#endif

TEST(WordEnds, AreTheFirstBytesOfRunsOfBlanks) {
    std::mt19937 random(8);
    for (const std::size_t size : {1U, 63U, 64U, 65U, 128U, 200U, 4096U}) {
        for (int round = 0; round < 50; ++round) {
            const std::string bytes = random_bytes(random, size);
            const std::string slice = bytes + std::string(BLOCK, ' ');
            std::vector<const char*> expected;
            for (std::size_t i = 0; i < size; ++i) {
                const auto is_blank = [&](std::size_t at) {
                    return static_cast<unsigned char>(bytes[at]) <= ' ';
                };
                if (is_blank(i) && (i == 0 || !is_blank(i - 1))) {
                    expected.push_back(slice.data() + i);
                }
            }
            WordEnds ends;
            const auto found_by = [&](auto operations) {
                const std::size_t found =
                    find_word_ends<decltype(operations)>(slice.data(), size, &ends);
                return std::vector(ends.begin(), ends.begin() + static_cast<std::ptrdiff_t>(found));
            };
            EXPECT_EQ(found_by(Scalar()), expected);
            EXPECT_TRUE(all_agree(found_by));
        }
    }
}

}  // namespace
}  // namespace gatescope
