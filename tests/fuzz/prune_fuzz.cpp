// A region's logs in whatever state, pruned: to the end, up to any of its changes, and once more.

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/temporary_files.h"
#include "dialog/messages.h"
#include "fuzz/disk_calls.h"
#include "fuzz/fuzz_world.h"
#include "fuzz/pruned_region.h"
#include "pruning/pruning.h"

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

/// Names that go on as one of pruning's own might: a 'D' and an 'I' in it become numbers of a log.
std::string some_left_over_name(FuzzedDataProvider& data, const std::string& log) {
    struct stat status = {};
    stat(log.c_str(), &status);
    std::string name = log;
    for (const char character : data.ConsumeRandomLengthString(40)) {
        if (character == 'D') {
            name += std::to_string(status.st_dev);
        } else if (character == 'I') {
            name += std::to_string(status.st_ino);
        } else if (character != '/' && character != '\0') {
            name += character;
        }
    }
    return name == log ? log + "~" : name;
}

void plant_something(FuzzedDataProvider& data, std::int64_t cut_off, PrunedRegion* region) {
    const std::string& directory = region->logging_dir();
    const int number = data.PickValueInArray(NUMBERS);
    constexpr Kind KINDS[] = {Kind::FILE, Kind::FILE,        Kind::FILE,
                              Kind::FILE, Kind::LINKED_FILE, Kind::RING,
                              Kind::PIPE, Kind::DIRECTORY,   Kind::LINK_TO_NOTHING};
    const Kind kind = data.PickValueInArray(KINDS);
    const std::string text = some_text(data, cut_off);
    const bool is_private = data.ConsumeBool();
    const std::string log = log_file_path(directory, number);
    const std::string companion = pruning_companion_path(directory, number);
    switch (data.ConsumeIntegralInRange(0, 9)) {
        case 0:
        case 1:
        case 2:
        case 3:
            return region->plant(log, kind, text, is_private);
        case 4:
        case 5:
        case 6:
            return region->plant(companion, kind, text, is_private);
        case 7:
            return region->plant(pruning_token_path(directory), kind, text, is_private);
        case 8:
            return region->plant(pruning_scratch_path(directory), kind, text, is_private);
        default:
            // A directory could be in the way of a name that nobody can guess.
            return region->plant_left_over(
                some_left_over_name(data, data.ConsumeBool() ? log : companion),
                kind == Kind::PIPE || kind == Kind::RING ? kind : Kind::FILE, text);
    }
}

Trouble some_trouble(FuzzedDataProvider& data) {
    constexpr int ERRORS[] = {EIO, ENOSPC, EACCES, EINVAL, EOPNOTSUPP, EEXIST};
    Trouble trouble;
    trouble.after = data.ConsumeIntegralInRange(0, 80);
    trouble.for_good = data.ConsumeBool();
    trouble.tears = data.ConsumeBool();
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
    forget_temporary_file(pruning_token_path(region.logging_dir()));
    return status;
}

/// Whether the operator was told `text`, at the beginning of a message or of a line.
bool was_told(const std::string& text) {
    return last_command.find("\"" + text) != std::string::npos ||
           last_command.find("\n" + text) != std::string::npos;
}

void must_be_pruned(const PrunedRegion& region, int torn) {
    for (const std::string& log : region.unusable()) {
        must(was_told("The log file (" + log + ") was left as it is: "), "a log is named");
    }
    region.check(torn);
}

/// Prunes a region up to some trouble, or while a log writer comes by, and lets log writers go on
/// then. `*torn` counts the parts of records that it may have left.
void prune_in_trouble(FuzzedDataProvider& data, int days, PrunedRegion* region, int* torn) {
    Trouble trouble = some_trouble(data);
    if (data.ConsumeIntegralInRange(0, 3) == 3) {
        const int number = data.PickValueInArray(NUMBERS);
        const bool is_kept = data.ConsumeBool();
        trouble.meanwhile = [=] { region->write_record(number, is_kept); };
    }
    const int status = prune(*region, days, trouble);
    if (trouble.meanwhile) {
        if (status == -1) must_be_pruned(*region, *torn);
    } else if (trouble.tears) {
        ++*torn;
    }
    for (int records = data.ConsumeIntegralInRange(0, 2); records > 0; --records) {
        const int number = data.PickValueInArray(NUMBERS);
        region->write_record(number, data.ConsumeBool());
    }
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

    int torn = 0;
    const int troubles = data.ConsumeIntegralInRange(0, 2);
    for (int i = 0; i < troubles; ++i) prune_in_trouble(data, days, &region, &torn);
    int status = prune(region, days);
    bool is_first = troubles == 0;
    if (status != -1 && region.remove_obstacles()) {
        is_first = false;
        status = prune(region, days);
    }
    must(status == -1, "pruning comes to its end");
    must_be_pruned(region, torn);
    if (is_first && region.is_countable()) {
        must(was_told(region.expected_counts()), "records are counted");
    }

    const PrunedRegion::Snapshot before = region.everything();
    must(prune(region, days) == -1, "pruning again comes to its end");
    must(region.everything() == before, "pruning again changes nothing");
    must(was_told("0 of "), "pruning again removes nothing");
    must(lowest_free_descriptor() == free_descriptor, "everything is closed");
    return 0;
}
