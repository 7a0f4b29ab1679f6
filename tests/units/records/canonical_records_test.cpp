#include "records/canonical_records.h"

#include <algorithm>
#include <random>
#include <vector>

#include "records/words.h"
#include "units/logs/log_region.h"
#include "units/records/tallies.h"

namespace gatescope {
namespace {

RecordQuery query_of(int number, const std::array<std::string, 4>& filters, int edition = 1) {
    RecordQuery query;
    query.query = number;
    query.edition = edition;
    query.filters = filters;
    query.period.end_of_day_time = PERIOD_END;
    query.period.start_of_period_time = PERIOD_END - QUERY_DAYS * SECONDS_A_DAY;
    return query;
}

RecordTally counted_by_the_plain_rule(const RecordQuery& query, std::string_view text) {
    RecordTally tally;
    const char* at = text.data();
    while (true) {
        const std::string_view word = next_word(&at, text.data() + text.size());
        if (word.empty()) return tally;
        count_word(query, word, &tally);
    }
}

/// The margin after the text would change the counts if the fast path did not ignore it.
RecordTally counted(const RecordQuery& query, const std::string& text, InstructionSet set) {
    const std::string with_margin = text + std::string(READER_MARGIN, '>');
    RecordTally tally;
    CanonicalQuery(query, set).count({with_margin.data(), text.size()}, &tally);
    return tally;
}

const std::vector<InstructionSet> ALL_SETS = {best_instruction_set(), InstructionSet::SSE2,
                                              InstructionSet::SCALAR};

/// Whether all fast paths count what the plain rule counts.
bool same_counts_on_all_paths(const RecordQuery& query, const std::string& text) {
    const RecordTally plain = counted_by_the_plain_rule(query, text);
    return std::all_of(ALL_SETS.begin(), ALL_SETS.end(), [&](InstructionSet set) {
        return same_counts(plain, counted(query, text, set));
    });
}

/// Makes random records, lines and queries, from ordinary to malformed.
class RecordMaker {
  public:
    explicit RecordMaker(unsigned seed) : random_(seed) {}

    int draw(std::size_t limit) { return static_cast<int>(random_() % limit); }
    std::size_t place(std::size_t limit) { return random_() % limit; }
    template <class Choices>
    auto pick(const Choices& choices) {
        return choices[place(std::size(choices))];
    }

    std::string user() {
        static const std::vector<std::string> users = {"ann",
                                                       "Ann",
                                                       "bob",
                                                       "x",
                                                       "user1",
                                                       "user12",
                                                       "user123",
                                                       "a_b-c.d",
                                                       "EAST\\ann",
                                                       "fifteen_letters",
                                                       "sixteen__letters",
                                                       "seventeen_letters",
                                                       "somebody.with.a.long.name.30..",
                                                       "somebody.with.a.long.name..31..",
                                                       "somebody.with.a.long.name...32..",
                                                       "\xc3\xa4nn",
                                                       "@`{",
                                                       "user1]",
                                                       "]K",
                                                       ">",
                                                       "s:bob",
                                                       "a[b",
                                                       "5]-<5",
                                                       "<5>",
                                                       "<",
                                                       "[5]",
                                                       ":",
                                                       "",
                                                       "p:",
                                                       "a]d<",
                                                       "a\x01"
                                                       "b",
                                                       "a;b=c",
                                                       "^_"};
        return pick(users);
    }

    std::string time() {
        switch (draw(12)) {
            case 0:
                return std::to_string(PERIOD_END - SECONDS_A_DAY * (draw(4) + 118) + draw(3) - 1);
            case 1:
                return std::to_string(PERIOD_END + draw(3) - 1);
            case 2:
                return std::to_string(PERIOD_END - SECONDS_A_DAY * draw(130) + draw(3) - 1);
            case 3: {
                static const std::vector<std::string> odd = {"0",           "",
                                                             "9999999999",  "0000000000",
                                                             "1000000000",  "-1794787199",
                                                             "x794787199",  "17947871990",
                                                             "179478719",   "99999999999999999999",
                                                             "+1794700000", "1794 00000"};
                return pick(odd);
            }
            default:
                return std::to_string(PERIOD_END - draw(125 * 86400));
        }
    }

    std::string record() {
        const char kind = pick("SDBPSDBPSDBPsdbpXK:[<");
        const char detail = pick("-KBRCad-KBRCad-kbrcADx:]<[");
        static const std::vector<std::string> values = {
            "-", "-",  "0",  "5",  "7",  "23", "99", "05", "100", "119", "120", "-5", "x",
            "",  "5x", "-0", "0-", "5-", "--", "1-", ":",  "<",   "5>",  "[",   "/",  "."};
        static const std::vector<std::string> commands = {"1",  "5",   "12", "54", "5",  "12", "0",
                                                          "05", "123", "",   "x",  "1x", ":",  "["};
        return time() + ":" + kind + ":" + user() + "[" + pick(commands) + "]" + detail + "<" +
               pick(values) + ">";
    }

    std::string mutated(std::string text) {
        constexpr char bytes[] = ":<>[]- \n\t\r\v\f\x01\x1f!09aSsPpKk\x7f\xff";
        for (int times = draw(3); times > 0; --times) {
            const std::size_t at = place(text.size() + 1);
            const char byte = bytes[place(sizeof bytes)];
            switch (draw(4)) {
                case 0:
                    text.insert(at, 1, byte);
                    break;
                case 1:
                    if (at < text.size()) text.erase(at, 1 + place(3));
                    break;
                case 2:
                    text.insert(at, place(300), byte);
                    break;
                default:
                    if (at < text.size()) text[at] = byte;
            }
        }
        return text;
    }

    std::string delimiters() {
        std::string text;
        for (int size = draw(60); size > 0; --size) text += pick("::[]<>-019SDBPKadsu \n");
        return text;
    }

    std::string line() {
        constexpr std::array<const char*, 14> ends = {"\n", "\n",   "\n",   "\n",      "\n",
                                                      "\n", "\r\n", "\r\n", " ",       "\t",
                                                      "",   "\n\n", " \t",  "\r\n\r\n"};
        std::string text = record();
        const int way = draw(10);
        if (way == 0) text = delimiters();
        if (draw(3000) == 0) text.insert(text.size() / 2, 60000 + place(10000), 'l');
        if (way <= 3) text = mutated(text);
        if (way == 4) text = std::to_string(PERIOD_END - draw(200 * 86400)) + ":" + delimiters();
        return text + (way <= 6 ? pick(ends) : "\n");
    }

    /// A filter as a query driver forms it, with any text as the user.
    std::string user_filter() { return lowered(":" + user() + "["); }
    std::string command_filter() { return "[" + std::to_string(draw(3) * 6) + "]"; }
    std::string value_filter() {
        static const std::vector<std::string> values = {"<0>",   "<5>",   "<7>",   "<23>",   "<99>",
                                                        "<100>", "<119>", "<120>", "<12345>"};
        return pick(values);
    }
    std::string some(const std::string& filter) { return draw(3) != 0 ? ":" : filter; }

    RecordQuery query() {
        const int edition = draw(2);
        const std::string key = edition == 1 ? "]k<" : "]c<";
        const std::string command = draw(2) == 0 ? "[" : command_filter();
        const std::string user = some(user_filter());
        switch (draw(8)) {
            case 0:
                return query_of(1, {command, user, ":", ":"}, edition);
            case 1:
                return query_of(2, {":b:", some(value_filter()), user, ":"}, edition);
            case 2:
                return query_of(3, {key, some(value_filter()), user, some(command)}, edition);
            case 3:
                return query_of(4, {":b:", user, ":", ":"}, edition);
            case 4:
                return query_of(5, {key, user, some(command), ":"}, edition);
            case 5:
                return query_of(6, {command, user, ":", ":"}, edition);
            default:
                return query_of(1 + draw(6), {odd_filter(), odd_filter(), user, command}, edition);
        }
    }

    /// A filter that no query driver forms.
    std::string odd_filter() {
        static const std::vector<std::string> odd = {
            ":",    "",     ":s:",  ":p:", ":5:", "]a<", "]-<", "[5]",   "[05]", "[123]", "<->",
            "<05>", "1794", "ann[", ":::", "]]<", ":a[", "a",   "user1", ">",    "[5]-<", ":[",
            ":s:u", "k<7>", ">\n",  "::",  "]<",  ":S:", "[]",  "<>",    "\x01", "5]",    "17:"};
        return lowered(pick(odd));
    }

  private:
    static std::string lowered(std::string text) {
        for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        return text;
    }

    std::mt19937 random_;
};

TEST(CanonicalRecords, CountsRandomLinesLikeThePlainRule) {
    RecordMaker maker(19);
    long fast = 0;
    std::int64_t counted_at_all = 0;
    for (int round = 0; round < 1000; ++round) {
        const RecordQuery query = maker.query();
        std::string text;
        for (int i = 0; i < 200; ++i) text += maker.line();
        const RecordTally plain = counted_by_the_plain_rule(query, text);
        fast += CanonicalQuery(query).has_fast_path();
        for (const auto& row : plain.rows) counted_at_all += row[ALLOWED] + row[DENIED];
        if (same_counts_on_all_paths(query, text)) continue;
        // Report the lines that differ.
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_TRUE(same_counts_on_all_paths(query, line + "\n"))
                << "round " << round << ": " << line;
        }
        FAIL() << "query " << query.query << " edition " << query.edition << " filters "
               << query.filters[0] << " " << query.filters[1] << " " << query.filters[2] << " "
               << query.filters[3];
    }
    // Else the comparison would prove little.
    EXPECT_GT(fast, 500);
    EXPECT_GT(counted_at_all, 4000);
}

TEST(CanonicalRecords, CountsPiecesCutAnywhereLikeThePlainRule) {
    RecordMaker maker(7);
    for (int round = 0; round < 3000; ++round) {
        const RecordQuery query = query_of(1 + maker.draw(6), {":", ":", ":", ":"});
        std::string text;
        for (int i = 0; i < 3; ++i) text += maker.line();
        text.resize(maker.place(text.size() + 1));
        EXPECT_TRUE(same_counts_on_all_paths(query, text)) << text;
    }
}

TEST(CanonicalRecords, CountsDelimitersInsideFieldsLikeThePlainRule) {
    const std::string earlier = std::to_string(PERIOD_END - 5000) + ":S:somebody[1]-<->\n";
    const std::string head = earlier + std::to_string(PERIOD_END - 1000) + ":";
    for (const char* filter : {":[", ":<[", ":>[", ":a[", "[5]", "<5>"}) {
        const RecordQuery query = query_of(1, {filter, ":", ":", ":"});
        for (const char kind : {'S', ':', '[', '<', '>'}) {
            for (const char detail : {'-', ':', '[', '<', '>'}) {
                for (const char value : {'5', ':', '[', '<', '>'}) {
                    for (const char* user : {"", "a", "<", ">", "b"}) {
                        const std::string text =
                            head + kind + ":" + user + "[5]" + detail + "<" + value + ">\n";
                        EXPECT_TRUE(same_counts_on_all_paths(query, text)) << filter << " " << text;
                    }
                }
            }
        }
    }
}

TEST(CanonicalRecords, ContinuesAfterAControlCharacter) {
    const std::string record = std::to_string(PERIOD_END - 1000) + ":S:ann[1]-<5>";
    for (const char* between : {"\x01", "\x1f", "\n", "\n\x01", "\x01\n"}) {
        const std::string text = record + between + record + "\n";
        for (const char* filter : {":", ":bob["}) {
            EXPECT_TRUE(same_counts_on_all_paths(query_of(1, {filter, ":", ":", ":"}), text));
        }
    }
}

TEST(CanonicalRecords, TakesTheEarliestTimeOfFilteredRecordsToo) {
    RecordMaker maker(11);
    for (int round = 0; round < 2000; ++round) {
        RecordQuery query = query_of(1, {":somebody[", ":", ":", ":"});
        query.period.end_of_day_time += maker.draw(100);
        std::string text;
        for (int i = 0; i < 8; ++i) {
            const std::int64_t time = query.period.end_of_day_time + maker.draw(400) - 300;
            text += std::to_string(time) + ":S:ann[1]-<->\n";
        }
        EXPECT_TRUE(same_counts_on_all_paths(query, text)) << text;
    }
}

TEST(CanonicalRecords, HasAFastPathForTheFiltersOfQueries) {
    for (const char* filter : {":", "[", "[1]", "[54]", ":ann[", ":b:", "]k<", "]c<", "<5>",
                               "<119>", "<4000000000>", ":somebody.with.a.long.name..31..["}) {
        EXPECT_TRUE(CanonicalQuery(query_of(1, {filter, ":", ":", ":"})).has_fast_path()) << filter;
    }
}

TEST(CanonicalRecords, HasNoFastPathForFiltersAcrossFields) {
    for (const char* filter :
         {":s:bob[", ":a[b[", "ann", "[5]-<", "1794", "k<7>", "<->", ":[", ":<["}) {
        EXPECT_FALSE(CanonicalQuery(query_of(1, {filter, ":", ":", ":"})).has_fast_path())
            << filter;
    }
    EXPECT_FALSE(CanonicalQuery(query_of(1, {":ann[", ":bob[", ":", ":"})).has_fast_path());
}

}  // namespace
}  // namespace gatescope
