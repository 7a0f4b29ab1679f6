// Aliases of an arbitrary gatebits file, read and rewritten.

#include <algorithm>

#include "fuzz/fuzz_world.h"
#include "policy/aliases.h"
#include "policy/gatebits_file.h"

namespace gatescope {
namespace {

constexpr AliasMode MODES[] = {AliasMode::ADD, AliasMode::CHANGE, AliasMode::REMOVE,
                               AliasMode::REMOVE_ALL, AliasMode::REMOVE_REFERENCES};

bool is_comment(const std::string& line) {
    return !is_significant(line) && !without_leading_blanks(line).empty() &&
           !without_leading_blanks(line).starts_with("#!gatewarden_alias ");
}

/// The comment lines other than aliases, in order.
std::vector<std::string> comments() {
    std::vector<std::string> lines;
    // A file of references alone has only blank lines after their removal, and is not read.
    if (gatebits().find_first_not_of('\n') == std::string::npos) return lines;
    must(until_the_end([&] { lines = read_gatebits(gatebits_path()).lines(); }) == -1,
         "a written file is read");
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const std::string& line) { return !is_comment(line); }),
                lines.end());
    return lines;
}

/// Whether `some` is a subsequence of `all`. There may be more lines, since the removal of a
/// reference can bring a '#' to the start of its line.
bool are_among(const std::vector<std::string>& some, const std::vector<std::string>& all) {
    auto next = some.begin();
    for (const std::string& line : all) {
        if (next != some.end() && *next == line) ++next;
    }
    return next == some.end();
}

/// A name from the table, or any other.
std::string some_name(FuzzedDataProvider& data, const Aliases& aliases) {
    if (aliases.number_of_aliases == 0 || data.ConsumeBool())
        return data.ConsumeRandomLengthString(60);
    return aliases
        .ALIAS_NAME[data.ConsumeIntegralInRange<std::size_t>(0, aliases.number_of_aliases - 1U)];
}

void change_an_alias(FuzzedDataProvider& data, const Aliases& aliases) {
    AliasChange wanted = {data.PickValueInArray(MODES), some_name(data, aliases),
                          data.ConsumeRandomLengthString(300)};
    if (wanted.mode == AliasMode::REMOVE_REFERENCES) wanted.name.insert(0, "~");
    const auto rests_on = [&](const Gatebits& file) { return definition_of(wanted.name, file); };
    const Changed changed =
        change(gatebits_path(), {read_gatebits(gatebits_path()), rests_on},
               [&](const Gatebits& now) { return add_change_remove_an_alias(now, wanted); }, {});
    report_of_alias_change(changed.before, wanted);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    answer_dialogs_from(nullptr);
    Aliases aliases;
    use_gatebits(data.ConsumeRandomLengthString());
    for (int changes = data.ConsumeIntegralInRange(1, 3); changes > 0; --changes) {
        if (until_the_end([&] { build_alias_list(read_gatebits(gatebits_path()), &aliases); }) !=
            -1)
            return 0;
        must(aliases.number_of_aliases <= MAX_ALIASES, "there are at most MAX_ALIASES aliases");
        const std::string old_bytes = gatebits();
        const std::vector<std::string> old_comments = comments();
        if (until_the_end([&] { change_an_alias(data, aliases); }) != -1) {
            must(gatebits() == old_bytes, "a refused write changes nothing");
            continue;
        }
        must(are_among(old_comments, comments()), "comments stay, in their order");
    }
    return 0;
}

}  // namespace gatescope
