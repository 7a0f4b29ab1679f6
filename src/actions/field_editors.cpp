#include "actions/field_editors.h"

#include "actions/depot_first.h"
#include "actions/field_table.h"
#include "actions/outcome.h"
#include "base/filled.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "messages/confirmation_texts.h"
#include "policy/gatebits_file.h"
#include "policy/region.h"

namespace gatescope {
namespace {

/// How an editor ended.
enum class EditorEnd {
    WRITTEN,
    LEFT  ///< cancelled, aborted or refused; nothing was written
};

struct Ended {
    EditorEnd how;
    LastAnswer last_answer;
};

Ended view_change_depot(const std::string& os, RegionSettings* region);

/// What the new value changes elsewhere.
std::vector<FieldValue> further_changes(const Gatebits& gatebits, const FieldEditor& editor,
                                        const std::string& value) {
    if (editor.kind->further_changes == nullptr) return {};
    return editor.kind->further_changes(gatebits, editor, value);
}

/// What of the gatebits file the change rests on: what the field holds, and those that change with
/// it.
std::vector<std::string> fields_shown(const Gatebits& gatebits, const FieldEditor& editor,
                                      const std::string& value) {
    std::vector<std::string> held = {field_or_empty(gatebits, editor.line, editor.field)};
    for (const FieldValue& one : further_changes(gatebits, editor, value)) {
        held.push_back(field_or_empty(gatebits, one.line, one.field));
    }
    return held;
}

/// `shown` is the gatebits file when the operator was asked.
ChangeResult write_and_report(const FieldEditor& editor, const Change& confirmed,
                              const Gatebits& shown, RegionSettings* region) {
    const std::string& value = confirmed.to;
    const auto rests_on = [&](const Gatebits& gatebits) {
        return fields_shown(gatebits, editor, value);
    };
    const auto edit = [&](const Gatebits& now) {
        return set_a_field(now, {editor.line, editor.field, value},
                           further_changes(now, editor, value));
    };
    const std::string path = region->ENTERPRIZE_PERMISSION_FILE;
    const Changed changed = change(
        path, {shown, rests_on}, edit,
        {filled(ACTION_NUMBER, editor.action), confirmed.item, confirmed.from, confirmed.to});
    if (!field_written_or_told(changed.result, path, confirmed.item, editor.line, editor.field)) {
        return changed.result;
    }
    change_confirmed(confirmed);
    if (editor.kind->changes_settings) {
        *region = interrogate_the_enterprise(path, changed.now, region->tools);
    }
    return changed.result;
}

std::string warnings_of(const Gatebits& gatebits, const FieldEditor& editor, const Change& wanted) {
    if (editor.warnings == nullptr) return "";
    return editor.warnings(gatebits, {wanted.item, editor.subject, editor.field, wanted.to});
}

/// Whether the depot that a field needs is there.
enum class DepotFirst { IS_THERE, NOW_DEFINED, MISSING };

struct DepotNeeded {
    DepotFirst depot;
    LastAnswer last_answer;
};

/// Lets the operator define the depot of `os` where `entry` needs it; `*gatebits` is then the file
/// with it.
DepotNeeded make_depot_first_if_needed(const std::string& entry, const std::string& os,
                                       Gatebits* gatebits, RegionSettings* region) {
    const std::string question = why_depot_comes_first(*gatebits, entry, os);
    if (question.empty()) return {DepotFirst::IS_THERE, {}};
    if (ask(question, YES, Buttons::YES_NO) != YES) return {DepotFirst::MISSING, {}};
    const Ended depot = view_change_depot(os, region);
    if (depot.how == EditorEnd::LEFT) return {DepotFirst::MISSING, depot.last_answer};
    *gatebits = read_gatebits(region->ENTERPRIZE_PERMISSION_FILE);
    return {depot_of(*gatebits, os).empty() ? DepotFirst::MISSING : DepotFirst::NOW_DEFINED,
            depot.last_answer};
}

/// The loop of all editors: read, ask, confirm, write, report. What is shown, checked and warned of
/// in one round comes from one reading.
Ended run_editor(const FieldEditor& editor, RegionSettings* region) {
    const FieldKind& kind = *editor.kind;
    const std::string path = region->ENTERPRIZE_PERMISSION_FILE;
    Gatebits gatebits = read_gatebits(path);
    std::string back_to;
    if (kind.depot_entry != nullptr) {
        const DepotNeeded needed =
            make_depot_first_if_needed(kind.depot_entry, editor.subject, &gatebits, region);
        if (needed.depot == DepotFirst::MISSING) return {EditorEnd::LEFT, needed.last_answer};
        if (needed.depot == DepotFirst::NOW_DEFINED) back_to = kind.back_to;
    }
    for (; the_sun_rises; gatebits = read_gatebits(path)) {
        const std::string stored = field_or_empty(gatebits, editor.line, editor.field);
        const std::string current = kind.part_shown == nullptr ? stored : kind.part_shown(stored);
        const Entered entered =
            kind.ask_for(gatebits, editor, kind.question(editor, current, back_to), current);
        back_to.clear();
        if (!entered.value) return {EditorEnd::LEFT, {entered.last_answer}};
        const Change wanted = {kind.field_name(editor), current, *entered.value};
        const Consent consent = confirm_change(wanted, warnings_of(gatebits, editor, wanted));
        if (consent == DECLINED) continue;
        if (consent != CONFIRMED) return {EditorEnd::LEFT, {entered.last_answer}};
        const ChangeResult result = write_and_report(editor, wanted, gatebits, region);
        return {result == ChangeResult::WRITTEN ? EditorEnd::WRITTEN : EditorEnd::LEFT,
                {entered.last_answer, result == ChangeResult::CHANGED_MEANWHILE}};
    }
}

Ended view_change_depot(const std::string& os, RegionSettings* region) {
    for (const FieldEditor& editor : field_editors()) {
        if (editor.line == DEPOT_LINE && editor.subject == os) return run_editor(editor, region);
    }
    gripe_uncoded("view_change_depot");
}

}  // namespace

LastAnswer edit_field(int n, RegionSettings* region) {
    for (const FieldEditor& editor : field_editors()) {
        if (editor.action == n) return run_editor(editor, region).last_answer;
    }
    gripe_uncoded("edit_field");
}

}  // namespace gatescope
