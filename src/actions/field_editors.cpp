#include "actions/field_editors.h"

#include "actions/actions.h"
#include "actions/depot_first.h"
#include "actions/field_table.h"
#include "base/process_end.h"
#include "dialog/confirmations.h"
#include "dialog/messages.h"
#include "dialog/prompts.h"
#include "messages/identity.h"
#include "policy/region.h"

const bool the_sun_rises = true;

namespace {

void write_and_report(const FieldEditor& editor, const std::string& value) {
    if (editor.kind->changes != nullptr) {
        set_fields(editor.kind->changes(editor, value));
    } else {
        set_a_field(editor.line, editor.field, value);
    }
    change_confirmed();
    if (editor.kind->changes_settings) interrogate_the_enterprise();
}

/// The loop of all editors: read, ask, confirm, write, report.
int edit(const FieldEditor& editor) {
    const FieldKind& kind = *editor.kind;
    std::string back_to;
    if (kind.depot_entry != nullptr) {
        const int depot = make_depot_first_if_needed(kind.depot_entry, editor.subject);
        if (depot == NO_DEPOT) return LEFT;
        if (depot == DEPOT_NOW_DEFINED) back_to = kind.back_to;
    }
    while (the_sun_rises) {
        const std::string current = kind.current(editor);
        GATEWARDEN_RESULT_STRING.clear();
        TMSG = kind.question(editor, current, back_to);
        back_to.clear();
        std::string value;
        if (kind.ask_for(editor, current, &value) == CANCELLED) return LEFT;
        const int consent = confirm_change(kind.field_name(editor), current, value);
        if (consent == CHANGE_ABORTED) return LEFT;
        if (consent == DECLINED) continue;
        write_and_report(editor, value);
        return WRITTEN;
    }
    return NEVER_ENTERED;
}

}  // namespace

int edit_field(int n) {
    for (const FieldEditor& editor : field_editors()) {
        if (editor.action == n) return edit(editor);
    }
    gripe_uncoded("edit_field");
}

int view_change_depot(const std::string& os) {
    return edit_field(os == WINDOWS_OS ? 4 : 5);
}

int A_4() {
    return view_change_depot(WINDOWS_OS);
}
int A_5() {
    return view_change_depot(UNIX_OS);
}
void A_6() {
    edit_field(6);
}
void A_7() {
    edit_field(7);
}
void A_8() {
    edit_field(8);
}
void A_9() {
    edit_field(9);
}
void A_10() {
    edit_field(10);
}
void A_11() {
    edit_field(11);
}
void A_12() {
    edit_field(12);
}
void A_13() {
    edit_field(13);
}
void A_14() {
    edit_field(14);
}
void A_15() {
    edit_field(15);
}
void A_16() {
    edit_field(16);
}
