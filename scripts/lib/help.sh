# shellcheck shell=bash
# To be sourced: a script's help is the comment that it begins with.

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

wrong_arguments() {
    help_text >&2
    exit 2
}
