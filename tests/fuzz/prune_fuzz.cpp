// Prunes random logs and left-over files: with a failure or a kill at a random change, then to the
// end, then once more.

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

/// Log numbers: few, so that files of the same log are likely. 21 is not the number of a log.
constexpr int NUMBERS[] = {0, 1, 20, 21};

/// Random text in which "T" followed by a digit is replaced by a time near the cut-off.
std::string random_text(FuzzedDataProvider& data, std::int64_t cut_off) {
    const std::string text = data.ConsumeRandomLengthString(200);
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool stands_for_a_time =
            text[i] == 'T' && i + 1 < text.size() && text[i + 1] >= '0' && text[i + 1] <= '9';
        if (!stands_for_a_time) {
            // The records of PrunedRegion::write_record have a 'w'; no other record may equal one.
            result += text[i] == 'w' ? 'v' : text[i];
            continue;
        }
        constexpr int SECONDS[] = {0, 1, 2, 60, 86400, 9'000'000, -1, -2, -60, -9'000'000};
        result += std::to_string(cut_off + SECONDS[text[++i] - '0']);
    }
    return result;
}

Kind random_kind(FuzzedDataProvider& data) {
    constexpr Kind KINDS[] = {Kind::FILE,          Kind::FILE,
                              Kind::FILE,          Kind::FILE,
                              Kind::FILE,          Kind::FILE,
                              Kind::FILE,          Kind::WITH_HARD_LINK,
                              Kind::LINKED_FILE,   Kind::LINKED_DIRECTORY,
                              Kind::DANGLING_LINK, Kind::LINK_TO_ITSELF,
                              Kind::PIPE,          Kind::DIRECTORY};
    return data.PickValueInArray(KINDS);
}

/// Plants a left-over of a log, or a file whose name is that of a log or companion with a random
/// suffix.
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
            // Always a regular file: its name includes a fingerprint of the log.
            return region->plant_ready_file(number, size, data.ConsumeBool(),
                                            kind == Kind::WITH_HARD_LINK ? kind : Kind::FILE, text,
                                            is_private);
        case 4:
            return region->plant_hard_link_of_log(
                number, data.ConsumeBool() ? pruning_companion_path(directory, number)
                                           : log + ".old_" + std::to_string(size));
        default:
            std::string rest = data.ConsumeRandomLengthString(40);
            std::erase_if(rest, [](char one) { return one == '/' || one == '\0'; });
            return region->plant(name + "." + rest, kind, text, is_private);
    }
}

/// Plants what a run leaves that was killed right after it had renamed a companion, and the
/// companion of a writer that has seen its token since.
void plant_taken_file_and_companion(FuzzedDataProvider& data, int number, const std::string& text,
                                    std::int64_t cut_off, PrunedRegion* region) {
    const std::string log = log_file_path(region->logging_dir(), number);
    if (data.ConsumeBool()) {
        region->plant(log, Kind::FILE, random_text(data, cut_off), data.ConsumeBool());
    }
    region->plant(log + ".taken_0", Kind::FILE, text, false);
    region->plant(pruning_companion_path(region->logging_dir(), number), Kind::FILE,
                  random_text(data, cut_off), false);
}

void plant_any_file(FuzzedDataProvider& data, std::int64_t cut_off, PrunedRegion* region) {
    const std::string& directory = region->logging_dir();
    const int number = data.PickValueInArray(NUMBERS);
    const Kind kind = random_kind(data);
    const std::string text = random_text(data, cut_off);
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

Trouble random_trouble(FuzzedDataProvider& data) {
    constexpr int ERRORS[] = {EIO, ENOSPC, EACCES, EINVAL, EOPNOTSUPP, EEXIST};
    Trouble trouble;
    trouble.after = data.ConsumeIntegralInRange(0, 160);
    trouble.for_good = data.ConsumeBool();
    trouble.tears = data.ConsumeBool();
    trouble.includes_lookups = data.ConsumeBool();
    trouble.error = trouble.for_good || trouble.tears ? EIO : data.PickValueInArray(ERRORS);
    return trouble;
}

int prune(const PrunedRegion& region, int days, const Trouble& trouble = {}) {
    last_command.clear();
    const ChangesOnlyIn rules(region.directory(), trouble);
    const int status = until_the_end([&] {
        prune_logging_files({region.logging_dir(), "east"}, static_cast<std::uint8_t>(days));
    });
    // After an error it stays on the list of temporary files.
    const std::string token = pruning_token_path(region.logging_dir());
    forget_temporary_file(token.substr(token.rfind('/') + 1));
    return status;
}

/// Whether the last message to the operator has `text` at its beginning or at that of a line.
bool was_told(const std::string& text) {
    return last_command.find("\"" + text) != std::string::npos ||
           last_command.find("\n" + text) != std::string::npos;
}

/// Whether the pruning reported an obstacle.
bool met_obstacle(const PrunedRegion& region) {
    return std::ranges::any_of(region.obstacles(),
                               [](const auto& one) { return was_told(one.failure); });
}

void check_pruned(const PrunedRegion& region, bool beside_a_writer) {
    for (const std::string& path : region.unusable()) {
        must(was_told("The log file (" + path + ") was left as it is: "),
             "a skipped file is reported");
    }
    region.check(beside_a_writer);
}

/// Prunes a region up to a failing change, or beside a log writer; log writers append afterwards.
void prune_with_trouble(FuzzedDataProvider& data, int days, PrunedRegion* region) {
    Trouble trouble = random_trouble(data);
    if (data.ConsumeIntegralInRange(0, 3) == 3) {
        const int number = data.PickValueInArray(NUMBERS);
        const bool is_kept = data.ConsumeBool();
        trouble.meanwhile = [=] { region->write_record(number, is_kept); };
    }
    const int status = prune(*region, days, trouble);
    region->check_after_interruption();
    if (trouble.meanwhile && status == -1 && !met_obstacle(*region)) check_pruned(*region, true);
    for (int records = data.ConsumeIntegralInRange(0, 2); records > 0; --records) {
        const int number = data.PickValueInArray(NUMBERS);
        region->write_record(number, data.ConsumeBool());
    }
}

/// Prunes a region; if it reports obstacles, removes them and prunes again. True if it reported
/// none.
bool prune_to_the_end(int days, PrunedRegion* region) {
    const int status = prune(*region, days);
    const auto obstacles = region->obstacles();
    const bool has_met_obstacle = met_obstacle(*region);
    must(has_met_obstacle ||
             (status == -1 &&
              std::ranges::none_of(obstacles, &PrunedRegion::Obstacle::blocks_every_prune)),
         "pruning succeeds or reports an obstacle");
    if (!has_met_obstacle) return true;
    region->check_after_interruption();
    region->remove(obstacles);
    must(prune(*region, days) == -1, "pruning succeeds without obstacles");
    return false;
}

/// The lowest free descriptor; it is higher later if a file stays open.
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
        plant_any_file(data, cut_off, &region);
    }
    region.begin();

    const int troubles = data.ConsumeIntegralInRange(0, 2);
    for (int i = 0; i < troubles; ++i) prune_with_trouble(data, days, &region);
    const bool is_first = prune_to_the_end(days, &region) && troubles == 0;
    check_pruned(region, false);
    const auto counts = region.expected_counts();
    if (is_first && counts) must(was_told(*counts), "records are counted");

    const PrunedRegion::Snapshot before = region.snapshot();
    must(prune(region, days) == -1, "pruning again succeeds");
    must(region.snapshot() == before, "pruning again changes nothing");
    must(was_told("0 of "), "pruning again removes nothing");
    must(lowest_free_descriptor() == free_descriptor, "all files are closed");
    return 0;
}

}  // namespace gatescope
