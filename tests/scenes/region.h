#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "scenes/dialogs.h"
#include "scenes/journal.h"
#include "support/scratch_directory.h"

namespace gatescope {

// A region on a stage of its own: a directory with its gatebits file, depot, logs and results, a
// directory for temporary files, and stand-ins for every program that gatescope starts. A scene
// says what the operator answers, runs the real program, and looks at what was asked, what was
// said and what the files hold.
//
//     Region east = a_region().with_key("pre_checkin;R; ;");
//     east.operator_picks("S - 'S'ucessful attempts only logged").answers_yes();
//     EXPECT_EQ(east.run({"A=8", "R=n"}).status, 110);
//     EXPECT_EQ(east.field(2, 3), "S");

using Args = std::vector<std::string>;

/// How a region is set up. In every text "{stage}" stands for the directory of the stage.
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
    /// The whole gatebits file, in place of all of the above.
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

/// What came of a run.
struct Result {
    /// The exit status; 128 and the signal's number when a signal ended the program.
    int status = -1;
    std::string out;
    std::string err;
    long pid = 0;
    /// Every call of a stand-in, in order of its start.
    std::vector<RecordedCall> calls;

    /// What the operator was shown, in order.
    Dialogs dialogs() const { return dialogs_; }
    /// The arguments of every call of the checker, cleartool or the browser, in order.
    std::vector<Args> calls_of(const std::string& program) const;

    Dialogs dialogs_;
};

class Region {
  public:
    Region(const RegionPlan& plan);

    // The script: answers are used up in this order, one a dialog. A dialog without an answer, of
    // another kind than the answer's, or an answer that is left over, fails the scene. Boxes with
    // one button answer themselves.

    Region& answers_yes();
    Region& answers_no();
    Region& aborts();
    /// Picks an entry that the list has to offer.
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
    /// Anything else.
    Region& answers(const ScriptedAnswer& answer);
    /// The next box with one button ends with this status, whatever it shows.
    Region& box_ends_with(int status);
    /// The next runs of the checker end with these exit statuses; 0 after them.
    Region& checker_ends_with(const std::vector<int>& statuses);
    /// The next call of "gatewarden", "cleartool" or "browser".
    Region& program_answers(const std::string& program, const ScriptedAnswer& answer);

    /// Runs gatescope and waits for it and for everything that it started.
    Result run(const Args& args = {});
    /// Runs another program in its place, with this argv[0].
    Result run_program(const std::string& program, const std::string& name, const Args& args);

    /// Runs gatescope from a shell that has obeyed `preparation` before, say "exec 1>&-".
    Result run_after(const std::string& preparation, const Args& args = {});

    /// Puts this process itself on the stage: from now on what it starts are the stand-ins, in the
    /// stage's environment. For tests of single functions.
    void enter() const;
    /// What has been shown since this process entered the stage or asked last.
    Result shown_so_far();

    /// A path on the stage.
    std::string path(const std::string& name) const;
    std::string gatebits_path() const { return path("gatebits.txt"); }
    std::string checker_path() const { return path("bin/gatewarden"); }
    std::string temporary_directory() const { return path("tmp"); }

    /// The bytes of a file on the stage; an empty text when it is not there.
    std::string file(const std::string& name) const;
    bool has_file(const std::string& name) const;
    std::string gatebits() const { return file("gatebits.txt"); }
    /// Significant line n, and field f of it, of the gatebits file, read without gatescope.
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

    /// `text` with "{stage}" filled in.
    std::string staged(std::string text) const;

  private:
    Region& script(const std::string& queue, const ScriptedAnswer& answer);
    void install_stand_ins(bool with_checker) const;
    void take_journal(Result& result) const;
    void look_for_faults(const Result& result, const std::vector<std::string>& in_tmp_before) const;

    ScratchDirectory stage_;
    std::map<std::string, std::string> env_;
    int answers_scripted_ = 0;
};

}  // namespace gatescope
