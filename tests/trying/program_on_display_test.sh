#!/usr/bin/env bash
# The program on a display: a change of the policy file and a query, both by the menus. With
# DIALOG_PICTURES, a directory, it also saves pictures of the windows.

source "$(dirname -- "$0")/lib.sh" || exit 99
start_display

# shellcheck disable=SC2317 # called by its name
is_titled() { [[ $(head -n 1 labels 2>/dev/null) == "$1"* ]]; }
# Waits for the window with this prompt and, if it is a list, for its rows.
window_asks() { # beginning of the prompt, number of rows
    eventually is_titled "$1" || give_up "no window asks '$1': $(cat labels output)"
    window_appears
    [[ -z ${2:-} ]] || eventually has_rows "$2" || give_up "'$1' has not $2 rows"
}
down() { # number of times
    local i
    for ((i = 0; i < $1; ++i)); do press Down; done
}
picture() {
    [[ -n ${DIALOG_PICTURES:-} ]] || return 0
    sleep 0.5 # until the window is painted; for pictures only
    import -window "$window" "$DIALOG_PICTURES/$1.png"
}

export ZUL_GATESCOPE_BROWSER=/bin/true
eval "$(menus --interactive)" </dev/null >output 2>&1 &
dialog=$!

case_is "the menu, the submenu, an edit and its confirmation"
window_asks 'Select Query or Action for (demo)' 17
cp "$gatebits" before
down 9
picture menu
press Return
window_asks 'Gatebits view/change Action for (demo)' 21
down 9
press Return
window_asks 'Input a MOTD'
press ctrl+a
enter 'R&D: no <b>checkin_ & no mail today'
picture text
press Return
window_asks 'Confirm change of: Region MOTD String'
picture confirmation
press alt+y
window_asks 'Gatebits view/change Action for (demo)' 21
expect_change ';Welcome to the demo region.;;' ';R&D: no <b>checkin_ & no mail today;;'
press Escape

case_is "a query by the menu"
window_asks 'Select Query or Action for (demo)' 17
press Down Up Return
window_asks 'Select triggerable command' 55
press Down Up Return
window_asks 'Input user'
press Return
eventually has_page || failed "no page: $(cat output)"
# The box about the page and the next menu appear in either order.
# shellcheck disable=SC2317 # called by its name
press_escape() {
    has_ended && return
    has_window && press Escape
    return 1
}
eventually press_escape
ends_with 0

report
