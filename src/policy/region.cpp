#include "policy/region.h"

#include <cstring>
#include <vector>

#include "base/filled.h"
#include "base/run_identity.h"
#include "base/text.h"
#include "dialog/messages.h"
#include "messages/policy_texts.h"
#include "policy/tool_variables.h"

namespace gatescope {
namespace {

/// Sets the tool variables, and returns the significant lines without their leading blanks.
std::vector<std::string> scan_the_file(const Gatebits& gatebits, ToolSettings* tools) {
    std::vector<std::string> significant;
    for (const std::string& line : gatebits.lines()) {
        take_tool_variable(line, tools);
        if (is_significant(line)) significant.emplace_back(without_leading_blanks(line));
    }
    return significant;
}

/// The fields of significant line n; gripes with `fault` if there are fewer than `minimum`.
std::vector<std::string> fields_of_line(const std::vector<std::string>& lines, int n,
                                        std::size_t minimum, const char* fault) {
    const auto index = static_cast<std::size_t>(n) - 1;
    if (index >= lines.size()) gripe(fault);
    std::vector<std::string> fields = terminated_fields(lines[index]);
    if (fields.size() < minimum) gripe(fault);
    return fields;
}

/// Gripes if the depot line has a third field that is not a logging personality.
void check_logging(const std::vector<std::string>& depots, const std::string& depot_line,
                   const char* file) {
    if (depots.size() < LOGGING_FIELD) return;
    const std::string& field = depots[LOGGING_FIELD - 1];
    if (field.size() != 1) {
        gripe(filled(INVALID_LOGGING_LENGTH, field.c_str(), LOGGING_LETTERS_NAMED_FOR_LENGTH,
                     depot_line.c_str(), file));
    }
    if (std::strchr("AEOS", field.front()) == nullptr) {
        gripe(filled(INVALID_LOGGING_LETTER, field.front(), LOGGING_LETTERS_NAMED_FOR_LETTER,
                     depot_line.c_str(), file));
    }
}

std::string blank_when_empty(const std::string& value) {
    return value.empty() ? " " : value;
}

/// The relocated directory if there is one, else `name` in the depot.
std::string directory_in_use(const std::string& relocated, const std::string& depot,
                             const char* name) {
    if (!relocated.empty()) return relocated;
    return filled("%s%c%s", depot.c_str(), DIR_DELIMETER, name);
}

}  // namespace

RegionSettings interrogate_the_enterprise(const std::string& ENTERPRIZE_PERMISSION_FILE,
                                          const Gatebits& gatebits, const ToolSettings& tools) {
    RegionSettings region;
    region.ENTERPRIZE_PERMISSION_FILE = ENTERPRIZE_PERMISSION_FILE;
    region.tools = tools;
    const std::vector<std::string> lines = scan_the_file(gatebits, &region.tools);
    if (lines.empty()) gripe(NO_REGION_HEADER);
    const auto depots = fields_of_line(lines, DEPOT_LINE, UNIX_FIELD, MANGLED_DEPOT);
    check_logging(depots, lines[DEPOT_LINE - 1], ENTERPRIZE_PERMISSION_FILE.c_str());
    fields_of_line(lines, PARENT_LINE, UNIX_FIELD, MANGLED_PARENT);
    const auto header = fields_of_line(lines, HEADER_LINE, 4, MANGLED_REGION_HEADER);
    region.ENTERPRIZE_NAME = blank_when_empty(header[3]);
    region.SYSTEM_VARS__SYSTEM_POLICY_DIR = blank_when_empty(depots[UNIX_FIELD - 1]);
    const auto& relocated = region.tools.GS_VAR;
    region.logging_dir =
        directory_in_use(relocated[UNIX_LOGGING_DIR], region.SYSTEM_VARS__SYSTEM_POLICY_DIR, "log");
    region.results_dir = directory_in_use(relocated[UNIX_RESULTS_DIR],
                                          region.SYSTEM_VARS__SYSTEM_POLICY_DIR, "query_results");
    return region;
}

}  // namespace gatescope
