#include "base/text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

#include "base/filled.h"

namespace gatescope {
namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char WHITE_SPACE[] = " \t\n\v\f\r";

}  // namespace

std::string& STRING_LOWER(std::string& text) {
    std::transform(text.begin(), text.end(), text.begin(), lower);
    return text;
}

void double_amp_string(std::string& text) {
    for (std::size_t at = text.find('&'); at != std::string::npos; at = text.find('&', at + 2)) {
        text.insert(at, 1, '&');
    }
}

std::string* in_string__insert_this_char_after_nth_instance_of_that_char(std::string& text,
                                                                         char inserted, int n,
                                                                         char sought) {
    std::size_t at = text.find(sought);
    if (at == std::string::npos) return nullptr;
    for (int seen = 1; at != std::string::npos && seen < n; ++seen) at = text.find(sought, at + 1);
    if (at != std::string::npos && n >= 1) text.insert(at + 1, 1, inserted);
    return &text;
}

bool includes_all_cases(const std::string& text) {
    constexpr std::array<const char*, 7> forms = {"(*)", "<*>", "[*]", "{*}", "%*%", "'*'", "@*@"};
    return std::any_of(forms.begin(), forms.end(), [&](const char* form) {
        return c_text(text).find(form) != std::string_view::npos;
    });
}

bool holds_only(const char* text, const char* allowed) {
    return text != nullptr && text[std::strspn(text, allowed)] == '\0';
}

bool holds_any_of(const char* text, const char* forbidden) {
    return text != nullptr && std::strpbrk(text, forbidden) != nullptr;
}

std::optional<std::string_view> STRTOK(std::string_view* rest, const char* delimiters) {
    const std::size_t end = rest->find_first_of(delimiters);
    if (end == std::string_view::npos) {
        *rest = {};
        return std::nullopt;
    }
    const std::string_view piece = rest->substr(0, end);
    rest->remove_prefix(end + 1);
    return piece;
}

std::vector<std::string> terminated_fields(const std::string& line) {
    std::vector<std::string> fields;
    std::string_view rest = c_text(line);
    while (const auto field = STRTOK(&rest, ";")) fields.emplace_back(*field);
    return fields;
}

std::vector<std::string_view> whole_lines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (; !text.empty(); text.remove_prefix(lines.back().size())) {
        lines.push_back(text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1));
    }
    return lines;
}

std::string words_joined(std::string_view text) {
    std::string joined;
    bool first = true;
    for (std::size_t at = text.find_first_not_of(WHITE_SPACE); at != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(WHITE_SPACE, at), text.size());
        if (!first) joined += ' ';
        joined += c_text(text.substr(at, end - at));
        first = false;
        at = text.find_first_not_of(WHITE_SPACE, end);
    }
    return joined;
}

long long leading_number(const char* text) {
    return std::strtoll(text, nullptr, 10);
}

}  // namespace gatescope
