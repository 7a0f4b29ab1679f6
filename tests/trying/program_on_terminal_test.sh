#!/usr/bin/env bash
# The whole program on a terminal: a change of the policy file and a query, both by the menus.

source "$(dirname -- "$0")/lib.sh" || exit 99
start_terminal 100 40
needs pgrep
make_region
cat >run <<END
source "$source_directory/scripts/lib/interactive.sh"
run_menus "${GATESCOPE_PROGRAM:?names the program}" "$gatebits" "$stage/stand-ins"
END
down() { # how often
    local i
    for ((i = 0; i < $1; ++i)); do keys Down; done
}

in_terminal 'bash ./run'

case_is "the menu, the submenu, an edit and its confirmation"
appears 'Select Query or Action for (trial)'
appears 'A27 - Copy'
down 9
keys Enter
appears 'Gatebits view/change Action for (trial)'
appears 'A22 - Add'
down 9
keys Enter
appears 'Input a MOTD'
appears 'Welcome to the region.___'
keys C-u
types 'Rock & <b>Roll_ at noon'
keys Enter
appears 'Confirm change of: Region MOTD String'
appears Abort
# The preset answer is no.
keys Up Enter
appears 'A22 - Add'
expect_equal "the change" "$(printf '%s\n' \
    '< #!gatescope_unix_gatewarden_check=' \
    "> #!gatescope_unix_gatewarden_check=$stage/stand-ins/gatewarden" \
    '< ;Welcome to the region.;;' \
    '> ;Rock & <b>Roll_ at noon;;')" "$(changes)"

case_is "a declined change leaves the file as it is"
cp "$gatebits" changed
down 9
keys Enter
appears 'Input a MOTD'
appears 'noon___'
types 'x'
keys Enter
appears 'Confirm change of: Region MOTD String'
appears Abort
keys Enter
appears 'Input a MOTD'
appears 'noon___'
keys Escape
appears 'A22 - Add'
cmp changed "$gatebits" || failed "the file was changed"
keys Escape

case_is "a query by the menu"
appears 'A27 - Copy'
keys Enter
appears 'Select triggerable command'
appears checkin
keys Enter
appears 'Input user'
appears '*___'
keys Enter
# The message comes from the background, so the menu may have its turn before it.
# shellcheck disable=SC2317 # called by its name
message_or_menu() { on_screen 'there is no browser defined' || on_screen 'A27 - Copy'; }
eventually message_or_menu || failed "neither message nor menu: $(screen)"
menu_was_first=$(on_screen 'A27 - Copy' && echo yes || echo no)
if [[ $menu_was_first == yes ]]; then keys Enter; fi
appears 'there is no browser defined'
eventually has_page || failed "no page"
expect_equal "days with something to show" 1 \
    "$(grep -c 'class="time_block_populated' "$region"/query_results/*_Q01.html)"
keys Enter
if [[ $menu_was_first == yes ]]; then
    appears 'Select triggerable command'
    keys Escape
fi
appears 'A27 - Copy'
keys Escape
terminal_ends_with 0

case_is "Ctrl-C ends the program, and its box goes from the screen"
in_terminal 'trap : INT; bash ./run'
appears 'A27 - Copy'
# shellcheck disable=SC2317 # called by its name
interrupt_key_works() {
    [[ $(stty -a -F "$(tmux_does display-message -p '#{pane_tty}')") == *'intr = ^C;'* ]]
}
eventually interrupt_key_works || failed "the terminal has no interrupt key"
# A box that is ended while it is still drawn leaves what was on its way to the terminal.
# shellcheck disable=SC2317 # called by its name
screen_rests() {
    local before
    before=$(screen)
    sleep 0.3
    [[ $(screen) == "$before" ]]
}
eventually screen_rests || failed "the screen does not come to rest"
keys C-c
eventually not_on_screen 'A27 - Copy' || failed "the box stays on the screen: $(screen)"
appears 'ready>'
# shellcheck disable=SC2317 # called by its name
nothing_runs() { ! pgrep -f "$gatebits" >/dev/null; }
eventually nothing_runs || failed "the program still runs"

report
