#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <vector>

#include "base/run_identity.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "dialog/toolkit.h"
#include "faults/in_child.h"
#include "policy/file_chooser.h"
#include "policy/gatebits_file.h"
#include "scenes/region.h"

namespace gatescope {
namespace {

/// One kind of dialog, with a text in every place that takes one.
struct Kind {
    const char* name;
    std::function<void(const std::string& text)> show;
    /// The number of its arguments that are the text.
    int times;
    /// Whether it is a box with one button.
    bool is_box = false;
};

void run_gripe(const std::string& text) {
    gripe(text);
}

const std::vector<Kind> KINDS = {
    {"gripe", run_gripe, 1, true},
    {"advise", advise, 1, true},
    {"advise_wait", advise_wait, 1, true},
    {"ask", [](const std::string& text) { ask(text, Answer::NO); }, 1},
    {"prompt", [](const std::string& text) { prompt(text, text); }, 2},
    {"prompt_from_file", [](const std::string& text) { prompt_from_file(text, text); }, 1},
    {"show_file", [](const std::string& text) { show_file_with_clearprompt(text, text, false); },
     2},
    {"single choice", [](const std::string& text) { make_selection(text, text, SINGLE_CHOICE); },
     2},
    {"several choices",
     [](const std::string& text) { make_selection(text, text, MULTIPLE_CHOICE); }, 2},
};

class StrictQuoting : public testing::Test {
  protected:
    StrictQuoting() { region.enter(); }

    /// The arguments of clearprompt when `show` runs in a child process. Dialogs other than boxes
    /// are cancelled.
    Args received_by(const std::function<void()>& show, const char* strict, bool is_box = false) {
        if (!is_box) region.cancels();
        in_child([&] {
            ZUL_PREFER_GUI = 1;
            TEMP_DIR = region.temporary_directory() + "/";
            if (strict != nullptr) setenv("ZUL_GATESCOPE_STRICT_QUOTING", strict, 1);
            show();
        });
        const std::vector<Args> calls = region.shown_so_far().calls_of("clearprompt");
        EXPECT_EQ(calls.size(), 1u);
        return calls.empty() ? Args() : calls.front();
    }
    Args received_by(const Kind& kind, const std::string& text, const char* strict) {
        return received_by([&] { kind.show(text); }, strict, kind.is_box);
    }

    bool was_executed() const { return std::filesystem::exists(trace); }

    Region region = a_region();
    const std::string trace = region.path("trace");
    /// Everything that a shell expands, inside double quotes or after them.
    const std::string hostile = "$(touch " + trace + ") `touch " + trace + "` \"; touch " + trace +
                                "; \" $HOME ${HOME} \\ \\\\ \\\" \\$ \\` ' & | > < * ? ~ ! # %s\n";
};

TEST_F(StrictQuoting, PassesEveryTextUnchangedToEveryKindOfDialog) {
    for (const char* value : {"yes", "YES", "Yes"}) {
        for (const Kind& kind : KINDS) {
            const Args got = received_by(kind, hostile, value);
            const auto is_whole = [&](const std::string& argument) {
                return argument == hostile || argument.starts_with(hostile + "\\n -- File has");
            };
            EXPECT_EQ(std::count_if(got.begin(), got.end(), is_whole), kind.times) << kind.name;
            EXPECT_FALSE(was_executed()) << kind.name;
        }
    }
}

TEST_F(StrictQuoting, PassesDirectoryOfFileDialogUnchanged) {
    const std::string name = "/x/" + hostile + "/";
    const Args got = received_by([&] { select_cb_file(name + "gatebits.txt", ""); }, "yes");
    EXPECT_NE(std::find(got.begin(), got.end(), name), got.end());
    EXPECT_FALSE(was_executed());
}

TEST_F(StrictQuoting, PassesBackslashNUnchangedWithNewlineOption) {
    const Args got = received_by([] { advise_wait("one\\ntwo"); }, "yes", true);
    EXPECT_EQ(got, (Args{"yes_no", "-mask", "yes", "-def", "yes", "-pre", "-newline", "-pro",
                         "one\\ntwo"}));
}

TEST_F(StrictQuoting, ShellExpandsTextWhenOff) {
    for (const char* value : {static_cast<const char*>(nullptr), "no", "1", "yes "}) {
        const Args got = received_by(
            [&] { advise_wait("a $(echo b; touch " + trace + ") \\\\ c"); }, value, true);
        ASSERT_FALSE(got.empty());
        EXPECT_EQ(got.back(), "a b \\\\ c");
        EXPECT_TRUE(was_executed());
        unlink(trace.c_str());
    }
}

TEST_F(StrictQuoting, PassesBackslashesUnchangedWhenOff) {
    for (const std::string text : {R"(\\machine\new \\\ '\' a \)", R"(\)", R"(C:\)", R"(\\)"}) {
        for (const Kind& kind : KINDS) {
            const Args got = received_by(kind, text, nullptr);
            const auto is_whole = [&](const std::string& argument) {
                return argument == text || argument.starts_with(text + "\\n -- File has");
            };
            EXPECT_EQ(std::count_if(got.begin(), got.end(), is_whole), kind.times)
                << kind.name << " of " << text;
        }
    }
}

TEST_F(StrictQuoting, PassesOrdinaryTextsUnchangedWhenOff) {
    for (const Kind& kind : KINDS) {
        const std::string text = "Plain text, (brackets) & 'single quotes'\nand lines";
        EXPECT_EQ(received_by(kind, text, nullptr), received_by(kind, text, "yes")) << kind.name;
    }
}

}  // namespace
}  // namespace gatescope
