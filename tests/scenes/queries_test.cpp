// The six queries, from the menu and from the command line, with and without their dialogs.

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <sstream>

#include "scenes/region.h"

namespace gatescope {
namespace {

const std::string BIT_LIST =
    "* - <ALL BITS>,"
    "00 - BIT__AUTO_BRANCH_REMOVAL,"
    "01 - BIT__CHOWN_VOB_OWNER,"
    "02 - BIT__EVIL_TWIN,"
    "03 - BIT__ONE_CO_PER_BRANCH,"
    "04 - BIT__CHECK_BRANCH_LABEL_NAMES,"
    "05 - BIT__VOB_OWNER_CI_MAIN,"
    "06 - BIT__RECURSIVE_CI_CO_UNCO,"
    "07 - BIT__CHECK_MAGIC_PATH,"
    "08 - BIT__NO_SPACES_IN_ELEMENT_NAMES,"
    "09 - BIT__NO_MULTIPLE_MERGES,"
    "10 - BIT__SMART_CHECKIN,"
    "11 - BIT__CASE_CHECKING,"
    "12 - BIT__ATOMIC_CHANGE,"
    "13 - BIT__REQUIRE_EXTENSION,"
    "14 - BIT__NOTIFY_PARENT_CHANGE_ON_CO,"
    "15 - BIT__NOTIFY_PARENT_CHANGE_ON_CI,"
    "16 - BIT__PREVENT_DATA_LOSS,"
    "17 - BIT__AUTO_EXEC_BIT,"
    "18 - BIT__PREVENT_CORE_ELEMENTS,"
    "19 - BIT__AUTO_DIRECTORY_PROTECT,"
    "20 - BIT__AUTO_CONTRIB_REMOVAL,"
    "21 - BIT__WARN_LOST_AND_FOUND,"
    "22 - BIT__OWN_LIKE_PARENT_DIR,"
    "23 - BIT__FORCE_CHECKOUTS_UNRESERVED";

const std::string COMMAND_LIST =
    "*,chbl,checkin,checkout,chevent,chfolder,chmaster,chproject,chtype,lock,lnname,mkattr,"
    "mkbranch,mkcomp,mkelem,mkfolder,mkhlink,mklabel,mkproject,mkslink,mktype,mktrigger,modtype,"
    "protect,reserve,rmattr,rmbl,rmbranch,rmcomp,rmelem,rmfolder,rmhlink,rmlabel,rmname,rmproject,"
    "rmtrigger,rmtype,rmver,rntype,uncheckout,unlock,unreserve,rebase_start,rebase_cancel,"
    "rebase_complete,mkactivity,setactivity,chactivity,rmactivity,mkstream,chstream,rmstream,mkbl,"
    "mkbl_complete,setactivity_none";

const Dialog COMMAND_DIALOG =
    listed("Select triggerable command to display usage for...", COMMAND_LIST);
const Dialog BIT_DIALOG = listed("Select Functionility Bit to display usage for...", BIT_LIST);
// The quotes around the star end and reopen those around the text, so the shell removes them.
const Dialog USER_DIALOG = prompted("Input user to display usage for or * for all users:", "*");
const Dialog KEY_DIALOG =
    prompted("Input Command Key Number to display denials for (* for all keys):", "*");
const Dialog CPD_DIALOG = prompted("Input CPD Number to display denials for (* for all CPD):", "*");

/// Records of today: some that each query counts, and others.
std::string records() {
    const std::string now = std::to_string(std::time(nullptr));
    std::string text;
    for (const char* rest :
         {":S:ann[2]-<->", ":S:ann[3]-<->", ":D:ann[2]K<1>", ":D:bob[2]K<1>", ":D:bob[2]C<7>",
          ":B:ann[2]-<5>", ":B:bob[2]-<5>", ":B:bob[3]-<6>", ":P:ann[2]a<->", ":P:bob[2]d<->"}) {
        text += now + rest + "\n";
    }
    return text;
}

RegionPlan a_region_with_records() {
    return a_region().with_key("key 0;").with_key("key 1;").with_log(0, records());
}

std::string heading_of(const std::string& page) {
    const std::size_t begin = page.find("<h1>") + 4;
    return page.substr(begin, page.find(" for the last 120 days.</h1>") - begin);
}

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> pieces = {""};
    for (const char c : text) {
        if (c == separator) {
            pieces.emplace_back();
        } else {
            pieces.back() += c;
        }
    }
    return pieces;
}

/// The dialogs of a query by their letters: Command, User, Bit, Key, and CPD as P.
const std::map<char, Dialog> DIALOGS = {{'C', COMMAND_DIALOG},
                                        {'U', USER_DIALOG},
                                        {'B', BIT_DIALOG},
                                        {'K', KEY_DIALOG},
                                        {'P', CPD_DIALOG}};

void answer(Region& region, char dialog, const std::string& text) {
    if (dialog != 'C' && dialog != 'B') {
        region.types(text);
    } else if (text.empty()) {
        region.answers({.kind = "list", .outfile = ""});
    } else {
        region.operator_picks(text);
    }
}

// The dialogs of each query and its heading. With every parameter given there is no dialog.

constexpr bool LITE = true;

struct Row {
    const char* name;
    const char* args;
    const char* dialogs;
    /// Separated by '|'.
    const char* answers;
    const char* heading;
    bool lite = false;
};

constexpr Row ROWS[] = {
    {"OneIsOfOneCommand", "Q=1 C=checkin U=Ann", "", "",
     "ClearCase command success/denied usage for:<br><dd>the (checkin) command for the user (ann)"},
    {"OneIsOfAllCommands", "Q=1 C=* U=*", "", "",
     "ClearCase command success/denied usage for:<br>(all) commands for (all) users"},
    {"TwoIsOfOneBit", "Q=2 B=5 U=ann", "", "",
     "ClearCase Functionality Bit usage for:<br>bit #5 (BIT__VOB_OWNER_CI_MAIN) for the user "
     "(ann)"},
    {"TwoIsOfAllBits", "Q=2 B=* U=*", "", "",
     "ClearCase Functionality Bit usage for:<br>(all) bits for (all) users"},
    {"ThreeIsOfOneKey", "Q=3 K=1 U=ann C=checkin", "", "",
     "ClearCase Comand Key usage for:<br>key #1 for the user (ann) for the (checkin)"},
    {"ThreeIsOfAllKeys", "Q=3 K=* U=* C=*", "", "",
     "ClearCase Command Key denials for:<br>(all) keys for (all) users for (all) commands"},
    {"ThreeIsOfOneCpd", "Q=3 K=7 U=* C=*", "", "",
     "ClearCase CPD usage for:<br>CPD #7 for (all) users for (all) commands", LITE},
    {"ThreeIsOfAllCpds", "Q=3 K=* U=* C=*", "", "",
     "ClearCase CPD denials for:<br>(all) keys for (all) users for (all) commands", LITE},
    {"FourIsOfAUser", "Q=4 U=ann", "", "",
     "ClearCase Functionality Bit Vs. Bit usage for:<br>(all) bits for the user (ann)"},
    {"FiveIsOfACommand", "Q=5 U=* C=checkin", "", "",
     "ClearCase Comand Key vs. Key usage for:<br>(all) Keys for (all) users for the (checkin)"},
    {"FiveIsOfCpds", "Q=5 U=* C=*", "", "",
     "ClearCase CPD vs. CPD usage for:<br>(all) CPDs for (all) users for (all) commands", LITE},
    {"SixIsOfOneCommand", "Q=6 C=checkin U=bob", "", "",
     "ClearCase command allowed/denied by parent policy for:<br><dd>the (checkin) command for the "
     "user (bob)"},
    {"SixIsOfAllCommands", "Q=6 C=* U=*", "", "",
     "ClearCase command allowed/denied by parent policy for:<br>(all) commands for (all) users"},
    {"OneAsksForCommandAndUser", "Q=1", "CU", "checkin|Ann",
     "ClearCase command success/denied usage for:<br><dd>the (checkin) command for the user (Ann)"},
    {"TwoAsksForBitAndUser", "Q=2", "BU", "05 - BIT__VOB_OWNER_CI_MAIN|*",
     "ClearCase Functionality Bit usage for:<br>bit #5 (BIT__VOB_OWNER_CI_MAIN) for (all) users"},
    {"TwoTakesAllBits", "Q=2", "BU", "* - <ALL BITS>|*",
     "ClearCase Functionality Bit usage for:<br>(all) bits for (all) users"},
    {"ThreeAsksForKeyUserAndCommand", "Q=3", "KUC", "1|*|*",
     "ClearCase Comand Key usage for:<br>key #1 for (all) users for (all) commands"},
    {"ThreeAsksForACpd", "Q=3", "PUC", "*|*|*",
     "ClearCase CPD denials for:<br>(all) keys for (all) users for (all) commands", LITE},
    {"FourAsksForTheUser", "Q=4", "U", "bob",
     "ClearCase Functionality Bit Vs. Bit usage for:<br>(all) bits for the user (bob)"},
    {"FiveAsksForUserAndCommand", "Q=5", "UC", "*|*",
     "ClearCase Comand Key vs. Key usage for:<br>(all) Keys for (all) users for (all) commands"},
    {"SixAsksForCommandAndUser", "Q=6", "CU", "setactivity_none|*",
     "ClearCase command allowed/denied by parent policy for:<br><dd>the (setactivity_none) command "
     "for (all) users"},
    {"OnlyAMissingUserIsAskedFor", "Q=1 C=checkin", "U", "*",
     "ClearCase command success/denied usage for:<br><dd>the (checkin) command for (all) users"},
    {"OnlyAMissingCommandIsAskedFor", "Q=3 K=* U=*", "C", "*",
     "ClearCase Command Key denials for:<br>(all) keys for (all) users for (all) commands"},
    {"AnEmptyAnswerIsAskedForAgain", "Q=1", "CCUU", "|*|  |*",
     "ClearCase command success/denied usage for:<br>(all) commands for (all) users"},
    {"AKeyThatIsNoNumberIsAskedForAgain", "Q=3", "KKKKKUC", "1a|-1|**|1 2|07|*|*",
     "ClearCase Comand Key usage for:<br>key #7 for (all) users for (all) commands"},
};

class Query : public testing::TestWithParam<Row> {};

TEST_P(Query, AsksForWhatIsMissingAndWritesItsPage) {
    const Row& row = GetParam();
    RegionPlan plan = a_region_with_records();
    plan.with_env("ZUL_GATESCOPE_BROWSER", "{stage}/bin/browser");
    Region east(row.lite ? plan.lite() : plan);
    Args args = split(row.args, ' ');
    const char number = args.front().back();
    args.insert(args.end(), {"D=n", "R=n"});
    const std::vector<std::string> answers = split(row.answers, '|');
    Dialogs expected;
    for (const char dialog : std::string(row.dialogs)) {
        answer(east, dialog, answers.at(expected.size()));
        expected.push_back(DIALOGS.at(dialog));
    }
    const Result result = east.run(args);
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs(), expected);
    EXPECT_EQ(result.calls.size(), expected.size());
    ASSERT_EQ(east.pages().size(), 1U);
    const std::string page = east.pages().front();
    EXPECT_TRUE(page.ends_with(std::string("_Q0") + number + ".html")) << page;
    EXPECT_EQ(heading_of(east.page()), row.heading);
    EXPECT_EQ(result.out, "\n\nGatescope query completed and html page\n(" +
                              east.path("depot/query_results/" + page) +
                              ")\nwas built and stored for the region (east).\n\n");
}

INSTANTIATE_TEST_SUITE_P(Queries, Query, testing::ValuesIn(ROWS),
                         [](const testing::TestParamInfo<Row>& row) { return row.param.name; });

TEST(Queries, WriteNoPageAndReadNoLogWhenCancelled) {
    struct Cancel {
        const char* query;
        const char* answered;
    };
    constexpr Cancel CANCELS[] = {{"Q=1", ""}, {"Q=1", "C"}, {"Q=2", ""},   {"Q=2", "B"},
                                  {"Q=3", ""}, {"Q=3", "K"}, {"Q=3", "KU"}, {"Q=4", ""},
                                  {"Q=5", ""}, {"Q=5", "U"}, {"Q=6", ""},   {"Q=6", "C"}};
    const std::map<char, std::string> answers = {
        {'C', "checkin"}, {'B', "05 - BIT__VOB_OWNER_CI_MAIN"}, {'K', "1"}, {'U', "ann"}};
    for (const auto& [query, answered] : CANCELS) {
        // Reading an empty log would show a message.
        Region east = a_region();
        const std::string before = answered;
        for (const char dialog : before) answer(east, dialog, answers.at(dialog));
        east.cancels();
        const Result result = east.run({query, "R=n"});
        EXPECT_EQ(result.status, 110) << query;
        EXPECT_EQ(result.dialogs().size(), before.size() + 1) << query;
        EXPECT_TRUE(east.pages().empty()) << query;
    }
}

TEST(Queries, CountTheRecordsOfTheirKindUserAndEdition) {
    struct Counted {
        const char* args;
        bool lite;
        const char* there;
        const char* missing = "no text of a page";
    };
    constexpr Counted COUNTS[] = {
        {"Q=4 U=*", !LITE, "The BIT__VOB_OWNER_CI_MAIN bit was invoked 2 times"},
        {"Q=4 U=*", !LITE, "The BIT__RECURSIVE_CI_CO_UNCO bit was invoked once"},
        {"Q=4 U=ANN", !LITE, "The BIT__VOB_OWNER_CI_MAIN bit was invoked once"},
        {"Q=4 U=ANN", !LITE, "The BIT__RECURSIVE_CI_CO_UNCO bit was not invoked"},
        {"Q=5 U=* C=*", !LITE, "Key #1 was invoked 2 times", "#7 was invoked"},
        {"Q=5 U=* C=*", LITE, "#7 was invoked once", "#1 was invoked"},
    };
    for (const Counted& counted : COUNTS) {
        RegionPlan plan = a_region_with_records().without_dialogs();
        Region east(counted.lite ? plan.lite() : plan);
        Args args = split(counted.args, ' ');
        args.insert(args.end(), {"D=n", "R=n"});
        east.run(args);
        EXPECT_TRUE(holds(east.page(), counted.there)) << counted.there;
        EXPECT_FALSE(holds(east.page(), counted.missing)) << counted.missing;
    }
}

TEST(Queries, ReportMissingDataAndWritePage) {
    Region east = a_region();
    const Result result = east.run({"Q=1", "C=*", "U=*", "D=n", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.dialogs(), Dialogs{advised("There was no data to perform the query on.")});
    EXPECT_EQ(east.pages().size(), 1u);
}

TEST(Queries, WarnOnceOfOldRecords) {
    const std::time_t old = std::time(nullptr) - 200 * 86400;
    std::string records;
    for (int i = 0; i < 50; ++i) records += std::to_string(old + i) + ":S:ann[2]-<->\n";
    Region east = a_region().with_log(3, records).without_dialogs();
    const Result result = east.run({"Q=1", "C=*", "U=*", "D=n", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_TRUE(result.out.starts_with("Warning:\n\nYou have log records from ")) << result.out;
    EXPECT_EQ(result.out.find("consider pruning"), result.out.rfind("consider pruning"));
    EXPECT_FALSE(holds(result.out, "There was no data"));
}

// From the menu, and several in one run.

TEST(Queries, ReturnToMenu) {
    Region east = a_region_with_records();
    east.operator_picks("Q01 - Commands/Users (success/denied) over Time")
        .operator_picks("*")
        .types("*")
        .operator_picks("Q04 - Bit vs. Bit (per user) usage over Time")
        .types("*")
        .cancels();
    const Result result = east.run({"D=n"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs().size(), 6u);
    EXPECT_EQ(east.pages().size(), 2u);
}

TEST(Queries, EndAfterOneRequestFromMenu) {
    Region east = a_region_with_records();
    east.operator_picks("Q04 - Bit vs. Bit (per user) usage over Time").types("*");
    EXPECT_EQ(east.run({"D=n", "R=n"}).status, 110);
}

TEST(Queries, KeepParametersOfCommandLineForLaterQueries) {
    Region east = a_region_with_records();
    east.operator_picks("Q06 - Commands/Users (success/denied) over Time by parent policy")
        .cancels();
    const Result result = east.run({"Q=1", "C=checkin", "U=ann", "D=n"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.dialogs().size(), 2u);
    EXPECT_EQ(east.pages().size(), 2u);
}

TEST(Queries, DoNotKeepFiltersForNextQuery) {
    Region east = a_region_with_records();
    east.operator_picks("Q04 - Bit vs. Bit (per user) usage over Time").cancels();
    east.run({"Q=3", "K=1", "U=*", "C=rmelem", "D=n"});
    ASSERT_EQ(east.pages().size(), 2u);
    for (const std::string& name : east.pages()) {
        if (!name.ends_with("_Q04.html")) continue;
        // With the command filter of the first query there would be nothing to count.
        EXPECT_TRUE(holds(east.file("depot/query_results/" + name),
                          "The BIT__VOB_OWNER_CI_MAIN bit was invoked 2 times"));
    }
}

TEST(Queries, ReadQueryNumberUpToFirstLetter) {
    Region east = a_region_with_records().without_dialogs();
    EXPECT_EQ(east.run({"Q=2abc", "B=5", "U=*", "D=n", "R=n"}).status, 110);
    EXPECT_TRUE(east.pages().at(0).ends_with("_Q02.html"));
}

TEST(Queries, AcceptNeighbouringCommandsAsOneValue) {
    Region east = a_region_with_records().without_dialogs();
    EXPECT_EQ(east.run({"Q=1", "C=checkin,checkout", "U=*", "D=n", "R=n"}).status, 110);
    EXPECT_TRUE(holds(heading_of(east.page()), "the (checkin,checkout) command"));
}

TEST(Queries, AreRefusedDuringInstallation) {
    for (const char* query : {"Q=1", "Q=2", "Q=3", "Q=4", "Q=5", "Q=6"}) {
        Region east = a_region_with_records();
        const Result result = east.run({"-during_install", query, "R=n"});
        EXPECT_EQ(result.status, 110);
        EXPECT_EQ(result.dialogs(),
                  Dialogs{advised_and_waited(
                      "Query functions are not available during the installation process...")});
        EXPECT_TRUE(east.pages().empty());
    }
}

// The browser.

TEST(Queries, ShowPageInBrowserOfGatebitsFile) {
    Region east = a_region_with_records();
    const Result result = east.run({"Q=4", "U=*", "R=n"});
    EXPECT_EQ(result.status, 110);
    const std::string page = east.pages().at(0);
    EXPECT_EQ(result.dialogs(),
              Dialogs{advised("Graph (" + page + ") built.. Displaying graph...")});
    EXPECT_EQ(result.calls_of("browser"),
              std::vector<Args>{{east.path("depot/query_results/" + page)}});
    EXPECT_EQ(result.out, "");
}

TEST(Queries, ReportRawStatusOfFailingBrowser) {
    Region east = a_region_with_records();
    east.program_answers("browser", {.status = 3});
    const Result result = east.run({"Q=4", "U=*", "R=n"});
    ASSERT_EQ(result.dialogs().size(), 2u);
    EXPECT_EQ(result.dialogs().at(1), advised("Warning: return code=768 returned from " +
                                              east.path("bin/browser") + "..."));
}

TEST(Queries, ReportMissingBrowserAndKeepPage) {
    Region east = a_region_with_records().with_variable(2, "/no/such/browser").without_dialogs();
    const Result result = east.run({"Q=4", "U=*", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.out, "Gatescope query completed and html page\n(" +
                              east.path("depot/query_results/" + east.pages().at(0)) +
                              ") was built, but Gatescope browser\n(/no/such/browser) for region "
                              "(east)\nas defined in the gatebits file (" +
                              east.gatebits_path() + ") does not exist\n");

    Region west = a_region_with_records().with_variable(2, "").without_dialogs();
    const std::string said = west.run({"Q=4", "U=*", "R=n"}).out;
    EXPECT_EQ(said, "Gatescope query completed and html page\n(" +
                        west.path("depot/query_results/" + west.pages().at(0)) +
                        ")\nwas built, but there is no browser defined by either\nthe "
                        "ZUL_GATESCOPE_BROWSER environmental variable or\nin the gatebits file (" +
                        west.gatebits_path() + ")\nfor region (east)\n");
}

TEST(Queries, EndWith99WhenResultsDirectoryCannotBeWritten) {
    Region east = a_region_with_records().with_variable(6, "/no/such/dir").without_dialogs();
    const Result result = east.run({"Q=4", "U=*", "D=n", "R=n"});
    EXPECT_EQ(result.status, 99);
    EXPECT_TRUE(result.out.starts_with("Could not create/open results file (/no/such/dir/"))
        << result.out;
}

/// The lines of the only CSV file, without their ends.
std::vector<std::string> numbers_of(const Region& region) {
    std::vector<std::string> lines;
    for (const std::string& name : region.pages()) {
        if (!name.ends_with(".csv")) continue;
        std::istringstream text(region.file("depot/query_results/" + name));
        for (std::string line; std::getline(text, line);) {
            EXPECT_TRUE(line.ends_with("\r")) << line;
            lines.push_back(line.substr(0, line.size() - 1));
        }
    }
    return lines;
}

TEST(Queries, WriteNumbersBesidePageWhenEnabled) {
    struct Case {
        const char* query;
        const char* header;
        std::size_t lines;
        /// How the last line ends.
        const char* end;
    };
    const Case cases[] = {{"Q=1", "day,allowed,denied", 121, ",2,3"},
                          {"Q=2", "day,count", 121, ",2"},
                          {"Q=3", "day,count", 121, ",2"},
                          {"Q=4", "bit,name,uses", 25, "23,BIT__FORCE_CHECKOUTS_UNRESERVED,0"},
                          {"Q=5", "key,line,denials", 2, "1,key 0;,2"},
                          {"Q=6", "day,allowed,denied", 121, ",1,1"}};
    for (const Case& asked : cases) {
        Region east =
            a_region_with_records().with_env("ZUL_GATESCOPE_CSV", "Yes").without_dialogs();
        const Result result = east.run({asked.query, "C=*", "U=*", "B=5", "K=*", "D=n", "R=n"});
        EXPECT_EQ(result.status, 110);
        ASSERT_EQ(east.pages().size(), 2U) << asked.query;
        std::vector<std::string> names = east.pages();
        std::sort(names.begin(), names.end());
        EXPECT_EQ(names[0].substr(0, names[0].size() - 4), names[1].substr(0, names[1].size() - 5));
        EXPECT_TRUE(holds(result.out, names[1] + ")"));
        const std::vector<std::string> lines = numbers_of(east);
        ASSERT_EQ(lines.size(), asked.lines) << asked.query;
        EXPECT_EQ(lines.front(), asked.header);
        EXPECT_TRUE(lines.back().ends_with(asked.end)) << lines.back();
    }
}

TEST(Queries, CountAllLogsWithFewDescriptors) {
    const std::string record = std::to_string(std::time(nullptr)) + ":S:ann[2]-<->\n";
    std::string records;
    for (int i = 0; i < 100; ++i) records += record;
    RegionPlan plan = a_region().without_dialogs().with_env("ZUL_GATESCOPE_CSV", "yes");
    for (int number = 0; number <= 20; ++number) plan.with_log(number, records);
    Region east = plan;
    const Result result = east.run_after("ulimit -n 8", {"Q=1", "C=*", "U=*", "D=n", "R=n"});
    EXPECT_EQ(result.status, 110);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(numbers_of(east).back().ends_with(",2100,0")) << numbers_of(east).back();
}

TEST(Queries, WriteNoNumbersUnlessEnabled) {
    Region east = a_region_with_records().with_env("ZUL_GATESCOPE_CSV", "no").without_dialogs();
    EXPECT_EQ(east.run({"Q=4", "U=*", "D=n", "R=n"}).status, 110);
    EXPECT_EQ(east.pages().size(), 1U);
}

TEST(Queries, EscapeUserInPage) {
    Region east = a_region_with_records().without_dialogs();
    EXPECT_EQ(east.run({"Q=4", "U=<script>\"&", "D=n", "R=n"}).status, 110);
    EXPECT_TRUE(holds(heading_of(east.page()), "for the user (&lt;script&gt;&quot;&amp;)"));
}

// Demo data.

TEST(DemoData, FillsLastLogAndEndsWithZero) {
    Region east = a_region().without_dialogs();
    const Result result = east.run({"-data_gen"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(
        result.out.starts_with("Created 0 demo data entries\nCreated 100 demo data entries\n"));
    EXPECT_TRUE(
        result.out.ends_with("Created 49900 demo data entries\nCreated 50000 demo data entries\n"));
    const std::string log = east.log(20);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 50000);
    EXPECT_EQ(east.files_in("depot/log"), std::vector<std::string>{"logging_20.txt"});
}

TEST(DemoData, AppendsAsManyRecordsInSecondRun) {
    Region east = a_region().without_dialogs();
    east.run({"-data_gen"});
    const std::string first = east.log(20);
    east.run({"R=n", "-data_gen"});
    const std::string both = east.log(20);
    EXPECT_TRUE(both.starts_with(first));
    EXPECT_EQ(std::count(both.begin(), both.end(), '\n'), 100000);
}

TEST(DemoData, EndsWith99WhenLogDirectoryCannotBeWritten) {
    Region east = a_region().with_variable(4, "/no/such/dir").without_dialogs();
    const Result result = east.run({"-data_gen"});
    EXPECT_EQ(result.status, 99);
    EXPECT_EQ(result.out, "could not make needed logging_file\n");
}

}  // namespace
}  // namespace gatescope
