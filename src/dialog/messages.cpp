#include "dialog/messages.h"

#include <cstring>
#include <string_view>

#include "base/exit_status.h"
#include "base/filled.h"
#include "base/standard_streams.h"
#include "base/utf8.h"
#include "dialog/clearprompt.h"
#include "dialog/process_end.h"
#include "messages/dialog_texts.h"
#include "messages/history_texts.h"
#include "messages/identity.h"

namespace gatescope {

int ZUL_PREFER_GUI = 1;
int ZUL_REMOTE_CLIENT_USER = 0;

namespace {

// Command lines; their texts must be quoted.

/// CLEARPROMPT, newline option, message.
constexpr char GRIPE_LINE[] = "%s yes_no -mask abort -def abort -pre %s -pro %s &";
/// CLEARPROMPT, newline option, message, then "" to wait or " &" not to.
constexpr char ADVISE_LINE[] = "%s yes_no -mask yes -def yes -pre %s -pro %s%s";
/// CLEARPROMPT, mask, default, newline option, message.
constexpr char ASK_LINE[] = "%s yes_no -mask %s -def %s -pre %s -pro %s";

/// The status of an error of gatescope-history, as of diff and grep.
constexpr int STATUS_HISTORY_ERROR = 2;

const char* answer_word(Answer answer) {
    return ANSWER_WORDS[static_cast<std::size_t>(answer)];
}

const char* button_words(Buttons buttons) {
    return BUTTON_WORDS[static_cast<std::size_t>(buttons)];
}

bool has_one_button(Buttons mask) {
    return mask == Buttons::YES || mask == Buttons::NO || mask == Buttons::ABORT;
}

/// gripe, with `details` on standard error; in ERRORS_ON_STDERR mode `details` alone.
[[noreturn]] void gripe_with_details(const std::string& message, const std::string& details) {
    if (ZUL_PREFER_GUI == ERRORS_ON_STDERR) gripe(details);
    note(details);
    gripe(message);
}

/// `status` is a wait status: exit status 1 is 256. 255 counts as yes.
Answer decoded_status(int status) {
    switch (status) {
        case 0:
        case 255:
            return Answer::YES;
        case 1:
        case 256:
            return Answer::NO;
        default:
            return Answer::ABORT;
    }
}

}  // namespace

int error_status() {
    return ZUL_PREFER_GUI == ERRORS_ON_STDERR ? STATUS_HISTORY_ERROR : STATUS_ERROR;
}

void gripe(const std::string& message) {
    if (ZUL_PREFER_GUI == ERRORS_ON_STDERR) {
        note(harmless(message), HISTORY_PROGRAM);
    } else if (ZUL_PREFER_GUI) {
        run_dialog(filled(GRIPE_LINE, CLEARPROMPT, newline_option(message).c_str(),
                          quoted(message).c_str()),
                   message, NOT_SHOWN);
    } else {
        print_stdout(filled("%s\n", message.c_str()));
    }
    clean_exit(error_status());
}

void gripe(const std::string& message, int error) {
    const std::string line = message.substr(0, message.find_last_not_of('\n') + 1);
    gripe_with_details(message, filled("%s: %s", line.c_str(), std::strerror(error)));
}

void gripe(const std::string& message, const std::string& path, int error) {
    gripe_with_details(message,
                       filled("%s: %s: %s", message.c_str(), path.c_str(), std::strerror(error)));
}

void gripe_uncoded(const std::string& place) {
    gripe(filled(UNEXPECTED_CASE, SELF, place.c_str()));
}

void advise(const std::string& message) {
    if (!ZUL_PREFER_GUI) return print_stdout(filled("%s\n", message.c_str()));
    run_dialog(filled(ADVISE_LINE, CLEARPROMPT, newline_option(message).c_str(),
                      quoted(message).c_str(), ZUL_REMOTE_CLIENT_USER ? "" : " &"),
               message, NOT_SHOWN);
}

void advise_wait(const std::string& message) {
    if (!ZUL_PREFER_GUI) return print_stdout(filled("%s\n", message.c_str()));
    run_dialog(filled(ADVISE_LINE, CLEARPROMPT, newline_option(message).c_str(),
                      quoted(message).c_str(), ""),
               message, NOT_SHOWN);
}

Answer ask(const std::string& message, Answer def, Buttons mask) {
    if (!ZUL_PREFER_GUI && has_one_button(mask)) {
        print_stdout(filled(ACCEPTED_LINE, message.c_str(), answer_word(def)));
        return def;
    }
    return decoded_status(
        run_dialog(filled(ASK_LINE, CLEARPROMPT, button_words(mask), answer_word(def),
                          newline_option(message).c_str(), quoted(message).c_str()),
                   message, NOT_ASKED_SO_ABORT));
}

void print_stdout(const std::string& text) {
    const std::string_view rest = c_text(text);
    std::string printed;
    for (std::size_t i = 0; i < rest.size(); ++i) {
        printed += rest[i];
        if (rest.substr(i, 2) == "%%") ++i;
    }
    write_output(printed);
}

}  // namespace gatescope
