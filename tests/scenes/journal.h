#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a scene and its stand-ins tell each other, as bytes in files: the scene leaves one file an
// answer, a stand-in appends one record a call. Texts may hold any byte, NUL included.

/// Files and folders of a stage, below its directory.
inline constexpr char STAGE_BIN[] = "bin";
inline constexpr char STAGE_SCRIPT[] = "script";
inline constexpr char STAGE_JOURNAL[] = "journal";
inline constexpr char STAGE_LOCK[] = "lock";

/// One call of a stand-in.
struct RecordedCall {
    /// The name that it was called by: "clearprompt", "gatewarden" ...
    std::string program;
    /// Its process id. The shell starts the children of a run one after the other, so ids tell
    /// the order of the calls, those that run in the background included.
    long pid = 0;
    /// Whether the program waited for it, as against a dialog left on the screen with "&".
    bool waited = true;
    std::string cwd;
    /// The arguments, without the name.
    std::vector<std::string> args;
    /// What the file after -dfile held; nothing when there was no such option.
    std::optional<std::string> shown;
    /// Why the call did not fit the script; empty when it did.
    std::string error;
};

/// What a stand-in does when its turn comes.
struct ScriptedAnswer {
    /// The kind of dialog that the scene expects: "yes_no", "text", "list", "file"; empty: any.
    std::string kind = {};
    int status = 0;
    /// Bytes for the file named by -outfile; nothing: the file is not written.
    std::optional<std::string> outfile = {};
    /// Printed on standard output.
    std::string out = {};
    /// Run by the shell before answering, in the stage's directory.
    std::string meanwhile = {};
    long delay_milliseconds = 0;
    /// Whether a pick has to be among the items of the list.
    bool must_be_offered = false;
};

/// A text is written as its length in decimal, ':' and its bytes.
inline void put(std::string& bytes, std::string_view text) {
    bytes.append(std::to_string(text.size())).append(":").append(text);
}
inline void put(std::string& bytes, long number) {
    put(bytes, std::to_string(number));
}
inline void put_optional(std::string& bytes, const std::optional<std::string>& text) {
    put(bytes, text.has_value() ? 1L : 0L);
    put(bytes, text.value_or(""));
}

inline std::string take(std::string_view& bytes) {
    const std::size_t colon = bytes.find(':');
    const std::size_t length = std::stoul(std::string(bytes.substr(0, colon)));
    std::string text(bytes.substr(colon + 1, length));
    bytes.remove_prefix(colon + 1 + length);
    return text;
}
inline long take_number(std::string_view& bytes) {
    return std::stol(take(bytes));
}
inline std::optional<std::string> take_optional(std::string_view& bytes) {
    const bool there = take_number(bytes) == 1;
    std::string text = take(bytes);
    return there ? std::optional<std::string>(text) : std::nullopt;
}

inline std::string to_bytes(const RecordedCall& record) {
    std::string bytes;
    put(bytes, record.program);
    put(bytes, record.pid);
    put(bytes, record.waited ? 1L : 0L);
    put(bytes, record.cwd);
    put(bytes, static_cast<long>(record.args.size()));
    for (const std::string& argument : record.args) put(bytes, argument);
    put_optional(bytes, record.shown);
    put(bytes, record.error);
    return bytes;
}

inline RecordedCall take_record(std::string_view& bytes) {
    RecordedCall record;
    record.program = take(bytes);
    record.pid = take_number(bytes);
    record.waited = take_number(bytes) == 1;
    record.cwd = take(bytes);
    const long count = take_number(bytes);
    for (long i = 0; i < count; ++i) record.args.push_back(take(bytes));
    record.shown = take_optional(bytes);
    record.error = take(bytes);
    return record;
}

inline std::string to_bytes(const ScriptedAnswer& answer) {
    std::string bytes;
    put(bytes, answer.kind);
    put(bytes, static_cast<long>(answer.status));
    put_optional(bytes, answer.outfile);
    put(bytes, answer.out);
    put(bytes, answer.meanwhile);
    put(bytes, answer.delay_milliseconds);
    put(bytes, answer.must_be_offered ? 1L : 0L);
    return bytes;
}

inline ScriptedAnswer take_answer(std::string_view& bytes) {
    ScriptedAnswer answer;
    answer.kind = take(bytes);
    answer.status = static_cast<int>(take_number(bytes));
    answer.outfile = take_optional(bytes);
    answer.out = take(bytes);
    answer.meanwhile = take(bytes);
    answer.delay_milliseconds = take_number(bytes);
    answer.must_be_offered = take_number(bytes) == 1;
    return answer;
}
