#include "dialog/prompts.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "dialog/toolkit.h"
#include "units/on_stage.h"

namespace gatescope {
namespace {

class Prompts : public OnStage {
  protected:
    /// The answer of a prompt after the operator typed `typed`.
    std::optional<std::string> answer_to(const std::string& typed) {
        region.types(typed);
        auto answer = prompt("Prompt:", "def");
        region.shown_so_far();
        return answer;
    }
    /// The answer of a multiple choice with `bytes` in its result file.
    std::optional<std::string> several(const std::string& bytes) {
        region.answers({.kind = "list", .outfile = bytes});
        auto picks = make_selection("Title", "a,b,c", MULTIPLE_CHOICE);
        region.shown_so_far();
        return picks;
    }
    void expect_no_temporary_files() { EXPECT_TRUE(region.files_in("tmp").empty()); }
};
using PromptsDeathTest = Prompts;

TEST_F(Prompts, PassTheDefault) {
    region.types("words");
    EXPECT_EQ(prompt("Input user:", "*"), "words");
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{prompted("Input user:", "*")});
    expect_no_temporary_files();
}

TEST_F(Prompts, PassNewlineForThePromptOnly) {
    region.types("x").types("x");
    prompt("one\\ntwo", "def");
    prompt("one", "d\\nef");
    EXPECT_EQ(region.shown_so_far().dialogs(),
              (Dialogs{prompted("one\\ntwo", "def"), prompted("one", "d\\nef")}));
}

TEST_F(Prompts, PassAnEmptyDefaultAsAnEmptyArgument) {
    region.types("x");
    prompt("one", "");
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{prompted("one", "")});
}

TEST_F(Prompts, ReturnWordsWithOneBlankBetweenThem) {
    EXPECT_EQ(answer_to("  two   words \n"), "two words");
    EXPECT_EQ(answer_to("a\nb\tc\r\n"), "a b c");
    EXPECT_EQ(answer_to(""), "");
    EXPECT_EQ(answer_to(" \n "), "");
    EXPECT_EQ(answer_to("$(x) `y` \"z\" \\n"), "$(x) `y` \"z\" \\n");
    EXPECT_EQ(answer_to(std::string("a\0b c", 5)), "a c");
    EXPECT_EQ(answer_to("\xff\xfe"), "\xff\xfe");
}

TEST_F(Prompts, ReturnLongAnswersWhole) {
    const std::string answer(100000, 'x');
    EXPECT_EQ(answer_to(answer), answer);
}

TEST_F(Prompts, ReturnAnEmptyAnswerWithoutAResultFile) {
    region.answers({.kind = "text", .status = 0});
    EXPECT_EQ(prompt("Prompt:", "def"), "");
    region.shown_so_far();
}

TEST_F(Prompts, ReturnNothingForEveryOtherStatus) {
    for (const int status : {1, 2, 255}) {
        region.answers({.kind = "text", .status = status, .outfile = "typed"});
        EXPECT_EQ(prompt("Prompt:", "def"), std::nullopt);
    }
    region.shown_so_far();
    expect_no_temporary_files();
}

TEST_F(Prompts, FromAFilePassTheDefaultUnchanged) {
    const std::string def = "line 1\nline \"2\" $(x)  \\n\n";
    region.types("new");
    EXPECT_EQ(prompt_from_file("Prompt:", def), "new");
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{prompted_from_file("Prompt:", def)});
    expect_no_temporary_files();
}

TEST_F(Prompts, FromAFileAppendToALeftoverFile) {
    region.write_file("tmp/gatewarden_prompt_prompt_" + GLOBAL_PID_STRING + "_.txt", "left ");
    region.types("x");
    prompt_from_file("Prompt\\n:", "new");
    EXPECT_EQ(region.shown_so_far().dialogs(),
              Dialogs{prompted_from_file("Prompt\\n:", "left new")});
    expect_no_temporary_files();
}

TEST_F(Prompts, FromAFileLeaveNoFilesAfterACancel) {
    region.cancels();
    EXPECT_EQ(prompt_from_file("Prompt:", "def"), std::nullopt);
    region.shown_so_far();
    expect_no_temporary_files();
}

TEST_F(Prompts, ShowAFileWithErrorsOrNoErrorsInItsTitle) {
    region.write_file("report", "line\n");
    region.closes_view().closes_view();
    show_file_with_clearprompt("Title", region.path("report"), false);
    show_file_with_clearprompt("Title", region.path("report"), true);
    const Dialogs dialogs = region.shown_so_far().dialogs();
    EXPECT_EQ(dialogs, (Dialogs{showed_file("Title", region.path("report"), "line\n", false),
                                showed_file("Title", region.path("report"), "line\n", true)}));
    EXPECT_EQ(dialogs.at(0).args.back(), "Title\\n -- File has NO errors --");
    EXPECT_EQ(dialogs.at(1).args.back(),
              "Title\\n -- File has one or more errors displayed near bottom --");
    expect_no_temporary_files();
}

TEST_F(Prompts, ShowAFileWithoutChangingIt) {
    region.write_file("report", "line\n");
    region.types("typed");
    show_file_with_clearprompt("Title", region.path("report"), false);
    region.shown_so_far();
    EXPECT_EQ(region.file("report"), "line\n");
}

TEST_F(Prompts, ReturnASinglePickAsListed) {
    region.operator_picks("A01 - Prune Log Files");
    EXPECT_EQ(make_selection("Pick (%s)", "A01 - Prune Log Files,A02 - x", SINGLE_CHOICE),
              "A01 - Prune Log Files");
    EXPECT_EQ(region.shown_so_far().dialogs(),
              Dialogs{listed("Pick (%s)", "A01 - Prune Log Files,A02 - x")});
    expect_no_temporary_files();
}

TEST_F(Prompts, ReturnNothingForACancelledList) {
    region.cancels().cancels();
    EXPECT_EQ(make_selection("Title", "a,b", SINGLE_CHOICE), std::nullopt);
    EXPECT_EQ(make_selection("Title", "a,b", MULTIPLE_CHOICE), std::nullopt);
    EXPECT_EQ(region.shown_so_far().dialogs(),
              (Dialogs{listed("Title", "a,b"), listed_for_several("Title", "a,b")}));
    expect_no_temporary_files();
}

TEST_F(Prompts, JoinSeveralPicksByCommas) {
    EXPECT_EQ(several("b - two\na - one\n"), "b - two,a - one");
    EXPECT_EQ(several("a"), "a");
    EXPECT_EQ(several("a\nb"), "a,b");
    EXPECT_EQ(several(""), "");
    EXPECT_EQ(several("\n"), "");
    EXPECT_EQ(several("a\n\n"), "a,");
    EXPECT_EQ(several("two  blanks \n"), "two  blanks ");
}

TEST_F(Prompts, AcceptPicksOf10001Bytes) {
    const std::string largest(10001, 'x');
    EXPECT_EQ(several(largest), largest);
    const std::string with_break = std::string(10000, 'x') + "\n";
    EXPECT_EQ(several(with_break), std::string(10000, 'x'));
}

TEST_F(PromptsDeathTest, GripeAboutPicksOf10002Bytes) {
    region.answers({.kind = "list", .outfile = std::string(10002, 'x')});
    EXPECT_GRIPE(make_selection("Title", "a", MULTIPLE_CHOICE),
                 "make_selection() selection excessively large exceeds 10001 bytes");
    region.shown_so_far();
}

TEST_F(PromptsDeathTest, GripeAboutPicksWithoutAResultFile) {
    region.answers({.kind = "list", .status = 0});
    EXPECT_GRIPE(make_selection("Title", "a", MULTIPLE_CHOICE),
                 "expected result file disappeared in make_selection()");
    region.answers({.kind = "list", .status = 0, .meanwhile = "rm tmp/*"});
    EXPECT_GRIPE(make_selection("Title", "a", MULTIPLE_CHOICE),
                 "expected result file disappeared in make_selection()");
    region.shown_so_far();
    expect_no_temporary_files();
}

TEST_F(Prompts, AreShownEvenWithoutDialogs) {
    ZUL_PREFER_GUI = 0;
    region.operator_picks("a").types("x");
    EXPECT_EQ(make_selection("Title", "a,b", SINGLE_CHOICE), "a");
    EXPECT_EQ(prompt("Prompt:", "def"), "x");
    EXPECT_EQ(region.shown_so_far().dialogs(),
              (Dialogs{listed("Title", "a,b"), prompted("Prompt:", "def")}));
}

TEST_F(Prompts, GetSystemRcDiscardsTheOutputAndReturnsTheStatus) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    std::fputs("before ", stdout);
    EXPECT_EQ(get_system_rc("echo lost; echo lost >&2; exit 3"), 3 * 256);
    std::fputs("after", stdout);
    EXPECT_EQ(get_system_rc("true"), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "before after");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    expect_no_temporary_files();
}

TEST_F(Prompts, GetSystemRcRedirectsTheOutputToATemporaryFile) {
    get_system_rc("ls " + TEMP_DIR + " >" + region.path("home") + "/listing");
    EXPECT_EQ(region.file("home/listing"),
              "gatewarden_temp_trash_file__" + GLOBAL_PID_STRING + ".txt\n");
}

TEST_F(Prompts, GetSystemRcRunsTheCommandEvenWithoutATemporaryFile) {
    TEMP_DIR = "/no/such/dir";
    testing::internal::CaptureStdout();
    EXPECT_EQ(get_system_rc("echo seen; exit 2"), 2 * 256);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Can't open file 'data'\nseen\n");
}

TEST(Lists, HaveNoCommaAtTheEnd) {
    EXPECT_EQ(as_list({}), "");
    EXPECT_EQ(as_list({"a"}), "a");
    EXPECT_EQ(as_list({"a", "", "b"}), "a,,b");
}

}  // namespace
}  // namespace gatescope
