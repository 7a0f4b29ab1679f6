#include "base/temporary_files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>

#include "base/run_identity.h"
#include "dialog/answer_file.h"
#include "dialog/messages.h"
#include "dialog/process_end.h"
#include "dialog/prompts.h"
#include "dialog/toolkit.h"
#include "faults/append_only.h"
#include "faults/in_child.h"
#include "messages/startup_texts.h"
#include "policy/gatebits_file.h"
#include "scenes/region.h"
#include "support/needs.h"

namespace gatescope {
namespace {

using FileNames = std::vector<std::string>;

constexpr char PRECIOUS[] = "precious\n";
constexpr char GATEBITS[] = "gatewarden;;;east;\n;;O;\n;;\n";
constexpr char CHANGED[] = "gatewarden;;;east;\n;;S;\n;;\n";

/// A directory for temporary files in which names are planted, and a file that must stay unchanged.
class TemporaryFiles : public testing::Test {
  protected:
    TemporaryFiles() { region.enter(); }

    Ended run(const std::function<void()>& body) {
        Ended ended = in_child([&] {
            TEMP_DIR = temporary + "/";
            GLOBAL_PID_STRING = "77";
            body();
        });
        dialogs = region.shown_so_far().dialogs();
        return ended;
    }
    std::vector<std::string> left() const { return region.files_in("tmp"); }

    /// Calls `check` with each kind of link, a FIFO and a file planted under `name`.
    void with_each_kind_planted(const std::string& name, const std::function<void()>& check) {
        const std::string path = temporary + "/" + name;
        const std::function<int()> plants[] = {
            [&] { return symlink(precious.c_str(), path.c_str()); },
            [&] { return link(precious.c_str(), path.c_str()); },
            [&] { return symlink((region.path("nowhere")).c_str(), path.c_str()); },
            [&] { return mkfifo(path.c_str(), 0666); },
            [&] {
                write_file(path, "planted");
                return 0;
            },
        };
        for (const auto& plant : plants) {
            ASSERT_EQ(plant(), 0);
            check();
            EXPECT_EQ(file_text(precious), PRECIOUS);
            EXPECT_FALSE(std::filesystem::exists(region.path("nowhere")));
            std::filesystem::remove(path);
        }
    }

    Region region = a_region().with_gatebits(GATEBITS).with_file("precious", PRECIOUS);
    const std::string temporary = region.temporary_directory();
    const std::string precious = region.path("precious");
    /// The dialogs of the last run.
    Dialogs dialogs;
};

TEST_F(TemporaryFiles, ReplaceFilePlantedUnderNameOfAnswer) {
    with_each_kind_planted("gatewarden_prompt_result_77_.txt", [&] {
        region.types("answer\n");
        const Ended ended = run([] { std::fputs(prompt("text", "").value().c_str(), stdout); });
        EXPECT_EQ(ended.said, "answer");
        EXPECT_EQ(left(), FileNames());
    });
}

TEST_F(TemporaryFiles, ReplaceFilePlantedUnderNameOfScratchFile) {
    with_each_kind_planted("t_file_gatescope_77.txt", [&] {
        region.write_file("gatebits.txt", GATEBITS);
        EXPECT_EQ(run([&] {
                      change(region.gatebits_path(), {Gatebits(std::string()), no_part},
                             [](const Gatebits& now) {
                                 return set_a_field(now, {2, 3, "S"});
                             },
                             {});
                  }).status,
                  0);
        EXPECT_EQ(region.gatebits(), CHANGED);
        EXPECT_EQ(left(), FileNames());
    });
}

TEST_F(TemporaryFiles, RefuseLinkUnderNameOfDefault) {
    for (const bool symbolic : {true, false}) {
        const std::string path = temporary + "/gatewarden_prompt_prompt_77_.txt";
        ASSERT_EQ(symbolic ? symlink(precious.c_str(), path.c_str())
                           : link(precious.c_str(), path.c_str()),
                  0);
        const Ended ended = run([] { prompt_from_file("text", "default"); });
        EXPECT_EQ(ended.status, 99);
        EXPECT_EQ(ended.said, std::string(CANNOT_CREATE_TEMP_FILE) + "\n");
        EXPECT_EQ(file_text(precious), PRECIOUS);
        EXPECT_EQ(left(), (FileNames{"gatewarden_prompt_prompt_77_.txt"}));
        unlink(path.c_str());
    }
}

TEST_F(TemporaryFiles, RefuseFifoUnderNameOfDefault) {
    for (const bool has_a_reader : {false, true}) {
        const std::string path = temporary + "/gatewarden_prompt_prompt_77_.txt";
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

TEST_F(TemporaryFiles, AppendToLeftoverDefaultAndRemoveIt) {
    write_file(temporary + "/gatewarden_prompt_prompt_77_.txt", "left over, ");
    region.types("answer\n");
    EXPECT_EQ(run([] { prompt_from_file("text", "default"); }).status, 0);
    EXPECT_EQ(dialogs.at(0).shown, "left over, default");
    EXPECT_EQ(left(), FileNames());
}

TEST_F(TemporaryFiles, EndWithErrorWhenAnswerFileIsADirectory) {
    std::filesystem::create_directory(temporary + "/gatewarden_prompt_result_77_.txt");
    const Ended ended = run([] { prompt("text", ""); });
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(ended.said, std::string(CANNOT_CREATE_TEMP_FILE) + "\n");
}

TEST_F(TemporaryFiles, AnswersHaveMode0600) {
    region.answers({.outfile = "answer\n",
                    .meanwhile = "stat -c %a tmp/gatewarden_prompt_result_77_.txt >mode"});
    EXPECT_EQ(run([] {
                  umask(0);
                  prompt("text", "");
              }).status,
              0);
    EXPECT_EQ(region.file("mode"), "600\n");
}

TEST_F(TemporaryFiles, AreNotCreatedInAppendOnlyDirectory) {
    NEEDS(GATESCOPE_HAS_STATX, "statx");
    const AppendOnly kept(temporary + "/");
    if (!kept.is_set())
        GTEST_SKIP() << "needs root, and a file system with append-only directories";
    EXPECT_EQ(run([] { prompt("text", ""); }).said, std::string(CANNOT_CREATE_TEMP_FILE) + "\n");
    EXPECT_EQ(run([] { prompt_from_file("text", ""); }).said,
              std::string(CANNOT_CREATE_TEMP_FILE) + "\n");
    EXPECT_EQ(run([] { make_selection("title", "a,b", MULTIPLE_CHOICE); }).said,
              std::string(CANNOT_CREATE_TEMP_FILE) + "\n");
    EXPECT_EQ(left(), FileNames());
}

TEST_F(TemporaryFiles, AreRemovedOnErrors) {
    const Ended ended = run([] {
        const AnswerFile answer(make_tfile("one", "two", "three"));
        create_temporary_file(t_file_name());
        gripe("over");
    });
    EXPECT_EQ(ended.status, 99);
    EXPECT_EQ(left(), FileNames());
}

TEST_F(TemporaryFiles, TakeMissingAnswerFileAsEmptyAnswer) {
    region.answers({.status = 0});
    const Ended ended =
        run([] { std::fputs(("(" + prompt("text", "").value() + ")").c_str(), stdout); });
    EXPECT_EQ(ended.said, "()");
}

TEST_F(TemporaryFiles, EndWithErrorWhenSeveralPicksAreNotWritten) {
    region.answers({.status = 0});
    EXPECT_EQ(run([] { make_selection("title", "a,b", MULTIPLE_CHOICE); }).status, 99);
    // An empty answer is valid.
    region.answers({.outfile = ""});
    EXPECT_EQ(run([] { make_selection("title", "a,b", MULTIPLE_CHOICE); }).status, 0);
}

}  // namespace
}  // namespace gatescope
