#!/usr/bin/env bash
# The program on a terminal: a change of the policy file and a query, both by the menus.

source "$(dirname -- "$0")/lib.sh" || exit 99
start_terminal 60 50
# Waits for a part of the screen, clears the screen, and answers.
answers() { # part of the screen, keys
    appears "$1"
    shift
    tmux_does send-keys -R \; clear-history
    keys "$@"
}

in_terminal "$(menus --interactive)"

case_is "the menu, the submenu, an edit and its confirmation"
appears 'Copy Existing Gatebits file'
cp "$gatebits" before
answers 'Copy Existing Gatebits file' A02 Enter
answers 'A22 - Add' A13 Enter
answers 'Answer (Ctrl-D cancels): Welcome to the demo region.' C-u 'Rock & <b>Roll_ at noon' Enter
appears 'Confirm change of: Region MOTD String'
answers 'yes [no] abort' y Enter
appears 'A22 - Add'
expect_change ';Welcome to the demo region.;;' ';Rock & <b>Roll_ at noon;;'
answers 'A22 - Add' C-d

case_is "a query by the menu"
answers 'Copy Existing Gatebits file' Q01 Enter
answers ' 3) checkin' 3 Enter
answers 'Answer (Ctrl-D cancels): *' Enter
appears 'there is no browser defined'
eventually has_page || failed "no page"
answers 'Copy Existing Gatebits file' C-d
terminal_ends_with 0

case_is "Ctrl-C ends the program"
in_terminal "trap : INT; $(menus --back)"
answers 'Copy Existing Gatebits file' C-c
terminal_ends_with 130
# shellcheck disable=SC2317 # called by its name
nothing_runs() { ! pgrep -f "$gatebits" >/dev/null; }
eventually nothing_runs || failed "the program still runs"

report
