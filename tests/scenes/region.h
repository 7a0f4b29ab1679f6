#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "scenes/dialogs.h"
#include "scenes/journal.h"
#include "support/scratch_directory.h"

namespace gatescope {

// A region on its own stage: a directory with a gatebits file, depot, logs and results, a directory
// for temporary files, and stand-ins for every program that gatescope starts. A scene scripts the
// operator's answers, runs the real program, and compares the dialogs, the output and the files.
//
//     Region east = a_region().with_key("pre_checkin;R; ;");
//     east.operator_picks("S - 'S'ucessful attempts only logged").answers_yes();
//     EXPECT_EQ(east.run({"A=8", "R=n"}).status, 110);
//     EXPECT_EQ(east.field(2, 3), "S");

using Args = std::vector<std::string>;

/// The set-up of a region. In every text "{stage}" stands for the directory of the stage.
class RegionPlan {
  public:
    RegionPlan& named(const std::string& name);
    /// Makes it a region of the lite edition.
    RegionPlan& lite();
    /// Significant line 1 to 8.
    RegionPlan& with_line(int number, const std::string& line);
    RegionPlan& with_key(const std::string& key);
    RegionPlan& with_alias(const std::string& name, const std::string& value);
    /// A line above the region block.
    RegionPlan& with_line_on_top(const std::string& line);
    /// gatescope's own settings: see tool_variables.h for the numbers.
    RegionPlan& with_variable(int index, const std::string& value);
    RegionPlan& without_variables();
    /// The whole gatebits file, instead of all of the above.
    RegionPlan& with_gatebits(const std::string& text);
    RegionPlan& without_gatebits_file();

    RegionPlan& with_log(int number, const std::string& records);
    RegionPlan& with_file(const std::string& name, const std::string& content);
    RegionPlan& without_checker();

    /// Messages go to standard output.
    RegionPlan& without_dialogs();
    RegionPlan& with_env(const std::string& name, const std::string& value);
    RegionPlan& without_env(const std::string& name);

  private:
    friend class Region;

    std::string gatebits_text() const;

    std::vector<std::string> lines_;
    std::vector<std::string> keys_;
    std::vector<std::string> on_top_;
    std::vector<std::string> variables_;
    bool has_variables_ = true;
    std::optional<std::string> gatebits_;
    bool has_gatebits_file_ = true;
    bool has_checker_ = true;
    std::map<std::string, std::string> files_;
    std::map<std::string, std::optional<std::string>> env_;

    RegionPlan();
    friend RegionPlan a_region();
};

/// A sound region "east" of the full edition with logging off, no keys and no aliases.
RegionPlan a_region();

/// The result of a run.
struct Result {
    /// The exit status; 128 plus the signal's number when a signal ended the program.
    int status = -1;
    std::string out;
    std::string err;
    long pid = 0;
    /// Every call of a stand-in, in the order of their starts.
    std::vector<RecordedCall> calls;

    /// The dialogs of the run, in order.
    Dialogs dialogs() const { return dialogs_; }
    /// The arguments of every call of the checker, cleartool or the browser, in order.
    std::vector<Args> calls_of(const std::string& program) const;

    Dialogs dialogs_;
};

class Region {
  public:
    Region(const RegionPlan& plan);

    // The script: answers are used in this order, one per dialog. A dialog without an answer, an
    // answer for another kind of dialog, and an unused answer fail the scene. Boxes with one button
    // need no answer.

    Region& answers_yes();
    Region& answers_no();
    Region& aborts();
    /// Picks an entry; fails the scene unless the list offers it.
    Region& operator_picks(const std::string& entry);
    Region& operator_picks_several(const std::vector<std::string>& entries);
    /// Types into a text prompt.
    Region& types(const std::string& text);
    /// Chooses a path in the file dialog.
    Region& chooses_file(const std::string& path);
    /// Closes the file that is shown.
    Region& closes_view();
    /// Cancels a list, a prompt or a file dialog.
    Region& cancels();
    /// Any other answer.
    Region& answers(const ScriptedAnswer& answer);
    /// The next box with one button ends with this status.
    Region& box_ends_with(int status);
    /// The next runs of the checker end with these exit statuses; 0 after them.
    Region& checker_ends_with(const std::vector<int>& statuses);
    /// The next call of "gatewarden", "cleartool" or "browser".
    Region& program_answers(const std::string& program, const ScriptedAnswer& answer);

    /// Runs gatescope and waits for it and all its descendants.
    Result run(const Args& args = {});
    /// Runs another program instead, with this argv[0].
    Result run_program(const std::string& program, const std::string& name, const Args& args);

    /// Runs gatescope from a shell after the command `preparation`, for example "exec 1>&-".
    Result run_after(const std::string& preparation, const Args& args = {});

    /// Gives this process the stage's environment, so that it starts the stand-ins. For tests of
    /// single functions.
    void enter() const;
    /// The calls since enter() or the last call of this function.
    Result shown_so_far();

    /// A path on the stage.
    std::string path(const std::string& name) const;
    std::string gatebits_path() const { return path("gatebits.txt"); }
    std::string checker_path() const { return path("bin/gatewarden"); }
    std::string temporary_directory() const { return path("tmp"); }

    /// The bytes of a file on the stage; empty if it does not exist.
    std::string file(const std::string& name) const;
    bool has_file(const std::string& name) const;
    std::string gatebits() const { return file("gatebits.txt"); }
    /// Significant line n of the gatebits file, and its field f, read without gatescope's code.
    std::string line(int n) const;
    std::string field(int n, int f) const;
    std::string log(int number) const;
    /// Names of the files in a directory of the stage, sorted.
    std::vector<std::string> files_in(const std::string& directory) const;
    /// Names of the report pages, sorted.
    std::vector<std::string> pages() const { return files_in("depot/query_results"); }
    /// The bytes of the only page.
    std::string page() const;

    /// Changes a variable of the environment for the runs that follow.
    void set_env(const std::string& name, const std::string& value) { env_[name] = value; }
    void write_file(const std::string& name, const std::string& content) const;

    /// `text` with "{stage}" replaced.
    std::string staged(std::string text) const;

  private:
    Region& script(const std::string& queue, const ScriptedAnswer& answer);
    void install_stand_ins(bool with_checker) const;
    void read_calls(Result& result) const;
    void fail_on_faults(const Result& result, const std::vector<std::string>& in_tmp_before) const;

    ScratchDirectory stage_;
    std::map<std::string, std::string> env_;
    int answers_scripted_ = 0;
};

}  // namespace gatescope
