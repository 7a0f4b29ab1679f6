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

// Command lines; the texts in them come quoted already.

/// CLEARPROMPT, newline option, message.
constexpr char GRIPE_LINE[] = "%s yes_no -mask abort -def abort -pre %s -pro %s &";
/// CLEARPROMPT, newline option, message, then "" to wait or " &" not to.
constexpr char ADVISE_LINE[] = "%s yes_no -mask yes -def yes -pre %s -pro %s%s";
/// CLEARPROMPT, mask, default, newline option, message.
constexpr char ASK_LINE[] = "%s yes_no -mask %s -def %s -pre %s -pro %s";

/// As of diff and grep.
constexpr int STATUS_OF_TROUBLE = 2;

const char* word_for(Answer answer) {
    return ANSWER_WORDS[answer];
}

const char* words_for(Buttons buttons) {
    return BUTTON_WORDS[static_cast<std::size_t>(buttons)];
}

bool has_one_button(Buttons mask) {
    return mask == Buttons::YES || mask == Buttons::NO || mask == Buttons::ABORT;
}

/// gripe, with `more` on standard error: with the message that goes elsewhere, or in its place.
[[noreturn]] void gripe_saying_more(const std::string& message, const std::string& more) {
    if (ZUL_PREFER_GUI == ERRORS_ALONE) gripe(more);
    note(more);
    gripe(message);
}

/// The shell's status comes unshifted: exit status 1 is 256, and 255 is read as yes.
Answer decoded_status(int status) {
    switch (status) {
        case 0:
        case 255:
            return YES;
        case 1:
        case 256:
            return NO;
        default:
            return ABORT;
    }
}

}  // namespace

int status_of_an_error() {
    return ZUL_PREFER_GUI == ERRORS_ALONE ? STATUS_OF_TROUBLE : STATUS_OF_AN_ERROR;
}

void gripe(const std::string& message) {
    if (ZUL_PREFER_GUI == ERRORS_ALONE) {
        note(harmless(message), HISTORY_PROGRAM);
    } else if (ZUL_PREFER_GUI) {
        run_dialog(filled(GRIPE_LINE, CLEARPROMPT, newline_option(message).c_str(),
                          quoted(message).c_str()),
                   message, NOT_SHOWN);
    } else {
        print_stdout(filled("%s\n", message.c_str()));
    }
    clean_exit(status_of_an_error());
}

void gripe(const std::string& message, int error) {
    const std::string line = message.substr(0, message.find_last_not_of('\n') + 1);
    gripe_saying_more(message, filled("%s: %s", line.c_str(), std::strerror(error)));
}

void gripe(const std::string& message, const std::string& path, int error) {
    gripe_saying_more(message,
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
        print_stdout(filled(ACCEPTED_LINE, message.c_str(), word_for(def)));
        return def;
    }
    return decoded_status(
        run_dialog(filled(ASK_LINE, CLEARPROMPT, words_for(mask), word_for(def),
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
