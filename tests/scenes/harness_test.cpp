// Tests of the stage itself, with the shell in place of gatescope.

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "scenes/region.h"

namespace gatescope {
namespace {

Result run_script(Region& region, const std::string& script) {
    return region.run_program("/bin/sh", "sh", {"-c", script});
}

TEST(Harness, RecordsArgumentsUnchanged) {
    Region east = a_region();
    east.answers_no();
    const Result result =
        run_script(east, "clearprompt yes_no -mask 'yes,no' -def no -pre  -pro \"a\nb \\\"c\\\"\"");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.dialogs(), Dialogs{asked("a\nb \"c\"", "no", "yes,no")});
    EXPECT_EQ(result.calls.at(0).cwd + "/", east.path(""));
}

TEST(Harness, RecordsEveryByteValue) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += std::string("\\n\n\\") + static_cast<char>(byte);
    Region east = a_region();
    east.types(bytes);
    run_script(east, "clearprompt text -outfile \"$tmp/o\" -pro x; mv \"$tmp/o\" o");
    EXPECT_EQ(east.file("o"), bytes);
    std::erase(bytes, '\0');
    const Result result =
        east.run_program(east.path("bin/cleartool"), "cleartool", {bytes, "", " ", bytes + "\n"});
    EXPECT_EQ(result.calls_of("cleartool"), (std::vector<Args>{{bytes, "", " ", bytes + "\n"}}));
}

TEST(Harness, TakesAnswersInOrder) {
    Region east = a_region();
    east.answers_yes().types("some words").operator_picks("two").aborts().cancels();
    const Result result = run_script(
        east,
        "clearprompt yes_no -mask yes,no -pro 1; echo $?;"
        "clearprompt text -outfile \"$tmp/o\" -pro 2; echo $?; cat \"$tmp/o\"; echo;"
        "clearprompt list -outfile \"$tmp/o\" -items one,two -pro 3; echo $?; cat \"$tmp/o\"; echo;"
        "rm \"$tmp/o\";"
        "clearprompt yes_no -mask yes,abort -pro 4; echo $?;"
        "clearprompt file -outfile \"$tmp/o\" -pro 5; echo $?; ls \"$tmp\"");
    EXPECT_EQ(result.out, "0\n0\nsome words\n0\ntwo\n2\n1\n");
}

TEST(Harness, AnswersBoxesAndRecordsThemInOrder) {
    Region east = a_region();
    east.answers_yes();
    const Result result = run_script(
        east,
        "sh -c '(sleep 0.3; true) & clearprompt yes_no -mask yes -def yes -pre -pro first &'\n"
        "clearprompt yes_no -mask yes -def yes -pre -pro second\n"
        "clearprompt yes_no -mask yes,no,abort -def yes -pre -pro third\n"
        "sh -c 'clearprompt yes_no -mask abort -def abort -pre -pro last &'");
    EXPECT_EQ(result.dialogs(), (Dialogs{advised("first"), advised_and_waited("second"),
                                         asked("third"), griped("last")}));
}

TEST(Harness, ReturnsCheckerStatusesInOrderAndThenZero) {
    Region east = a_region();
    east.checker_ends_with({3, 0});
    const Result result = run_script(east,
                                     "gatewarden a -check; echo $?; gatewarden b -check; echo $?;"
                                     "gatewarden c -check; echo $?");
    EXPECT_EQ(result.out, "3\n0\n0\n");
    EXPECT_EQ(result.calls_of("gatewarden"),
              (std::vector<Args>{{"a", "-check"}, {"b", "-check"}, {"c", "-check"}}));
}

TEST(Harness, RecordsContentOfDfile) {
    Region east = a_region();
    east.closes_view();
    const Result result = run_script(east,
                                     "printf 'a\\0b\\n' > \"$tmp/x\"; clearprompt text -outfile "
                                     "\"$tmp/o\" -dfile \"$tmp/x\"; rm \"$tmp/x\" \"$tmp/o\"");
    ASSERT_EQ(result.dialogs().size(), 1u);
    EXPECT_EQ(result.dialogs().at(0).shown, std::string("a\0b\n", 4));
}

TEST(Harness, ReplacesProcessIdInNamesOfTemporaryFiles) {
    Region east = a_region();
    east.types("x");
    const Result result = run_script(
        east,
        "f=\"$tmp/gatewarden_prompt_result_$$_.txt\"; clearprompt text -prefer_gui -outfile \"$f\" "
        "-default d -newline -prompt 'q\\n'; rm \"$f\"");
    EXPECT_EQ(result.dialogs(), Dialogs{prompted("q\\n", "d")});
}

TEST(Harness, KeepsOrderOfOutputOfProgramAndChildren) {
    Region east = a_region();
    east.program_answers("cleartool", {.status = 0, .out = "from the child\n"});
    EXPECT_EQ(run_script(east, "echo before; cleartool -ver; echo after").out,
              "before\nfrom the child\nafter\n");
}

TEST(Harness, ReportsEndBySignal) {
    Region east = a_region();
    EXPECT_EQ(run_script(east, "kill -TERM $$").status, 128 + 15);
}

TEST(Harness, PassesOnlyTheScenesEnvironment) {
    Region east = a_region().with_env("ONE", "{stage}").without_env("CLEARCASE_USER");
    const Result result = run_script(east, "echo $ONE/$CLEARCASE_USER; env | wc -l");
    // PWD is the shell's own.
    EXPECT_EQ(result.out, east.path("\n") + "7\n");
}

TEST(Harness, RunsCommandWhileDialogIsOpen) {
    Region east = a_region();
    east.answers({.kind = "yes_no", .status = 1, .meanwhile = "rm gatebits.txt"});
    run_script(east, "clearprompt yes_no -mask yes,no -pro x");
    EXPECT_FALSE(east.has_file("gatebits.txt"));
}

TEST(Harness, StubbornDialogAnswersOnTerm) {
    Region east = a_region();
    east.answers({.outfile = "late", .delay_milliseconds = 60'000, .stubborn = true});
    const Result result =
        run_script(east,
                   "clearprompt text -outfile \"$tmp/o\" & pid=$!\n"
                   "until [ -s journal ]; do sleep 0.01; done\n"
                   "kill -USR1 $pid; kill -ALRM $pid; [ -s \"$tmp/o\" ] && echo early\n"
                   "kill -TERM $pid; wait $pid; echo $?; cat \"$tmp/o\"; rm \"$tmp/o\"");
    EXPECT_EQ(result.out, "0\nlate");
}

TEST(Harness, ReadsLinesAndFieldsOfTheGatebitsFile) {
    Region east = a_region().with_gatebits("#c\n\n  \n a;b;c\n#;\nd;;e;\n");
    EXPECT_EQ(east.line(1), " a;b;c");
    EXPECT_EQ(east.line(2), "d;;e;");
    EXPECT_EQ(east.line(3), "");
    EXPECT_EQ(east.field(1, 2), "b");
    EXPECT_EQ(east.field(1, 3), "");
    EXPECT_EQ(east.field(2, 3), "e");
}

// Faults that must fail a scene.

TEST(Harness, FailsSceneOnUnscriptedQuestion) {
    EXPECT_NONFATAL_FAILURE(
        {
            Region east = a_region();
            const Result result = run_script(east, "clearprompt yes_no -mask yes,no -pro x");
            if (result.status != 2) ADD_FAILURE() << "not answered with abort";
        },
        "the scene has no answer for this dialog");
}

TEST(Harness, FailsSceneOnUnusedAnswer) {
    EXPECT_NONFATAL_FAILURE(
        {
            Region east = a_region();
            east.answers_yes();
            run_script(east, "clearprompt yes_no -mask yes -pro x");
        },
        "no dialog used the answer");
}

TEST(Harness, FailsSceneOnAnswerToOtherKindOfDialog) {
    EXPECT_NONFATAL_FAILURE(
        {
            Region east = a_region();
            east.types("x");
            run_script(east, "clearprompt yes_no -mask yes,no -pro x");
        },
        "a yes_no dialog came where the scene answers a text dialog");
}

TEST(Harness, FailsSceneOnPickNotOffered) {
    EXPECT_NONFATAL_FAILURE(
        {
            Region east = a_region();
            east.operator_picks("three");
            run_script(east, "clearprompt list -outfile \"$tmp/o\" -items one,two -pro x");
        },
        "the list does not offer the pick 'three'");
}

TEST(Harness, FailsSceneOnTemporaryFileLeftBehind) {
    EXPECT_NONFATAL_FAILURE(
        {
            Region east = a_region();
            run_script(east, "touch \"$tmp/left\"");
        },
        "temporary files were left behind");
}

}  // namespace
}  // namespace gatescope
