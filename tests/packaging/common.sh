#!/usr/bin/env bash
# What the scripts of this directory share. "$1" is the build tree, "$2" the source tree, "$3" a
# directory that the script may fill; it is emptied first.

set -eu
# shellcheck disable=SC2034 # For those who include this file.
build=$1
source=$2
work=$3
# shellcheck disable=SC2034
version=$(sed -n 's/^project(gatescope VERSION \([0-9.]*\) .*/\1/p' "$source/CMakeLists.txt")
rm -rf "$work"
mkdir -p "$work"

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

skip() {
    echo "SKIPPED: $*" >&2
    exit 77
}

needs() {
    local command
    for command in "$@"; do
        command -v "$command" >/dev/null || skip "$command is not installed"
    done
}

# Fails when zsh or fish, where it is here, looks for completions in no directory "$2".
expect_looked_at() {
    local places
    command -v "$1" >/dev/null || return 0
    case $1 in
        zsh) places=$(zsh -f -c 'print -l $fpath') ;;
        fish) places=$(HOME=$work XDG_DATA_DIRS='' fish -c 'printf "%s\n" $fish_complete_path') ;;
    esac
    grep -qxF -- "$2" <<<"$places" || fail "$1 does not look at $2"
}

# The program of the directory "$1", without dialogs and with nothing of the caller's.
run_program() {
    env -i PATH=/usr/bin:/bin CLEARCASE_USER=op ZUL_PREFER_NO_GUI=yes "$@"
}

# A region in "$work/east" made from the example policy file, with a few records of today.
make_region() {
    local now
    now=$(date +%s)
    mkdir -p "$work/east/log" "$work/east/query_results"
    sed "s|/srv/gatewarden/east|$work/east|g" "$source/examples/gatebits.txt" \
        >"$work/east/gatebits.txt"
    printf '%s:S:ann[2]-<->\n%s:D:bob[2]K<0>\n' "$now" "$now" >"$work/east/log/logging_0.txt"
}

# Fails unless exactly one page of query 1 stands in the region.
expect_one_page() {
    set -- "$work"/east/query_results/*_Q01.html
    [ $# -eq 1 ] && [ -s "$1" ] || fail "no page of query 1, or more than one: $*"
    grep -q 'ClearCase command success/denied usage for:<br>(all) commands' "$1" ||
        fail "the page is not of query 1"
}

# Fails when the program "$1" holds the name of a variable that is put together only while it runs,
# or a piece of one of six characters or more. Pieces of CLEARCASE stand there as
# text, for another variable.
expect_hidden_names() {
    local name piece at
    cp "$1" "$work/searched"
    # What debuggers and linkers call things is not looked at.
    ! command -v strip >/dev/null || strip "$work/searched"
    grep -aqF UNMAPPED_REMOTE "$work/searched" || fail "the search for names finds nothing"
    for name in CLEARCASE_VIEW_KIND ZUL_USING_CCRC ATRIA_WEB_CLEARPROMPT; do
        for ((at = 0; at + 6 <= ${#name}; at++)); do
            piece=${name:at:6}
            if [[ CLEARCASE == *"$piece"* ]]; then continue; fi
            ! grep -aqF -- "$piece" "$work/searched" || fail "the program holds $piece of $name"
        done
    done
    rm "$work/searched"
}

# Fails when the program "$1" of a package holds what is for debuggers, or is not as it should be.
expect_packaged() {
    local sections
    sections=$(readelf --sections --wide "$1")
    case $sections in *.debug_info* | *.symtab*) fail "the program is not stripped" ;; esac
    expect_hardened "$1"
    expect_hidden_names "$1"
}

# Fails unless the program "$1" is as hard to misuse as the distributions want theirs: loaded
# anywhere, tables of addresses closed once it has started, the stack and the calls that write
# texts watched. What is not optimised has no such calls, and is nobody's package.
expect_hardened() {
    local wanted
    grep -qE '^GATESCOPE_PLAIN_POSIX:BOOL=(OFF|0)' "$build/CMakeCache.txt" || return 0
    grep -qE '^CMAKE_BUILD_TYPE:STRING=(Rel|MinSizeRel)' "$build/CMakeCache.txt" || return 0
    readelf --wide --file-header --program-headers --dynamic --dyn-syms "$1" >"$work/elf" ||
        fail "$1 cannot be read"
    for wanted in 'Type: +DYN ' 'FLAGS_1\).* PIE' ' GNU_RELRO ' 'FLAGS_1\).* NOW' \
        'UND __stack_chk_fail@' 'UND __[a-z]+_chk@'; do
        grep -qE "$wanted" "$work/elf" || fail "not hardened, no '$wanted': $1"
    done
    rm "$work/elf"
}
