#include "policy/validators.h"

#include <sys/stat.h>

#include <algorithm>
#include <span>

#include "base/filled.h"
#include "base/process_end.h"
#include "base/startup.h"
#include "base/text.h"
#include "messages/identity.h"
#include "messages/validator_texts.h"
#include "policy/aliases.h"
#include "policy/gatebits_file.h"

namespace {

constexpr int MAX_FIELD_VALUE = 256;

struct Entered {
    std::string value;
    std::string os;
};

/// One check of a validator: `rejects` says whether the value fails it, and then has set TMSG.
struct Check {
    bool (*rejects)(const Check& check, const Entered& entered);
    const char* item = "";
    const char* kind = "";
    int maximum = 0;
};

bool reject(const std::string& message) {
    TMSG = message;
    return true;
}

enum class OnDisk { NOTHING, DIRECTORY, OTHER };

OnDisk what_is_at(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return OnDisk::NOTHING;
    return S_ISDIR(status.st_mode) ? OnDisk::DIRECTORY : OnDisk::OTHER;
}

bool is_too_long(const Check& check, const Entered& entered) {
    return item_value_exceeds_max_character_size_set_TMSG(check.item, entered.value,
                                                          check.maximum) == 1;
}

bool is_poisoned(const Check& check, const Entered& entered) {
    return value_contains_file_dir_OS_posion_set_TMSG(entered.value, check.item, check.kind,
                                                      entered.os) == 1;
}

bool has_separator_at_end(const Check& check, const Entered& entered) {
    return value_ends_in_OS_dir_char_set_TMSG(entered.value, check.item, entered.os) == 1;
}

bool has_comma_or_semi(const Check& check, const Entered& entered) {
    return value_has_comma_or_semi_set_TMSG(entered.value, check.item) == 1;
}

bool is_no_directory(const Check&, const Entered& entered) {
    if (entered.os != THIS_OS) return false;
    const OnDisk found = what_is_at(entered.value);
    if (found == OnDisk::DIRECTORY) return false;
    const char* path = entered.value.c_str();
    return reject(found == OnDisk::NOTHING ? filled(DEPOT_DOES_NOT_EXIST, path)
                                           : filled(DEPOT_IS_A_FILE, path));
}

bool is_no_parent_file(const Check&, const Entered& entered) {
    if (entered.os != THIS_OS) return false;
    const OnDisk found = what_is_at(entered.value);
    if (found == OnDisk::OTHER) return false;
    const char* path = entered.value.c_str();
    return reject(found == OnDisk::NOTHING ? filled(PARENT_DOES_NOT_EXIST, path)
                                           : filled(PARENT_IS_A_DIRECTORY, path));
}

bool is_no_program_in_depot(const Check&, const Entered& entered) {
    if (entered.os != THIS_OS) return false;
    const OnDisk found = what_is_at(field_or_empty(DEPOT_LINE, 2) + DIR_DELIMETER + entered.value);
    if (found == OnDisk::OTHER) return false;
    const char* program = entered.value.c_str();
    return reject(found == OnDisk::NOTHING ? filled(NOTIFY_DOES_NOT_EXIST, program)
                                           : filled(NOTIFY_IS_A_DIRECTORY, program));
}

/// `check.item` is the message.
bool has_semi(const Check& check, const Entered& entered) {
    return unhealthy(entered.value.c_str(), ";") && reject(check.item);
}

/// `check.item` is the message.
bool is_empty(const Check& check, const Entered& entered) {
    return entered.value.empty() && reject(check.item);
}

bool has_other_than_name_characters(const Check&, const Entered& entered) {
    return !healthy(entered.value.c_str(), VALID_ALIAS_NAME_CHAR) && reject(ALIAS_NAME_CHARACTERS);
}

bool is_taken(const Check&, const Entered& entered) {
    const auto end = ALIAS_NAME.begin() + number_of_aliases;
    if (std::find(ALIAS_NAME.begin(), end, entered.value) == end) return false;
    return reject(filled(ALIAS_NAME_EXISTS, entered.value.c_str()));
}

constexpr Check DEPOT_CHECKS[] = {
    {is_too_long, DEPOT_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {is_poisoned, DEPOT_ITEM, DIRECTORY_KIND},
    {has_separator_at_end, DEPOT_ITEM},
    {is_no_directory},
};
constexpr Check PARENT_CHECKS[] = {
    {is_too_long, PARENT_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {is_poisoned, PARENT_ITEM, FILE_KIND},
    {has_separator_at_end, PARENT_END_ITEM},
    {is_no_parent_file},
};
constexpr Check NOTIFY_CHECKS[] = {
    {is_too_long, NOTIFY_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {is_poisoned, NOTIFY_ITEM, FILE_KIND},
    {has_separator_at_end, NOTIFY_ITEM},
    {is_no_program_in_depot},
};
constexpr Check LIST_CHECKS[] = {
    {is_too_long, LIST_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {has_comma_or_semi, LIST_ITEM},
};
constexpr Check MOTD_CHECKS[] = {
    {is_too_long, MOTD_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {has_semi, MOTD_HAS_SEMI},
};
constexpr Check MOTD_LIST_CHECKS[] = {
    {is_too_long, MOTD_LIST_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {has_semi, MOTD_LIST_HAS_SEMI},
};
constexpr Check ALIAS_VALUE_CHECKS[] = {
    {is_empty, ALIAS_VALUE_EMPTY},
    {is_too_long, ALIAS_VALUE_ITEM, "", MAX_ALIAS_VALUE},
    {has_comma_or_semi, ALIAS_ITEM},
};
constexpr Check ALIAS_NAME_CHECKS[] = {
    {is_empty, ALIAS_NAME_EMPTY},
    {is_too_long, ALIAS_NAME_ITEM, "", MAX_ALIAS_NAME},
    {has_other_than_name_characters},
    {is_taken},
};

int passes(std::span<const Check> checks, const std::string& value, const std::string& os = "") {
    const Entered entered = {std::string(c_text(value)), os};
    for (const Check& check : checks) {
        if (check.rejects(check, entered)) return 0;
    }
    return 1;
}

/// An empty value clears the field, whatever the field holds.
int clears_or_passes(std::span<const Check> checks, const std::string& value,
                     const std::string& os = "") {
    return c_text(value).empty() ? 1 : passes(checks, value, os);
}

}  // namespace

int item_value_exceeds_max_character_size_set_TMSG(const char* item, const std::string& value,
                                                   int maximum) {
    if (c_text(value).size() <= static_cast<std::size_t>(maximum)) return 0;
    TMSG = filled(VALUE_TOO_LONG, item, maximum);
    return 1;
}

int value_contains_file_dir_OS_posion_set_TMSG(const std::string& value, const char* item,
                                               const char* kind, const std::string& os) {
    const bool windows = os == WINDOWS_OS;
    if (!unhealthy(value.c_str(), windows ? ",;/" : ",;\\")) return 0;
    TMSG = windows ? filled(WINDOWS_PATH_POISONED, item, kind, value.c_str())
                   : filled(UNIX_PATH_POISONED, item, kind, value.c_str());
    return 1;
}

int value_has_comma_or_semi_set_TMSG(const std::string& value, const char* item) {
    if (!unhealthy(value.c_str(), ",;")) return 0;
    TMSG = filled(VALUE_HAS_COMMA_OR_SEMI, item);
    return 1;
}

int value_ends_in_OS_dir_char_set_TMSG(const std::string& value, const char* item,
                                       const std::string& os) {
    const char separator = os == WINDOWS_OS ? '\\' : DIR_DELIMETER;
    if (!c_text(value).ends_with(separator)) return 0;
    TMSG = filled(PATH_ENDS_IN_SEPARATOR, item, separator, item, value.c_str());
    return 1;
}

int region_depot_is_ok(const std::string& value, const std::string& os) {
    return clears_or_passes(DEPOT_CHECKS, value, os);
}

int region_parent_is_ok(const std::string& value, const std::string& os) {
    return clears_or_passes(PARENT_CHECKS, value, os);
}

int region_notify_is_ok(const std::string& value, const std::string& os) {
    return clears_or_passes(NOTIFY_CHECKS, value, os);
}

int region_list_is_ok(const std::string& value) {
    return clears_or_passes(LIST_CHECKS, value);
}

int region_MOTD_is_ok(const std::string& value) {
    return clears_or_passes(MOTD_CHECKS, value);
}

int region_MOTDL_is_ok(const std::string& value) {
    return clears_or_passes(MOTD_LIST_CHECKS, value);
}

int alias_value_is_ok(const std::string& value) {
    return passes(ALIAS_VALUE_CHECKS, value);
}

int alias_name_is_ok(const std::string& name) {
    return passes(ALIAS_NAME_CHECKS, name);
}
