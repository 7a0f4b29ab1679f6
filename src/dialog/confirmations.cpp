#include "dialog/confirmations.h"

#include <cstdlib>
#include <vector>

#include "base/filled.h"
#include "base/process_end.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "messages/confirmation_texts.h"
#include "messages/environment.h"
#include "messages/identity.h"
#include "policy/gatebits_file.h"

std::string last_item;
std::string last_from;
std::string last_to;

namespace {

constexpr std::size_t SHOWN_CHARACTERS = 80;
/// A command key's field that says whether the key refers to the notify program ('0': no).
constexpr int KEY_NOTIFY_FIELD = 6;
/// Keys that a warning lists before it leaves some out.
constexpr std::size_t FIRST_KEYS_LISTED = 3;

/// A change that the operator is asked about; `bare_item` is the item's name up to its dots.
struct Change {
    std::string item;
    std::string bare_item;
    std::string to;
};

bool holds(const std::string& text, const char* word) {
    return text.find(word) != std::string::npos;
}

/// The column of the gatebits file that the item belongs to.
struct Column {
    const char* os;
    int field;
    int other_field;
};

Column column_of(const std::string& item) {
    return item.starts_with(WINDOWS_OS) ? Column{WINDOWS_OS, 1, 2} : Column{UNIX_OS, 2, 1};
}

std::string warning_of_cleared_parent(const Change& change) {
    const Column column = column_of(change.item);
    const std::string parent = field_or_empty(PARENT_LINE, column.field);
    if (parent.empty()) return "";
    return filled(CLEARS_PARENT, change.bare_item.c_str(), column.os, parent.c_str());
}

std::string warning_of_cleared_notify(const Change& change) {
    const Column column = column_of(change.item);
    const std::string notify = field_or_empty(NOTIFY_LINE, column.field);
    if (notify.empty()) return "";
    return filled(CLEARS_NOTIFY, change.bare_item.c_str(), column.os, notify.c_str());
}

/// Looks at the header line's third field, not at the depot line's where the personality is: the
/// warning has always come up by the one and spoken of the other.
std::string warning_of_cleared_logging(const Change& change) {
    std::string other_depot;
    std::string logging;
    if (get_a_field(DEPOT_LINE, column_of(change.item).other_field, &other_depot) == 0) return "";
    if (get_a_field(HEADER_LINE, 3, &logging) == 0) return "";
    if (!other_depot.empty() || logging.c_str()[0] == 'O') return "";
    return filled(CLEARS_LOGGING, logging.c_str()[0]);
}

/// Whether the new value is a path that cannot be looked at from here.
bool is_out_of_sight(const Change& change) {
    return !change.to.empty() && !holds(last_item, THIS_OS);
}

std::string depot_warnings(const Change& change) {
    if (change.to.empty()) {
        return warning_of_cleared_parent(change) + warning_of_cleared_notify(change) +
               warning_of_cleared_logging(change);
    }
    return is_out_of_sight(change) ? filled(DEPOT_NOT_VERIFIED, OTHER_OS, THIS_OS) : "";
}

std::string parent_warnings(const Change& change) {
    return is_out_of_sight(change) ? filled(PARENT_NOT_VERIFIED, OTHER_OS, THIS_OS) : "";
}

/// Numbers, from 1, of the command keys that refer to the notify program. A key too short to say
/// so ends the search.
std::vector<int> keys_that_refer() {
    std::vector<int> numbers;
    std::string field;
    for (int key = 1; get_a_field(FIRST_KEY_LINE - 1 + key, KEY_NOTIFY_FIELD, &field) == 1; ++key) {
        if (!field.starts_with('0')) numbers.push_back(key);
    }
    return numbers;
}

/// One line of the list of keys. The '&' behind the fifth ';' marks where the field is that says
/// so; those of the key itself are doubled here and, with the whole message, once more.
std::string listed_key(int number) {
    std::string line;
    get_a_line(FIRST_KEY_LINE - 1 + number, &line);
    if (line.size() > SHOWN_CHARACTERS) line = line.substr(0, SHOWN_CHARACTERS) + CUT_KEY_MARK;
    double_amp_string(line);
    in_string__insert_this_char_after_nth_instance_of_that_char(line, '&', KEY_NOTIFY_FIELD - 1,
                                                                ';');
    return filled(LISTED_KEY, number, line.c_str());
}

/// The first three keys, dots for those left out, and the last one.
std::string list_of_keys(const std::vector<int>& numbers) {
    std::string list;
    for (std::size_t i = 0; i < numbers.size() && i < FIRST_KEYS_LISTED; ++i) {
        list += listed_key(numbers[i]);
    }
    if (numbers.size() > FIRST_KEYS_LISTED + 1) list += KEYS_LEFT_OUT;
    if (numbers.size() > FIRST_KEYS_LISTED) list += listed_key(numbers.back());
    return list;
}

std::string warning_of_referring_keys(const Change& change) {
    const std::vector<int> numbers = keys_that_refer();
    if (numbers.empty()) return "";
    const int count = static_cast<int>(numbers.size());
    const KeyWords& words = count == 1 ? ONE_KEY : SEVERAL_KEYS;
    const std::string warning =
        change.to.empty()
            ? filled(KEYS_REFERENCES_IGNORED, words.are, count, words.that_refer, words.those_keys)
            : filled(KEYS_WILL_REFER, words.are, count, words.plural, words.those_keys);
    return warning + list_of_keys(numbers);
}

std::string notify_warnings(const Change& change) {
    return warning_of_referring_keys(change) +
           (is_out_of_sight(change) ? filled(NOTIFY_NOT_VERIFIED, OTHER_OS, THIS_OS) : "");
}

std::string restricted_warnings(const Change& change) {
    return includes_all_cases(change.to) ? filled(EXTREMELY_RESTRICTIVE, WILDCARD_PATTERNS) : "";
}

std::string special_warnings(const Change& change) {
    return includes_all_cases(change.to) ? filled(EXTREMELY_PERMISSIVE, WILDCARD_PATTERNS) : "";
}

std::string key_warnings(const Change&) {
    return filled(VERIFY_REMINDER, ENTERPRIZE_PERMISSION_FILE.c_str());
}

/// Which word in an item's name brings up which warnings; the first that fits decides.
constexpr struct {
    const char* word;
    std::string (*warnings)(const Change& change);
} WARNINGS[] = {
    {POLICY_DEPOT, depot_warnings},    {PARENT_FILE, parent_warnings},
    {NOTIFY_PROGRAM, notify_warnings}, {RESTRICTED_LIST, restricted_warnings},
    {SPECIAL_LIST, special_warnings},  {COMMAND_KEY, key_warnings},
};

std::string warnings_of(const Change& change) {
    for (const auto& row : WARNINGS) {
        if (holds(last_item, row.word)) return row.warnings(change);
    }
    return "";
}

/// Asks what TMSG holds.
int consent() {
    double_amp_string(TMSG);
    switch (ask(TMSG, "no", "yes,no,abort")) {
        case YES:
            return CONFIRMED;
        case NO:
            return DECLINED;
        default:
            return CHANGE_ABORTED;
    }
}

void report(const std::string& text) {
    if (std::getenv(ENV_VERBOSITY) == nullptr) return;
    TMSG = text;
    double_amp_string(TMSG);
    ask(TMSG, "yes", "yes");
}

}  // namespace

std::string cut_for_dialog(const std::string& value) {
    std::string text(c_text(value));
    if (text.size() < SHOWN_CHARACTERS) return text;
    return text.substr(0, SHOWN_CHARACTERS) + CUT_MARK;
}

int confirm_change(const std::string& item, const std::string& from, const std::string& to) {
    last_item = cut_for_dialog(item);
    last_from = cut_for_dialog(from);
    last_to = cut_for_dialog(to);
    if (to == from) {
        TMSG = SAME_VALUE;
    } else {
        const Change change = {item, item.substr(0, item.find(CUT_MARK)), to};
        TMSG = filled(CONFIRM_CHANGE_OF, last_item.c_str(), last_from.c_str(), last_to.c_str());
        TMSG += warnings_of(change);
    }
    return consent();
}

int confirm_add(const std::string& item, const std::string& first, const std::string& second) {
    last_item = cut_for_dialog(item);
    last_from = cut_for_dialog(first);
    last_to = cut_for_dialog(second);
    if (item == ALIAS_ADDITION) {
        TMSG = filled(CONFIRM_ADDITION_OF_ALIAS, first.c_str());
    } else {
        const bool variable = holds(item, GATESCOPE_VARIABLE);
        TMSG = filled(CONFIRM_ADDITION_OF, variable ? "/change" : "", item.c_str(),
                      last_from.c_str(), variable ? "" : "=", last_to.c_str());
    }
    return consent();
}

int confirm_delete(const std::string& item, const std::string& value) {
    last_item = cut_for_dialog(item);
    last_from = cut_for_dialog(value);
    TMSG = filled(CONFIRM_DELETION_OF, item.c_str(), last_from.c_str());
    return consent();
}

void change_confirmed() {
    report(filled(CHANGED, last_item.c_str(), last_from.c_str(), last_to.c_str()));
}

void add_confirmed() {
    report(filled(ADDED, last_item.c_str(), last_from.c_str(), last_to.c_str()));
}

void add_confirmed_alias(const std::string& definition) {
    report(filled(ADDED_ALIAS, definition.c_str()));
}

void delete_confirmed() {
    report(filled(DELETED, last_item.c_str(), last_from.c_str()));
}
