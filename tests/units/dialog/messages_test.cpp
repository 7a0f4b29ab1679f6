#include "dialog/messages.h"

#include <gtest/gtest.h>

#include "dialog/clearprompt.h"
#include "units/on_stage.h"

namespace gatescope {
namespace {

using Messages = OnStage;
using MessagesDeathTest = OnStage;

class MessagesWithoutDialogs : public OnStage {
  protected:
    MessagesWithoutDialogs() { ZUL_PREFER_GUI = 0; }
    /// The standard output of `act`.
    template <typename Act>
    static std::string printed(Act act) {
        testing::internal::CaptureStdout();
        act();
        return testing::internal::GetCapturedStdout();
    }
};

TEST_F(Messages, AskShowsAllThreeButtonsByDefault) {
    region.answers_yes();
    EXPECT_EQ(ask("Sure?"), Answer::YES);
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{asked("Sure?", "yes", "yes,no,abort")});
}

TEST_F(Messages, AskPassesMaskAndDefaultOn) {
    region.answers_no();
    EXPECT_EQ(ask("Sure?", Answer::NO, Buttons::YES_NO), Answer::NO);
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{asked("Sure?", "no", "yes,no")});
}

TEST_F(Messages, AskHasAWordForEachAnswerAndEachSetOfButtons) {
    const std::pair<Answer, const char*> answers[] = {
        {Answer::YES, "yes"}, {Answer::NO, "no"}, {Answer::ABORT, "abort"}};
    for (const auto& [def, word] : answers) {
        region.answers_yes();
        ask("Sure?", def);
        EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{asked("Sure?", word, "yes,no,abort")});
    }
    const std::pair<Buttons, const char*> several[] = {{Buttons::YES_NO, "yes,no"},
                                                       {Buttons::YES_ABORT, "yes,abort"},
                                                       {Buttons::YES_NO_ABORT, "yes,no,abort"}};
    for (const auto& [buttons, words] : several) {
        region.answers_yes();
        ask("Sure?", Answer::YES, buttons);
        EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{asked("Sure?", "yes", words)});
    }
    const std::pair<Buttons, const char*> single[] = {
        {Buttons::YES, "yes"}, {Buttons::NO, "no"}, {Buttons::ABORT, "abort"}};
    for (const auto& [button, word] : single) {
        ask("Sure?", Answer::YES, button);
        EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{asked("Sure?", "yes", word)});
    }
}

TEST_F(Messages, AskReturnsAbortForEveryOtherStatus) {
    for (const int status : {2, 3, 10, 99, 126, 127, 255}) {
        region.answers({.kind = "yes_no", .status = status});
        EXPECT_EQ(ask("Sure?", Answer::YES, Buttons::YES_NO), Answer::ABORT) << status;
    }
    region.shown_so_far();
}

TEST_F(Messages, AskReturnsAbortWithoutClearprompt) {
    setenv("PATH", "/nowhere", 1);
    EXPECT_EQ(ask("Sure?", Answer::YES, Buttons::YES_NO), Answer::ABORT);
    region.enter();
}

TEST_F(Messages, AdviseDoesNotWait) {
    advise("Take note.");
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{advised("Take note.")});
}

TEST_F(Messages, AdviseWaitsForARemoteClient) {
    ZUL_REMOTE_CLIENT_USER = 1;
    advise("Take note.");
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{advised_and_waited("Take note.")});
}

TEST_F(Messages, AdviseWaitWaits) {
    advise_wait("Take note.");
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{advised_and_waited("Take note.")});
}

TEST_F(Messages, PassNewlineForBackslashAndNOnly) {
    advise_wait("one\\ntwo");
    advise_wait("one\ntwo");
    const Dialogs dialogs = region.shown_so_far().dialogs();
    EXPECT_EQ(dialogs, (Dialogs{advised_and_waited("one\\ntwo"), advised_and_waited("one\ntwo")}));
    EXPECT_EQ(dialogs.at(0).args, (Args{"yes_no", "-mask", "yes", "-def", "yes", "-pre", "-newline",
                                        "-pro", "one\\ntwo"}));
    EXPECT_EQ(dialogs.at(1).args,
              (Args{"yes_no", "-mask", "yes", "-def", "yes", "-pre", "-pro", "one\ntwo"}));
}

TEST_F(Messages, QuotesInTheTextActInTheShell) {
    advise_wait("say \"two words\"");
    EXPECT_EQ(region.shown_so_far().dialogs().at(0).args,
              (Args{"yes_no", "-mask", "yes", "-def", "yes", "-pre", "-pro", "say two", "words"}));
}

TEST_F(Messages, TextEndsAtANulButTheCommandLineIsComplete) {
    advise_wait(std::string("kept\0lost", 9));
    region.answers_yes();
    ask(std::string("kept\0lost", 9), Answer::YES, Buttons::YES_NO);
    EXPECT_EQ(region.shown_so_far().dialogs(),
              (Dialogs{advised_and_waited("kept"), asked("kept", "yes", "yes,no")}));
}

TEST_F(Messages, ShowLongTextsWhole) {
    const std::string text(20000, 'x');
    advise_wait(text);
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{advised_and_waited(text)});
}

TEST_F(MessagesDeathTest, GripeUncodedNamesThePlace) {
    EXPECT_GRIPE(gripe_uncoded("here"),
                 "Internal Error: Inform ZUL: Unexpected case in gatescope:here\n");
}

TEST_F(MessagesDeathTest, GripePrintsItsMessageAsAFormatWithoutArguments) {
    EXPECT_GRIPE(gripe("100% of 50%% %s %n"), "100% of 50% %s %n");
}

TEST_F(MessagesWithoutDialogs, ArePrinted) {
    EXPECT_EQ(printed([] { advise("one"); }), "one\n");
    EXPECT_EQ(printed([] { advise_wait("two\\n"); }), "two\\n\n");
    EXPECT_TRUE(region.shown_so_far().dialogs().empty());
}

TEST_F(MessagesWithoutDialogs, AskAcceptsTheDefaultOfOneButton) {
    EXPECT_EQ(printed([] { EXPECT_EQ(ask("Sure?", Answer::NO, Buttons::NO), Answer::NO); }),
              "Sure?\n[no] accepted\n");
    EXPECT_EQ(printed([] { EXPECT_EQ(ask("Sure?", Answer::YES, Buttons::YES), Answer::YES); }),
              "Sure?\n[yes] accepted\n");
    EXPECT_EQ(
        printed([] { EXPECT_EQ(ask("Sure?", Answer::ABORT, Buttons::ABORT), Answer::ABORT); }),
        "Sure?\n[abort] accepted\n");
    EXPECT_TRUE(region.shown_so_far().dialogs().empty());
}

TEST_F(MessagesWithoutDialogs, AskStillShowsADialogWithSeveralButtons) {
    region.answers_no();
    EXPECT_EQ(printed([] { EXPECT_EQ(ask("Sure?", Answer::YES, Buttons::YES_NO), Answer::NO); }),
              "");
    EXPECT_EQ(region.shown_so_far().dialogs(), Dialogs{asked("Sure?", "yes", "yes,no")});
}

TEST_F(MessagesWithoutDialogs, PrintTextAsAFormatWithoutArguments) {
    EXPECT_EQ(printed([] { print_stdout("100%"); }), "100%");
    EXPECT_EQ(printed([] { print_stdout("%%%d%%%"); }), "%%d%%");
    EXPECT_EQ(printed([] { print_stdout("%s%n%*d\n"); }), "%s%n%*d\n");
    EXPECT_EQ(printed([] { print_stdout(std::string("a\0b", 3)); }), "a");
}

TEST(Quoting, EscapesBackslashesOnlyByDefault) {
    EXPECT_EQ(quoted("a \"b\" $c `d` \\"), "\"a \"b\" $c `d` \\\\\"");
    EXPECT_EQ(quoted(std::string("a\0b", 3)), "\"a\"");
}

TEST(Quoting, EscapesAllShellCharactersWhenStrict) {
    setenv("ZUL_GATESCOPE_STRICT_QUOTING", "yEs", 1);
    EXPECT_EQ(quoted("a \"b\" $c `d` \\n 'e' !"), "\"a \\\"b\\\" \\$c \\`d\\` \\\\n 'e' !\"");
    setenv("ZUL_GATESCOPE_STRICT_QUOTING", "y", 1);
    EXPECT_EQ(quoted("$c"), "\"$c\"");
    unsetenv("ZUL_GATESCOPE_STRICT_QUOTING");
}

TEST(Quoting, AddsTheNewlineOptionForBackslashAndNOnly) {
    EXPECT_EQ(newline_option("a\\nb"), "-newline");
    EXPECT_EQ(newline_option("a\nb"), " ");
    EXPECT_EQ(newline_option("a\\"), " ");
    EXPECT_EQ(newline_option(std::string("a\0\\n", 4)), " ");
}

}  // namespace
}  // namespace gatescope
