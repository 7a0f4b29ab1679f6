#!/usr/bin/env bash
# Answers from a script: which dialog takes which, and what the transcript says.

source "$(dirname -- "$0")/lib.sh" || exit 99
export CLEARPROMPT_ANSWERS=$stage/answers

ends() { # status, arguments
    local expected=$1
    shift
    rm -f answer
    "$clearprompt" "$@" 2>err
    expect_equal "status of $*" "$expected" $?
}
# shellcheck disable=SC2054 # the mask is one word
question=(yes_no -mask yes,no,abort -default no -prompt 'Really?')

case_is "answers are taken in their order"
cat >answers <<'A'
# a remark

yes
no
abort
cancel
default
text:  a <b>&amp; _x_ %s "q" $(echo no) \ \n  
default
cancel
pick:A13
pick:b,c
pick:
file:/some where/x.txt
A
ends 0 "${question[@]}"
ends 1 "${question[@]}"
ends 2 "${question[@]}"
ends 2 "${question[@]}"
ends 1 "${question[@]}"
ends 0 text -outfile answer -default old -prompt p
# shellcheck disable=SC2016 # none of it is to act
expect_file answer '  a <b>&amp; _x_ %s "q" $(echo no) \ \n  '
ends 0 text -outfile answer -default 'as it  was' -prompt p
expect_file answer 'as it  was'
ends 1 text -outfile answer -prompt p
expect_no_file answer
ends 0 list -outfile answer -items 'A1,A13 - MOTD,A2' -prompt p
expect_file answer 'A13 - MOTD'
ends 0 list -outfile answer -items a,b,c -choices -prompt p
expect_file answer $'b\nc\n'
ends 0 list -outfile answer -items a,b,c -choices -prompt p
expect_file answer ''
ends 0 file -outfile answer -prompt p
expect_file answer '/some where/x.txt'
expect_file answers ''

case_is "a box with one button takes no answer"
printf 'no\n' >answers
ends 0 yes_no -mask yes -def yes -pro p
ends 1 yes_no -mask no -def no -pro p
ends 2 yes_no -mask abort -def abort -pro p
expect_file answers $'no\n'

case_is "a script that does not fit is said so, and not taken for an answer"
for answer in maybe text:x pick:a file:/x; do
    printf '%s\n' "$answer" >answers
    ends 14 "${question[@]}"
done
for answer in yes text:x pick:x pick:A; do
    printf '%s\n' "$answer" >answers
    ends 14 list -outfile answer -items A1,A2,B -prompt p
    expect_no_file answer
done
printf 'pick:A1,B\n' >answers
ends 14 list -outfile answer -items A1,A2,B -prompt p
for answer in pick: default; do
    printf '%s\n' "$answer" >answers
    ends 14 list -outfile answer -items A1,A2,B -prompt p
done
printf 'no\n' >answers
ends 14 yes_no -mask yes,abort -prompt p
: >answers
ends 14 "${question[@]}"
expect_holds "the message" "no answer is left" "$(<err)"
rm answers
ends 12 "${question[@]}"

case_is "the transcript shows what was asked, what was there and what was answered"
printf 'pick:two\n' >answers
ends 0 list -outfile answer -newline -items one,two,three -prompt 'First\nsecond line'
expect_file err '+-- list
|  First
|  second line
|    one
|  > two
|    three
+-- pick:two
'
printf 'pick:7,2\n' >answers
ends 0 list -outfile answer -newline -items 1,2,3,4,5,6,7,8,9 -choices -prompt 'Long'
expect_file err '+-- list, several picks
|  Long
|  > 2
|  > 7
|    (7 other items)
+-- pick:7,2
'
expect_file answer $'7\n2\n'
printf 'yes\n' >answers
CLEARPROMPT_TRANSCRIPT=$stage/transcript ends 0 "${question[@]}"
expect_file err ''
expect_file transcript '+-- yes_no [yes] [no] [abort], preset [no]
|  Really?
+-- yes
'

case_is "the answer file is replaced, not written through"
mkdir beside
printf 'text:new\n' >answers
printf 'elsewhere' >target
ln -s ../target beside/answer
"$clearprompt" text -outfile beside/answer -prompt p 2>err
expect_file target elsewhere
expect_file beside/answer new
[[ ! -L beside/answer ]] || failed "the answer file is still a link"
expect_equal "what is left beside the answer" answer "$(ls beside)"
expect_equal "the answer's mode" 600 "$(stat -c %a beside/answer)"

case_is "a full disk leaves no answer"
# A file size limit stands for the disk. The shell must live to tell, so its signal is ignored.
printf 'text:%05000d\n' 7 >answers
(
    trap '' XFSZ
    cd beside && rm answer && ulimit -f 1 && "$clearprompt" text -outfile answer -prompt p 2>../err
)
expect_equal status 12 $?
expect_equal "what is left" "" "$(ls beside)"

case_is "letters that are no UTF-8 come back as they were"
printf 'default\n' >answers
ends 0 text -outfile answer -default $'Gr\xfc\xdfe \\n' -prompt $'Gr\xfc\xdfe'
expect_file answer $'Gr\xfc\xdfe \\n'
expect_holds "the transcript" "Grüße" "$(<err)"
printf 'text:Grüße\n' >answers
ends 0 text -outfile answer -default $'\xfc' -prompt p
expect_file answer $'\x47r\xfc\xdfe'
printf 'text:€\n' >answers
ends 12 text -outfile answer -default $'\xfc' -prompt p
expect_no_file answer

report
