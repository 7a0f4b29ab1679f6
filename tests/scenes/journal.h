#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace gatescope {

// The text files by which a test and its stand-ins communicate: the test writes one file per
// answer, a stand-in appends one record per call. A field is a line "name value", in which a
// backslash is written "\\" and a newline "\n"; every other byte is written unchanged, NUL
// included. An empty line ends a record. Omitted fields keep their defaults. tests/faults/stages.py
// uses the same format.

/// Files and folders in a stage's directory.
inline constexpr char STAGE_BIN[] = "bin";
inline constexpr char STAGE_SCRIPT[] = "script";
inline constexpr char STAGE_JOURNAL[] = "journal";
inline constexpr char STAGE_LOCK[] = "lock";

/// One call of a stand-in.
struct RecordedCall {
    /// The name by which it was called: "clearprompt", "gatewarden" ...
    std::string program;
    /// The queue of its answer: the program's name, or "box" for a dialog with one button.
    std::string queue;
    /// Its process id. The shell starts the children of a run one after the other, so ids give the
    /// order of the calls, background calls included.
    long pid = 0;
    /// Whether the program waited for it; false for a dialog started with "&".
    bool waited = true;
    std::string cwd;
    /// The arguments, without the name.
    std::vector<std::string> args;
    /// The content of the file after -dfile; nullopt without that option.
    std::optional<std::string> shown;
    /// Why the call does not match the script; empty if it does.
    std::string error;

    void each_field(auto& visit) {
        visit("program", program);
        visit("queue", queue);
        visit("pid", pid);
        visit("waited", waited);
        visit("cwd", cwd);
        visit("argument", args);
        visit("shown", shown);
        visit("error", error);
    }
};

/// What a stand-in does for one call.
struct ScriptedAnswer {
    /// The kind of dialog that the scene expects: "yes_no", "text", "list", "file"; empty: any.
    std::string kind = {};
    int status = 0;
    /// Bytes for the file named by -outfile; nullopt: the file is not written.
    std::optional<std::string> outfile = {};
    /// Printed on standard output.
    std::string out = {};
    /// Run by the shell before answering, in the stage's directory.
    std::string meanwhile = {};
    long delay_milliseconds = 0;
    /// Whether a pick has to be among the items of the list.
    bool must_be_offered = false;
    /// Whether it blocks all signals, and answers early on TERM, INT or HUP.
    bool stubborn = false;

    void each_field(auto& visit) {
        visit("kind", kind);
        visit("status", status);
        visit("outfile", outfile);
        visit("out", out);
        visit("meanwhile", meanwhile);
        visit("delay_milliseconds", delay_milliseconds);
        visit("must_be_offered", must_be_offered);
        visit("stubborn", stubborn);
    }
};

/// Writes the visited fields as text.
class FieldWriter {
  public:
    void operator()(const std::string& name, const std::string& value) {
        text_ += name + ' ';
        for (const char c : value) {
            if (c == '\\' || c == '\n') text_ += '\\';
            text_ += c == '\n' ? 'n' : c;
        }
        text_ += '\n';
    }
    void operator()(const std::string& name, long value) { (*this)(name, std::to_string(value)); }
    void operator()(const std::string& name, const std::optional<std::string>& value) {
        if (value) (*this)(name, *value);
    }
    void operator()(const std::string& name, const std::vector<std::string>& values) {
        for (const std::string& value : values) (*this)(name, value);
    }
    [[nodiscard]] std::string text() const { return text_ + '\n'; }

  private:
    std::string text_;
};

/// Removes a text's first lines up to an empty one, and assigns their values to the visited fields.
class FieldReader {
  public:
    explicit FieldReader(std::string_view& text) {
        for (std::string_view line; !(line = take_line(text)).empty();) {
            const std::size_t space = line.find(' ');
            if (space == std::string_view::npos) throw std::runtime_error("a field has no value");
            values_[std::string(line.substr(0, space))].push_back(value(line.substr(space + 1)));
        }
    }
    void operator()(const std::string& name, auto& field) {
        for (const std::string& value : taken(name)) field = value;
    }
    void operator()(const std::string& name, std::integral auto& field) {
        for (const std::string& value : taken(name)) {
            field = static_cast<std::decay_t<decltype(field)>>(std::stol(value));
        }
    }
    void operator()(const std::string& name, std::vector<std::string>& field) {
        field = taken(name);
    }
    /// Throws if a field was not visited.
    void end() const {
        if (!values_.empty()) throw std::runtime_error("no field is " + values_.begin()->first);
    }

  private:
    static std::string_view take_line(std::string_view& text) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        return line;
    }
    static std::string value(std::string_view line) {
        std::string value;
        for (std::size_t i = 0; i < line.size(); ++i) {
            const bool is_escaped = line[i] == '\\' && ++i < line.size();
            value += is_escaped && line[i] == 'n' ? '\n' : line.at(i);
        }
        return value;
    }
    std::vector<std::string> taken(const std::string& name) {
        const auto found = values_.extract(name);
        return found ? found.mapped() : std::vector<std::string>();
    }

    std::map<std::string, std::vector<std::string>> values_;
};

/// A RecordedCall or a ScriptedAnswer as a text.
template <typename Message>
std::string to_text(Message message) {
    FieldWriter writer;
    message.each_field(writer);
    return writer.text();
}

/// Removes the message at the start of `text` and returns it; throws if it is malformed.
template <typename Message>
Message take(std::string_view& text) {
    FieldReader reader(text);
    Message message;
    message.each_field(reader);
    reader.end();
    return message;
}

}  // namespace gatescope
