// Lines, fields and settings of an arbitrary gatebits file, read and rewritten.

#include <algorithm>

#include "fuzz/fuzz_world.h"
#include "policy/edition.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"
#include "policy/tool_variables.h"

namespace gatescope {
namespace {

using Lines = std::vector<std::string>;

Lines lines_now() {
    Lines lines;
    must(until_the_end([&] { lines = read_gatebits(gatebits_path()).lines(); }) == -1,
         "a written file is read");
    return lines;
}

/// The lines of `one` that are not in `other`, sorted.
Lines without(Lines one, Lines other) {
    std::sort(one.begin(), one.end());
    std::sort(other.begin(), other.end());
    Lines rest;
    std::set_difference(one.begin(), one.end(), other.begin(), other.end(),
                        std::back_inserter(rest));
    return rest;
}

/// A line number, mostly of an existing line, sometimes far out of range.
int number(FuzzedDataProvider& data) {
    return data.ConsumeBool() ? data.ConsumeIntegralInRange(0, 12)
                              : data.ConsumeIntegralInRange(-3, 300);
}

void read_something(FuzzedDataProvider& data) {
    const Gatebits file = read_gatebits(gatebits_path());
    ToolSettings tools;
    switch (data.ConsumeIntegralInRange(0, 4)) {
        case 0:
            get_a_line(file, number(data));
            break;
        case 1:
            get_a_field(file, number(data), number(data));
            break;
        case 2:
            build_var_list(file, &tools);
            break;
        case 3:
            interrogate_the_enterprise(gatebits_path(), file, {});
            break;
        default:
            read_edition(file);
    }
}

/// An edit of the file, which removes at most `*changed` old lines.
Rewrite some_edit(FuzzedDataProvider& data, const Gatebits& now, std::size_t* changed) {
    const int line = number(data);
    *changed = 1;
    ToolSettings tools;
    switch (data.ConsumeIntegralInRange(0, 3)) {
        case 0:
            return set_a_line(now, line, data.ConsumeRandomLengthString());
        case 1:
            return set_a_line(now, line, DELETION_TOKEN);
        case 2:
            return set_a_field(now, {line, number(data), data.ConsumeRandomLengthString()});
        default:
            build_var_list(now, &tools);
            *changed = GATEBITS_FILE_LIMIT;
            return change_a_var(now, tools, data.ConsumeIntegralInRange<std::size_t>(0, 7),
                                data.ConsumeRandomLengthString());
    }
}

void write_something(FuzzedDataProvider& data, std::size_t* changed) {
    const Gatebits shown = read_gatebits(gatebits_path());
    change(gatebits_path(), {shown, no_part},
           [&](const Gatebits& now) { return some_edit(data, now, changed); }, {});
}

void check_a_write(FuzzedDataProvider& data) {
    Lines before;
    if (until_the_end([&] { before = read_gatebits(gatebits_path()).lines(); }) != -1) return;
    const std::string old_bytes = gatebits();
    std::size_t changed = 0;
    if (until_the_end([&] { write_something(data, &changed); }) != -1) {
        must(gatebits() == old_bytes, "a refused write changes nothing");
        return;
    }
    if (gatebits().find_first_not_of('\n') == std::string::npos) return;
    must(gatebits().size() <= GATEBITS_FILE_LIMIT, "a written file can be read");
    must(without(before, lines_now()).size() <= changed, "other lines are unchanged");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    answer_dialogs_from(nullptr);
    use_gatebits(data.ConsumeRandomLengthString());
    until_the_end([&] { read_something(data); });
    for (int writes = data.ConsumeIntegralInRange(0, 2); writes > 0; --writes) check_a_write(data);
    return 0;
}

}  // namespace gatescope
