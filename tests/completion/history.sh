#!/usr/bin/env bash
# Tests the completions of gatescope-history in bash, and in zsh and fish if they are installed.
#   history.sh COMPLETIONS WORK
set -eu
completions=$1
work=$2
rm -rf "$work"
mkdir -p "$work/folder"
cd "$work"
touch file.txt
faults=0

# expect WHAT WANTED FOUND
expect() {
    if [ "$2" != "$3" ]; then
        echo "FAILED: $1: wanted [$2], found [$3]" >&2
        faults=$((faults + 1))
    fi
}

# The completions of bash for the last of the given words.
in_bash() {
    # shellcheck source=/dev/null
    source "$completions/bash-completion/completions/gatescope-history"
    COMP_WORDS=(gatescope-history "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _gatescope_history gatescope-history "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    echo "${COMPREPLY[*]}"
}
compopt() { :; }

expect "bash, nothing" 'list diff restore -d -f --help --version' "$(in_bash '')"
expect "bash, a letter" 'diff' "$(in_bash d)"
expect "bash, a directory" 'folder' "$(in_bash -d f)"
expect "bash, a file" 'file.txt folder' "$(in_bash list -f f | tr ' ' '\n' | sort | xargs)"
expect "bash, after the command" '-d -f' "$(in_bash diff '')"
expect "bash, after --help" '' "$(in_bash --help '')"

if command -v fish >/dev/null; then
    in_fish() {
        HOME=$work XDG_DATA_DIRS=$completions fish --no-config -c \
            "source '$completions/fish/vendor_completions.d/gatescope-history.fish'
             complete --do-complete \"$1\"" | cut -f1 | sort | xargs
    }
    expect "fish, nothing" 'diff list restore' "$(in_fish 'gatescope-history ')"
    expect "fish, options" '--help --version -d -f' "$(in_fish 'gatescope-history -')"
    expect "fish, a directory" 'folder/' "$(in_fish 'gatescope-history -d f')"
    expect "fish, a file" 'file.txt folder/' "$(in_fish 'gatescope-history list -f f')"
    expect "fish, after the command" '' "$(in_fish 'gatescope-history diff ')"
fi

if command -v zsh >/dev/null; then
    zsh -n "$completions/zsh/site-functions/_gatescope-history" || faults=$((faults + 1))
    # The arguments that the function passes to zsh's _arguments.
    given=$(zsh -fc "_arguments() { print -rl -- \"\$@\" } ; compdef() { }
        source '$completions/zsh/site-functions/_gatescope-history'; _gatescope-history")
    for wanted in '(- *)--help[show the usage]' '-d+[the history]:directory:_files -/' \
        '1:command:((list\:"show the changes" diff'; do
        grep -qF -- "$wanted" <<<"$given" || expect "zsh" "$wanted" "$given"
    done
fi
[ "$faults" -eq 0 ]
