#include "fuzz/region_files.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "support/scratch_directory.h"

namespace gatescope {

namespace fs = std::filesystem;

namespace {

bool is_white(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

/// Removes "_" and a decimal number without leading zeros from the start of a name.
template <typename Number>
bool take_number(std::string_view* name, Number* number) {
    if (!name->starts_with("_")) return false;
    const char* const digits = name->data() + 1;
    const auto [end, error] = std::from_chars(digits, name->data() + name->size(), *number);
    const std::string_view taken(digits, static_cast<std::size_t>(end - digits));
    *name = name->substr(taken.size() + 1);
    return error == std::errc() && taken == std::to_string(*number) && !taken.starts_with("-");
}

}  // namespace

std::vector<std::string> words_of(const std::string& text) {
    std::vector<std::string> words;
    auto at = text.begin();
    while (true) {
        at = std::find_if_not(at, text.end(), is_white);
        if (at == text.end()) return words;
        const auto end = std::find_if(at, text.end(), is_white);
        words.emplace_back(std::string(at, end).c_str());
        at = end;
    }
}

Place place_at(const std::string& path) {
    const fs::file_type type = fs::symlink_status(path).type();
    if (type == fs::file_type::regular) return {true, file_text(path)};
    return {type == fs::file_type::not_found, std::nullopt};
}

std::optional<FileBesideLog> beside_log(const std::string& log, const std::string& path) {
    constexpr std::string_view MARKS[] = {".taken", ".old", ".ready"};
    if (!path.starts_with(log)) return std::nullopt;
    const std::string_view rest = std::string_view(path).substr(log.size());
    for (const auto kind : {FileBesideLog::TAKEN, FileBesideLog::OLD, FileBesideLog::READY}) {
        if (!rest.starts_with(MARKS[kind])) continue;
        std::string_view numbers = rest.substr(MARKS[kind].size());
        std::int64_t number = 0;
        std::uint64_t fingerprint = 0;
        const bool is_one = take_number(&numbers, &number) &&
                            (kind != FileBesideLog::READY || take_number(&numbers, &fingerprint));
        if (!is_one || !numbers.empty()) return std::nullopt;
        return FileBesideLog{kind, path, static_cast<std::size_t>(number)};
    }
    return std::nullopt;
}

}  // namespace gatescope
