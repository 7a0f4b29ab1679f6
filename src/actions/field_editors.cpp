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

struct Ended {
    /// False when the editor was cancelled, aborted or refused.
    bool written;
    LastAnswer last_answer;
};

Ended view_change_depot(const std::string& os, RegionSettings* region);

/// The fields that change with the new value.
std::vector<FieldValue> further_changes(const Gatebits& gatebits, const FieldEditor& editor,
                                        const std::string& value) {
    if (editor.kind->further_changes == nullptr) return {};
    return editor.kind->further_changes(gatebits, editor, value);
}

/// The values of the field and of those that change with it. The change is made only while they are
/// as the operator was shown them.
std::vector<std::string> fields_shown(const Gatebits& gatebits, const FieldEditor& editor,
                                      const std::string& value) {
    std::vector<std::string> values = {field_or_empty(gatebits, editor.line, editor.field)};
    for (const FieldValue& one : further_changes(gatebits, editor, value)) {
        values.push_back(field_or_empty(gatebits, one.line, one.field));
    }
    return values;
}

/// `shown` is the gatebits file when the operator was asked.
ChangeResult write_and_report(const FieldEditor& editor, const Change& confirmed,
                              const Gatebits& shown, RegionSettings* region) {
    const std::string& value = confirmed.to;
    const auto fields_in = [&](const Gatebits& gatebits) {
        return fields_shown(gatebits, editor, value);
    };
    const auto edit = [&](const Gatebits& now) {
        return set_a_field(now, {editor.line, editor.field, value},
                           further_changes(now, editor, value));
    };
    const std::string path = region->ENTERPRIZE_PERMISSION_FILE;
    const Changed changed = change(
        path, {shown, fields_in}, edit,
        {filled(ACTION_NUMBER, editor.action), confirmed.item, confirmed.from, confirmed.to});
    if (!advise_unless_field_written(changed.result, path, confirmed.item, editor.line,
                                     editor.field)) {
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

enum class DepotState { DEFINED, NOW_DEFINED, MISSING };

struct DepotFirst {
    DepotState depot;
    LastAnswer last_answer;
};

/// Lets the operator define the depot of `os` first when `entry` needs it and it is missing;
/// `*gatebits` is then read again.
DepotFirst define_missing_depot(const std::string& entry, const std::string& os, Gatebits* gatebits,
                                RegionSettings* region) {
    const std::string question = question_for_missing_depot(*gatebits, entry, os);
    if (question.empty()) return {DepotState::DEFINED, {}};
    if (ask(question, Answer::YES, Buttons::YES_NO) != Answer::YES)
        return {DepotState::MISSING, {}};
    const Ended editor = view_change_depot(os, region);
    if (!editor.written) return {DepotState::MISSING, editor.last_answer};
    *gatebits = read_gatebits(region->ENTERPRIZE_PERMISSION_FILE);
    return {depot_of(*gatebits, os).empty() ? DepotState::MISSING : DepotState::NOW_DEFINED,
            editor.last_answer};
}

/// The loop of all editors: read, ask, confirm, write, report. Each round reads the file once.
Ended run_editor(const FieldEditor& editor, RegionSettings* region) {
    const FieldKind& kind = *editor.kind;
    const std::string path = region->ENTERPRIZE_PERMISSION_FILE;
    Gatebits gatebits = read_gatebits(path);
    std::string back_to;
    if (kind.depot_entry != nullptr) {
        const DepotFirst first =
            define_missing_depot(kind.depot_entry, editor.subject, &gatebits, region);
        if (first.depot == DepotState::MISSING) return {false, first.last_answer};
        if (first.depot == DepotState::NOW_DEFINED) back_to = kind.back_to;
    }
    for (; the_sun_rises; gatebits = read_gatebits(path)) {
        const std::string stored = field_or_empty(gatebits, editor.line, editor.field);
        const std::string current = kind.part_shown == nullptr ? stored : kind.part_shown(stored);
        const Entered entered =
            kind.ask_for(gatebits, editor, kind.question(editor, current, back_to), current);
        back_to.clear();
        if (!entered.value) return {false, {entered.last_answer}};
        const Change wanted = {kind.field_name(editor), current, *entered.value};
        const Consent consent = confirm_change(wanted, warnings_of(gatebits, editor, wanted));
        if (consent == Consent::DECLINED) continue;
        if (consent != Consent::CONFIRMED) return {false, {entered.last_answer}};
        const ChangeResult result = write_and_report(editor, wanted, gatebits, region);
        return {result == ChangeResult::WRITTEN,
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
