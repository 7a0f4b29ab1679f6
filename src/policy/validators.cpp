#include "policy/validators.h"

#include <sys/stat.h>

#include <algorithm>
#include <span>

#include "base/filled.h"
#include "base/run_identity.h"
#include "base/text.h"
#include "messages/identity.h"
#include "messages/validator_texts.h"
#include "policy/aliases.h"

namespace gatescope {
namespace {

constexpr int MAX_FIELD_VALUE = 256;

/// A value to be checked.
struct Candidate {
    std::string value;
    std::string os = {};
    /// For the notify program only: the UNIX depot.
    std::string depot = {};
};

struct Check {
    Validity (*validity)(const Check& check, const Candidate& candidate);
    const char* item = "";
    const char* kind = "";
    int maximum = 0;
};

Validity accepted() {
    return {};
}

enum class FileKind { NONE, DIRECTORY, OTHER };

FileKind file_kind_at(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return FileKind::NONE;
    return S_ISDIR(status.st_mode) ? FileKind::DIRECTORY : FileKind::OTHER;
}

Validity length(const Check& check, const Candidate& candidate) {
    return item_value_exceeds_max_character_size(check.item, candidate.value, check.maximum);
}

Validity path_characters(const Check& check, const Candidate& candidate) {
    return value_contains_file_dir_OS_posion(candidate.value, check.item, check.kind, candidate.os);
}

Validity end_of_path(const Check& check, const Candidate& candidate) {
    return value_ends_in_OS_dir_char(candidate.value, check.item, candidate.os);
}

Validity comma_or_semi(const Check& check, const Candidate& candidate) {
    return value_has_comma_or_semi(candidate.value, check.item);
}

Validity directory_is_there(const Check&, const Candidate& candidate) {
    if (candidate.os != THIS_OS) return accepted();
    const FileKind found = file_kind_at(candidate.value);
    if (found == FileKind::DIRECTORY) return accepted();
    const char* path = candidate.value.c_str();
    return found == FileKind::NONE ? filled(DEPOT_DOES_NOT_EXIST, path)
                                   : filled(DEPOT_IS_A_FILE, path);
}

Validity parent_is_there(const Check&, const Candidate& candidate) {
    if (candidate.os != THIS_OS) return accepted();
    const FileKind found = file_kind_at(candidate.value);
    if (found == FileKind::OTHER) return accepted();
    const char* path = candidate.value.c_str();
    return found == FileKind::NONE ? filled(PARENT_DOES_NOT_EXIST, path)
                                   : filled(PARENT_IS_A_DIRECTORY, path);
}

Validity program_is_in_depot(const Check&, const Candidate& candidate) {
    if (candidate.os != THIS_OS) return accepted();
    const FileKind found = file_kind_at(candidate.depot + DIR_DELIMETER + candidate.value);
    if (found == FileKind::OTHER) return accepted();
    const char* program = candidate.value.c_str();
    return found == FileKind::NONE ? filled(NOTIFY_DOES_NOT_EXIST, program)
                                   : filled(NOTIFY_IS_A_DIRECTORY, program);
}

/// `check.item` is the message.
Validity semi(const Check& check, const Candidate& candidate) {
    return holds_any_of(candidate.value.c_str(), ";") ? Validity(check.item) : accepted();
}

/// `check.item` is the message.
Validity emptiness(const Check& check, const Candidate& candidate) {
    return candidate.value.empty() ? Validity(check.item) : accepted();
}

Validity name_characters(const Check&, const Candidate& candidate) {
    return holds_only(candidate.value.c_str(), VALID_ALIAS_NAME_CHAR)
               ? accepted()
               : Validity(ALIAS_NAME_CHARACTERS);
}

constexpr Check DEPOT_CHECKS[] = {
    {length, DEPOT_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {path_characters, DEPOT_ITEM, DIRECTORY_KIND},
    {end_of_path, DEPOT_ITEM},
    {directory_is_there},
};
constexpr Check PARENT_CHECKS[] = {
    {length, PARENT_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {path_characters, PARENT_ITEM, FILE_KIND},
    {end_of_path, PARENT_END_ITEM},
    {parent_is_there},
};
constexpr Check NOTIFY_CHECKS[] = {
    {length, NOTIFY_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {path_characters, NOTIFY_ITEM, FILE_KIND},
    {end_of_path, NOTIFY_ITEM},
    {program_is_in_depot},
};
constexpr Check LIST_CHECKS[] = {
    {length, LIST_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {comma_or_semi, LIST_ITEM},
};
constexpr Check MOTD_CHECKS[] = {
    {length, MOTD_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {semi, MOTD_HAS_SEMI},
};
constexpr Check MOTD_LIST_CHECKS[] = {
    {length, MOTD_LIST_SIZE_ITEM, "", MAX_FIELD_VALUE},
    {semi, MOTD_LIST_HAS_SEMI},
};
constexpr Check ALIAS_VALUE_CHECKS[] = {
    {emptiness, ALIAS_VALUE_EMPTY},
    {length, ALIAS_VALUE_ITEM, "", MAX_ALIAS_VALUE},
    {comma_or_semi, ALIAS_ITEM},
};
constexpr Check ALIAS_NAME_CHECKS[] = {
    {emptiness, ALIAS_NAME_EMPTY},
    {length, ALIAS_NAME_ITEM, "", MAX_ALIAS_NAME},
    {name_characters},
};

Validity first_rejection(std::span<const Check> checks, Candidate candidate) {
    candidate.value = c_text(candidate.value);
    for (const Check& check : checks) {
        const Validity validity = check.validity(check, candidate);
        if (!validity.accepted()) return validity;
    }
    return accepted();
}

/// Accepts an empty value, which clears the field.
Validity empty_or_checked(std::span<const Check> checks, const Candidate& candidate) {
    return c_text(candidate.value).empty() ? accepted() : first_rejection(checks, candidate);
}

}  // namespace

Validity item_value_exceeds_max_character_size(const char* item, const std::string& value,
                                               int maximum) {
    if (c_text(value).size() <= static_cast<std::size_t>(maximum)) return accepted();
    return filled(VALUE_TOO_LONG, item, maximum);
}

Validity value_contains_file_dir_OS_posion(const std::string& value, const char* item,
                                           const char* kind, const std::string& os) {
    const bool windows = os == WINDOWS_OS;
    if (!holds_any_of(value.c_str(), windows ? ",;/" : ",;\\")) return accepted();
    return windows ? filled(WINDOWS_PATH_POISONED, item, kind, value.c_str())
                   : filled(UNIX_PATH_POISONED, item, kind, value.c_str());
}

Validity value_has_comma_or_semi(const std::string& value, const char* item) {
    if (!holds_any_of(value.c_str(), ",;")) return accepted();
    return filled(VALUE_HAS_COMMA_OR_SEMI, item);
}

Validity value_ends_in_OS_dir_char(const std::string& value, const char* item,
                                   const std::string& os) {
    const char separator = os == WINDOWS_OS ? '\\' : DIR_DELIMETER;
    if (!c_text(value).ends_with(separator)) return accepted();
    return filled(PATH_ENDS_IN_SEPARATOR, item, separator, item, value.c_str());
}

Validity region_depot_is_ok(const std::string& value, const std::string& os) {
    return empty_or_checked(DEPOT_CHECKS, {value, os});
}

Validity region_parent_is_ok(const std::string& value, const std::string& os) {
    return empty_or_checked(PARENT_CHECKS, {value, os});
}

Validity region_notify_is_ok(const std::string& value, const std::string& os,
                             const Gatebits& gatebits) {
    return empty_or_checked(NOTIFY_CHECKS,
                            {value, os, field_or_empty(gatebits, DEPOT_LINE, UNIX_FIELD)});
}

Validity region_list_is_ok(const std::string& value) {
    return empty_or_checked(LIST_CHECKS, {value});
}

Validity region_MOTD_is_ok(const std::string& value) {
    return empty_or_checked(MOTD_CHECKS, {value});
}

Validity region_MOTDL_is_ok(const std::string& value) {
    return empty_or_checked(MOTD_LIST_CHECKS, {value});
}

Validity alias_value_is_ok(const std::string& value) {
    return first_rejection(ALIAS_VALUE_CHECKS, {value});
}

Validity alias_name_is_ok(const std::string& name, const Aliases& others) {
    const Validity by_itself = first_rejection(ALIAS_NAME_CHECKS, {name});
    if (!by_itself.accepted()) return by_itself;
    const auto begin = others.ALIAS_NAME.begin();
    const auto end = begin + others.number_of_aliases;
    if (std::find(begin, end, std::string(c_text(name))) == end) return accepted();
    return filled(ALIAS_NAME_EXISTS, name.c_str());
}

}  // namespace gatescope
