#include "report/csv.h"

#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "base/descriptor.h"
#include "base/filled.h"
#include "base/signals_blocked.h"
#include "base/temporary_files.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "messages/bit_names.h"
#include "messages/environment.h"
#include "messages/graph_texts.h"

namespace gatescope {
namespace {

constexpr std::string_view LINE_END = "\r\n";

/// The text, in quotes if it contains a delimiter.
std::string csv_field(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"') quoted += '"';
        quoted += character;
    }
    return quoted + '"';
}

class CsvLines {
  public:
    /// Adds a line with these fields.
    void add(std::initializer_list<std::string> fields) {
        const char* separator = "";
        for (const std::string& text : fields) {
            csv_.append(separator).append(csv_field(text));
            separator = ",";
        }
        csv_ += LINE_END;
    }
    std::string text() && { return std::move(csv_); }

  private:
    std::string csv_;
};

/// Calls `add_day(date, cell)` for each day cell, the oldest first.
template <typename AddDay>
void for_each_day(const QueryPeriod& period, AddDay add_day) {
    for (std::size_t cell = QUERY_DAYS; cell-- > 0;) {
        const std::int64_t days_back = static_cast<std::int64_t>(cell) * SECONDS_A_DAY;
        add_day(iso_date_text(period.end_of_day_time - SECONDS_A_DAY / 2 - days_back), cell);
    }
}

std::string csv_of_both_counts(const QueryResult& result) {
    CsvLines lines;
    lines.add({"day", "allowed", "denied"});
    for_each_day(result.asked.period, [&](const std::string& day, std::size_t cell) {
        lines.add({day, std::to_string(result.cell_success[cell]),
                   std::to_string(result.cell_denied[cell])});
    });
    return std::move(lines).text();
}

std::string csv_of_counts(const QueryResult& result,
                          const std::array<std::uint32_t, QUERY_DAYS>& counts) {
    CsvLines lines;
    lines.add({"day", "count"});
    for_each_day(result.asked.period, [&](const std::string& day, std::size_t cell) {
        lines.add({day, std::to_string(counts[cell])});
    });
    return std::move(lines).text();
}

std::string csv_of_bits(const QueryResult& result) {
    CsvLines lines;
    lines.add({"bit", "name", "uses"});
    for (std::size_t bit = 0; bit < GATEWARDEN_BITS_DESC.size(); ++bit) {
        lines.add({std::to_string(bit), GATEWARDEN_BITS_DESC.at(bit),
                   std::to_string(result.cell_success.at(bit))});
    }
    return std::move(lines).text();
}

std::string csv_of_keys(const QueryResult& result, const KeyLines& key_lines) {
    CsvLines lines;
    lines.add({"key", "line", "denials"});
    for (int key = 1; key <= result.highest_key_read; ++key) {
        const auto index = static_cast<std::size_t>(key);
        const bool exists = index <= key_lines.size() && key_lines[index - 1];
        lines.add({std::to_string(key), exists ? *key_lines[index - 1] : "",
                   std::to_string(result.cell_success.at(index))});
    }
    return std::move(lines).text();
}

/// Creates a file and registers it as temporary; closed, with errno set, if that fails.
Descriptor create_registered(const std::string& path) {
    const SignalsBlocked blocked;
    Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (file) remember_temporary_file(path);
    return file;
}

}  // namespace

bool csv_is_requested() {
    const char* value = std::getenv(ENV_CSV);
    return value != nullptr && strcasecmp(value, "yes") == 0;
}

std::string csv_of(const QueryResult& result, const KeyLines& lines) {
    switch (result.asked.query) {
        case 1:
        case 6:
            return csv_of_both_counts(result);
        case 2:
            return csv_of_counts(result, result.cell_success);
        case 3:
            return csv_of_counts(result, result.cell_denied);
        case 4:
            return csv_of_bits(result);
        case 5:
            return csv_of_keys(result, lines);
        default:
            gripe_uncoded("csv_of");
    }
}

std::string csv_path(const std::string& page_path) {
    return page_path.substr(0, page_path.rfind('.')) + ".csv";
}

void store_csv(const std::string& path, const std::string& csv) {
    // Written first to a file with the process id in its name, in the same directory. It is
    // registered as temporary, so it is removed if the program ends early.
    const std::string unfinished = path + "." + std::to_string(getpid());
    Descriptor file = create_registered(unfinished);
    int error = file ? write_sync_close(file.release(), csv) : errno;
    if (error == 0 && std::rename(unfinished.c_str(), path.c_str()) != 0) error = errno;
    if (error != 0) gripe(filled(CANNOT_WRITE_CSV, path.c_str(), std::strerror(error)));
    forget_temporary_file(unfinished);
}

}  // namespace gatescope
