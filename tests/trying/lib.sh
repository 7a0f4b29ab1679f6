# shellcheck shell=bash
# Sourced by each of these tests. Sets `$clearprompt`, changes to a new empty directory `$stage`, and
# ends all processes and removes the directory at the end.

set -u
source_directory=${SOURCE_DIRECTORY:?names the source directory}
clearprompt=$source_directory/tools/clearprompt
unset CLEARPROMPT_ANSWERS DISPLAY WAYLAND_DISPLAY
unset HISTFILE INPUTRC XDG_CACHE_HOME XDG_CONFIG_HOME XDG_DATA_HOME
# Texts on screens have characters beyond ASCII.
export LC_ALL=C.UTF-8
failures=0
display_server='' terminal_server='' dialog=''

stage=$(mktemp -d)
cd "$stage" || exit 99
# No history and no settings of the user.
export HOME=$stage/.home
mkdir "$HOME"

end() {
    local process
    for process in $dialog $terminal_server $display_server; do
        kill "$process" 2>/dev/null && wait "$process" 2>/dev/null
    done
    rm -rf "$stage"
}
trap end EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# --- assertions ---

case_is() { current_case=$*; }
failed() {
    failures=$((failures + 1))
    printf 'FAILED: %s: %s\n' "$current_case" "$1"
}
expect_equal() { # what, expected, actual
    [[ $2 == "$3" ]] || failed "$1 is '$3', not '$2'"
}
expect_holds() { # what, part, actual
    [[ $3 == *"$2"* ]] || failed "$1 lacks '$2': $3"
}
expect_file() { # file, content to the byte
    local content
    [[ -e $1 ]] || { failed "$1 does not exist" && return; }
    content=$(cat "$1" && printf x)
    expect_equal "the content of $1" "$2" "${content%x}"
}
expect_no_file() { [[ ! -e $1 ]] || failed "$1 exists"; }
give_up() {
    failed "$1"
    report
}
report() {
    ((failures == 0)) || { printf '%d failures\n' "$failures" && exit 1; }
    printf 'all as expected\n'
    exit 0
}

# Ends the test as skipped if a program is missing.
needs() {
    local program
    for program in "$@"; do
        command -v "$program" >/dev/null || { printf 'not run: no %s\n' "$program" && exit 77; }
    done
}

# Repeats a command until it succeeds, for at most ten seconds.
eventually() {
    local end=$((SECONDS + 10))
    until "$@"; do
        ((SECONDS < end)) || return 1
        sleep 0.05
    done
}

# --- a dialog of clearprompt in the background ---

start_dialog() {
    rm -f labels
    # In a session without a terminal, on which clearprompt would ask else.
    setsid "$clearprompt" "$@" 2>err </dev/null &
    dialog=$!
}
has_ended() { ! kill -0 "$dialog" 2>/dev/null; }
ends_with() { # status
    eventually has_ended || { failed "the dialog is still running" && kill "$dialog"; }
    wait "$dialog"
    expect_equal status "$1" $?
    dialog=''
}

# --- a display for the test ---

start_display() {
    needs Xvfb xdotool zenity
    exec 5> >(cat >display)
    setpriv --pdeathsig KILL Xvfb -displayfd 5 -noreset -screen 0 1024x768x24 -nolisten tcp \
        >/dev/null 2>&1 &
    display_server=$!
    exec 5>&-
    eventually test -s display || give_up "Xvfb does not start"
    DISPLAY=:$(<display)
    export DISPLAY GTK_USE_PORTAL=0 NO_AT_BRIDGE=1 GSETTINGS_BACKEND=memory
    # A zenity on the search path that records its labels and rows.
    mkdir recording
    cat >recording/zenity <<END
#!/bin/sh
WINDOW_LABELS='$stage/labels' LD_PRELOAD='${WINDOW_LABELS_LIBRARY:?names the library}' \\
    exec '$(command -v zenity)' "\$@"
END
    chmod +x recording/zenity
    PATH=$stage/recording:$PATH
}
has_window() {
    window=$(xdotool search --onlyvisible --class zenity 2>/dev/null | head -n 1)
    [[ -n $window ]] || return 1
    xdotool windowfocus "$window" 2>/dev/null
    [[ $(xdotool getwindowfocus -f 2>/dev/null) == "$window" ]]
}
has_no_window() { ! has_window; }
window_appears() { eventually has_window || failed "no window appears: $(cat err 2>/dev/null)"; }
press() { xdotool key --delay 30 "$@"; }
enter() { xdotool type --delay 15 "$1"; }
# Sets X, Y, WIDTH and HEIGHT of the window, in pixels.
read_geometry() {
    X=0 Y=0 WIDTH=0 HEIGHT=0
    eval "$(xdotool getwindowgeometry --shell "$window")"
}
# click_from_corner X Y: clicks the window, in pixels from its right and lower edges.
click_from_corner() {
    read_geometry
    xdotool mousemove $((X + WIDTH - $1)) $((Y + HEIGHT - $2)) click 1
}
shows() { start_dialog "$@" && window_appears; }
has_rows() { [[ $(tail -n 1 labels 2>/dev/null) == "rows $1" ]]; }
shows_rows() { # number of rows, arguments
    shows "${@:2}"
    eventually has_rows "$1" || failed "the list has not $1 rows: $(<labels)"
}

# --- a terminal for the test ---

tmux_does() { tmux -N -L "$terminal_name" "$@"; }
start_terminal() { # columns, rows
    needs tmux
    terminal_name=trying-$$
    export TMUX_TMPDIR=$stage
    printf 'set -g %s\n' 'exit-empty off' 'default-terminal screen' 'status off' >tmux.conf
    setpriv --pdeathsig KILL tmux -L "$terminal_name" -f tmux.conf -D \
        </dev/null >/dev/null 2>&1 &
    terminal_server=$!
    eventually tmux_does new-session -d -x "$1" -y "$2" \
        "env PS1='ready> ' bash --norc --noprofile -i" 2>/dev/null ||
        give_up "tmux does not start"
    eventually on_screen 'ready>' || give_up "no shell starts in tmux"
}
screen() { tmux_does capture-pane -p; }
on_screen() { [[ $(screen) == *"$1"* ]]; }
keys() { tmux_does send-keys "$@"; }
types() { tmux_does send-keys -l -- "$1"; }
appears() { eventually on_screen "$1" || failed "not on the screen: '$1' but: $(screen)"; }
# Runs a command in the terminal, and writes its status to the file `status`.
in_terminal() {
    rm -f status
    printf '%s\n' "$1" >to_run
    keys C-l
    # shellcheck disable=SC2016 # for the shell in the terminal
    types '. ./to_run; echo $? >s; mv s status'
    keys Enter
}
terminal_ends_with() {
    if eventually test -e status; then
        expect_equal status "$1" "$(<status)"
    else
        failed "the command is still running: $(screen)"
        keys C-c
    fi
}

# --- the program in the demo's region ---

region=$stage/region
gatebits=$region/gatebits.txt
menus() { printf "GATESCOPE_PROGRAM='%s' '%s' %s '%s'" \
    "${GATESCOPE_PROGRAM:?names the program}" "$source_directory/scripts/demo" "$1" "$region"; }
expect_change() { # line before, line after
    expect_equal "the change" "< $1"$'\n'"> $2" "$(diff before "$gatebits" | grep '^[<>]')"
}
has_page() { [[ $(find "$region" -name '*_Q01.html' -size +0 | wc -l) == 1 ]]; }
