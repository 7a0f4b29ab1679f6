#!/usr/bin/env bash
# clearprompt on a display: every mode, every way out, and texts letter for letter.

source "$(dirname -- "$0")/lib.sh" || exit 99
start_display
# shellcheck disable=SC2016 # none of it is to act
nasty='<b>&amp; _x_ %s "quotes" $(echo no) \ \n'

# "&amp;" holds a single "&" before a letter: doubled here as the program doubles it.
marked=${nasty//&/&&}

case_is "the buttons of a question"
for preset in yes no abort; do
    for way in Return:preset alt+y:0 alt+n:1 alt+a:2 Escape:2; do
        case_is "a question, preset $preset, ${way%:*}"
        shows yes_no -mask yes,no,abort -def $preset -pre -pro 'Really?'
        press "${way%:*}"
        case $way:$preset in
            *:preset:yes) ends_with 0 ;;
            *:preset:no) ends_with 1 ;;
            *:preset:abort) ends_with 2 ;;
            *) ends_with "$(cut -d: -f2 <<<"$way")" ;;
        esac
    done
done

case_is "two buttons"
shows yes_no -mask yes,no -def no -pre -pro 'Really?'
press Return
ends_with 1
shows yes_no -mask yes,abort -def yes -pre -pro 'Really?'
press alt+a
ends_with 2
shows yes_no -mask yes,no -def yes -pre -pro 'Really?'
press Escape
ends_with 2
shows proceed -pre -type warning -pro 'Go on?'
press Return
ends_with 0
shows proceed -pre -pro 'Go on?'
press alt+a
ends_with 2

case_is "one button, pressed and closed"
for way in Return Escape; do
    shows yes_no -mask yes -def yes -pre -pro 'Done.'
    expect_equal "what the box shows" $'Done.\nOK' "$(sort labels | grep .)"
    press $way
    ends_with 0
    shows yes_no -mask no -def no -pre -pro 'Done.'
    press $way
    ends_with 1
    shows yes_no -mask abort -def abort -pre -pro 'Done.'
    press $way
    ends_with 2
done

case_is "prompts letter for letter"
shows yes_no -mask yes,no -pre -pro "$marked"
expect_equal "the prompt" "$nasty" "$(head -n 1 labels)"
press Return && ends_with 0
shows yes_no -mask yes -def yes -pre -newline -pro 'Rock && &Roll\nnext'
expect_equal "the prompt" 'Rock & Roll|next' "$(head -n 1 labels)"
press Return && ends_with 0
shows text -pre -outfile answer -pro "$marked"
expect_equal "the prompt" "$nasty" "$(head -n 1 labels)"
press Return && ends_with 0
shows list -pre -outfile answer -newline -items a -pro "$marked"second
expect_equal "the prompt" "${nasty//'\n'/|second}" "$(head -n 1 labels)"
press Escape && ends_with 1
shows text -pre -outfile answer -multi_line -newline -pro 'Title <b>_x\nsecond'
expect_equal "the title" 'Title <b>_x second' "$(xdotool getwindowname "$window")"
press Escape && ends_with 1
shows file -pre -outfile answer -pattern '*.txt' -directory "$stage/" -pro '-directory "x"'
expect_equal "the title" '-directory "x"' "$(xdotool getwindowname "$window")"
press Escape && ends_with 1
shows yes_no -mask yes,no -pre -pro $'Gr\xfc\xdfe'
expect_equal "the prompt" 'Grüße' "$(head -n 1 labels)"
press Return && ends_with 0

case_is "a message taller than the screen keeps its buttons on it"
tall=$(seq -f 'line %.0f' 200)
shows yes_no -mask yes,no,abort -def no -pre -pro "$tall"
read_geometry
((Y >= 0 && Y + HEIGHT <= 768)) || failed "the window reaches from $Y to $((Y + HEIGHT))"
click_from_corner 140 32
ends_with 0
shows yes_no -mask yes -def yes -pre -pro "$tall"
press Escape
ends_with 0

case_is "a text: the default as it is, a new one, a cancelled one"
rm -f answer
shows text -prefer_gui -outfile answer -default "$nasty" -prompt p
press Return
ends_with 0
expect_file answer "$nasty"
shows text -prefer_gui -outfile answer -default old -prompt p
press ctrl+a
enter 'a new <b> & _text_'
press Return
ends_with 0
expect_file answer 'a new <b> & _text_'
rm answer
shows text -prefer_gui -outfile answer -default old -prompt p
press Escape
ends_with 1
expect_no_file answer
shows text -prefer_gui -outfile answer -default '' -prompt p
press Return
ends_with 0
expect_file answer ''

case_is "a text longer than the window"
long=$(seq -s ' ' 1 900)
shows text -prefer_gui -outfile answer -default "$long" -prompt "$long"
read_geometry
((X >= 0 && X + WIDTH <= 1024)) || failed "the window reaches from $X to $((X + WIDTH))"
press End
enter ' end'
press Return
ends_with 0
expect_file answer "$long end"

case_is "a default from a file with several lines, in one line"
printf 'one\ntwo  three\n' >lines
shows text -prefer_gui -outfile answer -dfile lines -prompt p
press Return
ends_with 0
expect_file answer 'one two  three'

case_is "several lines, shown and changed"
printf 'one\n\n  two <b>_x\\n %%s\n' >lines
shows text -prefer_gui -multi_line -outfile answer -dfile lines -newline -prompt 'A file'
click_from_corner 55 32
ends_with 0
expect_file answer $'one\n\n  two <b>_x\\n %s'
shows text -prefer_gui -multi_line -outfile answer -dfile lines -newline -prompt 'A file'
press ctrl+Home
enter 'new'
press Return
click_from_corner 55 32
ends_with 0
expect_file answer $'new\none\n\n  two <b>_x\\n %s'
printf 'Gr\xfc\xdfe\n' >lines
shows text -prefer_gui -multi_line -outfile answer -dfile lines -newline -prompt 'A file'
click_from_corner 55 32
ends_with 0
expect_file answer $'\x47r\xfc\xdfe'

case_is "a list of fifty"
rm -f answer
items=$(seq -s , -f 'Item <%.0f> &amp; _x_ \n' 50)
shows_rows 50 list -prefer_gui -outfile answer -newline -items "$items" -prompt 'Pick'
read_geometry
((Y >= 0 && Y + HEIGHT <= 768)) || failed "the window reaches from $Y to $((Y + HEIGHT))"
press End Return
ends_with 0
expect_file answer 'Item <50> &amp; _x_ \n'
rm answer
shows list -prefer_gui -outfile answer -newline -items a,b -prompt 'Pick'
press Escape
ends_with 1
expect_no_file answer

case_is "separators, empty items, options among the items"
shows_rows 5 list -prefer_gui -outfile answer -newline -items 'a,------,,--help,TRUE' -prompt 'Pick'
press Down Down Down Return
ends_with 0
expect_file answer --help

case_is "OK without a pick asks again"
shows_rows 2 list -prefer_gui -outfile answer -newline -items a,b -prompt 'Pick'
first=$(xdotool getwindowpid "$window")
click_from_corner 45 32
# shellcheck disable=SC2317 # called by its name
is_another() { has_window zenity && [[ $(xdotool getwindowpid "$window") != "$first" ]]; }
eventually is_another || failed "no second window"
eventually has_rows 2 || failed "the second window has no rows"
press Down Return
ends_with 0

case_is "several picks"
shows_rows 5 list -prefer_gui -outfile answer -newline -items 'one,two,three,------,five' -choices \
    -prompt 'Pick'
# The check boxes are a column of their own.
press Down Right space Down Down Down space
click_from_corner 55 32
ends_with 0
expect_file answer $'two\nfive\n'
shows list -prefer_gui -outfile answer -newline -items one,two -choices -prompt 'Pick'
click_from_corner 55 32
ends_with 0
expect_file answer ''
rm answer
shows list -prefer_gui -outfile answer -newline -items one,two -choices -prompt 'Pick'
press Escape
ends_with 1
expect_no_file answer

case_is "a preset item"
shows_rows 3 list -prefer_gui -outfile answer -items one,two,three -default two -prompt 'Pick'
click_from_corner 55 32
ends_with 0
expect_file answer two

case_is "a file that is not there yet, and one that is"
mkdir files && : >files/old.txt
shows file -prefer_gui -outfile answer -pattern '*.txt' -directory "$stage/files/" -prompt p
enter new.txt
# The chooser keeps Return for itself while it looks into the directory or offers names.
# shellcheck disable=SC2317 # called by its name
press_and_ended() { press Return && has_ended; }
eventually press_and_ended
ends_with 0
expect_file answer "$stage/files/new.txt"
shows file -prefer_gui -outfile answer -pattern '*.txt' -directory "$stage/files/" -prompt p
enter "$stage/files/old.txt"
eventually press_and_ended
ends_with 0
expect_file answer "$stage/files/old.txt"
rm answer
shows file -prefer_gui -outfile answer -pattern '*.txt' -prompt p
press Escape
ends_with 1
expect_no_file answer

# What the test leaves is gone with it.
export XDG_RUNTIME_DIR=$stage/runtime
mkdir "$XDG_RUNTIME_DIR"
# shellcheck disable=SC2317 # called by their names
windows_are() { [[ $(xdotool search --onlyvisible --class zenity | wc -l) == "$1" ]]; }
waits_for_its_turn() { pgrep -P "$dialog" -x flock >/dev/null; }
shows_box_and_question() {
    "$clearprompt" yes_no -mask yes -def yes -pre -pro 'BOX' 2>box_err &
    box=$!
    window_appears
    start_dialog yes_no -mask yes,no -def no -pre -pro 'QUESTION'
}

case_is "without a window manager no window hides under another"
needs xprop
shows_box_and_question
eventually waits_for_its_turn || failed "the question does not wait"
windows_are 1 ||
    failed "not one window is up: $(xdotool search --onlyvisible --class zenity 2>&1; cat labels box_err err)"
press Return
wait "$box"
expect_equal "the box's status" 0 $?
# shellcheck disable=SC2317
asks_question() { [[ -e labels && $(head -n 1 labels) == QUESTION ]]; }
eventually asks_question || failed "the question does not come after the box"
window_appears
press Return
ends_with 1

case_is "a signal ends a dialog that waits for its turn"
shows_box_and_question
eventually waits_for_its_turn || failed "the question does not wait"
kill -TERM "$dialog"
ends_with 143
press Return
wait "$box"
expect_equal "what is left" "" "$(ls "$XDG_RUNTIME_DIR")"

case_is "with a window manager two windows are up side by side"
# Only what a window manager leaves to be known by, on a window that is there.
root=$(xwininfo -root | sed -n 's/.*Window id: \(0x[0-9a-f]*\).*/\1/p')
xprop -root -f _NET_SUPPORTING_WM_CHECK 32x -set _NET_SUPPORTING_WM_CHECK "$root"
shows_box_and_question
eventually windows_are 2 || failed "the question waits for the box"
kill "$box" && wait "$box" 2>/dev/null
eventually windows_are 1 || failed "the box stays"
window_appears
press Return
ends_with 1
xprop -root -remove _NET_SUPPORTING_WM_CHECK

case_is "a signal takes the window with it and leaves nothing"
mkdir temporary
TMPDIR=$stage/temporary shows text -prefer_gui -outfile answer -prompt p
kill -TERM "$dialog"
ends_with 143
window_goes
expect_no_file answer
expect_equal "what is left" "" "$(ls temporary)"

case_is "a display that cannot be opened is no 'no'"
DISPLAY=:9999 setsid --wait "$clearprompt" yes_no -mask yes,no -pre -pro x 2>err </dev/null
expect_equal status 10 $?
expect_holds "the message" "zenity cannot open the display" "$(<err)"

case_is "neither display nor terminal"
DISPLAY='' setsid --wait "$clearprompt" yes_no -mask yes,no -pre -pro x 2>err </dev/null
expect_equal status 10 $?
expect_holds "the message" "there is no display" "$(<err)"
DISPLAY='' setsid --wait "$clearprompt" list -pre -outfile answer -items a -pro x 2>err </dev/null
expect_equal status 10 $?
expect_no_file answer

case_is "a zenity that crashes or fails is no answer"
mkdir broken
for end in 'kill -SEGV $$' 'exit 1' 'exit 5' 'exit 0'; do
    printf '#!/bin/sh\n%s\n' "$end" >broken/zenity && chmod +x broken/zenity
    PATH=$stage/broken:$PATH "$clearprompt" yes_no -mask yes,no -pre -pro x 2>err
    expect_equal "status after '$end'" 11 $?
    PATH=$stage/broken:$PATH "$clearprompt" text -pre -outfile answer -pro x 2>err
    expect_equal "status after '$end'" 11 $?
    expect_no_file answer
done

case_is "a display that goes while a dialog is up"
shows yes_no -mask yes,no -pre -pro x
kill "$display_server"
wait "$display_server" 2>/dev/null
display_server=''
ends_with 11

report
