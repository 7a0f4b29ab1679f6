# shellcheck shell=bash
# To be sourced: a check of paths.

# refuse_odd_paths PATH...: ends the script if a path has characters that are special in CMake, a policy
# file or a shell.
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
