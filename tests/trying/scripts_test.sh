#!/usr/bin/env bash
# Every script says with --help what it does, and does nothing else then.

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

report
