#include "scenes/region.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "scenes/child_process.h"

namespace gatescope {

namespace fs = std::filesystem;

namespace {

constexpr const char* VARIABLE_PREFIXES[] = {"#!gatescope_unix_gatewarden_check=",
                                             "#!gatescope_windows_gatewarden_check=",
                                             "#!gatescope_unix_browser=",
                                             "#!gatescope_windows_browser=",
                                             "#!gatescope_relocated_logging_dir_unix=",
                                             "#!gatescope_relocated_logging_dir_windows=",
                                             "#!gatescope_relocated_results_dir_unix=",
                                             "#!gatescope_relocated_results_dir_windows="};

void replace_all(std::string& text, const std::string& sought, const std::string& replacement) {
    for (std::size_t at = text.find(sought); at != std::string::npos;
         at = text.find(sought, at + replacement.size())) {
        text.replace(at, sought.size(), replacement);
    }
}

/// Process ids rise with the starts, and wrap around after the largest.
void sort_by_start(std::vector<RecordedCall>& calls, long first_pid) {
    const long largest = std::stol(file_text("/proc/sys/kernel/pid_max"));
    const auto age = [&](const RecordedCall& call) {
        return (call.pid - first_pid + largest) % largest;
    };
    std::stable_sort(
        calls.begin(), calls.end(),
        [&](const RecordedCall& one, const RecordedCall& other) { return age(one) < age(other); });
}

std::vector<RecordedCall> read_journal(const fs::path& path) {
    const std::string text = file_text(path);
    std::vector<RecordedCall> calls;
    for (std::string_view rest = text; !rest.empty();) calls.push_back(take<RecordedCall>(rest));
    return calls;
}

/// The program built with the tests, unless the environment names another (scripts/machines).
std::string tested_program() {
    const char* other = std::getenv("GATESCOPE_TESTED_PROGRAM");
    return other != nullptr ? other : GATESCOPE_PROGRAM;
}

/// `argument` with directory and process id replaced, if it is a temporary file of the program.
std::string with_placeholders(std::string argument, const std::string& directory, long pid) {
    if (!argument.starts_with(directory + "/")) return argument;
    argument.replace(0, directory.size(), "{tmp}");
    replace_all(argument, "_" + std::to_string(pid), "_{pid}");
    return argument;
}

}  // namespace

RegionPlan::RegionPlan()
    : lines_({"gatewarden;;;east;", ";{stage}/depot;O;", ";;", ";;", "; ;", "; ;", ";;;",
              "D;000000000000000000000000;"}),
      variables_({"{stage}/bin/gatewarden", "", "{stage}/bin/browser", "", "", "", "", ""}) {}

RegionPlan a_region() {
    return {};
}

RegionPlan& RegionPlan::named(const std::string& name) {
    return with_line(1, "gatewarden;;;" + name + ";");
}

RegionPlan& RegionPlan::lite() {
    return with_line(1, "gatewarden_lite;;;east;");
}

RegionPlan& RegionPlan::with_line(int number, const std::string& line) {
    lines_.at(static_cast<std::size_t>(number) - 1) = line;
    return *this;
}

RegionPlan& RegionPlan::with_key(const std::string& key) {
    keys_.push_back(key);
    return *this;
}

RegionPlan& RegionPlan::with_alias(const std::string& name, const std::string& value) {
    return with_line_on_top("#!gatewarden_alias " + name + " " + value);
}

RegionPlan& RegionPlan::with_line_on_top(const std::string& line) {
    on_top_.push_back(line);
    return *this;
}

RegionPlan& RegionPlan::with_variable(int index, const std::string& value) {
    variables_.at(static_cast<std::size_t>(index)) = value;
    return *this;
}

RegionPlan& RegionPlan::without_variables() {
    has_variables_ = false;
    return *this;
}

RegionPlan& RegionPlan::with_gatebits(const std::string& text) {
    gatebits_ = text;
    return *this;
}

RegionPlan& RegionPlan::without_gatebits_file() {
    has_gatebits_file_ = false;
    return *this;
}

RegionPlan& RegionPlan::with_log(int number, const std::string& records) {
    return with_file("depot/log/logging_" + std::to_string(number) + ".txt", records);
}

RegionPlan& RegionPlan::with_file(const std::string& name, const std::string& content) {
    files_[name] = content;
    return *this;
}

RegionPlan& RegionPlan::without_checker() {
    has_checker_ = false;
    return *this;
}

RegionPlan& RegionPlan::without_dialogs() {
    return with_env("ZUL_PREFER_NO_GUI", "yes");
}

RegionPlan& RegionPlan::with_env(const std::string& name, const std::string& value) {
    env_[name] = value;
    return *this;
}

RegionPlan& RegionPlan::without_env(const std::string& name) {
    env_[name] = std::nullopt;
    return *this;
}

std::string RegionPlan::gatebits_text() const {
    if (gatebits_) return *gatebits_;
    std::string text;
    for (std::size_t i = 0; has_variables_ && i < variables_.size(); ++i) {
        text += VARIABLE_PREFIXES[i] + variables_[i] + "\n";
    }
    for (const auto* group : {&on_top_, &lines_, &keys_}) {
        for (const std::string& line : *group) text += line + "\n";
    }
    return text;
}

std::vector<Args> Result::calls_of(const std::string& program) const {
    std::vector<Args> found;
    for (const RecordedCall& call : calls) {
        if (call.program == program) found.push_back(call.args);
    }
    return found;
}

Region::Region(const RegionPlan& plan) {
    for (const char* directory : {"bin", "tmp", "home", "depot/log", "depot/query_results"}) {
        fs::create_directories(path(directory));
    }
    install_stand_ins(plan.has_checker_);
    if (plan.has_gatebits_file_) write_file("gatebits.txt", staged(plan.gatebits_text()));
    for (const auto& [name, content] : plan.files_) write_file(name, staged(content));
    env_ = {
        {"PATH", path("bin") + ":/usr/bin:/bin"}, {"HOME", path("home")},
        {"tmp", temporary_directory()},           {"TZ", "UTC"},
        {"CLEARCASE_USER", "operator"},           {"ZUL_GATESCOPE_GATEBITS_FILE", gatebits_path()}};
    for (const auto& [name, value] : plan.env_) {
        if (value) {
            env_[name] = staged(*value);
        } else {
            env_.erase(name);
        }
    }
}

void Region::install_stand_ins(bool with_checker) const {
    for (const std::string name : {"clearprompt", "cleartool", "browser", "gatewarden"}) {
        if (name == "gatewarden" && !with_checker) continue;
        std::error_code cannot_link;
        fs::create_hard_link(STAND_IN_PROGRAM, path("bin/" + name), cannot_link);
        if (cannot_link) fs::copy_file(STAND_IN_PROGRAM, path("bin/" + name));
    }
}

Region& Region::script(const std::string& queue, const ScriptedAnswer& answer) {
    std::ostringstream number;
    number.width(6);
    number.fill('0');
    number << ++answers_scripted_;
    stage_.write(std::string(STAGE_SCRIPT) + "/" + queue + "/" + number.str(), to_text(answer));
    return *this;
}

Region& Region::answers(const ScriptedAnswer& answer) {
    return script("clearprompt", answer);
}

Region& Region::answers_yes() {
    return answers({.kind = "yes_no", .status = 0});
}

Region& Region::answers_no() {
    return answers({.kind = "yes_no", .status = 1});
}

Region& Region::aborts() {
    return answers({.kind = "yes_no", .status = 2});
}

Region& Region::operator_picks(const std::string& entry) {
    return answers({.kind = "list", .outfile = entry, .must_be_offered = true});
}

Region& Region::operator_picks_several(const std::vector<std::string>& entries) {
    std::string lines;
    for (const std::string& entry : entries) lines += entry + "\n";
    return answers({.kind = "list", .outfile = lines});
}

Region& Region::types(const std::string& text) {
    return answers({.kind = "text", .outfile = text});
}

Region& Region::chooses_file(const std::string& file) {
    return answers({.kind = "file", .outfile = file});
}

Region& Region::closes_view() {
    return answers({.kind = "text", .outfile = ""});
}

Region& Region::cancels() {
    return answers({.status = 1});
}

Region& Region::box_ends_with(int status) {
    return script("box", {.status = status});
}

Region& Region::checker_ends_with(const std::vector<int>& statuses) {
    for (const int status : statuses) script("gatewarden", {.status = status});
    return *this;
}

Region& Region::program_answers(const std::string& program, const ScriptedAnswer& answer) {
    return script(program, answer);
}

Result Region::run(const Args& args) {
    return run_program(tested_program(), path("bin/gatescope"), args);
}

Result Region::run_program(const std::string& program, const std::string& name, const Args& args) {
    fs::remove(path(STAGE_JOURNAL));
    const std::vector<std::string> in_tmp_before = files_in("tmp");
    const Finished finished = run_to_the_end(program, name, args, env_, stage_.path());
    Result result;
    result.status = finished.status;
    result.out = finished.out;
    result.err = finished.err;
    result.pid = finished.pid;
    EXPECT_FALSE(finished.timed_out) << "the program or a child did not end";
    read_calls(result);
    fail_on_faults(result, in_tmp_before);
    return result;
}

Result Region::run_after(const std::string& preparation, const Args& args) {
    Args shell = {"-c", preparation + "\nexec \"$0\" \"$@\"", tested_program()};
    shell.insert(shell.end(), args.begin(), args.end());
    return run_program("/bin/sh", "sh", shell);
}

void Region::enter() const {
    adopt_descendants();
    for (const auto& [name, value] : env_) setenv(name.c_str(), value.c_str(), 1);
}

Result Region::shown_so_far() {
    EXPECT_TRUE(wait_for_all_descendants()) << "a child did not end";
    Result result;
    result.pid = getpid();
    read_calls(result);
    fail_on_faults(result, files_in("tmp"));
    return result;
}

void Region::read_calls(Result& result) const {
    result.calls = read_journal(path(STAGE_JOURNAL));
    fs::remove(path(STAGE_JOURNAL));
    sort_by_start(result.calls, result.pid);
    for (const RecordedCall& call : result.calls) {
        if (call.program != "clearprompt") continue;
        Dialog dialog{call.args, call.waited, call.shown};
        for (std::string& argument : dialog.args) {
            argument = with_placeholders(argument, temporary_directory(), result.pid);
        }
        result.dialogs_.push_back(dialog);
    }
}

void Region::fail_on_faults(const Result& result,
                            const std::vector<std::string>& in_tmp_before) const {
    for (const RecordedCall& call : result.calls) {
        if (call.error.empty()) continue;
        ADD_FAILURE() << call.error << ": " << call.program << " "
                      << testing::PrintToString(call.args);
    }
    std::error_code no_script;
    for (const auto& entry : fs::recursive_directory_iterator(path(STAGE_SCRIPT), no_script)) {
        if (!entry.is_regular_file()) continue;
        const std::string text = file_text(entry.path());
        std::string_view rest = text;
        const auto answer = take<ScriptedAnswer>(rest);
        ADD_FAILURE() << "no dialog used the answer " << entry.path().filename() << " of "
                      << entry.path().parent_path().filename() << ": " << answer.kind << " status "
                      << answer.status << " '" << answer.outfile.value_or("") << "'";
        fs::remove(entry.path());
    }
    EXPECT_EQ(files_in("tmp"), in_tmp_before) << "temporary files were left behind";
    for (const char* fault : {"AddressSanitizer", "LeakSanitizer", "runtime error:"}) {
        EXPECT_EQ(result.err.find(fault), std::string::npos) << result.err;
    }
}

std::string Region::path(const std::string& name) const {
    return stage_.path(name);
}

std::string Region::staged(std::string text) const {
    replace_all(text, "{stage}", stage_.path());
    return text;
}

std::string Region::file(const std::string& name) const {
    return stage_.read(name);
}

bool Region::has_file(const std::string& name) const {
    return fs::exists(path(name));
}

void Region::write_file(const std::string& name, const std::string& content) const {
    stage_.write(name, content);
}

std::string Region::line(int n) const {
    std::istringstream text(gatebits());
    int number = 0;
    for (std::string one; std::getline(text, one);) {
        const std::size_t first = one.find_first_not_of(" \t");
        if (first == std::string::npos || one[first] == '#') continue;
        if (++number == n) return one;
    }
    return "";
}

std::string Region::field(int n, int f) const {
    const std::string whole = line(n);
    std::size_t begin = 0;
    for (int i = 1; i < f; ++i) {
        const std::size_t end = whole.find(';', begin);
        if (end == std::string::npos) return "";
        begin = end + 1;
    }
    const std::size_t end = whole.find(';', begin);
    return end == std::string::npos ? "" : whole.substr(begin, end - begin);
}

std::string Region::log(int number) const {
    return file("depot/log/logging_" + std::to_string(number) + ".txt");
}

std::vector<std::string> Region::files_in(const std::string& directory) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path(directory))) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string Region::page() const {
    const std::vector<std::string> names = pages();
    EXPECT_EQ(names.size(), 1u);
    return names.empty() ? "" : file("depot/query_results/" + names.front());
}

}  // namespace gatescope
