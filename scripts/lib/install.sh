# shellcheck shell=bash
# To be sourced: installs what the scripts need, on Debian and its kin.

# Whether a command or a path (with wildcards) is there.
is_there() {
    case "$1" in
        /*) compgen -G "$1" > /dev/null ;;
        *) command -v "$1" > /dev/null ;;
    esac
}

# The packages of a group that are missing, one a line.
missing_packages() {
    local group proof package
    while read -r group proof package; do
        if [[ "$group" == "$1" ]] && ! is_there "$proof"; then echo "$package"; fi
    done < "$(dirname "${BASH_SOURCE[0]}")/packages"
}

as_root() {
    if [[ "$(id -u)" == 0 ]]; then "$@"; else sudo "$@"; fi
}

# Ends the script, naming the packages, where they cannot be installed.
can_install_or_end() {
    local reason=''
    if ! is_there apt-get; then
        reason='there is no apt-get here'
    elif [[ "$(id -u)" != 0 ]] && ! is_there sudo; then
        reason='that takes root or sudo'
    fi
    if [[ -z "$reason" ]]; then return; fi
    echo "Missing here, by the names of Debian's packages: $*" >&2
    echo "They cannot be installed ($reason). Have them installed, and start this again." >&2
    exit 1
}

# install_missing GROUP...: says nothing and does nothing when everything is there.
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
