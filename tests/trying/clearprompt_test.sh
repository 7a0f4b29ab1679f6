#!/usr/bin/env bash
# clearprompt without an operator: its options, and answers from a file.

source "$(dirname -- "$0")/lib.sh" || exit 99
export CLEARPROMPT_ANSWERS=$stage/answers

answers() { printf '%s\n' "$@" >answers; }
ends() { # status, arguments
    local expected=$1
    shift
    rm -f answer
    "$clearprompt" "$@" 2>err
    expect_equal "status of $*" "$expected" $?
}
gives() { # answer, arguments
    local expected=$1
    shift
    ends 0 "$@"
    expect_file answer "$expected"
}
refuses() { # part of the message, arguments
    local part=$1
    shift
    ends 3 "$@"
    expect_holds "the message for $*" "$part" "$(<err)"
    expect_no_file answer
}
# shellcheck disable=SC2054 # the mask is one word
question=(yes_no -mask yes,no,abort -default no -prompt 'Really?')
list=(list -outfile answer -items 'A1,A13 - MOTD,A2,B' -prompt p)

case_is "answers are taken in order, each by a dialog of its kind"
# shellcheck disable=SC2016 # not to be expanded
text='  a <b>&amp; _x_ %s "q" $(echo no) \ \n  '
answers '# a remark' '' yes no abort cancel "text:$text" cancel pick:A13 pick:B,A1 pick: 'text:/some where/x'
ends 0 "${question[@]}"
ends 1 "${question[@]}"
ends 2 "${question[@]}"
ends 2 "${question[@]}"
gives "$text" text -outfile answer -default old -prompt p
ends 1 text -outfile answer -prompt p
expect_no_file answer
gives 'A13 - MOTD' "${list[@]}"
gives $'B\nA1\n' "${list[@]}" -choices
gives '' "${list[@]}" -choices
gives '/some where/x' file -outfile answer -prompt p
expect_file answers ''

case_is "a box with one button takes no answer"
answers no
ends 0 yes_no -mask yes -def yes -pro p
ends 1 yes_no -mask no -def no -pro p
ends 2 yes_no -mask abort -def abort -pro p
expect_file answers $'no\n'

case_is "an answer that does not match its dialog is an error"
for answer in maybe text:x pick:a; do
    answers "$answer"
    refuses "$answer" "${question[@]}"
done
for answer in yes text:x pick:x pick:A pick:A1,B pick: pick:3; do
    answers "$answer"
    refuses "$answer" "${list[@]}"
done
answers no
refuses "no such button" yes_no -mask yes,abort -prompt p
refuses "no answer is left" "${question[@]}"
rm answers
refuses "answers" "${question[@]}"

case_is "the transcript shows the dialog, its items and the answer"
answers pick:two
ends 0 list -outfile answer -newline -items one,two,three -prompt 'First\nsecond line'
expect_file err $'+-- list\n|  First\n|  second line\n|    one\n|  > two\n|    three\n+-- pick:two\n'
answers pick:7,2
ends 0 list -outfile answer -newline -items 1,2,3,4,5,6,7,8,9 -choices -prompt 'Long'
expect_file err $'+-- list, several picks\n|  Long\n|  > 2\n|  > 7\n|    (7 other items)\n+-- pick:7,2\n'
answers yes
ends 0 "${question[@]}"
expect_file err $'+-- yes_no [yes] [no] [abort], preset [no]\n|  Really?\n+-- yes\n'
answers text:new
ends 0 text -outfile answer -default old -prompt p
expect_file err $'+-- text\n|  p\n|  : old\n+-- text:new\n'

case_is "the command lines of gatescope"
answers no text:x pick:b text:y
ends 1 yes_no -mask yes,no,abort -def no -pre -newline -pro 'one\ntwo'
expect_holds "the dialog" $'|  one\n|  two\n' "$(<err)"
gives x text -prefer_gui -outfile answer -default d -newline -prompt p
gives b list -prefer_gui -outfile answer -newline -items a,b -prompt p
gives y file -prefer_gui -outfile answer -pattern '*.txt' -directory / -prompt '-directory "/"'
expect_holds "the dialog" '|  -directory "/"' "$(<err)"

case_is "marks of shortcuts; backslash and n without -newline; an empty prompt; odd items"
answers yes yes yes pick:---- pick:-x
ends 0 yes_no -pro '&File && &Edit & more &1 &&&x &&&& &'
expect_holds "the dialog" $'|  File & Edit & more &1 &x && &\n' "$(<err)"
ends 0 yes_no -pro 'one\ntwo'
expect_holds "the dialog" '|  one\ntwo' "$(<err)"
ends 0 yes_no -prompt ''
gives ---- list -outfile answer -items 'a,----,-x,' -prompt p
gives -x list -outfile answer -items 'a,----,-x,' -prompt p

case_is "wrong options"
answers yes
refuses "the mode is"
refuses "not 'menu'" menu -prompt p
refuses "no option -foo" yes_no -foo -prompt p
refuses "no option -outfile" yes_no -outfile answer -prompt p
refuses "'-choices' is no option of text" text -outfile answer -choices
refuses "lacks its value" yes_no -prompt
refuses "-prompt is missing" yes_no -mask yes
refuses "-outfile is missing" text -prompt p
refuses "-items is missing" list -outfile answer -prompt p
refuses "the mask is 'yes,maybe'" yes_no -mask yes,maybe -prompt p
refuses "none of 'yes,no'" yes_no -mask yes,no -default abort -prompt p

case_is "an answer that cannot be written is an error"
answers text:x "text:$(printf %05000d 7)"
refuses "cannot write" text -outfile missing/answer -prompt p
# A limit on the size of files instead of a full disk. Its signal is ignored, so that the shell goes on.
(trap '' XFSZ && ulimit -f 1 && "$clearprompt" text -outfile answer -prompt p 2>err)
expect_equal status 3 $?

report
