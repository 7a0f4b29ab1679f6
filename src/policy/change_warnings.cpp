#include "policy/change_warnings.h"

#include <cstring>
#include <vector>

#include "base/filled.h"
#include "base/text.h"
#include "messages/confirmation_texts.h"
#include "messages/identity.h"

namespace gatescope {
namespace {

/// The field of a command key that begins with '0' if the key does not refer to the notify program.
constexpr int KEY_NOTIFY_FIELD = 6;
/// Keys listed before the dots, and maximum length of each.
constexpr std::size_t FIRST_KEYS_LISTED = 3;
constexpr std::size_t LISTED_CHARACTERS = 80;

/// The name of the field up to its dots.
std::string bare_item(const NewValue& value) {
    return value.item.substr(0, value.item.find(CUT_MARK));
}

std::string warning_of_cleared_parent(const Gatebits& gatebits, const NewValue& depot) {
    const std::string parent = field_or_empty(gatebits, PARENT_LINE, depot.field);
    if (parent.empty()) return "";
    return filled(CLEARS_PARENT, bare_item(depot).c_str(), depot.os, parent.c_str());
}

std::string warning_of_cleared_notify(const Gatebits& gatebits, const NewValue& depot) {
    const std::string notify = field_or_empty(gatebits, NOTIFY_LINE, depot.field);
    if (notify.empty()) return "";
    return filled(CLEARS_NOTIFY, bare_item(depot).c_str(), depot.os, notify.c_str());
}

/// Shows the third field of the header line, not of the depot line, which has the logging
/// personality: the warning must not change.
std::string warning_of_cleared_logging(const Gatebits& gatebits, const NewValue& depot) {
    const auto other_depot = get_a_field(gatebits, DEPOT_LINE, other_field(depot.field));
    const auto logging = get_a_field(gatebits, HEADER_LINE, 3);
    if (!other_depot || !logging) return "";
    if (!other_depot->empty() || logging->starts_with('O')) return "";
    return filled(CLEARS_LOGGING, logging->substr(0, 1).c_str());
}

/// Whether the new value is a path of the other system.
bool is_foreign_path(const NewValue& path) {
    return !path.value.empty() && std::strcmp(path.os, THIS_OS) != 0;
}

/// Numbers, from 1, of the command keys that refer to the notify program. A key without that field
/// ends the search.
std::vector<int> referring_keys(const Gatebits& gatebits) {
    std::vector<int> numbers;
    for (int key = 1;; ++key) {
        const auto field = get_a_field(gatebits, FIRST_KEY_LINE - 1 + key, KEY_NOTIFY_FIELD);
        if (!field) return numbers;
        if (!field->starts_with('0')) numbers.push_back(key);
    }
}

/// One line of the list of keys. An '&' after the fifth ';' marks KEY_NOTIFY_FIELD. Each '&' of the
/// key is doubled here, and again with the whole question.
std::string listed_key(const Gatebits& gatebits, int number) {
    std::string line = get_a_line(gatebits, FIRST_KEY_LINE - 1 + number).value_or("");
    if (line.size() > LISTED_CHARACTERS) line = line.substr(0, LISTED_CHARACTERS) + CUT_KEY_MARK;
    double_amp_string(line);
    in_string__insert_this_char_after_nth_instance_of_that_char(line, '&', KEY_NOTIFY_FIELD - 1,
                                                                ';');
    return filled(LISTED_KEY, number, line.c_str());
}

/// The first three keys, dots for the omitted ones, and the last one.
std::string list_of_keys(const Gatebits& gatebits, const std::vector<int>& numbers) {
    std::string list;
    for (std::size_t i = 0; i < numbers.size() && i < FIRST_KEYS_LISTED; ++i) {
        list += listed_key(gatebits, numbers[i]);
    }
    if (numbers.size() > FIRST_KEYS_LISTED + 1) list += KEYS_LEFT_OUT;
    if (numbers.size() > FIRST_KEYS_LISTED) list += listed_key(gatebits, numbers.back());
    return list;
}

std::string warning_of_referring_keys(const Gatebits& gatebits, const NewValue& notify) {
    const std::vector<int> numbers = referring_keys(gatebits);
    if (numbers.empty()) return "";
    const int count = static_cast<int>(numbers.size());
    const KeyWords& words = count == 1 ? ONE_KEY : SEVERAL_KEYS;
    const std::string warning =
        notify.value.empty()
            ? filled(KEYS_REFERENCES_IGNORED, words.are, count, words.that_refer, words.those_keys)
            : filled(KEYS_WILL_REFER, words.are, count, words.plural, words.those_keys);
    return warning + list_of_keys(gatebits, numbers);
}

}  // namespace

std::string depot_warnings(const Gatebits& gatebits, const NewValue& depot) {
    if (depot.value.empty()) {
        return warning_of_cleared_parent(gatebits, depot) +
               warning_of_cleared_notify(gatebits, depot) +
               warning_of_cleared_logging(gatebits, depot);
    }
    return is_foreign_path(depot) ? filled(DEPOT_NOT_VERIFIED, OTHER_OS, THIS_OS) : "";
}

std::string parent_warnings(const Gatebits& /*gatebits*/, const NewValue& parent) {
    return is_foreign_path(parent) ? filled(PARENT_NOT_VERIFIED, OTHER_OS, THIS_OS) : "";
}

std::string notify_warnings(const Gatebits& gatebits, const NewValue& notify) {
    return warning_of_referring_keys(gatebits, notify) +
           (is_foreign_path(notify) ? filled(NOTIFY_NOT_VERIFIED, OTHER_OS, THIS_OS) : "");
}

std::string restricted_warnings(const Gatebits& /*gatebits*/, const NewValue& list) {
    return includes_all_cases(list.value) ? filled(EXTREMELY_RESTRICTIVE, WILDCARD_PATTERNS) : "";
}

std::string special_warnings(const Gatebits& /*gatebits*/, const NewValue& list) {
    return includes_all_cases(list.value) ? filled(EXTREMELY_PERMISSIVE, WILDCARD_PATTERNS) : "";
}

std::string key_reminder(const std::string& path) {
    return filled(VERIFY_REMINDER, path.c_str());
}

}  // namespace gatescope
