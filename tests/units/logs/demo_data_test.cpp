#include "logs/demo_data.h"

#include <signal.h>
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <vector>

#include "log_region.h"

namespace {

class DemoData : public LogRegion {
  protected:
    /// Runs the generator in a process of its own; returns what it printed.
    std::string generated(unsigned seed) {
        const std::string said = logging_dir + "/said";
        EXPECT_EXIT(
            {
                if (std::freopen(said.c_str(), "w", stdout) == nullptr) std::abort();
                std::srand(seed);
                data_gen(logging_dir);
            },
            testing::ExitedWithCode(0), "");
        return file_text(said);
    }

    static std::vector<std::string> lines_of(const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string one; std::getline(stream, one);) lines.push_back(one);
        return lines;
    }

    /// The records that a seed makes, told as the sequence of draws that they are.
    static std::string expected_records(unsigned seed) {
        std::srand(seed);
        std::string all;
        for (int i = 0; i < 50000; ++i) {
            const int user = std::rand() % 5;
            const int day = std::rand() % 120;
            const int command = std::rand() % 40 + 1;
            char kind = 'S';
            if (day < 40) {
                const int x = std::rand() % 20;
                if (x == 7) kind = std::rand() % 125 == 0 ? 'D' : 'S';
                if (x == 8 || x == 9) kind = 'B';
            } else {
                const int x = std::rand() % 10;
                if (x == 0) {
                    kind = 'P';
                } else if (day >= 80) {
                    kind = x <= 2 ? 'S' : x <= 6 ? 'D' : 'B';
                } else {
                    kind = x <= 5 ? 'S' : x <= 7 ? 'D' : 'B';
                }
            }
            std::string tail = "-<->";
            if (kind == 'D') {
                const int key = std::rand() % 10;
                const int letter = std::rand() % 3;
                tail = std::string(1, "KBR"[letter]) + "<" + std::to_string(key) + ">";
            } else if (kind == 'B') {
                tail = "-<" + std::to_string(std::rand() % 24) + ">";
            } else if (kind == 'P') {
                tail = std::rand() % 4 == 0 ? "d<->" : "a<->";
            }
            all += std::to_string(noon(day)) + ":" + kind + ":user" + std::to_string(user) + "[" +
                   std::to_string(command) + "]" + tail + "\n";
        }
        return all;
    }
};

TEST_F(DemoData, DrawsInTheGivenOrder) {
    generated(4711);
    EXPECT_TRUE(file_text(log_file_path(20)) == expected_records(4711));
}

TEST_F(DemoData, ReportsItsProgress) {
    std::string expected;
    for (int i = 0; i <= 50000; i += 100) {
        expected += "Created " + std::to_string(i) + " demo data entries\n";
    }
    EXPECT_EQ(generated(1), expected);
}

TEST_F(DemoData, ASecondRunAppends) {
    generated(1);
    const std::string first = file_text(log_file_path(20));
    generated(2);
    const std::string both = file_text(log_file_path(20));
    EXPECT_EQ(lines_of(both).size(), 100000u);
    EXPECT_TRUE(both.starts_with(first));
    EXPECT_FALSE(std::filesystem::exists(log_file_path(19)));
}

TEST_F(DemoData, EveryRecordHasItsShape) {
    generated(3);
    for (const std::string& one : lines_of(file_text(log_file_path(20)))) {
        char kind = 0;
        char detail = 0;
        int user = -1;
        int command = 0;
        int end = 0;
        std::string value(4, '\0');
        ASSERT_EQ(std::sscanf(one.c_str(), "%*d:%c:user%1d[%d]%c<%3[-0-9]>%n", &kind, &user,
                              &command, &detail, value.data(), &end),
                  5)
            << one;
        EXPECT_EQ(static_cast<std::size_t>(end), one.size()) << one;
        EXPECT_TRUE(user >= 0 && user <= 4 && command >= 1 && command <= 40) << one;
        const std::string details = kind == 'D' ? "KBR" : kind == 'P' ? "ad" : "-";
        EXPECT_NE(details.find(detail), std::string::npos) << one;
        const int limit = kind == 'D' ? 10 : kind == 'B' ? 24 : 0;
        if (limit == 0) {
            EXPECT_STREQ(value.c_str(), "-") << one;
        } else {
            EXPECT_LT(std::stoi(value), limit) << one;
        }
    }
}

TEST_F(DemoData, EveryRecordStandsAtTheNoonOfADayOfThePeriod) {
    generated(4);
    std::map<std::int64_t, int> seen;
    for (const std::string& one : lines_of(file_text(log_file_path(20)))) {
        const std::int64_t behind = noon(0) - std::stoll(one);
        ASSERT_EQ(behind % SECONDS_A_DAY, 0) << one;
        ++seen[behind / SECONDS_A_DAY];
    }
    EXPECT_EQ(seen.size(), 120u);
    EXPECT_EQ(seen.begin()->first, 0);
    EXPECT_EQ(seen.rbegin()->first, 119);
}

TEST_F(DemoData, TheLast40DaysAreQuiet) {
    generated(5);
    std::map<char, int> recent;
    std::map<char, int> older;
    const std::int64_t border = end_of_day_time - 40 * SECONDS_A_DAY;
    for (const std::string& one : lines_of(file_text(log_file_path(20)))) {
        ++(std::stoll(one) >= border ? recent : older)[one[11]];
    }
    EXPECT_EQ(recent['P'], 0);
    // About 1 in 2500, about 1 in 10, the rest allowed.
    EXPECT_LT(recent['D'], recent['S'] / 500);
    EXPECT_NEAR(recent['B'] * 10.0 / (recent['S'] + recent['B']), 1.0, 0.2);
    EXPECT_GT(older['P'], 2000);
    EXPECT_GT(older['D'], 5000);
}

TEST_F(DemoData, ALogThatCannotBeOpenedIsAFault) {
    logging_dir += "/missing";
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            data_gen(logging_dir);
        },
        testing::ExitedWithCode(99), ": No such file or directory\ncould not make needed logging_file\n$");
}

TEST_F(DemoData, AFullDiskIsAFault) {
    EXPECT_EXIT(
        {
            rlimit small;
            small.rlim_cur = small.rlim_max = 1 << 18;
            signal(SIGXFSZ, SIG_IGN);
            setrlimit(RLIMIT_FSIZE, &small);
            dup2(STDERR_FILENO, STDOUT_FILENO);
            data_gen(logging_dir);
        },
        testing::ExitedWithCode(99), "ERROR: The demo records could not all be written");
}

}  // namespace
