// A region's logs in whatever state, pruned: to the end, up to any of its changes, and once more.

#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "base/temporary_files.h"
#include "dialog/messages.h"
#include "fuzz/disk_calls.h"
#include "fuzz/fuzz_world.h"
#include "fuzz/pruned_region.h"
#include "pruning/pruning.h"
#include "records/query_period.h"

namespace gatescope {
namespace {

/// Few enough to meet each other. There is no log with the last of them.
constexpr int NUMBERS[] = {0, 1, 20, 21};

/// Times that mean something: "T" followed by a digit stands for a moment near the cut-off.
std::string some_text(FuzzedDataProvider& data, std::int64_t cut_off) {
    const std::string text = data.ConsumeRandomLengthString(200);
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool stands_for_a_time =
            text[i] == 'T' && i + 1 < text.size() && text[i + 1] >= '0' && text[i + 1] <= '9';
        if (!stands_for_a_time) {
            // No record is to be that of a log writer, see below.
            result += text[i] == 'w' ? 'v' : text[i];
            continue;
        }
        constexpr int SECONDS[] = {0, 1, 2, 60, 86400, 9'000'000, -1, -2, -60, -9'000'000};
        result += std::to_string(cut_off + SECONDS[text[++i] - '0']);
    }
    return result;
}

Kind some_kind(FuzzedDataProvider& data) {
    constexpr Kind KINDS[] = {Kind::FILE,
                              Kind::FILE,
                              Kind::FILE,
                              Kind::FILE,
                              Kind::FILE,
                              Kind::FILE,
                              Kind::FILE,
                              Kind::WITH_SECOND_NAME,
                              Kind::LINKED_FILE,
                              Kind::LINKED_DIRECTORY,
                              Kind::LINK_TO_NOTHING,
                              Kind::RING,
                              Kind::PIPE,
                              Kind::DIRECTORY};
    return data.PickValueInArray(KINDS);
}

/// Something beside a log, or beside a companion, under a name as pruning gives them, or under one
/// that goes on as it likes.
void plant_beside(FuzzedDataProvider& data, int number, Kind kind, const std::string& text,
                  bool is_private, PrunedRegion* region) {
    const std::string& directory = region->logging_dir();
    const std::string log = log_file_path(directory, number);
    const std::string name = data.ConsumeBool() ? pruning_companion_path(directory, number) : log;
    const auto size = data.ConsumeIntegralInRange<std::size_t>(0, 400);
    switch (data.ConsumeIntegralInRange(0, 5)) {
        case 0:
            return region->plant(log + ".taken_" + std::to_string(size % 3), kind, text,
                                 is_private);
        case 1:
            return region->plant(log + ".old_" + std::to_string(size), kind, text, is_private);
        case 2:
        case 3:
            // Nothing but a file gets a name that tells of the log's bytes.
            return region->plant_ready_text(number, size, data.ConsumeBool(),
                                            kind == Kind::WITH_SECOND_NAME ? kind : Kind::FILE,
                                            text, is_private);
        case 4:
            return region->plant_name_of_log(number, data.ConsumeBool()
                                                         ? pruning_companion_path(directory, number)
                                                         : log + ".old_" + std::to_string(size));
        default:
            std::string rest = data.ConsumeRandomLengthString(40);
            std::erase_if(rest, [](char one) { return one == '/' || one == '\0'; });
            return region->plant(name + "." + rest, kind, text, is_private);
    }
}

/// What a run leaves that was killed right after it had taken a companion, and a writer that has
/// seen its token since.
void plant_taken_file_and_companion(FuzzedDataProvider& data, int number, const std::string& text,
                                    std::int64_t cut_off, PrunedRegion* region) {
    const std::string log = log_file_path(region->logging_dir(), number);
    if (data.ConsumeBool()) {
        region->plant(log, Kind::FILE, some_text(data, cut_off), data.ConsumeBool());
    }
    region->plant(log + ".taken_0", Kind::FILE, text, false);
    region->plant(pruning_companion_path(region->logging_dir(), number), Kind::FILE,
                  some_text(data, cut_off), false);
}

void plant_something(FuzzedDataProvider& data, std::int64_t cut_off, PrunedRegion* region) {
    const std::string& directory = region->logging_dir();
    const int number = data.PickValueInArray(NUMBERS);
    const Kind kind = some_kind(data);
    const std::string text = some_text(data, cut_off);
    const bool is_private = data.ConsumeBool();
    switch (data.ConsumeIntegralInRange(0, 13)) {
        case 0:
        case 1:
        case 2:
        case 3:
            return region->plant(log_file_path(directory, number), kind, text, is_private);
        case 4:
        case 5:
        case 6:
            return region->plant(pruning_companion_path(directory, number), kind, text, is_private);
        case 7:
            return region->plant(pruning_token_path(directory), kind, text, is_private);
        case 8:
            return region->plant(pruning_scratch_path(directory), kind, text, is_private);
        case 13:
            return plant_taken_file_and_companion(data, number, text, cut_off, region);
        default:
            return plant_beside(data, number, kind, text, is_private, region);
    }
}

Trouble some_trouble(FuzzedDataProvider& data) {
    constexpr int ERRORS[] = {EIO, ENOSPC, EACCES, EINVAL, EOPNOTSUPP, EEXIST};
    Trouble trouble;
    trouble.after = data.ConsumeIntegralInRange(0, 160);
    trouble.for_good = data.ConsumeBool();
    trouble.tears = data.ConsumeBool();
    trouble.of_looks_too = data.ConsumeBool();
    trouble.error = trouble.for_good || trouble.tears ? EIO : data.PickValueInArray(ERRORS);
    return trouble;
}

int prune(const PrunedRegion& region, int days, const Trouble& trouble = {}) {
    last_command.clear();
    const ChangesOnlyIn rules(region.directory(), trouble);
    const int status = until_the_end([&] {
        prune_logging_files({region.logging_dir(), "east"}, static_cast<std::uint8_t>(days));
    });
    // An error leaves it for the end of the process.
    const std::string token = pruning_token_path(region.logging_dir());
    forget_temporary_file(token.substr(token.rfind('/') + 1));
    return status;
}

/// Whether the operator was told `text`, at the beginning of a message or of a line.
bool was_told(const std::string& text) {
    return last_command.find("\"" + text) != std::string::npos ||
           last_command.find("\n" + text) != std::string::npos;
}

/// Whether something was in the way of the pruning, by what it says.
bool was_hindered(const PrunedRegion& region) {
    return std::ranges::any_of(region.obstacles(),
                               [](const auto& one) { return was_told(one.failure); });
}

void must_be_pruned(const PrunedRegion& region, bool beside_a_writer) {
    for (const std::string& path : region.unusable()) {
        must(was_told("The log file (" + path + ") was left as it is: "), "a log is named");
    }
    region.check(beside_a_writer);
}

/// Prunes a region up to some trouble, or while a log writer comes by, and lets log writers go on
/// then.
void prune_in_trouble(FuzzedDataProvider& data, int days, PrunedRegion* region) {
    Trouble trouble = some_trouble(data);
    if (data.ConsumeIntegralInRange(0, 3) == 3) {
        const int number = data.PickValueInArray(NUMBERS);
        const bool is_kept = data.ConsumeBool();
        trouble.meanwhile = [=] { region->write_record(number, is_kept); };
    }
    const int status = prune(*region, days, trouble);
    region->check_in_between();
    if (trouble.meanwhile && status == -1 && !was_hindered(*region)) must_be_pruned(*region, true);
    for (int records = data.ConsumeIntegralInRange(0, 2); records > 0; --records) {
        const int number = data.PickValueInArray(NUMBERS);
        region->write_record(number, data.ConsumeBool());
    }
}

/// Prunes a region, and takes away what it says is in its way. True when nothing was.
bool prune_to_the_end(int days, PrunedRegion* region) {
    const int status = prune(*region, days);
    const auto obstacles = region->obstacles();
    const bool is_hindered = was_hindered(*region);
    must(is_hindered || (status == -1 &&
                         std::ranges::none_of(obstacles, &PrunedRegion::Obstacle::is_always_met)),
         "pruning comes to its end unless something is in its way, and says what");
    if (!is_hindered) return true;
    region->check_in_between();
    region->remove(obstacles);
    must(prune(*region, days) == -1, "pruning comes to its end");
    return false;
}

/// What was there before anything was opened, for looking at what stays open.
int lowest_free_descriptor() {
    const int lowest = dup(STDERR_FILENO);
    close(lowest);
    return lowest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data(bytes, size);
    use_gatebits("");
    answer_dialogs_from(nullptr);
    ZUL_PREFER_GUI = 1;
    const int free_descriptor = lowest_free_descriptor();
    const int days = data.ConsumeIntegral<std::uint8_t>();
    const std::int64_t cut_off = set_time_values(0).end_of_day_time - days * SECONDS_A_DAY;
    PrunedRegion region(cut_off);
    for (int planted = data.ConsumeIntegralInRange(1, 8); planted > 0; --planted) {
        plant_something(data, cut_off, &region);
    }
    region.begin();

    const int troubles = data.ConsumeIntegralInRange(0, 2);
    for (int i = 0; i < troubles; ++i) prune_in_trouble(data, days, &region);
    const bool is_first = prune_to_the_end(days, &region) && troubles == 0;
    must_be_pruned(region, false);
    const auto counts = region.expected_counts();
    if (is_first && counts) must(was_told(*counts), "records are counted");

    const PrunedRegion::Snapshot before = region.everything();
    must(prune(region, days) == -1, "pruning again comes to its end");
    must(region.everything() == before, "pruning again changes nothing");
    must(was_told("0 of "), "pruning again removes nothing");
    must(lowest_free_descriptor() == free_descriptor, "everything is closed");
    return 0;
}

}  // namespace gatescope
