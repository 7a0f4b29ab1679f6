# shellcheck shell=bash
# To be sourced: prints a script's first comment as its usage, for --help and after wrong arguments.

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

# refuse_options ARGUMENT...: refuses any option among the remaining arguments.
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
        if [[ ! "$argument" =~ ^[0-9]+$ ]]; then wrong_arguments "$argument is not a number."; fi
    done
}
