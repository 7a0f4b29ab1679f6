#include "actions/field_editors.h"

#include "actions/depot_first.h"
#include "actions/field_table.h"
#include "actions/outcome.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "policy/region.h"

namespace {

/// How an editor ended.
enum class Edited {
    WRITTEN,
    LEFT  ///< cancelled, aborted or refused; nothing was written
};

struct Edit {
    Edited ended;
    LastAnswer last_answer;
};

Edit view_change_depot(const std::string& os, RegionSettings* region);

/// What the new value changes elsewhere.
std::vector<FieldChange> further_changes(const std::string& gatebits_file,
                                         const FieldEditor& editor, const std::string& value) {
    if (editor.kind->further_changes == nullptr) return {};
    return editor.kind->further_changes(gatebits_file, editor, value);
}

/// `stored` is what the field held when the operator was asked.
ChangeResult write_and_report(const FieldEditor& editor, const Change& change,
                              const std::string& stored, const std::vector<FieldChange>& further,
                              RegionSettings* region) {
    const ChangeResult result =
        set_a_field(region->ENTERPRIZE_PERMISSION_FILE,
                    {editor.line, editor.field, change.to, stored}, further);
    if (!field_written_or_told(result, region->ENTERPRIZE_PERMISSION_FILE, change.item, editor.line,
                               editor.field)) {
        return result;
    }
    change_confirmed(change);
    if (editor.kind->changes_settings)
        *region = interrogate_the_enterprise(region->ENTERPRIZE_PERMISSION_FILE, region->tools);
    return result;
}

std::string warnings_of(const std::string& gatebits_file, const FieldEditor& editor,
                        const Change& change) {
    if (editor.warnings == nullptr) return "";
    return editor.warnings(gatebits_file, {change.item, editor.subject, editor.field, change.to});
}

/// Whether the depot that a field needs is there.
enum class DepotFirst { IS_THERE, NOW_DEFINED, MISSING };

struct DepotNeeded {
    DepotFirst depot;
    LastAnswer last_answer;
};

/// Lets the operator define the depot of `os` where `entry` needs it.
DepotNeeded make_depot_first_if_needed(const std::string& entry, const std::string& os,
                                       RegionSettings* region) {
    const std::string question =
        why_depot_comes_first(region->ENTERPRIZE_PERMISSION_FILE, entry, os);
    if (question.empty()) return {DepotFirst::IS_THERE, std::nullopt};
    if (ask(question, "yes", "yes,no") != YES) return {DepotFirst::MISSING, std::nullopt};
    const Edit edit = view_change_depot(os, region);
    const bool defined =
        edit.ended == Edited::WRITTEN && !depot_of(region->ENTERPRIZE_PERMISSION_FILE, os).empty();
    return {defined ? DepotFirst::NOW_DEFINED : DepotFirst::MISSING, edit.last_answer};
}

/// The loop of all editors: read, ask, confirm, write, report.
Edit edit(const FieldEditor& editor, RegionSettings* region) {
    const FieldKind& kind = *editor.kind;
    const std::string gatebits_file = region->ENTERPRIZE_PERMISSION_FILE;
    std::string back_to;
    if (kind.depot_entry != nullptr) {
        const DepotNeeded needed =
            make_depot_first_if_needed(kind.depot_entry, editor.subject, region);
        if (needed.depot == DepotFirst::MISSING) return {Edited::LEFT, needed.last_answer};
        if (needed.depot == DepotFirst::NOW_DEFINED) back_to = kind.back_to;
    }
    while (the_sun_rises) {
        const std::string stored = field_or_empty(gatebits_file, editor.line, editor.field);
        const std::string current = kind.part_shown == nullptr ? stored : kind.part_shown(stored);
        const Entered entered =
            kind.ask_for(gatebits_file, editor, kind.question(editor, current, back_to), current);
        back_to.clear();
        if (!entered.value) return {Edited::LEFT, entered.last_answer};
        const Change change = {kind.field_name(editor), current, *entered.value};
        // Read before the question is asked: what the operator is shown is not newer than this.
        const std::vector<FieldChange> further = further_changes(gatebits_file, editor, change.to);
        const Consent consent = confirm_change(change, warnings_of(gatebits_file, editor, change));
        if (consent == DECLINED) continue;
        if (consent != CONFIRMED) return {Edited::LEFT, entered.last_answer};
        const ChangeResult result = write_and_report(editor, change, stored, further, region);
        return {result == ChangeResult::WRITTEN ? Edited::WRITTEN : Edited::LEFT,
                {entered.last_answer, result}};
    }
}

Edit view_change_depot(const std::string& os, RegionSettings* region) {
    for (const FieldEditor& editor : field_editors()) {
        if (editor.line == DEPOT_LINE && editor.subject == os) return edit(editor, region);
    }
    gripe_uncoded("view_change_depot");
}

}  // namespace

LastAnswer edit_field(int n, RegionSettings* region) {
    for (const FieldEditor& editor : field_editors()) {
        if (editor.action == n) return edit(editor, region).last_answer;
    }
    gripe_uncoded("edit_field");
}
