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
    sed -i "s|^#!gatescope_unix_gatewarden_check=\$|&$2|" "$1"
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
