#include "base/temporary_files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>

#include "base/process_end.h"
#include "base/run_identity.h"
#include "dialog/answer_file.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "dialog/toolkit.h"
#include "faults/append_only.h"
#include "faults/in_child.h"
#include "messages/startup_texts.h"
#include "policy/gatebits_file.h"
#include "support/scratch_directory.h"

namespace {

using Names = std::set<std::string>;

constexpr char PRECIOUS[] = "precious\n";
constexpr char GATEBITS[] = "gatewarden;;;east;\n;;O;\n;;\n";
constexpr char CHANGED[] = "gatewarden;;;east;\n;;S;\n;;\n";

/// A hostile directory for temporary files, a clearprompt that answers "answer", and a file of
/// somebody's that must not be touched.
class TemporaryFiles : public testing::Test {
  protected:
    void SetUp() override {
        write_file(precious, PRECIOUS);
        write_file(directory / "gatebits", GATEBITS);
        const std::string program = directory / "clearprompt";
        write_file(program,
                   "#!/bin/sh\nwhile [ $# -gt 0 ]; do\n"
                   "[ \"$1\" = -outfile ] && { stat -c %a \"$2\" >" +
                       (directory / "mode") +
                       "; echo answer >\"$2\"; }\n"
                       "[ \"$1\" = -dfile ] && cat \"$2\" >" +
                       (directory / "shown") + "\nshift\ndone\n");
        ASSERT_EQ(chmod(program.c_str(), 0755), 0);
    }

    Ended run(const std::function<void()>& body) const {
        return in_child([&] {
            setenv("PATH", ((directory / "") + ":/usr/bin:/bin").c_str(), 1);
            TEMP_DIR = temporary / "";
            GLOBAL_PID_STRING = "77";
            body();
        });
    }

    /// Whatever may be planted under a name: every kind of link, and a file.
    void with_everything_planted_at(const std::string& name, const std::function<void()>& look) {
        const std::string path = temporary / name;
        const std::function<int()> plants[] = {
            [&] { return symlink(precious.c_str(), path.c_str()); },
            [&] { return link(precious.c_str(), path.c_str()); },
            [&] { return symlink((directory / "nowhere").c_str(), path.c_str()); },
            [&] { return mkfifo(path.c_str(), 0666); },
            [&] {
                write_file(path, "planted");
                return 0;
            },
        };
        for (const auto& plant : plants) {
            ASSERT_EQ(plant(), 0);
            look();
            EXPECT_EQ(file_text(precious), PRECIOUS);
            EXPECT_FALSE(std::filesystem::exists(directory / "nowhere"));
            std::filesystem::remove(path);
        }
    }

    ScratchDirectory directory;
    ScratchDirectory temporary;
    const std::string precious = directory / "precious";
};

TEST_F(TemporaryFiles, PlantedUnderAnAnswersNameDoesNoHarm) {
    with_everything_planted_at("gatewarden_prompt_result_77_.txt", [&] {
        const Ended ended = run([] { std::fputs(prompt("text", "").value().c_str(), stdout); });
        EXPECT_EQ(ended.said, "answer");
        EXPECT_EQ(temporary.names(), Names());
    });
}

TEST_F(TemporaryFiles, PlantedUnderTheScratchFilesNameDoesNoHarm) {
    with_everything_planted_at("t_file_gatescope_77.txt", [&] {
        write_file(directory / "gatebits", GATEBITS);
        EXPECT_EQ(run([&] { set_a_field(directory / "gatebits", {2, 3, "S"}); }).status, 0);
        EXPECT_EQ(file_text(directory / "gatebits"), CHANGED);
        EXPECT_EQ(temporary.names(), Names());
    });
}

TEST_F(TemporaryFiles, PlantedUnderADefaultsNameIsNeitherWrittenNorRemoved) {
    for (const bool symbolic : {true, false}) {
        const std::string path = temporary / "gatewarden_prompt_prompt_77_.txt";
        ASSERT_EQ(symbolic ? symlink(precious.c_str(), path.c_str())
                           : link(precious.c_str(), path.c_str()),
                  0);
        const Ended ended = run([] { prompt_from_file("text", "default"); });
        EXPECT_EQ(ended.status, 99);
        EXPECT_EQ(ended.said, std::string(CANNOT_CREATE_TEMP_FILE) + "\n");
        EXPECT_EQ(file_text(precious), PRECIOUS);
        EXPECT_EQ(temporary.names(), (Names{"gatewarden_prompt_prompt_77_.txt"}));
        unlink(path.c_str());
    }
}

TEST_F(TemporaryFiles, PipeUnderADefaultsNameHangsNothing) {
    for (const bool has_a_reader : {false, true}) {
        const std::string path = temporary / "gatewarden_prompt_prompt_77_.txt";
        ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
        const int reader =
            has_a_reader ? open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC) : -1;
        const Ended ended = run([] { prompt_from_file("text", "default"); });
        EXPECT_EQ(ended.status, 99);
        EXPECT_EQ(ended.said, std::string(CANNOT_CREATE_TEMP_FILE) + "\n");
        if (reader != -1) close(reader);
        unlink(path.c_str());
    }
}

TEST_F(TemporaryFiles, LeftoverDefaultIsAddedToAndThenGone) {
    write_file(temporary / "gatewarden_prompt_prompt_77_.txt", "left over, ");
    EXPECT_EQ(run([] { prompt_from_file("text", "default"); }).status, 0);
    EXPECT_EQ(file_text(directory / "shown"), "left over, default");
    EXPECT_EQ(temporary.names(), Names());
}

TEST_F(TemporaryFiles, DirectoryUnderAnAnswersNameIsAnError) {
    std::filesystem::create_directory(temporary / "gatewarden_prompt_result_77_.txt");
    const Ended ended = run([] { prompt("text", ""); });
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(ended.said, std::string(CANNOT_CREATE_TEMP_FILE) + "\n");
}

TEST_F(TemporaryFiles, NobodyElseMayReadAnAnswer) {
    EXPECT_EQ(run([] {
                  umask(0);
                  prompt("text", "");
              }).status,
              0);
    EXPECT_EQ(file_text(directory / "mode"), "600\n");
}

TEST_F(TemporaryFiles, DirectoryThatKeepsEveryFileGetsNone) {
    const AppendOnly kept(temporary / "");
    if (!kept.is_set())
        GTEST_SKIP() << "needs root, and a file system with append-only directories";
    EXPECT_EQ(run([] { prompt("text", ""); }).said, std::string(CANNOT_CREATE_TEMP_FILE) + "\n");
    EXPECT_EQ(run([] { prompt_from_file("text", ""); }).said,
              std::string(CANNOT_CREATE_TEMP_FILE) + "\n");
    EXPECT_EQ(run([] { make_selection("title", "a,b", MULTIPLE_CHOICE); }).said,
              std::string(CANNOT_CREATE_TEMP_FILE) + "\n");
    EXPECT_EQ(temporary.names(), Names());
}

TEST_F(TemporaryFiles, ErrorsLeaveNoneBehind) {
    const Ended ended = run([] {
        const AnswerFile answer(make_tfile("one", "two", "three"));
        create_temporary_file(t_file_name());
        gripe("over");
    });
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(temporary.names(), Names());
}

TEST_F(TemporaryFiles, DialogThatWroteNothingIsAnEmptyAnswer) {
    write_file(directory / "clearprompt", "#!/bin/sh\nexit 0\n");
    const Ended ended =
        run([] { std::fputs(("(" + prompt("text", "").value() + ")").c_str(), stdout); });
    EXPECT_EQ(ended.said, "()");
}

TEST_F(TemporaryFiles, SeveralPicksThatWereNeverWrittenAreAnError) {
    write_file(directory / "clearprompt", "#!/bin/sh\nexit 0\n");
    EXPECT_EQ(run([] { make_selection("title", "a,b", MULTIPLE_CHOICE); }).status, 99);
    // An empty answer is an answer.
    write_file(
        directory / "clearprompt",
        "#!/bin/sh\nwhile [ $# -gt 0 ]; do [ \"$1\" = -outfile ] && : >\"$2\"; shift; done\n");
    EXPECT_EQ(run([] { make_selection("title", "a,b", MULTIPLE_CHOICE); }).status, 0);
}

}  // namespace
