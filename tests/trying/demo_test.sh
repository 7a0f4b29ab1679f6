#!/usr/bin/env bash
# scripts/demo in a partial copy of the repository, in a directory with blanks and shell characters: it
# succeeds, keeps a changed region, and fails if one of its steps fails.

source "$(dirname -- "$0")/lib.sh" || exit 99
: "${GATESCOPE_PROGRAM:?names the program}"
clone=$stage'/a clone & (touch executed) | *'
mkdir "$clone"
cp -r "$source_directory/scripts" "$source_directory/tools" "$clone"
region=$clone/demo-region

demo() { # arguments
    (cd "$clone" && scripts/demo "$@") >out 2>&1 </dev/null
    status=$?
}
expect_end() { # status
    expect_equal status "$1" "$status"
    [[ $status == "$1" ]] || tail -n 20 out
}

case_is "the whole demo"
demo
expect_end 0
expect_equal "the pages" 6 "$(find "$region" -name '*_Q0?.html' | wc -l)"
expect_holds "the output" 'scripts/demo --back' "$(<out)"
expect_equal "executed parts of the path" '' "$(find "$stage" -name executed)"

case_is "the usage"
demo --help
expect_end 0
expect_holds "the output" 'Usage: scripts/demo' "$(<out)"
demo --surprise
expect_end 2

case_is "a changed region stays without --anew"
printf 'changed' >>"$region/gatebits.txt"
demo
expect_end 1
expect_holds "the output" 'was changed since' "$(<out)"
expect_holds "the output" 'scripts/demo --anew' "$(<out)"
expect_holds "the policy file" changed "$(<"$region/gatebits.txt")"

case_is "a directory that the demo did not make stays"
mkdir mine
demo "$stage/mine"
expect_end 1
demo --back "$stage/mine"
expect_end 1

case_is "faults of the checker fail the demo"
cp "$clone/tools/demo_checker" good_checker
printf '#!/bin/sh\necho "a fault"\nexit 1\n' >"$clone/tools/demo_checker"
demo --anew
expect_end 1
expect_holds "the output" 'checker is not content' "$(<out)"
cp good_checker "$clone/tools/demo_checker"

case_is "a failing step fails the demo"
for step in Q=4 A=17 A=1; do
    cat >program <<END
#!/bin/sh
case "\$2" in $step) exit 99 ;; esac
exec '$GATESCOPE_PROGRAM' "\$@"
END
    chmod +x program
    GATESCOPE_PROGRAM=$stage/program demo --anew
    expect_end 1
    expect_holds "the output" 'status 99' "$(<out)"
done

case_is "the region of an unfinished run is made anew"
demo
expect_end 0
expect_holds "the output" "Making $region anew" "$(<out)"

report
