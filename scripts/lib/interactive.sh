# shellcheck shell=bash
# To be sourced: runs gatescope's menus with the stand-ins of tools/ for people who have neither
# ClearCase nor Gatewarden.

# Makes a directory of the stand-ins under the names that gatescope looks for.
make_stand_ins() {
    local tools
    tools="$(cd "$(dirname "${BASH_SOURCE[0]}")/../../tools" && pwd)"
    mkdir -p "$1"
    ln -sfn "$tools/clearprompt" "$1/clearprompt"
    ln -sfn "$tools/demo_checker" "$1/gatewarden"
}

# Names the checker in a gatebits file that names none.
name_checker() {
    local checker
    checker="$(printf '%s\n' "$2" | sed 's/[&|\\]/\\&/g')"
    sed -i "s|^#!gatescope_unix_gatewarden_check=\$|&$checker|" "$1"
}

# On a terminal a last message may still be up when the program has ended.
wait_for_boxes() {
    if [[ ! -t 0 ]]; then return; fi
    sleep 0.5
    flock "$(tty)" true
}

# run_menus PROGRAM GATEBITS STAND_INS: the main menu until it is cancelled; gatescope's status.
run_menus() {
    local status=0
    make_stand_ins "$3"
    name_checker "$2" "$3/gatewarden"
    PATH="$3:$PATH" "$1" "F=$2" || status=$?
    wait_for_boxes
    return "$status"
}

# The group of packages that shows dialogs here.
dialogs_wanted() {
    if [[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]]; then
        echo display_dialogs
    else
        echo terminal_dialogs
    fi
}

# let_the_operator_try PROGRAM GATEBITS STAND_INS: run_menus with words around it, and with the
# desktop's browser for the pages where there is one. Ends with the status of gatescope.
let_the_operator_try() {
    local status=0 opener
    if [[ -z "${ZUL_GATESCOPE_BROWSER:-}" && "$(dialogs_wanted)" == display_dialogs ]] &&
        opener="$(command -v xdg-open)"; then
        export ZUL_GATESCOPE_BROWSER="$opener"
    fi
    echo "The main menu for $2 (cancel it to end)"
    run_menus "$@" || status=$?
    return "$status"
}
