#!/usr/bin/env bash
# clearprompt on a terminal: every mode, every way out, and what happens where there is none.

source "$(dirname -- "$0")/lib.sh" || exit 99
start_terminal 90 30
# shellcheck disable=SC2016 # none of it is to act
nasty='<b>&amp; _x_ %s "quotes" $(echo no) \ \n'
marked=${nasty//&/&&}

# Starts clearprompt with these arguments in the terminal and waits for a part of its screen.
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
# The screen without the joiner that keeps backslash and n apart.
plain_screen() { screen | sed $'s/\u2060//g'; }

for preset in yes no abort; do
    case_is "a question, preset $preset"
    asks Abort yes_no -mask yes,no,abort -def $preset -pre -pro 'Really?'
    case $preset in
        yes) ends 0 Enter ;;
        no) ends 1 Enter ;;
        abort) ends 2 Enter ;;
    esac
    asks Abort yes_no -mask yes,no,abort -def $preset -pre -pro 'Really?'
    ends 2 Escape
done
case_is "a question, picked by the arrows"
asks Abort yes_no -mask yes,no,abort -def yes -pre -pro 'Really?'
ends 1 Down Enter
asks Abort yes_no -mask yes,no,abort -def yes -pre -pro 'Really?'
ends 2 Down Down Enter

case_is "two buttons"
asks '<No>' yes_no -mask yes,no -def yes -pre -pro 'Really?'
ends 0 Enter
asks '<No>' yes_no -mask yes,no -def no -pre -pro 'Really?'
ends 1 Enter
asks '<No>' yes_no -mask yes,no -def no -pre -pro 'Really?'
ends 2 Escape
asks '<Abort>' yes_no -mask yes,abort -def yes -pre -pro 'Really?'
ends 2 Tab Enter
asks '<Proceed>' proceed -pre -type error -pro 'Go on?'
ends 0 Enter
asks '<Proceed>' proceed -pre -pro 'Go on?'
ends 2 Tab Enter

case_is "one button, pressed and closed"
for way in Enter Escape; do
    asks '<OK>' yes_no -mask yes -def yes -pre -pro 'Done.'
    ends 0 $way
    asks '<OK>' yes_no -mask no -def no -pre -pro 'Done.'
    ends 1 $way
    asks '<OK>' yes_no -mask abort -def abort -pre -pro 'Done.'
    ends 2 $way
done

case_is "prompts letter for letter"
asks '<Yes>' yes_no -mask yes,no -pre -pro "$marked"
expect_holds "the screen" " $nasty " "$(plain_screen)"
ends 0 Enter
asks Abort yes_no -pre -newline -pro "--$marked"'next line'
expect_holds "the screen" " --${nasty%'\n'}" "$(screen)"
expect_holds "the screen" '│ next line ' "$(screen)"
ends 0 Enter
asks '<Ok>' text -pre -outfile answer -pro "$marked"
expect_holds "the screen" " $nasty " "$(plain_screen)"
ends 1 Escape
asks '<Ok>' list -pre -outfile answer -items 'a,\\srv\new,<b>_x' -pro "$marked"
expect_holds "the screen" " $nasty " "$(plain_screen)"
expect_holds "the screen" ' \\srv\new ' "$(screen)"
ends 1 Escape
asks Grüße yes_no -pre -pro $'Gr\xfc\xdfe'
ends 0 Enter

case_is "a message taller than the screen"
asks 'line 7' yes_no -mask yes,no -def no -pre -pro "$(seq -f 'line %.0f' 200)"
expect_holds "the screen" '<Yes>' "$(screen)"
ends 1 Enter
asks Abort yes_no -mask yes,no,abort -def no -pre -pro "$(seq -f 'line %.0f' 200)"
expect_holds "the screen" 'line 7' "$(screen)"
# The text takes the keys first, so that it can be read to its end.
ends 1 Tab Enter

case_is "a text: the default as it is, a new one, a cancelled one"
asks '<Ok>' text -prefer_gui -outfile answer -default "$nasty" -prompt p
ends 0 Enter
expect_file answer "$nasty"
asks '<Ok>' text -prefer_gui -outfile answer -default '' -prompt p
types '-a <b> & _text_'
ends 0 Enter
expect_file answer '-a <b> & _text_'
asks '<Ok>' text -prefer_gui -outfile answer -default old -prompt p
ends 1 Escape
expect_no_file answer
asks '<Ok>' text -prefer_gui -outfile answer -default old -prompt p
ends 1 Tab Tab Enter
expect_no_file answer
asks '<Ok>' text -prefer_gui -outfile answer -default $'Gr\xfc\xdfe' -prompt p
ends 0 Enter
expect_file answer $'\x47r\xfc\xdfe'

case_is "a text longer than the window"
long=$(seq -s ' ' 1 300)
asks '300' text -prefer_gui -outfile answer -default "$long" -prompt p
ends 0 End ' end' Enter
expect_file answer "$long end"

case_is "a default from a file with several lines, in one line"
printf 'one\ntwo  three\n' >lines
asks 'one two  three' text -prefer_gui -outfile answer -dfile lines -prompt p
ends 0 Enter
expect_file answer 'one two  three'

case_is "several lines are shown"
seq -f 'line %.0f \n <b>' 100 >lines
asks 'line 9' text -prefer_gui -multi_line -outfile answer -dfile lines -newline \
    -prompt 'A file\nof mine'
expect_holds "the screen" 'of mine' "$(screen)"
expect_holds "the screen" 'line 1 \n <b>' "$(plain_screen)"
ends 0 Tab Enter
expect_file answer "$(<lines)"
asks 'line 9' text -prefer_gui -multi_line -outfile answer -dfile lines -prompt 'A file'
ends 1 Escape
expect_no_file answer

case_is "a list of fifty"
items=$(seq -s , -f 'Item <%.0f> &amp; _x_ \n' 50)
asks 'Item <2>' list -prefer_gui -outfile answer -newline -items "$items" -prompt 'Pick'
ends 0 End Enter
expect_file answer 'Item <50> &amp; _x_ \n'
asks 'Item <2>' list -prefer_gui -outfile answer -newline -items "$items" -prompt 'Pick'
ends 1 Escape
expect_no_file answer

case_is "separators, empty items, options among the items"
asks --help list -prefer_gui -outfile answer -newline -items 'a,------,,--help,TRUE' -prompt 'Pick'
ends 0 Down Down Down Enter
expect_file answer --help

case_is "several picks"
asks three list -prefer_gui -outfile answer -items 'one,two,three,------,five' -choices -prompt P
ends 0 Down Space Down Down Down Space Enter
expect_file answer $'two\nfive\n'
asks two list -prefer_gui -outfile answer -items one,two -choices -prompt P
ends 0 Enter
expect_file answer ''
asks two list -prefer_gui -outfile answer -items one,two -choices -prompt P
ends 1 Escape
expect_no_file answer

case_is "a preset item"
asks three list -prefer_gui -outfile answer -items one,two,three -default two -prompt P
ends 0 Enter
expect_file answer two

case_is "files"
mkdir files files/below && : >files/old.txt && : >files/other.dat
asks old.txt file -prefer_gui -outfile answer -pattern '*.txt' -directory "$stage/files/" -prompt p
expect_equal "an unfitting name on the screen" "" "$(screen | grep other.dat)"
ends 0 End Enter
expect_file answer "$stage/files/old.txt"
asks old.txt file -prefer_gui -outfile answer -pattern '*.txt' -directory "$stage/files/" -prompt p
keys Down Down Enter
eventually not_on_screen old.txt || failed "the directory is not entered"
appears "files/below/"
keys Enter
appears ____
types new.txt
ends 0 Enter
expect_file answer "$stage/files/below/new.txt"
asks old.txt file -prefer_gui -outfile answer -pattern '*.txt' -directory "$stage/files" -prompt p
ends 1 Escape
expect_no_file answer

case_is "a box in the background, then a question: one after the other"
# The question comes when the box is up: which of two that start together is first, nobody says.
printf '%s\n' "$clearprompt yes_no -mask yes -def yes -pre -pro FIRST &" \
    'until [ -e box_is_up ]; do sleep 0.05; done; touch question_comes' \
    "$clearprompt yes_no -mask yes,no -def no -pre -pro SECOND" >both
in_terminal 'sh ./both'
appears FIRST
touch box_is_up
eventually test -e question_comes || failed "the question does not come"
sleep 0.5
expect_equal "the question beside the box" "" "$(screen | grep SECOND)"
keys Enter
appears SECOND
ends 1 Enter

case_is "a box whose starter has ended leaves the terminal to the shell and its words on it"
printf '%s\n' "$clearprompt yes_no -mask abort -def abort -pre -pro 'LAST WORDS' &" >gone
in_terminal 'sh ./gone'
terminal_ends_with 0
appears 'LAST WORDS'
in_terminal 'echo still $((40 + 2))'
appears 'still 42'
terminal_ends_with 0

case_is "a question whose terminal is another's is no 'no'"
# shellcheck disable=SC2016 # the shell in the terminal fills it in
printf '%s\n' "$clearprompt yes_no -mask yes,no -pre -pro Q 2>err" 'echo $? >s' \
    'mv s background' >later
in_terminal 'sh -c "sh ./later &"'
terminal_ends_with 0
eventually test -e background || failed "the question does not end"
expect_equal status 10 "$(<background)"

case_is "terminals of no or of an unknown kind"
for kind in '' dumb never-heard-of; do
    in_terminal "TERM='$kind' $clearprompt yes_no -mask yes,no -pre -pro x 2>err"
    terminal_ends_with 10
    expect_holds "the message" "TERM='$kind'" "$(<err)"
done

case_is "a whiptail that crashes or fails is no answer"
mkdir broken
for end in 'kill -SEGV $$' 'exit 7' 'echo usage >&2; exit 1' 'echo broken >&2; exit 255'; do
    printf '#!/bin/sh\n%s\n' "$end" >broken/whiptail && chmod +x broken/whiptail
    in_terminal "PATH=$stage/broken:\$PATH $clearprompt yes_no -mask yes,no -pre -pro x 2>err"
    terminal_ends_with 11
done

case_is "a signal gives the terminal back as it was, without the box"
mkdir temporary
in_terminal "stty -a >before
TMPDIR=$stage/temporary $clearprompt text -pre -out answer -pro Q
s=\$?
stty -a >after
(exit \$s)"
appears '<Ok>'
pkill -TERM -P "$(tmux_does display-message -p '#{pane_pid}')" -f tools/clearprompt
terminal_ends_with 143
eventually not_on_screen '<Ok>' || failed "the box stays on the screen: $(screen)"
expect_equal "the terminal's settings" "$(<before)" "$(<after)"
expect_equal "what is left" "" "$(ls temporary)"

case_is "signals in quick succession leave nothing either"
for ((round = 0; round < 8; ++round)); do
    in_terminal "TMPDIR=$stage/temporary $clearprompt text -pre -out answer -pro Q"
    appears '<Ok>'
    running=$(pgrep -P "$(tmux_does display-message -p '#{pane_pid}')" -f tools/clearprompt)
    for ((i = 0; i < 2000; ++i)); do kill -INT "$running" 2>/dev/null || break; done
    terminal_ends_with 130
    eventually not_on_screen '<Ok>' || failed "the box stays on the screen: $(screen)"
    expect_equal "what is left" "" "$(ls temporary)"
done

case_is "Ctrl-C ends the dialog and whatever waits for it, and the box goes"
printf '%s\n' "$clearprompt yes_no -mask yes,no -pre -pro QUESTION" 'echo went on >goes_on' >waits
cat >around <<'END'
trap : INT
stty -a >before
sh ./waits
s=$?
# A box in the background ends on its own time.
for ((i = 0; i < 100; ++i)); do
    stty -a >after
    cmp -s before after && break
    sleep 0.05
done
exit $s
END
in_terminal "bash ./around"
appears '<Yes>'
terminal_of_test=$(tmux_does display-message -p '#{pane_tty}')
# shellcheck disable=SC2317 # called by its name
interrupt_key_works() { [[ $(stty -a -F "$terminal_of_test") == *'intr = ^C;'* ]]; }
eventually interrupt_key_works || failed "the terminal has no interrupt key"
ends 130 C-c
expect_no_file goes_on
eventually not_on_screen QUESTION || failed "the box stays on the screen: $(screen)"
expect_equal "the terminal's settings" "$(<before)" "$(<after)"

case_is "Ctrl-C ends a box in the background as well, and what waits for it"
printf '%s\n' "$clearprompt yes_no -mask yes -def yes -pre -pro BACKGROUND &" \
    'until [ -e box_is_up ]; do sleep 0.05; done; touch question_comes' \
    "$clearprompt yes_no -mask yes,no -pre -pro QUESTION" 'echo went on >goes_on' >waits
rm -f box_is_up question_comes
in_terminal "bash ./around"
appears BACKGROUND
eventually interrupt_key_works || failed "the terminal has no interrupt key"
touch box_is_up
eventually test -e question_comes || failed "the question does not come"
ends 130 C-c
expect_no_file goes_on
eventually not_on_screen BACKGROUND || failed "the box stays on the screen: $(screen)"
expect_equal "the terminal's settings" "$(<before)" "$(<after)"

case_is "without -prefer_gui the terminal comes first"
in_terminal "DISPLAY=:9999 $clearprompt yes_no -mask yes,no -pro ASKED"
appears ASKED
ends 0 Enter

case_is "a display that cannot be opened leaves the terminal"
in_terminal "DISPLAY=:9999 $clearprompt yes_no -mask yes,no -pre -pro ASKED"
appears ASKED
ends 1 Tab Enter

case_is "60 columns: frames are whole and long items are cut"
frame_is_whole() { # an item
    local line
    line=$(screen | grep -F -- "$1")
    [[ $line =~ ^' '?│.*│' '?$ ]] || failed "the frame beside '$1' is not whole: $(screen)"
}
tmux_does resize-window -x 60 -y 24
long='Q06 - Commands/Users (success/denied) over Time by parent policy'
asks 'Q06 -' list -pre -outfile answer -items "A01 - Prune,$long" -pro 'Select'
frame_is_whole 'over Time by ...'
ends 0 Down Enter
expect_file answer "$long"
asks 'Q06 -' list -pre -outfile answer -choices -items "A01 - Prune,$long" -pro 'Select'
frame_is_whole 'over Time...'
ends 1 Escape
mkdir -p "$stage/a directory with a name/that takes/quite a few more columns/than there are"
asks 'than there are' file -pre -outfile answer -pro p \
    -directory "$stage/a directory with a name/that takes/quite a few more columns/than there are"
frame_is_whole '(type a name)'
ends 1 Escape

case_is "a small terminal"
tmux_does resize-window -x 60 -y 12
asks 'Item <1>' list -prefer_gui -outfile answer -newline -items "$items" -prompt "$(seq 30)"
ends 0 Tab Down Enter
expect_file answer 'Item <2> &amp; _x_ \n'

report
