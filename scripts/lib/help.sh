# shellcheck shell=bash
# To be sourced: a script's help is the comment that it begins with, and what it does not know it
# refuses with that.

help_text() {
    sed -n '2,/^[^#]/s/^# \{0,1\}//p' "${BASH_SOURCE[-1]}" | sed 's|^  scripts/|Usage: scripts/|'
}

# help_if_asked_for ARGUMENT...
help_if_asked_for() {
    local argument
    for argument in "$@"; do
        case "$argument" in
            -h | --help) help_text && exit 0 ;;
        esac
    done
}

# wrong_arguments [SENTENCE]
wrong_arguments() {
    if (($# > 0)); then printf '%s\n\n' "$1" >&2; fi
    help_text >&2
    exit 2
}

# refuse_options ARGUMENT...: to be called when those are left that are no options.
refuse_options() {
    local argument
    for argument in "$@"; do
        if [[ "$argument" == -* ]]; then wrong_arguments "There is no option $argument."; fi
    done
}

# refuse_unless_number ARGUMENT...
refuse_unless_number() {
    local argument
    for argument in "$@"; do
        if [[ ! "$argument" =~ ^[0-9]+$ ]]; then wrong_arguments "$argument is no number."; fi
    done
}
