#!/usr/bin/env bash
# Presses Tab in an interactive shell in a terminal (tmux).
#   terminal.sh SHELL COMPLETIONS WORK
# COMPLETIONS has the same tree as the installed directory of shared data. 77 without the shell or tmux.
set -eu
shell=$1
completions=$2
work=$3
for program in tmux "$shell"; do
    command -v "$program" >/dev/null || {
        echo "SKIPPED: $program is not installed" >&2
        exit 77
    }
done
rm -rf "$work"
# No history and no settings of the user.
unset HISTFILE INPUTRC XDG_CACHE_HOME XDG_CONFIG_HOME XDG_DATA_HOME
export HOME=$work/home TMPDIR=$work
mkdir -p "$HOME"
cd "$work"
touch "gatebits.txt" "gate keeper.txt"
# A stand-in for the program that prints its arguments.
cat >gatescope <<'PROGRAM'
#!/bin/sh
printf 'GOT'
printf '<%s>' "$@"
printf '\n'
PROGRAM
chmod +x gatescope

# For each shell: its start, its row for an action, and the number of Tabs until it lists the actions.
titled='13 - View/Change Region MOTD String'
tabs_for_a_list=(TAB)
case $shell in
    bash)
        cat >rc <<RC
PS1='ready> '
PATH=$work:\$PATH
bind 'set enable-bracketed-paste off'
bind 'set completion-query-items 1000'
bind 'set page-completions off'
bind 'set bell-style none'
source '$completions/bash-completion/completions/gatescope'
RC
        start="bash --noprofile --rcfile '$work/rc' -i"
        tabs_for_a_list=(TAB TAB)
        ;;
    zsh)
        cat >.zshrc <<RC
PS1='ready> '
path=('$work' \$path)
fpath=('$completions/zsh/site-functions' \$fpath)
LISTMAX=1000
setopt no_beep
autoload -Uz compinit
compinit -u -D
RC
        start="env ZDOTDIR='$work' zsh --no-global-rcs -i"
        titled='13  -- View/Change Region MOTD String'
        ;;
    fish)
        mkdir -p "$HOME/.config/fish"
        cat >"$HOME/.config/fish/config.fish" <<RC
function fish_prompt; echo 'ready> '; end
set --global fish_greeting
set --global fish_autosuggestion_enabled 0
set --global --export PATH '$work' \$PATH
RC
        start="env XDG_DATA_DIRS='$completions:/usr/share' fish"
        titled='(View/Change Region MOTD String)'
        ;;
esac

terminal=gatescope-completion-$$
in_tmux() {
    tmux -L "$terminal" -f /dev/null "$@"
}
trap 'in_tmux kill-server 2>/dev/null || true' EXIT
in_tmux new-session -d -x 160 -y 100 "cd '$work' && exec $start" 2>/dev/null ||
    { echo "SKIPPED: tmux cannot start a session" >&2; exit 77; }

screen() {
    in_tmux capture-pane -p -J
}

# Waits until the screen contains "$1".
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

# Types its arguments on an empty screen; "TAB" presses that key.
type_keys() {
    local part
    in_tmux send-keys C-u C-l
    expect 'ready> '
    for part in "$@"; do
        if [[ $part == TAB ]]; then in_tmux send-keys Tab; else in_tmux send-keys -l -- "$part"; fi
    done
}

# Presses Return and waits for the arguments of the program.
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

type_keys 'gatescope A=1' "${tabs_for_a_list[@]}"
expect "$titled"
expect 'Prune Log Files'
in_tmux send-keys -l '3'
in_tmux send-keys Tab
expect_got '<A=13>'

type_keys 'gatescope F=gateb' TAB 'Q=2 B=17' TAB 'U=\*'
expect_got '<F=gatebits.txt><Q=2><B=17><U=*>'

type_keys 'gatescope F=gate\ k' TAB 'R=n'
expect_got '<F=gate keeper.txt><R=n>'

type_keys 'gatescope F="gate k' TAB 'R=n'
expect_got '<F=gate keeper.txt><R=n>'
