#include "logs/demo_data.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <set>
#include <vector>

#include "log_region.h"
#include "support/expect_gripe.h"
#include "support/limit_file_size.h"

namespace gatescope {
namespace {

/// The next results of `rand`; random ones follow.
std::vector<int> next_draws;
std::mt19937 random_numbers;

}  // namespace

/// Replaces the C library's, so that a test can determine what is drawn.
extern "C" int rand() noexcept {
    if (next_draws.empty()) return static_cast<int>(random_numbers() & RAND_MAX);
    const int drawn = next_draws.front();
    next_draws.erase(next_draws.begin());
    return drawn;
}

namespace {

constexpr int RECORDS = 50000;

struct Record {
    std::int64_t time = 0;
    char kind = 0;
    int user = -1;
    int command = -1;
    char detail = 0;
    std::string value;
};

class DemoData : public LogRegion {
  protected:
    /// Runs the generator in a process of its own; returns what it printed.
    static std::string generated(unsigned seed) {
        const std::string said = logging_dir + "/said";
        random_numbers.seed(seed);
        EXPECT_EXIT(
            {
                if (std::freopen(said.c_str(), "w", stdout) == nullptr) std::abort();
                data_gen(logging_dir);
            },
            testing::ExitedWithCode(0), "");
        return file_text(said);
    }

    static std::vector<std::string> lines() {
        std::vector<std::string> lines;
        std::istringstream stream(file_text(log_file_path(20)));
        for (std::string one; std::getline(stream, one);) lines.push_back(one);
        return lines;
    }

    /// The records of a run; fails the test for a line that is not a record.
    static std::vector<Record> records(unsigned seed) {
        generated(seed);
        std::vector<Record> records;
        for (const std::string& line : lines()) {
            Record one;
            std::string value(3, '\0');
            long long time = 0;
            int end = 0;
            const int read =
                std::sscanf(line.c_str(), "%10lld:%c:user%1d[%2d]%c<%2[-0-9]>%n", &time, &one.kind,
                            &one.user, &one.command, &one.detail, value.data(), &end);
            EXPECT_TRUE(read == 6 && static_cast<std::size_t>(end) == line.size()) << line;
            one.time = time;
            one.value = value.c_str();
            records.push_back(one);
        }
        return records;
    }

    /// The draws that make a record, its day, and its text after the time.
    struct DrawnRecord {
        std::vector<int> draws;
        int day;
        std::string record;
    };
    static void expect_records(const std::vector<DrawnRecord>& expected) {
        for (const DrawnRecord& one : expected) {
            next_draws.insert(next_draws.end(), one.draws.begin(), one.draws.end());
        }
        std::filesystem::remove(log_file_path(20));
        generated(1);
        next_draws.clear();
        const std::vector<std::string> all = lines();
        ASSERT_EQ(all.size(), std::size_t{RECORDS});
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(all[i] + "\n", line(expected[i].day, expected[i].record));
        }
    }
};

/// How often each value occurs.
template <typename Key>
std::map<Key, int> counted(const std::vector<Record>& records, Key (*key)(const Record&)) {
    std::map<Key, int> counts;
    for (const Record& one : records) ++counts[key(one)];
    return counts;
}

// Single records, made from given draws.

TEST_F(DemoData, DrawsUserDayAndCommandFirst) {
    expect_records({{{0, 0, 0, 0}, 0, "S:user0[1]-<->"},
                    {{4, 119, 39, 1}, 119, "S:user4[40]-<->"},
                    {{5 + 2, 120 + 60, 40 + 9, 10 + 1}, 60, "S:user2[10]-<->"}});
}

TEST_F(DemoData, DeniesLittleInTheLast40Days) {
    expect_records({{{0, 0, 0, 6}, 0, "S:user0[1]-<->"},
                    {{0, 39, 0, 7, 125, 3, 1}, 39, "D:user0[1]B<3>"},
                    {{0, 39, 0, 7, 124}, 39, "S:user0[1]-<->"},
                    {{0, 39, 0, 8, 5}, 39, "B:user0[1]-<5>"},
                    {{0, 39, 0, 20 + 9, 6}, 39, "B:user0[1]-<6>"},
                    {{0, 39, 0, 10}, 39, "S:user0[1]-<->"},
                    {{0, 39, 0, 19}, 39, "S:user0[1]-<->"}});
}

TEST_F(DemoData, HasParentDecisionsAndDenialsInTheMiddle40Days) {
    for (const int day : {40, 79}) {
        expect_records({{{0, day, 0, 0, 1}, day, "P:user0[1]a<->"},
                        {{0, day, 0, 1}, day, "S:user0[1]-<->"},
                        {{0, day, 0, 5}, day, "S:user0[1]-<->"},
                        {{0, day, 0, 6, 2, 0}, day, "D:user0[1]K<2>"},
                        {{0, day, 0, 7, 2, 0}, day, "D:user0[1]K<2>"},
                        {{0, day, 0, 8, 7}, day, "B:user0[1]-<7>"},
                        {{0, day, 0, 9, 7}, day, "B:user0[1]-<7>"}});
    }
}

TEST_F(DemoData, DeniesMostInTheFirst40Days) {
    for (const int day : {80, 119}) {
        expect_records({{{0, day, 0, 0, 1}, day, "P:user0[1]a<->"},
                        {{0, day, 0, 1}, day, "S:user0[1]-<->"},
                        {{0, day, 0, 2}, day, "S:user0[1]-<->"},
                        {{0, day, 0, 3, 2, 0}, day, "D:user0[1]K<2>"},
                        {{0, day, 0, 6, 2, 0}, day, "D:user0[1]K<2>"},
                        {{0, day, 0, 7, 7}, day, "B:user0[1]-<7>"},
                        {{0, day, 0, 9, 7}, day, "B:user0[1]-<7>"}});
    }
}

TEST_F(DemoData, DrawsTheDetailsOfEachKind) {
    expect_records({{{0, 90, 0, 3, 10 + 9, 3 + 2}, 90, "D:user0[1]R<9>"},
                    {{0, 90, 0, 9, 24 + 23}, 90, "B:user0[1]-<23>"},
                    {{0, 90, 0, 0, 4}, 90, "P:user0[1]d<->"},
                    {{0, 90, 0, 0, 4 + 3}, 90, "P:user0[1]a<->"}});
}

// All records of a run.

TEST_F(DemoData, WritesRecordsOfTheEngineShape) {
    const std::vector<Record> all = records(3);
    EXPECT_EQ(all.size(), std::size_t{RECORDS});
    std::map<char, std::set<std::string>> values;
    std::map<char, std::set<char>> details;
    for (const Record& one : all) {
        values[one.kind].insert(one.value);
        details[one.kind].insert(one.detail);
    }
    const auto numbers_below = [](int limit) {
        std::set<std::string> numbers;
        for (int i = 0; i < limit; ++i) numbers.insert(std::to_string(i));
        return numbers;
    };
    const std::set<std::string> none = {"-"};
    EXPECT_EQ(values,
              (std::map<char, std::set<std::string>>{
                  {'S', none}, {'P', none}, {'D', numbers_below(10)}, {'B', numbers_below(24)}}));
    EXPECT_EQ(details, (std::map<char, std::set<char>>{
                           {'S', {'-'}}, {'P', {'a', 'd'}}, {'D', {'K', 'B', 'R'}}, {'B', {'-'}}}));
}

TEST_F(DemoData, SpreadsRecordsEvenlyOverUsersCommandsAndDays) {
    const std::vector<Record> all = records(4);
    const auto expect_even = [](const auto& counts, std::size_t number, int first) {
        ASSERT_EQ(counts.size(), number);
        EXPECT_EQ(counts.begin()->first, first);
        EXPECT_EQ(counts.rbegin()->first, first + static_cast<int>(number) - 1);
        const double even = static_cast<double>(RECORDS) / static_cast<double>(number);
        for (const auto& [value, times] : counts) EXPECT_NEAR(times / even, 1, 0.3) << value;
    };
    expect_even(counted<int>(all, [](const Record& one) { return one.user; }), 5, 0);
    expect_even(counted<int>(all, [](const Record& one) { return one.command; }), 40, 1);
    for (const Record& one : all) ASSERT_EQ((noon(0) - one.time) % SECONDS_A_DAY, 0) << one.time;
    expect_even(counted<int>(all,
                             [](const Record& one) {
                                 return static_cast<int>((noon(0) - one.time) / SECONDS_A_DAY);
                             }),
                120, 0);
}

TEST_F(DemoData, DrawsKindsInTheirProportions) {
    using testing::DoubleNear;
    using testing::ElementsAre;
    using testing::Pair;
    std::array<std::map<char, int>, 3> kinds;
    std::array<int, 3> total{};
    for (const Record& one : records(5)) {
        const auto band = static_cast<std::size_t>((noon(0) - one.time) / (40 * SECONDS_A_DAY));
        ++total[band];
        ++kinds[band][one.kind];
    }
    const auto percents = [&](std::size_t band) {
        std::map<char, double> found;
        for (const auto& [kind, times] : kinds[band]) found[kind] = 100.0 * times / total[band];
        return found;
    };
    EXPECT_THAT(percents(0),
                ElementsAre(Pair('B', DoubleNear(10, 1)), Pair('D', DoubleNear(0.04, 0.03)),
                            Pair('S', DoubleNear(89.96, 1))));
    EXPECT_THAT(percents(1),
                ElementsAre(Pair('B', DoubleNear(20, 1)), Pair('D', DoubleNear(20, 1)),
                            Pair('P', DoubleNear(10, 1)), Pair('S', DoubleNear(50, 1))));
    EXPECT_THAT(percents(2),
                ElementsAre(Pair('B', DoubleNear(30, 1)), Pair('D', DoubleNear(40, 1)),
                            Pair('P', DoubleNear(10, 1)), Pair('S', DoubleNear(20, 1))));
}

TEST_F(DemoData, DeniesOneParentDecisionInFour) {
    std::map<char, int> letters;
    for (const Record& one : records(6)) {
        if (one.kind == 'P') ++letters[one.detail];
    }
    EXPECT_NEAR(letters['a'] / 3.0 / letters['d'], 1, 0.1);
}

// Progress and errors of a run.

TEST_F(DemoData, ReportsItsProgress) {
    std::string expected;
    for (int i = 0; i <= RECORDS; i += 100) {
        expected += "Created " + std::to_string(i) + " demo data entries\n";
    }
    EXPECT_EQ(generated(1), expected);
}

TEST_F(DemoData, AppendsInASecondRun) {
    generated(1);
    const std::string first = file_text(log_file_path(20));
    generated(2);
    EXPECT_EQ(lines().size(), std::size_t{2 * RECORDS});
    EXPECT_TRUE(file_text(log_file_path(20)).starts_with(first));
    EXPECT_FALSE(std::filesystem::exists(log_file_path(19)));
}

TEST_F(DemoData, GripesIfTheLogCannotBeOpened) {
    logging_dir += "/missing";
    EXPECT_GRIPE(data_gen(logging_dir), "could not make needed logging_file");
}

TEST_F(DemoData, GripesOnAFullDisk) {
    EXPECT_EXIT(
        {
            limit_file_size(1 << 18);
            dup2(STDERR_FILENO, STDOUT_FILENO);
            data_gen(logging_dir);
        },
        testing::ExitedWithCode(99),
        testing::EndsWith("\nERROR: The demo records could not all be written to the log file (" +
                          log_file_path(20) +
                          "): File too large.  Its older records are as they were.\n"));
}

}  // namespace
}  // namespace gatescope
