#!/usr/bin/env bash
# Presses Tab in an interactive bash in a terminal (tmux); 77 where there is no tmux.
set -eu
script=$1
work=$2
command -v tmux >/dev/null || {
    echo "SKIPPED: tmux is not installed" >&2
    exit 77
}
rm -rf "$work"
# What the shell remembers, and how somebody likes it, is not the test's affair.
unset HISTFILE INPUTRC
export HOME=$work/home
mkdir -p "$HOME"
cd "$work"
touch "gatebits.txt" "gate keeper.txt"
# Shows what a line came to; stands in for the program.
cat >gatescope <<'PROGRAM'
#!/bin/sh
printf 'GOT'
printf '<%s>' "$@"
printf '\n'
PROGRAM
chmod +x gatescope
cat >rc <<RC
PS1='ready> '
PATH=$work:\$PATH
bind 'set enable-bracketed-paste off'
bind 'set completion-query-items 1000'
bind 'set page-completions off'
bind 'set bell-style none'
source '$script'
RC

terminal=gatescope-completion-$$
in_tmux() {
    tmux -L "$terminal" -f /dev/null "$@"
}
trap 'in_tmux kill-server 2>/dev/null || true' EXIT
in_tmux new-session -d -x 160 -y 100 "cd '$work' && exec bash --noprofile --rcfile '$work/rc' -i" 2>/dev/null ||
    { echo "SKIPPED: tmux cannot start a session" >&2; exit 77; }

screen() {
    in_tmux capture-pane -p -J
}

# Waits until the screen holds "$1".
expect() {
    local i
    for ((i = 0; i < 100; i++)); do
        if screen | grep -qF -- "$1"; then return 0; fi
        sleep 0.1
    done
    echo "FAILED: no \"$1\" on the screen:" >&2
    screen >&2
    exit 1
}

# Types "$1" on an empty screen; "TAB" presses that key.
type_keys() {
    local part
    in_tmux send-keys C-u C-l
    expect 'ready> '
    for part in "$@"; do
        if [[ $part == TAB ]]; then in_tmux send-keys Tab; else in_tmux send-keys -l -- "$part"; fi
    done
}

# Presses Return and waits for what the program was given.
expect_got() {
    in_tmux send-keys Enter
    expect "GOT$1"
}

expect 'ready> '
type_keys 'gatescope Q=1 C=mkbr' TAB 'D=n R=n'
expect_got '<Q=1><C=mkbranch><D=n><R=n>'

type_keys 'gatescope C=checki' TAB 'K' TAB '' TAB
expect_got '<C=checkin><K=*>'

type_keys 'gatescope -v' TAB
expect_got '<-ver>'

type_keys 'gatescope A=1' TAB TAB
expect '13 - View/Change Region MOTD String'
expect '1 - Prune Log Files'
in_tmux send-keys -l '3'
in_tmux send-keys Tab
expect_got '<A=13>'

type_keys 'gatescope F=gateb' TAB 'Q=2 B=17' TAB 'U=\*'
expect_got '<F=gatebits.txt><Q=2><B=17><U=*>'

type_keys 'gatescope F=gate\ k' TAB 'R=n'
expect_got '<F=gate keeper.txt><R=n>'

type_keys 'gatescope F="gate k' TAB 'R=n'
expect_got '<F=gate keeper.txt><R=n>'
