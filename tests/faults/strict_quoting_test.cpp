#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

#include "base/run_identity.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "dialog/toolkit.h"
#include "faults/in_child.h"
#include "policy/file_chooser.h"
#include "policy/gatebits_file.h"
#include "support/scratch_directory.h"

namespace {

using Arguments = std::vector<std::string>;

/// One kind of dialog, with a text in every place that takes one.
struct Kind {
    const char* name;
    std::function<void(const std::string& text)> show;
    /// How many of its arguments are the text.
    int times;
};

void run_gripe(const std::string& text) {
    gripe(text);
}

const std::vector<Kind> KINDS = {
    {"gripe", run_gripe, 1},
    {"advise", advise, 1},
    {"advise_wait", advise_wait, 1},
    {"ask", [](const std::string& text) { ask(text, "no", "yes,no,abort"); }, 1},
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
    void SetUp() override {
        const std::string recorder = directory / "clearprompt";
        // Written under another name first: some dialogs are not waited for.
        write_file(recorder, "#!/bin/sh\nfor word in \"$@\"; do printf '%s\\0' \"$word\"; done >'" +
                                 (directory / "new") + "'\nmv '" + (directory / "new") + "' '" +
                                 recorded + "'\nexit 1\n");
        ASSERT_EQ(chmod(recorder.c_str(), 0755), 0);
    }

    /// What clearprompt received when `show` ran in a child of its own.
    Arguments received_by(const std::function<void()>& show, const char* strict) const {
        unlink(recorded.c_str());
        in_child([&] {
            ZUL_PREFER_GUI = 1;
            TEMP_DIR = temporary / "";
            setenv("PATH", ((directory / "") + ":/usr/bin:/bin").c_str(), 1);
            if (strict != nullptr) setenv("ZUL_GATESCOPE_STRICT_QUOTING", strict, 1);
            show();
        });
        for (int i = 0; i < 500 && !std::filesystem::exists(recorded); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        Arguments arguments;
        std::string rest = file_text(recorded);
        for (std::size_t end = 0; (end = rest.find('\0')) != std::string::npos;) {
            arguments.push_back(rest.substr(0, end));
            rest.erase(0, end + 1);
        }
        return arguments;
    }

    bool something_was_executed() const { return std::filesystem::exists(trace); }

    ScratchDirectory directory;
    ScratchDirectory temporary;
    const std::string recorded = directory / "recorded";
    const std::string trace = directory / "trace";
    /// Everything that a shell acts on, inside double quotes or after them.
    const std::string hostile = "$(touch " + trace + ") `touch " + trace + "` \"; touch " + trace +
                                "; \" $HOME ${HOME} \\ \\\\ \\\" \\$ \\` ' & | > < * ? ~ ! # %s\n";
};

TEST_F(StrictQuoting, EveryKindOfDialogReceivesEveryTextLetterForLetter) {
    for (const char* wish : {"yes", "YES", "Yes"}) {
        for (const Kind& kind : KINDS) {
            const Arguments got = received_by([&] { kind.show(hostile); }, wish);
            const auto whole = [&](const std::string& argument) {
                return argument == hostile || argument.starts_with(hostile + "\\n -- File has");
            };
            EXPECT_EQ(std::count_if(got.begin(), got.end(), whole), kind.times) << kind.name;
            EXPECT_FALSE(something_was_executed()) << kind.name;
        }
    }
}

TEST_F(StrictQuoting, FileDialogStartsInADirectoryOfAnyName) {
    const std::string name = "/x/" + hostile + "/";
    const Arguments got = received_by(
        [&] {
            TEMP_DIR = temporary / "";
            select_cb_file(name + "gatebits.txt", "");
        },
        "yes");
    EXPECT_NE(std::find(got.begin(), got.end(), name), got.end());
    EXPECT_FALSE(something_was_executed());
}

TEST_F(StrictQuoting, BackslashAndNStayAPairAndAskForNewline) {
    const Arguments got = received_by([] { advise_wait("one\\ntwo"); }, "yes");
    EXPECT_EQ(got, (Arguments{"yes_no", "-mask", "yes", "-def", "yes", "-pre", "-newline", "-pro",
                              "one\\ntwo"}));
}

TEST_F(StrictQuoting, WithoutItTheShellActsOnTheText) {
    for (const char* wish : {static_cast<const char*>(nullptr), "no", "1", "yes "}) {
        const Arguments got =
            received_by([&] { advise_wait("a $(echo b; touch " + trace + ") \\\\ c"); }, wish);
        ASSERT_FALSE(got.empty());
        EXPECT_EQ(got.back(), "a b \\ c");
        EXPECT_TRUE(something_was_executed());
        unlink(trace.c_str());
    }
}

TEST_F(StrictQuoting, WithoutItOrdinaryTextsComeThroughAllTheSame) {
    for (const Kind& kind : KINDS) {
        const std::string text = "Plain text, (brackets) & 'single quotes'\nand lines";
        EXPECT_EQ(received_by([&] { kind.show(text); }, nullptr),
                  received_by([&] { kind.show(text); }, "yes"))
            << kind.name;
    }
}

}  // namespace
