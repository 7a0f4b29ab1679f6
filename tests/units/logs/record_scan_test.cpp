#include "logs/record_scan.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace {

/// Bytes that mean something to a scan, and all others.
std::string random_bytes(std::mt19937& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = random() % 3 == 0 ? static_cast<char>(random())
                                 : "0123456789:[]<>!/;@ \n\r\t\x1f\x7f\x80"[random() % 26];
    }
    return bytes;
}

TEST(Lanes, FindTheSameBlanks) {
    std::mt19937 random(4);
    for (int round = 0; round < 20000; ++round) {
        const std::string bytes = random_bytes(random, BLOCK);
        EXPECT_EQ(VectorLanes::blank_bits(bytes.data()), ByteLanes::blank_bits(bytes.data()));
    }
}

TEST(Lanes, FindTheSameEndsOfUsers) {
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        const std::string bytes = random_bytes(random, 16);
        EXPECT_EQ(VectorLanes::user_end_bits(bytes.data()), ByteLanes::user_end_bits(bytes.data()));
    }
}

TEST(Lanes, CompareTextsAlike) {
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
        const bool by_bytes =
            ByteLanes::same_text(text.data(), wanted.data(), mask.data(), other_case.data());
        same += by_bytes;
        EXPECT_EQ(
            VectorLanes::same_text(text.data(), wanted.data(), mask.data(), other_case.data()),
            by_bytes);
    }
    EXPECT_GT(same, 5000);
    EXPECT_LT(same, 15000);
}

TEST(Lanes, ReadHeadsAlike) {
    std::mt19937 random(7);
    int heads = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text = "0000000000:D:";
        for (std::size_t i = 0; i < TIME_DIGITS; ++i) text[i] = "0123456789"[random() % 10];
        text += random_bytes(random, 3);
        if (random() % 2 == 0) text[random() % HEAD_SIZE] = random_bytes(random, 1)[0];
        std::int64_t by_vectors = 0;
        std::int64_t by_bytes = 0;
        const bool is_head = ByteLanes::has_canonical_head(text.data(), &by_bytes);
        ASSERT_EQ(VectorLanes::has_canonical_head(text.data(), &by_vectors), is_head) << text;
        if (!is_head) continue;
        ++heads;
        EXPECT_EQ(by_vectors, by_bytes);
        EXPECT_EQ(by_bytes, std::stoll(text));
    }
    EXPECT_GT(heads, 10000);
    EXPECT_LT(heads, 19000);
}

#if defined(__SSE2__)
TEST(Lanes, AreOfTwoKindsHere) {
    EXPECT_FALSE((std::is_same_v<VectorLanes, ByteLanes>));
}
#endif

TEST(WordEnds, AreWhereRunsOfBlanksBegin) {
    std::mt19937 random(8);
    for (const std::size_t size : {1U, 63U, 64U, 65U, 128U, 200U, 4096U}) {
        for (int round = 0; round < 50; ++round) {
            const std::string bytes = random_bytes(random, size);
            const std::string slice = bytes + std::string(BLOCK, ' ');
            std::vector<std::uint32_t> expected;
            for (std::size_t i = 0; i < size; ++i) {
                const auto is_blank = [&](std::size_t at) {
                    return static_cast<unsigned char>(bytes[at]) <= ' ';
                };
                if (is_blank(i) && (i == 0 || !is_blank(i - 1))) {
                    expected.push_back(static_cast<std::uint32_t>(i));
                }
            }
            WordEnds ends;
            const std::size_t by_vectors = find_word_ends<VectorLanes>(slice.data(), size, &ends);
            EXPECT_EQ(std::vector(ends.begin(), ends.begin() + by_vectors), expected);
            const std::size_t by_bytes = find_word_ends<ByteLanes>(slice.data(), size, &ends);
            EXPECT_EQ(std::vector(ends.begin(), ends.begin() + by_bytes), expected);
        }
    }
}

}  // namespace
