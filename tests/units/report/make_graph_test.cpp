#include <sys/wait.h>
#include <unistd.h>

#include <set>

#include "dialog/messages.h"
#include "report/graph.h"
#include "support/scratch_directory.h"
#include "units/report/page_text.h"

namespace gatescope {

namespace fs = std::filesystem;
using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr char PAGE_1[] = "20260107_080905_Q01.html";

/// A test with a region, queried on 7 January 2026 at 08:09:05.
class MakeGraph : public PageText {
  protected:
    MakeGraph() {
        result.asked.period.last_query_time = {5, 9, 8, 7, 0, 126};
        region.results_dir = directory.path();
        region.ENTERPRIZE_NAME = "east";
        region.ENTERPRIZE_PERMISSION_FILE = directory.path("gatebits.txt");
        directory.write("gatebits.txt", "gatewarden;;;east;\n");
        ZUL_PREFER_GUI = 0;
        unsetenv("ZUL_GATESCOPE_BROWSER");
    }
    ~MakeGraph() override { unsetenv("ZUL_GATESCOPE_BROWSER"); }

    void make_graph(int query, bool display = true) {
        result.asked.query = query;
        Make_Graph({"Title", result, {}}, region, display);
    }
    std::string output_of_make_graph(int query, bool display = true) {
        testing::internal::CaptureStdout();
        make_graph(query, display);
        return testing::internal::GetCapturedStdout();
    }

    /// A browser that writes its arguments to a file, one per line, and ends with `status`.
    std::string browser_ending_with(const std::string& status) const {
        directory.write_program("my browser", "printf '%s\\n' \"$@\" >'" + directory.path("shown") +
                                                  "'\nexit " + status + "\n");
        return directory.path("my browser");
    }

    ScratchDirectory directory;
    PageRegion region;
};

TEST_F(MakeGraph, NamesThePageAfterTheTimeOfTheQuery) {
    for (int query = 1; query <= 6; ++query) output_of_make_graph(query, false);
    for (const char* name :
         {"20260107_080905_Q01.html", "20260107_080905_Q02.html", "20260107_080905_Q03.html",
          "20260107_080905_Q04.html", "20260107_080905_Q05.html", "20260107_080905_Q06.html"}) {
        EXPECT_TRUE(fs::exists(directory.path(name))) << name;
    }
}

TEST_F(MakeGraph, WritesTheGraphOfEachQuery) {
    result.first_cell_read = 0;
    for (int query = 1; query <= 6; ++query) output_of_make_graph(query, false);
    const auto page = [&](int query) {
        return directory.read("20260107_080905_Q0" + std::to_string(query) + ".html");
    };
    EXPECT_THAT(page(1), HasSubstr("No matching commands were attempted on"));
    EXPECT_THAT(page(2), HasSubstr("Matching bits were invoked 0 times through"));
    EXPECT_THAT(page(3), HasSubstr("Matching keys were invoked 0 times to deny"));
    EXPECT_THAT(page(4), HasSubstr("<th>Bit#</th>"));
    EXPECT_THAT(page(5), HasSubstr("<th>Key#</th>"));
    EXPECT_EQ(page(6), page(1));
}

TEST_F(MakeGraph, AppendsThePageOfTheSameQueryAndSecond) {
    output_of_make_graph(1, false);
    const std::string once = directory.read(PAGE_1);
    output_of_make_graph(1, false);
    EXPECT_EQ(directory.read(PAGE_1), once + once);
}

/// The path of the page in a printed message.
std::string path_in(const std::string& said) {
    const std::size_t begin = said.find("\n(") + 2;
    return said.substr(begin, said.find(")\n") - begin);
}

/// The CSV file beside a page, as a job would find it.
std::string csv_beside(const std::string& page) {
    return file_text(page.substr(0, page.size() - 5) + ".csv");
}

TEST_F(MakeGraph, GivesEachPageWithACsvFileASecondOfItsOwn) {
    directory.write(PAGE_1, "another's page");
    setenv("ZUL_GATESCOPE_CSV", "yes", 1);
    std::set<std::string> pages;
    for (unsigned count = 1; count <= 2; ++count) {
        result.cell_success[0] = count;
        const std::string page = path_in(output_of_make_graph(1, false));
        EXPECT_TRUE(pages.insert(page).second) << page;
        EXPECT_THAT(csv_beside(page), testing::EndsWith("," + std::to_string(count) + ",0\r\n"));
        const std::string text = file_text(page);
        EXPECT_EQ(text.find("<html>"), text.rfind("<html>")) << "two pages in one file";
    }
    unsetenv("ZUL_GATESCOPE_CSV");
    EXPECT_TRUE(directory.read(PAGE_1) == "another's page");
    EXPECT_FALSE(fs::exists(directory.path("20260107_080905_Q01.csv")));
}

TEST_F(MakeGraph, GivesConcurrentJobsCsvFilesOfTheirOwn) {
    setenv("ZUL_GATESCOPE_CSV", "yes", 1);
    for (unsigned job = 1; job <= 3; ++job) {
        if (fork() != 0) continue;
        result.cell_success[0] = job;
        const std::string page = path_in(output_of_make_graph(1, false));
        const bool own = csv_beside(page).ends_with("," + std::to_string(job) + ",0\r\n");
        _exit(own ? 0 : 1);
    }
    unsetenv("ZUL_GATESCOPE_CSV");
    int ended = 0;
    for (int status = 0; wait(&status) > 0; ++ended) EXPECT_EQ(status, 0);
    EXPECT_EQ(ended, 3);
    // A page and a CSV file for each.
    EXPECT_EQ(directory.names().size(), 7U) << "with the gatebits file";
}

TEST_F(MakeGraph, PrintsThePathWithoutDisplay) {
    setenv("ZUL_GATESCOPE_BROWSER", browser_ending_with("0").c_str(), 1);
    EXPECT_EQ(output_of_make_graph(1, false),
              "\n\nGatescope query completed and html page\n(" + directory.path(PAGE_1) +
                  ")\nwas built and stored for the region (east).\n\n");
    EXPECT_FALSE(fs::exists(directory.path("shown")));
}

TEST_F(MakeGraph, PrintsPercentSignsUnchanged) {
    region.ENTERPRIZE_NAME = "100%% %s";
    EXPECT_THAT(output_of_make_graph(1, false), HasSubstr("for the region (100%% %s)."));
}

TEST_F(MakeGraph, AdvisesThePathWithoutABrowser) {
    EXPECT_EQ(output_of_make_graph(1),
              "Gatescope query completed and html page\n(" + directory.path(PAGE_1) +
                  ")\nwas built, but there is no browser defined by either\n"
                  "the ZUL_GATESCOPE_BROWSER environmental variable or\n"
                  "in the gatebits file (" +
                  region.ENTERPRIZE_PERMISSION_FILE + ")\nfor region (east)\n");
    EXPECT_THAT(directory.read(PAGE_1), HasSubstr("</html>\n"));
}

TEST_F(MakeGraph, AdvisesOfAMissingBrowserOfTheGatebitsFile) {
    region.browser = directory.path("none");
    EXPECT_EQ(output_of_make_graph(1),
              "Gatescope query completed and html page\n(" + directory.path(PAGE_1) +
                  ") was built, but Gatescope browser\n(" + directory.path("none") +
                  ") for region (east)\nas defined in the gatebits file (" +
                  region.ENTERPRIZE_PERMISSION_FILE + ") does not exist\n");
}

TEST_F(MakeGraph, AdvisesOfAMissingBrowserOfTheEnvironment) {
    region.browser = browser_ending_with("0");
    setenv("ZUL_GATESCOPE_BROWSER", directory.path("none").c_str(), 1);
    EXPECT_EQ(output_of_make_graph(1),
              "Gatescope query completed and html page\n(" + directory.path(PAGE_1) +
                  ") was built, but Gatescope browser\n(" + directory.path("none") +
                  ") for region (east)\nas defined by the environmental variable "
                  "(ZUL_GATESCOPE_BROWSER) does not exist\n");
    EXPECT_FALSE(fs::exists(directory.path("shown")));
}

TEST_F(MakeGraph, PrefersAnEmptyBrowserVariable) {
    region.browser = browser_ending_with("0");
    setenv("ZUL_GATESCOPE_BROWSER", "", 1);
    EXPECT_THAT(output_of_make_graph(1),
                HasSubstr("\n() for region (east)\nas defined by the environmental variable"));
}

TEST_F(MakeGraph, StartsTheBrowserOnThePage) {
    region.browser = browser_ending_with("0");
    EXPECT_EQ(output_of_make_graph(1),
              "Graph (20260107_080905_Q01.html) built.. Displaying graph...\n");
    EXPECT_EQ(directory.read("shown"), directory.path(PAGE_1) + "\n");
}

TEST_F(MakeGraph, PrefersTheBrowserOfTheEnvironment) {
    region.browser = directory.path("none");
    setenv("ZUL_GATESCOPE_BROWSER", browser_ending_with("0").c_str(), 1);
    EXPECT_EQ(output_of_make_graph(1),
              "Graph (20260107_080905_Q01.html) built.. Displaying graph...\n");
    EXPECT_EQ(directory.read("shown"), directory.path(PAGE_1) + "\n");
}

TEST_F(MakeGraph, TakesAChangedBrowser) {
    region.browser = browser_ending_with("0");
    output_of_make_graph(1);
    region.browser.clear();
    EXPECT_THAT(output_of_make_graph(1), HasSubstr("no browser defined"));
}

TEST_F(MakeGraph, PassesAPathWithBlanksAsSeveralArguments) {
    fs::create_directory(directory.path("two  words"));
    region.results_dir = directory.path("two  words");
    region.browser = browser_ending_with("0");
    output_of_make_graph(1);
    EXPECT_EQ(directory.read("shown"),
              directory.path("two") + "\nwords/" + std::string(PAGE_1) + "\n");
}

TEST_F(MakeGraph, WarnsWithTheRawStatusOfABrowserThatFailsAtOnce) {
    region.browser = browser_ending_with("3");
    EXPECT_EQ(output_of_make_graph(1),
              "Graph (20260107_080905_Q01.html) built.. Displaying graph...\n"
              "Warning: return code=768 returned from " +
                  directory.path("my browser") + "...\n");
}

TEST_F(MakeGraph, WarnsIfTheBrowserCannotBeExecuted) {
    region.browser = region.ENTERPRIZE_PERMISSION_FILE;
    EXPECT_THAT(output_of_make_graph(1), HasSubstr("Warning: return code=32256 returned from " +
                                                   region.ENTERPRIZE_PERMISSION_FILE + "...\n"));
}

TEST_F(MakeGraph, IgnoresTheStatusOfABrowserThatRanLonger) {
    directory.write_program("used", "sleep 3\nexit 3\n");
    region.browser = directory.path("used");
    EXPECT_THAT(output_of_make_graph(1), Not(HasSubstr("Warning")));
}

/// A death test reads messages from standard error.
void redirect_output_to_standard_error() {
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

TEST_F(MakeGraph, GripesIfThePageCannotBeOpened) {
    region.results_dir = directory.path("nowhere");
    EXPECT_EXIT(
        {
            redirect_output_to_standard_error();
            make_graph(1);
        },
        ExitedWithCode(99),
        testing::Eq("gatescope: " + directory.path("nowhere/") + PAGE_1 +
                    ": No such file or directory\nCould not create/open results file (" +
                    directory.path("nowhere/") + PAGE_1 + ")\n\n"));
}

TEST_F(MakeGraph, GripesForAnUnknownQuery) {
    EXPECT_EXIT(
        {
            redirect_output_to_standard_error();
            make_graph(7);
        },
        ExitedWithCode(99),
        testing::Eq("Internal Error: Inform ZUL: Unexpected case in gatescope:Make_Graph\n\n"));
}

}  // namespace
}  // namespace gatescope
