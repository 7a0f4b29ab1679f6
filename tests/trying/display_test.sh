#!/usr/bin/env bash
# clearprompt on a display: every mode, every way to end a dialog, and exact texts.

source "$(dirname -- "$0")/lib.sh" || exit 99
start_display
# shellcheck disable=SC2016 # not to be expanded
nasty='<b>&amp; _x_ %s "quotes" $(echo no) \ \n'
# "&amp;" has a "&" before a letter: doubled here as gatescope doubles it.
marked=${nasty//&/&&}
fits_on_screen() {
    read_geometry
    ((X >= 0 && X + WIDTH <= 1024 && Y >= 0 && Y + HEIGHT <= 768)) ||
        failed "the window extends from $X,$Y to $((X + WIDTH)),$((Y + HEIGHT))"
}
gives() { # answer, keys
    press "${@:2}"
    ends_with 0
    expect_file answer "$1"
    rm -f answer
}
cancels() {
    press Escape
    ends_with 1
    expect_no_file answer
}

for preset in yes:0 no:1 abort:2; do
    for way in "Return:${preset#*:}" alt+y:0 alt+n:1 alt+a:2 Escape:2; do
        case_is "three buttons, preset ${preset%:*}, ${way%:*}"
        shows yes_no -mask yes,no,abort -def "${preset%:*}" -pre -pro 'Really?'
        press "${way%:*}"
        ends_with "${way#*:}"
    done
done
for way in yes,no:no:Return:1 yes,no:no:Escape:2 yes,abort:yes:alt+a:2; do
    IFS=: read -r mask preset key status_then <<<"$way"
    case_is "two buttons, $way"
    shows yes_no -mask "$mask" -def "$preset" -pre -pro 'Really?'
    press "$key"
    ends_with "$status_then"
done
for way in yes:Return:0 yes:Escape:0 no:Return:1 no:Escape:1 abort:Return:2 abort:Escape:2; do
    IFS=: read -r mask key status_then <<<"$way"
    case_is "one button, $way"
    shows yes_no -mask "$mask" -def "$mask" -pre -pro 'Done.'
    expect_equal "the labels of the box" $'Done.\nOK' "$(sed '$d' labels | sort | grep .)"
    press "$key"
    ends_with "$status_then"
done

case_is "prompts are shown unchanged"
shows yes_no -mask yes,no -pre -pro "$marked"
expect_equal "the prompt" "$nasty" "$(head -n 1 labels)"
press Return && ends_with 0
shows yes_no -mask yes -def yes -pre -newline -pro 'Rock && &Roll\nnext'
expect_equal "the prompt" 'Rock & Roll|next' "$(head -n 1 labels)"
press Return && ends_with 0
shows text -pre -outfile answer -prompt "$marked"
expect_equal "the prompt" "$nasty" "$(head -n 1 labels)"
press Return && ends_with 0
shows list -pre -outfile answer -newline -items a -prompt "$marked"second
expect_equal "the prompt" "${nasty//'\n'/|second}" "$(head -n 1 labels)"
press Escape && ends_with 1

case_is "a text: the default unchanged, a new one, a cancelled one, a long one"
shows text -prefer_gui -outfile answer -default "$nasty" -prompt p
gives "$nasty" Return
shows text -prefer_gui -outfile answer -default old -prompt p
press ctrl+a
enter 'a new <b> & _text_'
gives 'a new <b> & _text_' Return
shows text -prefer_gui -outfile answer -default old -prompt p
cancels
long=$(seq -s ' ' 1 900)
shows text -prefer_gui -outfile answer -default "$long" -prompt "$long"
fits_on_screen
press End
enter ' end'
gives "$long end" Return

case_is "a list of fifty"
items=$(seq -s , -f 'Item <%.0f> &amp; _x_ \n' 50)
shows_rows 50 list -prefer_gui -outfile answer -newline -items "$items" -prompt 'Pick'
fits_on_screen
gives 'Item <50> &amp; _x_ \n' End Return
shows_rows 5 list -prefer_gui -outfile answer -newline -items 'a,------,,--help,TRUE' -prompt 'Pick'
gives --help Down Down Down Return

case_is "OK without a pick shows the list again"
shows_rows 2 list -prefer_gui -outfile answer -newline -items a,b -prompt 'Pick'
first=$(xdotool getwindowpid "$window")
click_from_corner 45 32
# shellcheck disable=SC2317 # called by its name
is_another() { has_window && [[ $(xdotool getwindowpid "$window") != "$first" ]]; }
eventually is_another || failed "no second window"
eventually has_rows 2 || failed "the second window has no rows"
press Down Return
ends_with 0

case_is "several picks"
shows_rows 5 list -prefer_gui -outfile answer -newline -items 'one,two,three,------,five' -choices \
    -prompt 'Pick'
# The check boxes are a separate column.
press Down Right space Down Down Down space
click_from_corner 55 32
ends_with 0
expect_file answer $'two\nfive\n'
shows list -prefer_gui -outfile answer -newline -items one,two -choices -prompt 'Pick'
click_from_corner 55 32
ends_with 0
expect_file answer ''

case_is "a file that does not exist yet"
mkdir files && : >files/old.txt
shows file -prefer_gui -outfile answer -pattern '*.txt' -directory "$stage/files/" -prompt '-directory "x"'
expect_equal "the title" '-directory "x"' "$(xdotool getwindowname "$window")"
enter new.txt
# The chooser takes Return for itself while it reads the directory or offers names.
# shellcheck disable=SC2317 # called by its name
press_and_ended() { press Return && has_ended; }
eventually press_and_ended
ends_with 0
expect_file answer "$stage/files/new.txt"
rm answer
shows file -prefer_gui -outfile answer -pattern '*.txt' -prompt p
cancels

case_is "a signal also closes the window"
shows text -prefer_gui -outfile answer -prompt p
kill -TERM "$dialog"
ends_with 143
eventually has_no_window || failed "the window stays"
expect_no_file answer

case_is "the end of the display is an error"
shows yes_no -mask yes,no -pre -pro x
kill "$display_server"
wait "$display_server" 2>/dev/null
display_server=''
ends_with 3

report
