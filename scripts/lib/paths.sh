# shellcheck shell=bash
# To be sourced: paths that the scripts work with.

# refuse_odd_paths PATH...: ends the script when CMake, a policy file or a shell would take a part of
# a path for something else.
refuse_odd_paths() {
    local path
    for path in "$@"; do
        case "$path" in
            *[\"\'\`\$\\\;\#]* | *$'\n'*)
                printf 'A path with a quotation mark, a dollar or one of \\ ; # cannot be used: %s\n' \
                    "$path" >&2
                exit 2
                ;;
        esac
    done
}
