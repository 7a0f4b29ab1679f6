# shellcheck shell=bash
# To be sourced: installs packages that the scripts need, on Debian and its derivatives.

# Whether a command or a path (with wildcards) exists.
exists() {
    case "$1" in
        /*) compgen -G "$1" > /dev/null ;;
        *) command -v "$1" > /dev/null ;;
    esac
}

# The missing packages of a group, one per line.
missing_packages() {
    local group proof package
    while read -r group proof package; do
        if [[ "$group" == "$1" ]] && ! exists "$proof"; then echo "$package"; fi
    done < "$(dirname "${BASH_SOURCE[0]}")/packages"
}

as_root() {
    if [[ "$(id -u)" == 0 ]]; then "$@"; else sudo "$@"; fi
}

# Ends the script and names the packages if they cannot be installed.
can_install_or_end() {
    local reason=''
    if ! exists apt-get; then
        reason='there is no apt-get'
    elif [[ "$(id -u)" != 0 ]] && ! exists sudo; then
        reason='it needs root or sudo'
    fi
    if [[ -z "$reason" ]]; then return; fi
    echo "Missing packages (Debian's names): $*" >&2
    echo "They cannot be installed ($reason). Install them and start this again." >&2
    exit 1
}

# install_missing GROUP...: installs the missing packages of the groups; prints nothing if there are
# none.
install_missing() {
    local group packages=()
    for group in "$@"; do
        mapfile -t -O "${#packages[@]}" packages < <(missing_packages "$group")
    done
    if [[ "${#packages[@]}" == 0 ]]; then return; fi
    can_install_or_end "${packages[@]}"
    echo "Installing ${packages[*]}"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${packages[@]}"
}
