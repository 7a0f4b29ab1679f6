#include "dialog/toolkit.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/files.h"
#include "base/filled.h"
#include "base/run_identity.h"
#include "base/signals_blocked.h"
#include "base/temporary_files.h"
#include "base/text.h"
#include "base/whole_file.h"
#include "dialog/answer_file.h"
#include "dialog/clearprompt.h"
#include "dialog/messages.h"
#include "messages/dialog_texts.h"
#include "messages/startup_texts.h"

namespace gatescope {
namespace {

// Command lines; their texts must be quoted.

/// CLEARPROMPT, result file, file with the default, newline option, prompt.
constexpr char PROMPT_FROM_FILE_LINE[] = "%s text -prefer_gui -outfile %s  -dfile %s %s -prompt %s";
/// CLEARPROMPT, result file, file to show, title.
constexpr char SHOW_FILE_LINE[] =
    "%s text -prefer_gui -multi_line -outfile %s -dfile %s -newline -prompt %s";
/// copy_file copies in pieces of this many bytes.
constexpr std::size_t COPY_CHUNK = 30000;

/// Writes `text` (may be null) and closes the stream. 0, or EOF when either failed.
int write_and_close(FILE* stream, const char* text) {
    const bool written = text == nullptr || std::fputs(text, stream) >= 0;
    return std::fclose(stream) == 0 && written ? 0 : EOF;
}

/// A stream of the descriptor; null, with errno unchanged, when it is -1.
FILE* stream_of(int descriptor, const char* mode) {
    return descriptor == -1 ? nullptr : fdopen(descriptor, mode);
}

enum class End { DESTINATION, SOURCE };

/// Reports which end of a copy failed, with the reason in errno.
[[noreturn]] void gripe_not_moved(End end, const std::string& source,
                                  const std::string& destination) {
    const int reason = errno;
    const std::string message =
        end == End::SOURCE ? filled(COULD_NOT_MOVE_2, source.c_str(), destination.c_str(), reason)
                           : filled(COULD_NOT_MOVE_1, source.c_str(), destination.c_str(), reason);
    gripe(message, reason);
}

bool same_bytes(FILE* one, FILE* other, off_t size) {
    for (; size > 0; --size) {
        const int byte = std::getc(one);
        if (byte == EOF || byte != std::getc(other)) return false;
    }
    return true;
}

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool is_private_file(int file) {
    struct stat status;
    return fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1 &&
           status.st_uid == geteuid();
}

/// Opens the file for appending, creating it where needed. -1, with errno set, when that fails;
/// EEXIST when it is another user's file, has hard links or is not regular.
int open_default(const std::string& path) {
    const SignalsBlocked blocked;
    const int file = open(
        path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (file == -1) return -1;
    if (!is_private_file(file)) {
        close(file);
        errno = EEXIST;
        return -1;
    }
    remember_temporary_file(path);
    return file;
}

/// Appends `text` to the file from which a prompt reads its default; never to another user's file.
void append_default(const std::string& path, const std::string& text) {
    const int file = open_default(path);
    if (file == -1) gripe(CANNOT_CREATE_TEMP_FILE, path, errno);
    int error = write_all(file, c_text(text));
    if (close(file) != 0 && error == 0) error = errno;
    if (error != 0) gripe(CANNOT_CREATE_TEMP_FILE, path, error);
}

}  // namespace

int touch_file(const std::string& path, const char* text) {
    FILE* stream = stream_of(open_regular_file(path, O_RDWR | O_CREAT | O_TRUNC), "w+");
    if (stream == nullptr) {
        const int reason = errno;
        gripe(filled(COULD_NOT_TOUCH, path.c_str(), reason), reason);
    }
    return write_and_close(stream, text);
}

int append_file(const std::string& path, const char* text) {
    FILE* stream = stream_of(open_regular_file(path, O_RDWR | O_CREAT | O_APPEND), "a+");
    if (stream == nullptr) {
        const int reason = errno;
        gripe(filled(COULD_NOT_APPEND, path.c_str(), reason), reason);
    }
    return write_and_close(stream, text);
}

int copy_file(const std::string& source, const std::string& destination) {
    FILE* out = stream_of(open_regular_file(destination, O_RDWR | O_CREAT | O_TRUNC), "w+");
    if (out == nullptr) gripe_not_moved(End::DESTINATION, source, destination);
    FILE* in = stream_of(open_regular_file(source, O_RDONLY), "r");
    if (in == nullptr) gripe_not_moved(End::SOURCE, source, destination);
    std::array<char, COPY_CHUNK> chunk;
    bool copied = true;
    while (const std::size_t got = std::fread(chunk.data(), 1, chunk.size(), in)) {
        const std::string_view text = c_text({chunk.data(), got});
        copied = copied && std::fwrite(text.data(), 1, text.size(), out) == text.size();
    }
    copied = copied && std::ferror(in) == 0;
    std::fclose(in);
    return std::fclose(out) == 0 && copied ? 0 : EOF;
}

void move_file(const std::string& source, const std::string& destination) {
    // The source is removed only after a complete copy.
    if (copy_file(source, destination) != 0) gripe_not_moved(End::DESTINATION, source, destination);
    unlink_remove(source);
}

int make_public(const std::string& path) {
    return chmod(path.c_str(), 0666);
}

int make_fully_readable(const std::string& path) {
    return chmod(path.c_str(), 0444);
}

bool cmp_files(const std::string& path1, const std::string& path2) {
    struct stat status1;
    struct stat status2;
    if (stat(path1.c_str(), &status1) != 0 || stat(path2.c_str(), &status2) != 0) return false;
    if (status1.st_size != status2.st_size || status1.st_size == 0) return false;
    FILE* one = stream_of(open_regular_file(path1, O_RDONLY), "rb");
    FILE* other = stream_of(open_regular_file(path2, O_RDONLY), "rb");
    const bool same = one != nullptr && other != nullptr && same_bytes(one, other, status1.st_size);
    if (one != nullptr) std::fclose(one);
    if (other != nullptr) std::fclose(other);
    return same;
}

std::string& STRING_UPPER(std::string& text) {
    std::transform(text.begin(), text.end(), text.begin(), upper);
    return text;
}

const char* zul_strstri(const char* haystack, const char* needle) {
    if (const char* exact = std::strstr(haystack, needle)) return exact;
    std::string lower_haystack = haystack;
    std::string lower_needle = needle;
    const std::size_t place = STRING_LOWER(lower_haystack).find(STRING_LOWER(lower_needle));
    return place == std::string::npos ? nullptr : haystack + place;
}

std::string* escaped_quoted_string(std::string& text) {
    if (text.find('"') == std::string::npos) return nullptr;
    for (std::size_t at = text.find('"'); at != std::string::npos; at = text.find('"', at + 2)) {
        text.insert(at, 1, '\\');
    }
    return &text;
}

std::string make_cache_file(const char* part1, const char* part2) {
    return make_tfile("cache", part1, part2);
}

bool is_ucm_vob(const std::string& vob_tag) {
    std::fflush(stdout);
    FILE* listing = popen(filled("cleartool lsvob %s", vob_tag.c_str()).c_str(), "r");
    if (listing == nullptr) return false;
    char* line = nullptr;
    std::size_t capacity = 0;
    bool found = false;
    while (getline(&line, &capacity, listing) >= 0) {
        found = found || std::string_view(line).find("(ucmvob") != std::string_view::npos;
    }
    std::free(line);
    pclose(listing);
    return found;
}

unsigned zul_sleep(unsigned seconds) {
    return sleep(seconds);
}

std::optional<std::string> prompt_from_file(const std::string& prompt_text,
                                            const std::string& default_text) {
    const AnswerFile answer(prompt_result_path());
    const std::string default_file =
        make_tfile("gatewarden_prompt_prompt", GLOBAL_PID_STRING.c_str(), nullptr);
    append_default(default_file, default_text);
    auto typed =
        ask_for_words(filled(PROMPT_FROM_FILE_LINE, CLEARPROMPT, quoted(answer.path()).c_str(),
                             quoted(default_file).c_str(), newline_option(prompt_text).c_str(),
                             quoted(prompt_text).c_str()),
                      prompt_text, answer);
    remove_temporary_file(default_file);
    return typed;
}

void show_file_with_clearprompt(const std::string& title, const std::string& file, bool errors) {
    const AnswerFile answer(prompt_result_path());
    const std::string full_title =
        filled(SHOW_FILE_TITLE, title.c_str(), errors ? "one or more " : "NO ",
               errors ? "displayed near bottom " : "");
    run_dialog(filled(SHOW_FILE_LINE, CLEARPROMPT, quoted(answer.path()).c_str(),
                      quoted(file).c_str(), quoted(full_title).c_str()),
               filled("%s\n%s", full_title.c_str(), file.c_str()), NOT_SHOWN);
}

}  // namespace gatescope
