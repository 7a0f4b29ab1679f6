#!/usr/bin/env bash
# What clearprompt takes and refuses, without any dialog.

source "$(dirname -- "$0")/lib.sh" || exit 99
export CLEARPROMPT_ANSWERS=$stage/answers

runs() { # answer, arguments
    printf '%s\n' "$1" >answers
    shift
    "$clearprompt" "$@" >out 2>err
    status=$?
    said=$(<err)
}
refuses() { # part of the message, arguments
    local part=$1
    shift
    rm -f answer
    runs "${refused_answer:-yes}" "$@"
    expect_equal "status of $*" 13 "$status"
    expect_holds "the message for $*" "$part" "$said"
    expect_no_file answer
}

case_is "options cut as the program cuts them"
runs no yes_no -mask yes,no,abort -def no -pre -newline -pro 'one\ntwo'
expect_equal status 1 "$status"
expect_holds "the dialog" $'|  one\n|  two\n' "$said"
runs text:x text -out answer -def d -pro p
expect_file answer x
printf 'from a file\n' >default
runs default text -out answer -dfi default -mul -new -pro p
expect_file answer 'from a file'
runs file:/a/b.txt file -out answer -pat '*.txt' -dir / -pro p
expect_file answer /a/b.txt
runs proceed proceed -mas proceed,abort -typ warning -prom p
expect_equal status 0 "$status"

case_is "options written out"
runs pick:b list -prefer_gui -outfile answer -newline -items a,b -choices -prompt p
expect_equal status 0 "$status"
expect_file answer $'b\n'

case_is "wrong options"
refuses "no mode" 
refuses "unknown mode 'menu'" menu -prompt p
refuses "at least three letters" yes_no -pr p
refuses "at least three letters" yes_no -p p
refuses "no option -foo" yes_no -foo -prompt p
refuses "no option -promptx" yes_no -promptx p
refuses "no option -outfile" yes_no -outfile answer -prompt p
refuses "no option -choices" text -outfile answer -choices -prompt p
refuses "needs a value" yes_no -prompt
refuses "unexpected argument 'stray'" yes_no stray -prompt p
refuses "-prompt is missing" yes_no -mask yes
refuses "-outfile is missing" text -prompt p
refuses "-items or -dfile is missing" list -outfile answer -prompt p
refuses "exclude each other" list -outfile answer -items a -dfile default -prompt p
refuses "exclude each other" text -outfile answer -default a -dfile default -prompt p
refuses "not 'yes,maybe'" yes_no -mask yes,maybe -prompt p
refuses "not 'yes'" proceed -mask yes -prompt p
refuses "none of 'yes,no'" yes_no -mask yes,no -default abort -prompt p
refuses "ok, warning or error" yes_no -type loud -prompt p

case_is "files that cannot be used"
runs text:x text -outfile missing/answer -prompt p
expect_equal status 12 "$status"
runs text:x text -outfile answer -dfile missing -prompt p
expect_equal status 12 "$status"
mkdir directory
runs text:x text -outfile directory -prompt p
expect_equal status 12 "$status"

case_is "accelerator marks"
runs yes yes_no -pro '&File && &Edit & more &1 &&&x &&&& &'
expect_holds "the dialog" $'|  File & Edit & more &1 &x && &\n' "$said"

case_is "backslash and n without -newline"
runs yes yes_no -pro 'one\ntwo'
expect_holds "the dialog" '|  one\ntwo' "$said"

case_is "an empty prompt"
runs yes yes_no -prompt ''
expect_equal status 0 "$status"

case_is "items that look like options or hold no letter"
runs pick:---- list -outfile answer -items 'a,----,-x,' -prompt p
expect_file answer ----

report
