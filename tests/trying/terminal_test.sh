#!/usr/bin/env bash
# clearprompt on a terminal of 60 columns: every mode, every way to end a dialog, and no terminal.

source "$(dirname -- "$0")/lib.sh" || exit 99
start_terminal 60 40
# shellcheck disable=SC2016 # not to be expanded
nasty='<b>&amp; _x_ %s "quotes" $(echo no) \ \n'

# Starts clearprompt in the terminal and waits for a part of its screen.
asks() { # part of the screen, arguments
    local part=$1
    shift
    rm -f answer
    in_terminal "$(printf '%q ' "$clearprompt" "$@")"
    appears "$part"
}
ends() { # status, keys
    local expected=$1
    shift
    keys "$@"
    terminal_ends_with "$expected"
}
gives() { # answer, keys
    local expected=$1
    shift
    ends 0 "$@"
    expect_file answer "$expected"
}

case_is "a question: preset, typed, closed"
# shellcheck disable=SC2054 # the mask is one word
question=(yes_no -mask yes,no,abort -pre -newline -pro 'Really?\nnow')
for preset in yes:0 no:1 abort:2; do
    asks "[${preset%:*}]" "${question[@]}" -def "${preset%:*}"
    appears $'\nReally?\nnow\n'
    ends "${preset#*:}" Enter
done
for answer in yes:0 no:1 abort:2 A:2; do
    asks 'yes [no] abort:' "${question[@]}" -def no
    ends "${answer#*:}" "${answer%:*}" Enter
done
asks '[yes] no abort:' "${question[@]}"
keys what Enter
ends 2 C-d

case_is "a message is shown without waiting for an answer"
asks 'Done.' yes_no -mask yes -def yes -pre -pro 'Done.'
terminal_ends_with 0
asks 'Failed.' yes_no -mask abort -def abort -pre -pro 'Failed.'
terminal_ends_with 2

case_is "a text: the default unchanged, changed, cleared, cancelled"
asks "$nasty" text -prefer_gui -outfile answer -default "$nasty" -prompt "${nasty//&/&&}"
appears $'\n'"$nasty"$'\n'
gives "$nasty" Enter
asks ': old' text -prefer_gui -outfile answer -default old -prompt p
gives 'old -a <b>' Space '-a <b>' Enter
asks ': old' text -prefer_gui -outfile answer -default old -prompt p
gives '' C-u Enter
asks ': old' text -prefer_gui -outfile answer -default old -prompt p
ends 1 C-d
expect_no_file answer
long=$(seq -s ' ' 1 100)
asks ' 100' text -prefer_gui -outfile answer -default "$long" -prompt p
gives "$long end" ' end' Enter

case_is "a list: by number, by beginning, cancelled; items longer than 60 columns"
long='Q06 - Commands/Users (success/denied) over Time by parent policy'
list=(list -prefer_gui -outfile answer -newline -items "A01 - Prune,001 x,,$nasty,$long" -prompt 'Pick\none')
asks "4) $nasty" "${list[@]}"
appears $'\nPick\none\n1) A01 - Prune\n2) 001 x\n3)\n'
expect_holds "the list" "5) $long" "$(tmux_does capture-pane -pJ)"
gives "$nasty" 4 Enter
asks '5)' "${list[@]}"
gives "$long" Q06 Enter
asks '5)' "${list[@]}"
gives '001 x' 001 Enter
for misfit in 6 x '1,2'; do
    asks '5)' "${list[@]}"
    keys "$misfit" Enter
    appears 'one item'
    ends 1 C-d
    expect_no_file answer
done
asks '50)' list -prefer_gui -outfile answer -items "$(seq -s , -f 'Item %.0f' 50)" -prompt Pick
expect_holds "the first row" '14) Item 14' "$(screen | grep ' 1) Item 1 ')"
gives 'Item 50' 50 Enter

case_is "several picks, none, cancelled"
# shellcheck disable=SC2054 # the items are one word
several=(list -prefer_gui -outfile answer -items one,two,three -choices -prompt P)
asks '3)' "${several[@]}"
gives $'three\none\n' '3, 1' Enter
asks '3)' "${several[@]}"
gives '' 0 Enter
asks '3)' "${several[@]}"
ends 1 C-d
expect_no_file answer

case_is "a file: completed, cancelled"
mkdir files && : >files/old.txt
asks 'files/' file -pre -outfile answer -pattern '*.txt' -directory files/ -pro p
types ol
keys Tab
appears old.txt
gives files/old.txt Enter
asks 'files/' file -pre -outfile answer -directory files/ -pro p
ends 1 C-d
expect_no_file answer

case_is "long lines are broken at blanks"
asks 'eleven' yes_no -mask yes,no -pre -pro \
    'one two three four five six seven eight nine ten of twelve eleven twelve'
appears $'\none two three four five six seven eight nine ten of twelve\neleven twelve\n'
ends 0 Enter

case_is "a message from the background is shown beside a question"
printf '%s\n' "$clearprompt yes_no -mask yes -def yes -pre -pro FIRST &" \
    "$clearprompt yes_no -mask yes,no -def no -pre -pro SECOND" >both
in_terminal 'sh ./both'
appears SECOND
appears FIRST
ends 1 Enter

case_is "Ctrl-C ends the dialog and the waiting script, and restores the terminal's settings"
for dialog_waited_for in "text -outfile answer -default x" "list -outfile answer -items a,b" yes_no; do
    printf '%s\n' "$clearprompt $dialog_waited_for -pro QUESTION" 'echo went on >goes_on' >waits
    in_terminal 'trap : INT; stty -a >before; sh ./waits; s=$?; stty -a >after; (exit $s)'
    appears QUESTION
    eventually on_screen ':' || failed "no line to type on: $(screen)"
    ends 130 C-c
    expect_no_file goes_on
    expect_equal "the terminal's settings" "$(<before)" "$(<after)"
done

case_is "without a usable display, or with a failing zenity, the dialog is on the terminal"
mkdir broken
for end in 'kill -SEGV $$' 'exit 1' 'exit 0'; do
    printf '#!/bin/sh\n%s\n' "$end" >broken/zenity && chmod +x broken/zenity
    in_terminal "PATH=$stage/broken:\$PATH DISPLAY=:9999 $clearprompt yes_no -pre -pro ASKED"
    appears ASKED
    ends 1 no Enter
done

case_is "without display and terminal there is an error"
setsid --wait "$clearprompt" yes_no -mask yes,no -pre -pro x 2>err </dev/null
expect_equal status 3 $?
expect_file err $'clearprompt: no dialog can be shown: there is no display; there is no terminal\n'
DISPLAY=:9999 PATH=$stage/broken:$PATH setsid --wait "$clearprompt" list -pre -outfile answer -items a \
    -pro x 2>err </dev/null
expect_equal status 3 $?
expect_holds "the message" "zenity failed" "$(<err)"
expect_no_file answer

report
