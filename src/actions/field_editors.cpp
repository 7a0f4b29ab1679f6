#include "actions/field_editors.h"

#include "actions/depot_first.h"
#include "actions/field_table.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "messages/identity.h"
#include "policy/region.h"

namespace {

void write_and_report(const FieldEditor& editor, const Change& change) {
    if (editor.kind->changes != nullptr) {
        set_fields(editor.kind->changes(editor, change.to));
    } else {
        set_a_field(editor.line, editor.field, change.to);
    }
    change_confirmed(change);
    if (editor.kind->changes_settings) interrogate_the_enterprise();
}

std::string warnings_of(const FieldEditor& editor, const Change& change) {
    if (editor.warnings == nullptr) return "";
    return editor.warnings({change.item, editor.subject, editor.field, change.to});
}

/// The loop of all editors: read, ask, confirm, write, report.
Edit edit(const FieldEditor& editor) {
    const FieldKind& kind = *editor.kind;
    std::string back_to;
    if (kind.depot_entry != nullptr) {
        const DepotNeeded needed = make_depot_first_if_needed(kind.depot_entry, editor.subject);
        if (needed.depot == DepotFirst::MISSING) return {Edited::LEFT, needed.last_answer};
        if (needed.depot == DepotFirst::NOW_DEFINED) back_to = kind.back_to;
    }
    while (the_sun_rises) {
        const std::string current = kind.current(editor);
        const Entered entered =
            kind.ask_for(editor, kind.question(editor, current, back_to), current);
        back_to.clear();
        if (!entered.value) return {Edited::LEFT, entered.last_answer};
        const Change change = {kind.field_name(editor), current, *entered.value};
        const Consent consent = confirm_change(change, warnings_of(editor, change));
        if (consent == DECLINED) continue;
        if (consent == CONFIRMED) write_and_report(editor, change);
        return {consent == CONFIRMED ? Edited::WRITTEN : Edited::LEFT, entered.last_answer};
    }
}

}  // namespace

Edit edit_field(int n) {
    for (const FieldEditor& editor : field_editors()) {
        if (editor.action == n) return edit(editor);
    }
    gripe_uncoded("edit_field");
}

Edit view_change_depot(const std::string& os) {
    return edit_field(os == WINDOWS_OS ? 4 : 5);
}
