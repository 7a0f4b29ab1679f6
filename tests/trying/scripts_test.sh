#!/usr/bin/env bash
# Every script says with --help what it does, and does nothing else then. Those that look through
# the repository's files fail when git does not tell them which these are.

source "$(dirname -- "$0")/lib.sh" || exit 99

for script in "$source_directory"/scripts/*; do
    [[ -f $script ]] || continue
    case_is "$(basename "$script") --help"
    # A script that does not know the word would start its work.
    if ! grep -qe --help -e help_if_asked_for "$script"; then
        failed "it does not know --help"
        continue
    fi
    timeout 10 "$script" --help >out 2>err </dev/null
    expect_equal status 0 $?
    expect_holds "the output" 'Usage: scripts/' "$(<out)"
    expect_file err ''
done
expect_equal "what was made" $'err\nout' "$(ls)"

mkdir stand-ins
for program in clang-format clang-tidy shellcheck cmake apt-get sudo; do
    ln -s /bin/true "stand-ins/$program"
done
printf '#!/bin/sh\necho "not your repository" >&2\nexit 128\n' >stand-ins/git
chmod +x stand-ins/git
for check in 'format --check' 'lint --quick'; do
    case_is "$check, to which git tells nothing"
    # shellcheck disable=SC2086 # the name and its option
    (PATH=$stage/stand-ins:$PATH "$source_directory"/scripts/$check) >out 2>err </dev/null
    expect_equal status 128 $?
    expect_holds "what is said" 'not your repository' "$(<err)"
done

report
