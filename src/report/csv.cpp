#include "report/csv.h"

#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/descriptor.h"
#include "base/filled.h"
#include "base/signals.h"
#include "base/temporary_files.h"
#include "base/whole_file.h"
#include "dialog/messages.h"
#include "messages/bit_names.h"
#include "messages/environment.h"
#include "messages/graph_texts.h"

namespace gatescope {
namespace {

constexpr std::string_view LINE_END = "\r\n";

/// A field in quotes where it needs them.
std::string field(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"') quoted += '"';
        quoted += character;
    }
    return quoted + '"';
}

class Lines {
  public:
    /// The fields of a line, without the end of the line.
    void add(std::initializer_list<std::string> fields) {
        const char* separator = "";
        for (const std::string& text : fields) {
            csv_.append(separator).append(field(text));
            separator = ",";
        }
        csv_ += LINE_END;
    }
    std::string text() && { return std::move(csv_); }

  private:
    std::string csv_;
};

/// The cells of the days, the oldest first.
template <typename AddDay>
void for_each_day(const QueryPeriod& period, AddDay add_day) {
    for (std::size_t cell = QUERY_DAYS; cell-- > 0;) {
        const std::int64_t days_back = static_cast<std::int64_t>(cell) * SECONDS_A_DAY;
        add_day(iso_date_text(period.end_of_day_time - SECONDS_A_DAY / 2 - days_back), cell);
    }
}

std::string both_counts(const QueryResult& result) {
    Lines lines;
    lines.add({"day", "allowed", "denied"});
    for_each_day(result.asked.period, [&](const std::string& day, std::size_t cell) {
        lines.add({day, std::to_string(result.cell_success[cell]),
                   std::to_string(result.cell_denied[cell])});
    });
    return std::move(lines).text();
}

std::string one_count(const QueryResult& result,
                      const std::array<std::uint32_t, QUERY_DAYS>& counts) {
    Lines lines;
    lines.add({"day", "count"});
    for_each_day(result.asked.period, [&](const std::string& day, std::size_t cell) {
        lines.add({day, std::to_string(counts[cell])});
    });
    return std::move(lines).text();
}

std::string bits(const QueryResult& result) {
    Lines lines;
    lines.add({"bit", "name", "uses"});
    for (std::size_t bit = 0; bit < GATEWARDEN_BITS_DESC.size(); ++bit) {
        lines.add({std::to_string(bit), GATEWARDEN_BITS_DESC.at(bit),
                   std::to_string(result.cell_success.at(bit))});
    }
    return std::move(lines).text();
}

std::string keys(const QueryResult& result, const KeyLines& key_lines) {
    Lines lines;
    lines.add({"key", "line", "denials"});
    for (int key = 1; key <= result.highest_key_read; ++key) {
        const auto index = static_cast<std::size_t>(key);
        const bool there = index <= key_lines.size() && key_lines[index - 1];
        lines.add({std::to_string(key), there ? *key_lines[index - 1] : "",
                   std::to_string(result.cell_success.at(index))});
    }
    return std::move(lines).text();
}

/// A new file on the list of temporary files, or none with errno set.
Descriptor create_listed(const std::string& path) {
    const SignalsHeld held;
    Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (file) remember_temporary_file(path);
    return file;
}

}  // namespace

bool csv_is_wanted() {
    const char* wish = std::getenv(ENV_CSV);
    return wish != nullptr && strcasecmp(wish, "yes") == 0;
}

std::string csv_of(const QueryResult& result, const KeyLines& lines) {
    switch (result.asked.query) {
        case 1:
        case 6:
            return both_counts(result);
        case 2:
            return one_count(result, result.cell_success);
        case 3:
            return one_count(result, result.cell_denied);
        case 4:
            return bits(result);
        case 5:
            return keys(result, lines);
        default:
            gripe_uncoded("csv_of");
    }
}

std::string csv_path(const std::string& page_path) {
    return page_path.substr(0, page_path.rfind('.')) + ".csv";
}

void store_csv(const std::string& path, const std::string& csv) {
    // Written first to a file of this process alone, in the same directory. That is on the list of
    // temporary files, so it goes whatever happens here.
    const std::string unfinished = path + "." + std::to_string(getpid());
    Descriptor file = create_listed(unfinished);
    int error = file ? write_sync_close(file.release(), csv) : errno;
    if (error == 0 && std::rename(unfinished.c_str(), path.c_str()) != 0) error = errno;
    if (error != 0) gripe(filled(CANNOT_WRITE_CSV, path.c_str(), std::strerror(error)));
    forget_temporary_file(unfinished);
}

}  // namespace gatescope
