// Replaces clearprompt, cleartool, the checker and the browser on a stage: it is linked there under
// each of these names, records its calls, and answers from the scene's script.

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "scenes/journal.h"
#include "support/scratch_directory.h"

namespace gatescope {

namespace fs = std::filesystem;

namespace {

/// The exit status of clearprompt for abort: the answer to an unscripted question.
constexpr int ABORT_STATUS = 2;

/// The value after an option, if the option was given.
std::optional<std::string> option(const RecordedCall& record, const std::string& name) {
    const auto found = std::find(record.args.begin(), record.args.end(), name);
    if (found == record.args.end() || found + 1 == record.args.end()) return std::nullopt;
    return *(found + 1);
}

/// The shell starts background processes with interrupts ignored.
bool is_waited_for() {
    struct sigaction action = {};
    sigaction(SIGINT, nullptr, &action);
    return action.sa_handler != SIG_IGN;
}

bool is_box_with_one_button(const RecordedCall& record) {
    return record.program == "clearprompt" && !record.args.empty() &&
           record.args.front() == "yes_no" &&
           option(record, "-mask").value_or(",").find(',') == std::string::npos;
}

/// Removes the next scripted answer of `queue` under the stage's lock, and returns it.
std::optional<ScriptedAnswer> next_answer(const fs::path& stage, const std::string& queue) {
    const int lock = open((stage / STAGE_LOCK).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    flock(lock, LOCK_EX);
    std::vector<fs::path> files;
    if (fs::exists(stage / STAGE_SCRIPT / queue)) {
        for (const auto& entry : fs::directory_iterator(stage / STAGE_SCRIPT / queue)) {
            files.push_back(entry.path());
        }
    }
    std::optional<ScriptedAnswer> answer;
    if (!files.empty()) {
        const fs::path first = *std::min_element(files.begin(), files.end());
        const std::string text = file_text(first);
        std::string_view rest = text;
        answer = take<ScriptedAnswer>(rest);
        fs::remove(first);
    }
    close(lock);
    return answer;
}

bool is_offered(const RecordedCall& record, const std::string& pick) {
    const std::string items = "," + option(record, "-items").value_or("") + ",";
    return items.find("," + pick + ",") != std::string::npos;
}

/// Why the scripted answer does not match the dialog; empty if it does.
std::string mismatch(const RecordedCall& record, const ScriptedAnswer& answer) {
    const std::string kind = record.args.empty() ? "" : record.args.front();
    if (!answer.kind.empty() && answer.kind != kind) {
        return "a " + kind + " dialog came where the scene answers a " + answer.kind + " dialog";
    }
    if (answer.outfile && option(record, "-outfile").value_or("").empty()) {
        return "the answer needs a result file, but the dialog names none";
    }
    if (answer.must_be_offered && !is_offered(record, answer.outfile.value_or(""))) {
        return "the list does not offer the pick '" + answer.outfile.value_or("") + "'";
    }
    return "";
}

void append_to_journal(const fs::path& stage, const RecordedCall& record) {
    const std::string text = to_text(record);
    const int journal =
        open((stage / STAGE_JOURNAL).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (journal < 0 || write(journal, text.data(), text.size()) != ssize_t(text.size())) abort();
    close(journal);
}

void block_all_signals() {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, nullptr);
}

/// Waits for the answer's delay; a stubborn dialog at most until TERM, INT or HUP.
void show_for_a_while(const ScriptedAnswer& answer) {
    const std::chrono::milliseconds delay(answer.delay_milliseconds);
    if (!answer.stubborn) {
        std::this_thread::sleep_for(delay);
        return;
    }
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&ending, signal);
    const std::chrono::nanoseconds rest = delay % std::chrono::seconds(1);
    const timespec end = {delay / std::chrono::seconds(1), static_cast<int>(rest.count())};
    sigtimedwait(&ending, nullptr, &end);
}

int carry_out(const fs::path& stage, const RecordedCall& record, const ScriptedAnswer& answer) {
    show_for_a_while(answer);
    if (!answer.meanwhile.empty()) {
        const std::string command = "cd '" + stage.string() + "' && " + answer.meanwhile;
        if (std::system(command.c_str()) != 0) std::perror("meanwhile");
    }
    if (answer.outfile) {
        std::ofstream out(option(record, "-outfile").value_or(""), std::ios::binary);
        out << *answer.outfile;
    }
    std::fwrite(answer.out.data(), 1, answer.out.size(), stdout);
    return answer.status;
}

}  // namespace
}  // namespace gatescope

int main(int argc, char** argv) {
    using namespace gatescope;
    const fs::path self = fs::read_symlink("/proc/self/exe");
    const fs::path stage = self.parent_path().parent_path();
    RecordedCall record;
    record.program = self.filename();
    record.pid = getpid();
    record.waited = is_waited_for();
    record.cwd = fs::current_path();
    record.args.assign(argv + 1, argv + argc);
    if (const auto file = option(record, "-dfile")) record.shown = file_text(*file);

    const bool is_box = is_box_with_one_button(record);
    record.queue = is_box ? "box" : record.program;
    std::optional<ScriptedAnswer> answer = next_answer(stage, record.queue);
    if (!answer) {
        answer = ScriptedAnswer();
        if (record.program == "clearprompt" && !is_box) {
            answer->status = ABORT_STATUS;
            record.error = "the scene has no answer for this dialog";
        }
    } else if (const std::string why = mismatch(record, *answer); !why.empty()) {
        record.error = why;
        answer = ScriptedAnswer();
        answer->status = ABORT_STATUS;
    }
    // Before the journal shows the call: its reader may send a signal at once.
    if (answer->stubborn) block_all_signals();
    append_to_journal(stage, record);
    return carry_out(stage, record, *answer);
}
