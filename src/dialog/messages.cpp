#include "dialog/messages.h"

#include <cstring>
#include <string_view>

#include "base/filled.h"
#include "base/process_end.h"
#include "base/standard_streams.h"
#include "dialog/clearprompt.h"
#include "messages/dialog_texts.h"
#include "messages/identity.h"

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

/// The answer that the default's first letter stands for.
Answer preset_answer(const std::string& def) {
    switch (def.empty() ? '\0' : def.front()) {
        case 'y':
            return YES;
        case 'n':
            return NO;
        case 'a':
            return ABORT;
        default:
            gripe_uncoded("ask");
    }
}

bool has_one_button(const std::string& mask) {
    return mask == "yes" || mask == "no" || mask == "abort";
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

void gripe(const std::string& message) {
    if (ZUL_PREFER_GUI) {
        run_dialog(filled(GRIPE_LINE, CLEARPROMPT, newline_option(message).c_str(),
                          quoted(message).c_str()),
                   message, NOT_SHOWN);
    } else {
        print_stdout(filled("%s\n", message.c_str()));
    }
    clean_exit(99);
}

void gripe(const std::string& message, int error) {
    const std::string line = message.substr(0, message.find_last_not_of('\n') + 1);
    note(filled("%s: %s", line.c_str(), std::strerror(error)));
    gripe(message);
}

void gripe(const std::string& message, const std::string& path, int error) {
    note(filled("%s: %s: %s", message.c_str(), path.c_str(), std::strerror(error)));
    gripe(message);
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

Answer ask(const std::string& message, const char* def, const char* mask) {
    const std::string buttons = mask != nullptr ? mask : default_mask;
    const std::string chosen = def != nullptr ? def : default_default;
    const Answer preset = preset_answer(chosen);
    if (!ZUL_PREFER_GUI && has_one_button(buttons)) {
        print_stdout(filled(ACCEPTED_LINE, message.c_str(), chosen.c_str()));
        return preset;
    }
    return decoded_status(
        run_dialog(filled(ASK_LINE, CLEARPROMPT, buttons.c_str(), chosen.c_str(),
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
