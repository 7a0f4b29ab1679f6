#include "dialog/confirmations.h"

#include <cstdlib>

#include "base/filled.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "messages/confirmation_texts.h"
#include "messages/environment.h"

namespace gatescope {
namespace {

constexpr std::size_t SHOWN_CHARACTERS = 80;

Change cut(const Change& change) {
    return {cut_for_dialog(change.item), cut_for_dialog(change.from), cut_for_dialog(change.to)};
}

Consent consent_to(std::string question) {
    double_amp_string(question);
    switch (ask(question, Answer::NO)) {
        case Answer::YES:
            return Consent::CONFIRMED;
        case Answer::NO:
            return Consent::DECLINED;
        default:
            return Consent::ABORTED;
    }
}

void report(std::string text) {
    if (std::getenv(ENV_VERBOSITY) == nullptr) return;
    double_amp_string(text);
    ask(text, Answer::YES, Buttons::YES);
}

}  // namespace

std::string cut_for_dialog(const std::string& value) {
    std::string text(c_text(value));
    if (text.size() < SHOWN_CHARACTERS) return text;
    return text.substr(0, SHOWN_CHARACTERS) + CUT_MARK;
}

Consent confirm_change(const Change& change, const std::string& warnings) {
    if (change.to == change.from) return consent_to(SAME_VALUE);
    const auto [item, from, to] = cut(change);
    return consent_to(filled(CONFIRM_CHANGE_OF, item.c_str(), from.c_str(), to.c_str()) + warnings);
}

Consent confirm_add(const Change& change, Addition kind) {
    if (kind == Addition::ALIAS) {
        return consent_to(filled(CONFIRM_ADDITION_OF_ALIAS, change.from.c_str()));
    }
    const bool setting = kind == Addition::SETTING;
    const Change shown = cut(change);
    return consent_to(filled(CONFIRM_ADDITION_OF, setting ? "/change" : "", change.item.c_str(),
                             shown.from.c_str(), setting ? "" : "=", shown.to.c_str()));
}

Consent confirm_delete(const Change& change) {
    return consent_to(
        filled(CONFIRM_DELETION_OF, change.item.c_str(), cut_for_dialog(change.from).c_str()));
}

void change_confirmed(const Change& change) {
    const auto [item, from, to] = cut(change);
    report(filled(CHANGED, item.c_str(), from.c_str(), to.c_str()));
}

void add_confirmed(const Change& change) {
    const auto [item, from, to] = cut(change);
    report(filled(ADDED, item.c_str(), from.c_str(), to.c_str()));
}

void add_confirmed_alias(const std::string& definition) {
    report(filled(ADDED_ALIAS, definition.c_str()));
}

void delete_confirmed(const Change& change) {
    const Change shown = cut(change);
    report(filled(DELETED, shown.item.c_str(), shown.from.c_str()));
}

}  // namespace gatescope
