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

# install_missing GROUP...: says nothing and does nothing when everything is there.
install_missing() {
    local group packages=()
    for group in "$@"; do
        mapfile -t -O "${#packages[@]}" packages < <(missing_packages "$group")
    done
    if [[ "${#packages[@]}" == 0 ]]; then return; fi
    echo "Installing ${packages[*]}"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${packages[@]}"
}
