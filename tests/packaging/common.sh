#!/usr/bin/env bash
# Sourced by the scripts of this directory. "$1" is the build tree, "$2" the source tree, "$3" a
# working directory, which is emptied first.

set -eu
# shellcheck disable=SC2034 # Used by the scripts that source this file.
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

# expect_searched SHELL DIRECTORY: fails unless zsh or fish, if installed, searches the directory for
# completions.
expect_searched() {
    local places
    command -v "$1" >/dev/null || return 0
    case $1 in
        zsh) places=$(zsh -f -c 'print -l $fpath') ;;
        fish) places=$(HOME=$work XDG_DATA_DIRS='' fish -c 'printf "%s\n" $fish_complete_path') ;;
    esac
    grep -qxF -- "$2" <<<"$places" || fail "$1 does not search $2"
}

# Runs a program without dialogs and without the caller's environment.
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

# Fails unless the region has exactly one page, of query 1.
expect_one_page() {
    set -- "$work"/east/query_results/*_Q01.html
    [ $# -eq 1 ] && [ -s "$1" ] || fail "no page of query 1, or more than one: $*"
    grep -q 'ClearCase command success/denied usage for:<br>(all) commands' "$1" ||
        fail "the page is not of query 1"
}

# Fails if the program "$1" contains a name that is to be computed at run time, or six characters of
# one. Parts of CLEARCASE are allowed, since they occur in another variable.
expect_hidden_names() {
    local name piece at
    cp "$1" "$work/searched"
    # Without the names of symbols.
    ! command -v strip >/dev/null || strip "$work/searched"
    grep -aqF UNMAPPED_REMOTE "$work/searched" || fail "the search does not find a known name"
    for name in CLEARCASE_VIEW_KIND ZUL_USING_CCRC ATRIA_WEB_CLEARPROMPT; do
        for ((at = 0; at + 6 <= ${#name}; at++)); do
            piece=${name:at:6}
            if [[ CLEARCASE == *"$piece"* ]]; then continue; fi
            ! grep -aqF -- "$piece" "$work/searched" || fail "the program contains $piece of $name"
        done
    done
    rm "$work/searched"
}

# Fails unless the packaged program "$1" is stripped, hardened and without hidden names.
expect_packaged() {
    local sections
    sections=$(readelf --sections --wide "$1")
    case $sections in *.debug_info* | *.symtab*) fail "the program is not stripped" ;; esac
    expect_hardened "$1"
    expect_hidden_names "$1"
}

# Fails unless the program "$1" is hardened as the distributions require: a PIE, full RELRO, stack
# protector, _FORTIFY_SOURCE. Only optimised builds are packaged and have the latter.
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
